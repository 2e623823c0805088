#include "host/host_checkedclip.h"

#include <algorithm>

#include "foundation/time_convert.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_event.h"

namespace {

// As a message has it, of which a data byte has seven bits.
int AsData(int iValue) {
  return iValue & 0x7F;
}

// The key and the value that the event's messages leave a receiver with. False for what no receiver
// keeps.
bool ReadEvent(Vrae_Event const & iEvent, int & oKey, int & oValue) {
  constexpr int kBendCentre = 8192, kMaxBend = 0x3FFF, kNumControllers = 120;
  switch (iEvent.GetType()) {
  case Vrae_Event::kController:
    oKey = iEvent.AsController().GetControllerNumber();
    oValue = AsData(iEvent.AsController().GetValue());
    return oKey >= 0 && oKey < kNumControllers;
  case Vrae_Event::kPitchBend:
    oKey = kValueKey_Bend;
    oValue = (iEvent.AsPitchBend().GetBendValue() + kBendCentre) & kMaxBend;
    return true;
  case Vrae_Event::kMonoPressure:
    oKey = kValueKey_MonoPressure;
    oValue = AsData(iEvent.AsMonoPressure().GetPressure());
    return true;
  case Vrae_Event::kPolyPressure:
    oKey = kValueKey_PolyPressure + AsData(iEvent.AsPolyPressure().GetPitch());
    oValue = AsData(iEvent.AsPolyPressure().GetPressure());
    return true;
  case Vrae_Event::kProgram: {
    Vrae_ProgramEvent const & program = iEvent.AsProgram();
    oKey = kValueKey_Program;
    oValue = Host_PackProgram({program.IsProgramEnabled() ? program.GetProgram() : -1,
                               program.IsMSBBankEnabled() ? program.GetMSBBank() : -1,
                               program.IsLSBBankEnabled() ? program.GetLSBBank() : -1});
    return true;
  }
  default:
    return false;
  }
}

}  // namespace

long long Host_SampleOf(Time_Typed iTime) {
  constexpr long long kFarOff = 1LL << 61;  // from where positions can be added and subtracted yet
  Time_Converter const * const converterP = Time_Convert::sTimeConverter;
  Time_Typed const time = converterP ? converterP->ToType(iTime, Time_eType_Samples) : iTime;
  return std::clamp(time.AsInt64(), -kFarOff, kFarOff);
}

int Host_ParameterRank(int iKey) {
  if (iKey >= 98 && iKey <= 101) return 1;
  if (iKey == 6 || iKey == 38) return 2;
  return iKey == 96 || iKey == 97 ? 3 : 0;
}

int Host_PackProgram(Host_ProgramParts const & iParts) {
  return (iParts.mProgram + 1) | (iParts.mMSB + 1) << 8 | (iParts.mLSB + 1) << 16;
}

Host_ProgramParts Host_UnpackProgram(int iValue) {
  return {(iValue & 0xFF) - 1, (iValue >> 8 & 0xFF) - 1, (iValue >> 16 & 0xFF) - 1};
}

void Host_CheckedClip::Read(Vrad_Chunk const & iChunk) {
  ReadNotes(iChunk);
  ReadValues(iChunk);
  ReadSysexes(iChunk);
  ComputeSamples();
}

// Reading a chunk's stores takes iterators that could write; they don't.
void Host_CheckedClip::ReadNotes(Vrad_Chunk const & iChunk) {
  mNotes.clear();
  Vrad_NoteListBase::FullNotesInRangeIter iter(const_cast<Vrad_Chunk &>(iChunk).GetNoteList());
  for (; iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    bool const isPlain = note.mEvent.GetType() == Vrae_Event::kNoteWithDuration;
    if (!isPlain || note.mMuted || note.mEvent.GetOnVelocity() <= 0 || note.mEvent.GetPitch() < 0)
      continue;
    mNotes.push_back({note.mTime, note.mTime + note.mEvent.GetDuration(), 0, 0,
                      note.mEvent.GetPitch(), note.mEvent.GetOnVelocity(),
                      AsData(note.mEvent.GetOffVelocity())});
  }
}

void Host_CheckedClip::ReadValues(Vrad_Chunk const & iChunk) {
  mValues.clear();
  for (auto const & streamP : iChunk.GetContinuousList()) {
    Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get());
    for (; iter.IsMore(); ++iter) {
      Vrae_TimedEvent const event = *iter;
      int key, value;
      if (ReadEvent(event.mEvent, key, value)) mValues[key].push_back({event.mTime, 0, value});
    }
  }
}

void Host_CheckedClip::ReadSysexes(Vrad_Chunk const & iChunk) {
  mSysexes.clear();
  Vrad_EventStreamTimedEventsInRangeIter iter(const_cast<Vrad_Chunk &>(iChunk).GetEventStream());
  for (; iter.IsMore(); ++iter) {
    Vrae_TimedEvent const event = *iter;
    if (event.mEvent.GetNumMessages() != 1) continue;  // an incomplete one isn't sent
    std::vector<unsigned char> bytes(static_cast<size_t>(event.mEvent.GetMessageLength(0)));
    event.mEvent.GetMessageData(reinterpret_cast<signed char *>(bytes.data()), 0);
    mSysexes.push_back({event.mTime, bytes});
  }
}

void Host_CheckedClip::ComputeSamples() {
  for (Note & note : mNotes) {
    note.mStartSample = Host_SampleOf(note.mStart);
    note.mEndSample = std::max(Host_SampleOf(note.mEnd), note.mStartSample);
  }
  for (auto & [key, values] : mValues)
    for (Value & value : values)
      value.mSample = Host_SampleOf(value.mTime);
  MakeEdges();
}

void Host_CheckedClip::MakeEdges() {
  mEdges.clear();
  for (auto const & [key, values] : mValues)
    for (size_t i = 0; i < values.size(); ++i)
      mEdges.push_back(
          {values[i].mTime, values[i].mSample, EEdge::kValue, key, static_cast<int>(i)});
  for (size_t i = 0; i < mSysexes.size(); ++i)
    mEdges.push_back({mSysexes[i].mTime, Host_SampleOf(mSysexes[i].mTime), EEdge::kSysex, 0,
                      static_cast<int>(i)});
  for (size_t i = 0; i < mNotes.size(); ++i) {
    Note const & note = mNotes[i];
    mEdges.push_back({note.mEnd, note.mEndSample, EEdge::kNoteEnd, 0, static_cast<int>(i)});
    mEdges.push_back({note.mStart, note.mStartSample, EEdge::kNoteStart, 0, static_cast<int>(i)});
  }
  std::stable_sort(mEdges.begin(), mEdges.end(), [](Edge const & iA, Edge const & iB) {
    if (iA.mSample != iB.mSample) return iA.mSample < iB.mSample;
    if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
    return Host_ParameterRank(iA.mKey) < Host_ParameterRank(iB.mKey);
  });
  mSnapshots.clear();
  std::vector<int> sounding;
  for (size_t i = 0; i < mEdges.size(); ++i) {
    if (i % kEdgesPerSnapshot == 0) mSnapshots.push_back(sounding);
    ApplyEdge(mEdges[i], sounding);
  }
}

void Host_CheckedClip::ApplyEdge(Edge const & iEdge, std::vector<int> & ioSounding) const {
  if (iEdge.mKind == EEdge::kNoteStart) {
    if (!mNotes[static_cast<size_t>(iEdge.mIndex)].IsInstant()) ioSounding.push_back(iEdge.mIndex);
  } else if (iEdge.mKind == EEdge::kNoteEnd) {
    std::erase(ioSounding, iEdge.mIndex);
  }
}

size_t Host_CheckedClip::FindEdge(long long iSample) const {
  auto const iter =
      std::lower_bound(mEdges.begin(), mEdges.end(), iSample,
                       [](Edge const & iEdge, long long iAt) { return iEdge.mSample < iAt; });
  return static_cast<size_t>(iter - mEdges.begin());
}

Host_CheckedClip::Value const * Host_CheckedClip::FindValue(int iKey, long long iSample) const {
  auto const found = mValues.find(iKey);
  if (found == mValues.end()) return nullptr;
  auto const iter =
      std::upper_bound(found->second.begin(), found->second.end(), iSample,
                       [](long long iAt, Value const & iValue) { return iAt < iValue.mSample; });
  return iter == found->second.begin() ? nullptr : &*(iter - 1);
}

std::vector<int> Host_CheckedClip::FindSounding(long long iSample) const {
  size_t const end = FindEdge(iSample);
  if (mSnapshots.empty()) return {};
  size_t const snapshot = std::min(end / kEdgesPerSnapshot, mSnapshots.size() - 1);
  std::vector<int> sounding = mSnapshots[snapshot];
  for (size_t i = snapshot * kEdgesPerSnapshot; i < end; ++i)
    ApplyEdge(mEdges[i], sounding);
  return sounding;
}
