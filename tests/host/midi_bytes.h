// Short hand for MIDI files in tests.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace midi {

typedef std::vector<unsigned char> Bytes;

inline Bytes operator+(Bytes iA, Bytes const & iB) {
  iA.insert(iA.end(), iB.begin(), iB.end());
  return iA;
}

inline Bytes Number(size_t iNumber, int iNumBytes) {
  Bytes result;
  for (int i = iNumBytes - 1; i >= 0; --i) {
    result.push_back(static_cast<unsigned char>(iNumber >> (8 * i)));
  }
  return result;
}

inline Bytes Text(std::string const & iText) {
  return Bytes(iText.begin(), iText.end());
}

/// A chunk of any kind with its right length.
inline Bytes Chunk(std::string const & iID, Bytes const & iContents) {
  return Text(iID) + Number(iContents.size(), 4) + iContents;
}

inline Bytes Header(unsigned iFormat, unsigned iNumTracks, unsigned iDivision) {
  return Chunk("MThd", Number(iFormat, 2) + Number(iNumTracks, 2) + Number(iDivision, 2));
}

/// The events with an end of track right behind them.
inline Bytes Track(Bytes const & iEvents) {
  return Chunk("MTrk", iEvents + Bytes{0, 0xff, 0x2f, 0});
}

/// One track of format 0 at 480 ticks to the quarter note, so 2000 library ticks to the file's
/// tick.
inline Bytes File(Bytes const & iEvents) {
  return Header(0, 1, 480) + Track(iEvents);
}

}  // namespace midi
