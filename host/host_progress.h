// How long works tell how far they are.
#pragma once

#include <cstddef>
#include <functional>

/// Told, now and then, that so much of so much is done: bytes where a file is read.
typedef std::function<void(size_t iNumDone, size_t iNumOfAll)> Host_Progress;
