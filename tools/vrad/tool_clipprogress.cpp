#include "tools/vrad/tool_clipprogress.h"

#include "tools/vrad/tool_clips.h"

namespace {

constexpr size_t kBytesPerNote = 100;  // of print, roughly

}  // namespace

void Tool_ClipProgress::Expect(std::vector<int> const & iClips) {
  for (int const clip : iClips)
    mNumNotes += Tool_CountNotes(mSong, clip);
}

void Tool_ClipProgress::BeginClip(int iClip) {
  mNumNotesBefore += mNumNotesOfClip;
  mNumNotesOfClip = Tool_CountNotes(mSong, iClip);
}

void Tool_ClipProgress::Show(size_t iNumDone, size_t iNumParts) {
  if (mNumNotes == 0 || iNumDone > iNumParts) return;
  size_t const inClip = iNumParts == 0 ? 0 : mNumNotesOfClip * iNumDone / iNumParts;
  mBar.Show((mNumNotesBefore + inClip) * kBytesPerNote, mNumNotes * kBytesPerNote);
}
