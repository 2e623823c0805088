// Numbers as MIDI files write them.
#pragma once

#include <vector>

/// The largest that four bytes of seven bits hold.
constexpr unsigned kHost_MaxVariableLength = 0x0fffffff;

/// Big endian, iNumBytes of them, 1 to 4.
inline void Host_AppendNumber(std::vector<unsigned char> & ioBytes, unsigned iNumber,
                              int iNumBytes) {
  for (int shift = 8 * (iNumBytes - 1); shift >= 0; shift -= 8)
    ioBytes.push_back(static_cast<unsigned char>(iNumber >> shift));
}

/// Seven bits a byte, the top bit set in all but the last. Needs: at most kHost_MaxVariableLength.
inline void Host_AppendVariableLength(std::vector<unsigned char> & ioBytes, unsigned iNumber) {
  int shift = 21;
  while (shift > 0 && iNumber >> shift == 0)
    shift -= 7;
  for (; shift > 0; shift -= 7)
    ioBytes.push_back(static_cast<unsigned char>(0x80 | (iNumber >> shift & 0x7f)));
  ioBytes.push_back(static_cast<unsigned char>(iNumber & 0x7f));
}
