// The build's way of standing between a test and the functions that real-time code must not call.
#pragma once

#include "support/realtime_scope.h"

bool RealtimeInterposeCanSee(RealtimeViolation iKind);
