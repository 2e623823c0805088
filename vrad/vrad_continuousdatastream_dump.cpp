// What a continuous stream says about itself, for reading.
#include "vrad/vrad_continuousdatastream.h"

#include "vrad/vrad_dumptext.h"

namespace {

std::string NameOf(Vrae_SubStream const & iSubStream) {
  static char const * const kNames[] = {"PitchBend", "Controller", "Program", "MonoPressure",
                                        "PolyPressure"};
  if (iSubStream.IsNull()) return "NoSubStream";
  int const code = iSubStream.GetType()->GetTypeCode();
  std::string const name = kNames[code - 1];
  bool const hasNumber = code == 2 || code == 5;
  return hasNumber ? name + " " + std::to_string(iSubStream.GetSubType()) : name;
}

}  // namespace

std::string Vrad_ContinuousDataStream::PrintContents() const {
  Vrad_ContinuousData::Segments const & segments = GetData().mSegments;
  std::string text = NameOf(mSubStream) + ": " + std::to_string(segments.Size()) + "\n";
  for (Vrad_ContinuousData_Segment const & segment : segments)
    text += "  " + Vrad_DumpText(segment.mTime) + " " + std::to_string(segment.mValue) + "\n";
  return text;
}
