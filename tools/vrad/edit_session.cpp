#include "tools/vrad/edit_session.h"

#include <algorithm>

#include <fmt/format.h>

#include "foundation/ticktimesmatter.h"
#include "ndo/ndo_manager.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_load.h"

namespace {

Time_Typed const kFirst = Time_Typed::MinTime(Time_eType_Ticks);
Time_Typed const kLast = Time_Typed::MaxTime(Time_eType_Ticks);
constexpr long long kLastTrackEnd = 1ll << 60;  // a project's tracks cannot end later

// Sets a switch of the process for the length of a scope.
class ScopedTickTimes {
public:
  ScopedTickTimes() { TickTimesMatter::SetActive(true); }
  ScopedTickTimes(ScopedTickTimes const &) = delete;
  ScopedTickTimes & operator=(ScopedTickTimes const &) = delete;
  ~ScopedTickTimes() { TickTimesMatter::SetActive(false); }
};

class ScopedAvoiding {
public:
  explicit ScopedAvoiding(bool iIsAvoiding) { gAvoidOverlapsAndDuplicates = iIsAvoiding; }
  ScopedAvoiding(ScopedAvoiding const &) = delete;
  ScopedAvoiding & operator=(ScopedAvoiding const &) = delete;
  ~ScopedAvoiding() { gAvoidOverlapsAndDuplicates = false; }
};

typedef Ndo_AutoPtr<Vrad_Chunk> ChunkPtr;

// A chunk that undo does not see.
ChunkPtr MakePart(bool iQuantizeContents) {
  return ChunkPtr(Vrad_Chunk::New(Ndo_Object::kNotUndoable, iQuantizeContents));
}

// What begins in the range, taken out of the chunk into one of its own. Erasing the range itself
// would take along the sysex at its end.
ChunkPtr TakeOut(Vrad_Chunk & ioChunk, Time_Typed iFrom, Time_Typed iTo, bool iQuantizeContents) {
  ChunkPtr part = MakePart(iQuantizeContents);
  part->AddEventsFromChunk(&ioChunk, iFrom, iTo, Time_TickLength(0), kNudgeTimes);
  ioChunk.EraseEventsFromChunk(part.Get(), iFrom, iTo, Time_TickLength(0));
  return part;
}

void PutBack(Vrad_Chunk & ioChunk, Vrad_Chunk const & iPart, Time_TypedLength iOffset,
             EMidiNudgeMode iMode) {
  ioChunk.AddEventsFromChunk(&iPart, kFirst, kLast, iOffset, iMode);
}

// What comes of a part when it is put back, by itself.
Edit_Contents GetMoved(Vrad_Chunk const & iPart, Time_TypedLength iOffset, EMidiNudgeMode iMode) {
  ChunkPtr const moved = MakePart(iPart.QuantizeContents());
  PutBack(*moved.Get(), iPart, iOffset, iMode);
  return Edit_Contents(*moved.Get());
}

void CheckLimits(Edit_Contents const & iContents) {
  if (iContents.IsWithinLimits()) return;
  throw Tool_UsageError("it leads beyond the limits of time, 4611686018427387903 ticks or samples");
}

bool HasStream(Vrad_Chunk const & iChunk, Vrae_SubStream const & iStream) {
  auto const & streams = iChunk.GetContinuousList();
  return std::any_of(streams.begin(), streams.end(),
                     [&](auto const & stream) { return stream->GetSubStream() == iStream; });
}

void CheckBeginning(Host_Clip const & iClip) {
  for (auto const & stream : iClip.mChunk->GetContinuousList()) {
    Time_Typed time;
    int value = 0;
    if (!stream->GetLastValueChangeBeforeTime(&time, &value, Time_Tick(0))) continue;
    throw Tool_UsageError(fmt::format("a project cannot hold the controllers, bends, programs or "
                                      "pressures that now lie before the beginning, in track {}",
                                      iClip.mTrack));
  }
}

bool IsEmpty(Vrad_Chunk const & iChunk) {
  return iChunk.GetNoteList()->Size() == 0 && iChunk.GetContinuousList().empty() &&
         iChunk.GetEventStream()->Size() == 0;
}

bool GoesBefore(Host_Clip const & iA, Host_Clip const & iB) {
  auto const place = [](Host_Clip const & clip) {
    return std::pair(clip.mTrack, static_cast<unsigned>(clip.mChannel));  // none is last
  };
  return place(iA) < place(iB);
}

Host_Clip const * FindClip(Host_Song const & iSong, Host_Clip const & iTwin) {
  for (Host_Clip const & clip : iSong.mClips) {
    if (clip.mTrack == iTwin.mTrack && clip.mChannel == iTwin.mChannel) return &clip;
  }
  return nullptr;
}

}  // namespace

Edit_Session::Edit_Session(Host_Song & ioFile, std::optional<int> iClip)
    : mFile(ioFile),
      mBars(ioFile.mTimeSignatures),
      mOnly(iClip),
      mNumTracks(ioFile.mTracks.size()) {}

Edit_Session::Reports Edit_Session::Apply(Edit_Command const & iCommand) {
  if (auto const * const merge = std::get_if<Edit_Merge>(&iCommand.mEdit)) LoadTake(merge->mFile);
  try {
    return std::visit([this](auto const & edit) { return Perform(edit); }, iCommand.mEdit);
  } catch (Tool_UsageError const & error) {
    throw Tool_UsageError(fmt::format("'{}': {}", iCommand.mText, error.what()));
  }
}

template <class TEdit>
Edit_Session::Reports Edit_Session::Perform(TEdit const & iEdit) {
  std::vector<Edit_Contents> const before = ReadContents();
  Ndo_Transaction transaction;
  Moves const moves = Do(iEdit);
  bool const isRecorded = transaction.End();
  mSteps.resize(mNumDone);
  mSteps.push_back({Compare(before, moves), isRecorded});
  return mSteps[mNumDone++].mReports;
}

Edit_Session::Reports Edit_Session::Perform(Edit_Undo const &) {
  if (mNumDone == 0) throw Tool_UsageError("there is nothing to undo");
  Step const & step = mSteps[--mNumDone];
  if (step.mIsRecorded) Ndo_gManager.Undo();
  Reports reports = step.mReports;
  for (Edit_ClipReport & report : reports)
    report.mDifference = report.mDifference.GetReversed();
  return reports;
}

Edit_Session::Reports Edit_Session::Perform(Edit_Redo const &) {
  if (mNumDone == mSteps.size()) throw Tool_UsageError("there is nothing to redo");
  Step const & step = mSteps[mNumDone++];
  if (step.mIsRecorded) Ndo_gManager.Redo();
  return step.mReports;
}

Edit_Session::Moves Edit_Session::Do(Edit_Merge const & iEdit) {
  ScopedAvoiding const avoiding(iEdit.mIsAvoiding);
  for (Host_Clip const * clip : GetClips()) {
    Host_Clip const * const source = FindClip(mTake, *clip);
    if (source == nullptr) continue;
    PutBack(*clip->mChunk.Get(), *source->mChunk.Get(), Time_TickLength(0), kNudgeTimes);
  }
  return {};
}

Edit_Session::Moves Edit_Session::Do(Edit_EraseRange const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Host_Clip const * clip : GetClips())
    TakeOut(*clip->mChunk.Get(), range.mFrom, range.mTo, false);
  return {};
}

Edit_Session::Moves Edit_Session::Do(Edit_CopyRange const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Host_Clip const * clip : GetClips()) {
    Vrad_Chunk & chunk = *clip->mChunk.Get();
    chunk.AddEventsFromChunk(&chunk, range.mFrom, range.mTo, iEdit.mOffset, kNudgeTimes);
  }
  return {};
}

// Moving in place would leave the continuous streams out of the undo record.
Edit_Session::Moves Edit_Session::Do(Edit_Nudge const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  Moves moves;
  for (Host_Clip const * clip : GetClips()) {
    Vrad_Chunk & chunk = *clip->mChunk.Get();
    ChunkPtr const part = TakeOut(chunk, range.mFrom, range.mTo, chunk.QuantizeContents());
    moves.push_back(
        {Edit_Contents(*part.Get()), GetMoved(*part.Get(), iEdit.mOffset, iEdit.mMode)});
    PutBack(chunk, *part.Get(), iEdit.mOffset, iEdit.mMode);
  }
  return moves;
}

// Without its stream, erasing would fall on the next one above it.
Edit_Session::Moves Edit_Session::Do(Edit_EraseStream const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Host_Clip const * clip : GetClips()) {
    if (!HasStream(*clip->mChunk.Get(), iEdit.mStream)) continue;
    clip->mChunk->EraseSubStream(iEdit.mStream, range.mFrom, range.mTo);
  }
  return {};
}

Edit_Session::Moves Edit_Session::Do(Edit_Quantize const & iEdit) {
  Moves moves;
  for (Host_Clip const * clip : GetClips()) {
    ChunkPtr const part = TakeOut(*clip->mChunk.Get(), kFirst, kLast, true);
    Edit_Contents const before(*part.Get());
    {
      ScopedTickTimes const tickTimes;
      part->QuantizeEventsForTTM(iEdit.mOffset);
    }
    CheckLimits(Edit_Contents(*part.Get()));  // at the end of time it would not come back
    moves.push_back({before, GetMoved(*part.Get(), Time_TickLength(0), kNudgeTimes)});
    PutBack(*clip->mChunk.Get(), *part.Get(), Time_TickLength(0), kNudgeTimes);
  }
  return moves;
}

std::vector<Edit_Contents> Edit_Session::ReadContents() const {
  std::vector<Edit_Contents> contents;
  for (Host_Clip const * clip : GetClips())
    contents.emplace_back(*clip->mChunk.Get());
  return contents;
}

Edit_Session::Reports Edit_Session::Compare(std::vector<Edit_Contents> const & iBefore,
                                            Moves const & iMoves) const {
  std::vector<Host_Clip const *> const clips = GetClips();
  Reports reports;
  for (size_t i = 0; i < clips.size(); ++i) {
    Edit_Contents const after(*clips[i]->mChunk.Get());
    Edit_Difference const difference =
        iMoves.empty() ? Edit_Difference(iBefore[i], after)
                       : Edit_Difference(iBefore[i], after, iMoves[i].mPart, iMoves[i].mMoved);
    if (difference.Describe().empty()) continue;
    CheckLimits(after);
    reports.push_back({clips[i]->mTrack, clips[i]->mChannel, difference});
  }
  return reports;
}

Edit_Session::Range Edit_Session::Resolve(Edit_Range const & iRange) const {
  Range const range{
      iRange.mFrom ? Tool_ResolvePosition("the start of the range", *iRange.mFrom, mBars) : kFirst,
      iRange.mTo ? Tool_ResolvePosition("the end of the range", *iRange.mTo, mBars) : kLast};
  if (range.mFrom > range.mTo) throw Tool_UsageError("the range ends before it begins");
  return range;
}

std::vector<Host_Clip const *> Edit_Session::GetClips() const {
  if (mOnly) return {&mFile.mClips[*mOnly]};
  std::vector<Host_Clip const *> clips;
  for (Host_Clip const & clip : mFile.mClips)
    clips.push_back(&clip);
  return clips;
}

void Edit_Session::LoadTake(std::string const & iPath) {
  mTake = Tool_ReadFile(iPath);
  Tool_TellProblems(iPath, mTake.mReport, true);
  mIsTakeLossy = mIsTakeLossy || mTake.mReport.IsLossy();
  if (!mOnly) MakeClipsForTake();
}

// Outside the step, so that an undo empties a new clip and does not take it away from the file.
void Edit_Session::MakeClipsForTake() {
  while (mFile.mTracks.size() < mTake.mTracks.size())
    mFile.mTracks.push_back(mTake.mTracks[mFile.mTracks.size()]);
  for (Host_Clip const & source : mTake.mClips) {
    if (FindClip(mFile, source) != nullptr) continue;
    Host_Clip clip{source.mTrack, source.mChannel,
                   ChunkPtr(Vrad_Chunk::New(Ndo_Object::kUndoable, false))};
    mMade.push_back(clip.mChunk.Get());
    mFile.mClips.insert(
        std::upper_bound(mFile.mClips.begin(), mFile.mClips.end(), clip, GoesBefore),
        std::move(clip));
  }
}

void Edit_Session::Finish() {
  std::erase_if(mFile.mClips, [this](Host_Clip const & clip) {
    bool const isMade = std::find(mMade.begin(), mMade.end(), clip.mChunk.Get()) != mMade.end();
    return isMade && IsEmpty(*clip.mChunk.Get());
  });
  size_t numTracks = mNumTracks;
  for (Host_Clip const & clip : mFile.mClips) {
    numTracks = std::max(numTracks, static_cast<size_t>(clip.mTrack) + 1);
    CheckBeginning(clip);
    ExtendTrack(clip);
  }
  while (mFile.mTracks.size() > numTracks)
    mFile.mTracks.pop_back();
}

void Edit_Session::ExtendTrack(Host_Clip const & iClip) {
  Host_MidiTrack & track = mFile.mTracks[static_cast<size_t>(iClip.mTrack)];
  Time_Tick const end = Edit_Contents(*iClip.mChunk.Get()).GetEnd();
  track.mEnd = Time_Tick(std::max(track.mEnd.AsInt64(), std::min(end.AsInt64(), kLastTrackEnd)));
}
