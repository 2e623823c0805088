#include "tools/vrad/edit_session.h"

#include <algorithm>

#include <fmt/format.h>

#include "foundation/ticktimesmatter.h"
#include "ndo/ndo_manager.h"
#include "tools/vrad/edit_difference.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_load.h"

namespace {

Time_Typed const kFirst = Time_Typed::MinTime(Time_eType_Ticks);
Time_Typed const kLast = Time_Typed::MaxTime(Time_eType_Ticks);

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

// What begins in the range, taken out of the chunk into one of its own, which undo does not see.
Ndo_AutoPtr<Vrad_Chunk> TakeOut(Vrad_Chunk & ioChunk, Time_Typed iFrom, Time_Typed iTo,
                                bool iQuantizeContents) {
  Ndo_AutoPtr<Vrad_Chunk> part(Vrad_Chunk::New(Ndo_Object::kNotUndoable, iQuantizeContents));
  part->AddEventsFromChunk(&ioChunk, iFrom, iTo, Time_TickLength(0), kNudgeTimes);
  ioChunk.EraseRange(iFrom, iTo);
  return part;
}

void PutBack(Vrad_Chunk & ioChunk, Vrad_Chunk const & iPart, Time_TypedLength iOffset,
             EMidiNudgeMode iMode) {
  ioChunk.AddEventsFromChunk(&iPart, kFirst, kLast, iOffset, iMode);
}

bool HasStream(Vrad_Chunk const & iChunk, Vrae_SubStream const & iStream) {
  auto const & streams = iChunk.GetContinuousList();
  return std::any_of(streams.begin(), streams.end(),
                     [&](auto const & stream) { return stream->GetSubStream() == iStream; });
}

bool IsEmpty(Vrad_Chunk const & iChunk) {
  return iChunk.GetNoteList()->Size() == 0 && iChunk.GetContinuousList().empty() &&
         iChunk.GetEventStream()->Size() == 0;
}

// The command that this one carries out, takes back or repeats.
std::string GetStepName(Edit_Command const & iCommand) {
  if (std::holds_alternative<Edit_Undo>(iCommand.mEdit)) return Ndo_gManager.GetUndoName();
  if (std::holds_alternative<Edit_Redo>(iCommand.mEdit)) return Ndo_gManager.GetRedoName();
  return iCommand.mText;
}

bool IsMoving(std::string const & iStepName) {
  std::string_view const name =
      std::string_view(iStepName).substr(iStepName.find_first_not_of(" \t"));
  return name.starts_with("nudge") || name.starts_with("quantize");
}

bool GoesBefore(Host_Clip const & iA, Host_Clip const & iB) {
  auto const place = [](Host_Clip const & clip) {
    return std::pair(clip.mTrack, static_cast<unsigned>(clip.mChannel));  // none is last
  };
  return place(iA) < place(iB);
}

}  // namespace

Edit_Session::Edit_Session(Host_Song & ioFile, std::optional<int> iClip)
    : mFile(ioFile),
      mBars(ioFile.mTimeSignatures),
      mOnly(iClip ? ioFile.mClips[static_cast<size_t>(*iClip)].mChunk.Get() : nullptr) {}

std::vector<Edit_ClipReport> Edit_Session::Apply(Edit_Command const & iCommand) {
  if (auto const * const merge = std::get_if<Edit_Merge>(&iCommand.mEdit)) LoadTake(merge->mFile);
  std::vector<Edit_Contents> before;
  for (Host_Clip const & clip : mFile.mClips)
    before.emplace_back(*clip.mChunk.Get());
  std::string const stepName = GetStepName(iCommand);
  Step(iCommand);
  std::vector<Edit_ClipReport> reports;
  for (size_t i = 0; i < mFile.mClips.size(); ++i) {
    Host_Clip const & clip = mFile.mClips[i];
    Edit_Contents const after(*clip.mChunk.Get());
    std::string const text = Edit_Difference(before[i], after, IsMoving(stepName)).Describe();
    if (!text.empty()) reports.push_back({clip.mTrack, clip.mChannel, text});
  }
  return reports;
}

// Undo and redo stand outside transactions; all else is one.
void Edit_Session::Step(Edit_Command const & iCommand) {
  auto const act = [this](auto const & edit) { Do(edit); };
  if (std::holds_alternative<Edit_Undo>(iCommand.mEdit) ||
      std::holds_alternative<Edit_Redo>(iCommand.mEdit)) {
    return std::visit(act, iCommand.mEdit);
  }
  Ndo_Transaction step(iCommand.mText);
  std::visit(act, iCommand.mEdit);
  step.End();
}

void Edit_Session::Do(Edit_Merge const & iEdit) {
  ScopedAvoiding const avoiding(iEdit.mIsAvoiding);
  for (Host_Clip const & source : mTake.mClips) {
    Vrad_Chunk * const target = FindClip(source.mTrack, source.mChannel);
    if (target == nullptr || (mOnly != nullptr && target != mOnly)) continue;
    PutBack(*target, *source.mChunk.Get(), Time_TickLength(0), kNudgeTimes);
  }
}

void Edit_Session::Do(Edit_EraseRange const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Vrad_Chunk * chunk : GetChunks())
    chunk->EraseRange(range.mFrom, range.mTo);
}

void Edit_Session::Do(Edit_CopyRange const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Vrad_Chunk * chunk : GetChunks()) {
    chunk->AddEventsFromChunk(chunk, range.mFrom, range.mTo, iEdit.mOffset, kNudgeTimes);
  }
}

// Moving in place would leave the continuous streams out of the undo record.
void Edit_Session::Do(Edit_Nudge const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Vrad_Chunk * chunk : GetChunks()) {
    auto const part = TakeOut(*chunk, range.mFrom, range.mTo, chunk->QuantizeContents());
    PutBack(*chunk, *part.Get(), iEdit.mOffset, iEdit.mMode);
  }
}

// Without its stream, erasing would fall on the next one above it.
void Edit_Session::Do(Edit_EraseStream const & iEdit) {
  Range const range = Resolve(iEdit.mRange);
  for (Vrad_Chunk * chunk : GetChunks()) {
    if (!HasStream(*chunk, iEdit.mStream)) continue;
    chunk->EraseSubStream(iEdit.mStream, range.mFrom, range.mTo);
  }
}

void Edit_Session::Do(Edit_Quantize const & iEdit) {
  for (Vrad_Chunk * chunk : GetChunks()) {
    auto const part = TakeOut(*chunk, kFirst, kLast, true);
    {
      ScopedTickTimes const tickTimes;
      part->QuantizeEventsForTTM(iEdit.mOffset);
    }
    PutBack(*chunk, *part.Get(), Time_TickLength(0), kNudgeTimes);
  }
}

void Edit_Session::Do(Edit_Undo const &) {
  if (!Ndo_gManager.Undo()) throw Tool_UsageError("'undo': there is nothing to undo");
}

void Edit_Session::Do(Edit_Redo const &) {
  if (!Ndo_gManager.Redo()) throw Tool_UsageError("'redo': there is nothing to redo");
}

Edit_Session::Range Edit_Session::Resolve(Edit_Range const & iRange) const {
  Range const range{
      iRange.mFrom ? Tool_ResolvePosition("the start of a range", *iRange.mFrom, mBars) : kFirst,
      iRange.mTo ? Tool_ResolvePosition("the end of a range", *iRange.mTo, mBars) : kLast};
  if (range.mFrom > range.mTo) throw Tool_UsageError("a range ends before it begins");
  return range;
}

std::vector<Vrad_Chunk *> Edit_Session::GetChunks() const {
  if (mOnly != nullptr) return {mOnly};
  std::vector<Vrad_Chunk *> chunks;
  for (Host_Clip const & clip : mFile.mClips)
    chunks.push_back(clip.mChunk.Get());
  return chunks;
}

Vrad_Chunk * Edit_Session::FindClip(int iTrack, int iChannel) const {
  for (Host_Clip const & clip : mFile.mClips) {
    if (clip.mTrack == iTrack && clip.mChannel == iChannel) return clip.mChunk.Get();
  }
  return nullptr;
}

void Edit_Session::LoadTake(std::string const & iPath) {
  mTake = Tool_ReadFile(iPath);
  Tool_TellProblems(iPath, mTake.mReport, true);
  if (mOnly == nullptr) MakeClipsForTake();
}

// Outside the step, so that an undo empties a new clip and does not take it away from the file.
void Edit_Session::MakeClipsForTake() {
  while (mFile.mTracks.size() < mTake.mTracks.size())
    mFile.mTracks.push_back(mTake.mTracks[mFile.mTracks.size()]);
  for (Host_Clip const & source : mTake.mClips) {
    if (FindClip(source.mTrack, source.mChannel) != nullptr) continue;
    Host_Clip clip{source.mTrack, source.mChannel,
                   Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kUndoable, false))};
    mMade.push_back(clip.mChunk.Get());
    mFile.mClips.insert(
        std::upper_bound(mFile.mClips.begin(), mFile.mClips.end(), clip, GoesBefore),
        std::move(clip));
  }
}

void Edit_Session::RemoveEmptyClips() {
  std::erase_if(mFile.mClips, [this](Host_Clip const & clip) {
    bool const isMade = std::find(mMade.begin(), mMade.end(), clip.mChunk.Get()) != mMade.end();
    return isMade && IsEmpty(*clip.mChunk.Get());
  });
}
