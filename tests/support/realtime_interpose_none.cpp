// On a system without a way to stand between, nothing is seen.
#include "support/realtime_interpose.h"

bool RealtimeInterposeCanSee(RealtimeViolation) {
  return false;
}
