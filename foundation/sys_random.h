// The system's random source. Not installed.
#pragma once

/// Fills `oBytes` with at most 256 unpredictable bytes.
/// Fails: `std::system_error`, the bytes being undefined. Thread: any, not the audio thread.
void Sys_FillRandom(unsigned char * oBytes, int iNumBytes);
