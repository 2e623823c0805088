#include "vrad/vrad_scrub.h"

#include "vrad/vrae_event.h"

namespace {

// Gives a node back unless it has been taken out.
class NodeOwner {
public:
  NodeOwner() : mNodeP(Vrad_ScrubEventPool::GetEvent()) {}
  NodeOwner(NodeOwner const &) = delete;
  NodeOwner & operator=(NodeOwner const &) = delete;
  ~NodeOwner() {
    if (mNodeP) Vrad_ScrubEventPool::ReleaseEvent(mNodeP);
  }

  Vrad_ScrubEvent * Release(long long iTime, Vrad_ScrubEvent::EType iType, short iValue) {
    Vrad_ScrubEvent * const nodeP = mNodeP;
    mNodeP = nullptr;
    *nodeP = Vrad_ScrubEvent();
    nodeP->mTime = iTime;
    nodeP->mType = iType;
    nodeP->mValue = iValue;
    return nodeP;
  }

private:
  Vrad_ScrubEvent * mNodeP;
};

void SetVelocities(Vrad_ScrubEvent & ioNode, Vrae_NoteWithDurationEvent const & iNote) {
  ioNode.mOnVelocity = iNote.GetOnVelocity();
  ioNode.mOffVelocity = iNote.GetOffVelocity();
}

}  // namespace

Vrad_ScrubList::Vrad_ScrubList()
    : mHeadP(nullptr), mTailP(nullptr), mCurrentP(nullptr), mPosition(0) {}

Vrad_ScrubList::~Vrad_ScrubList() {
  Clear();
}

void Vrad_ScrubList::AddNote(Vrae_TimedEvent const & iEvent, bool iFromEnd) {
  Vrae_NoteWithDurationEvent const & note = iEvent.mEvent.AsNoteWithDuration();
  NodeOwner startOwner, endOwner;
  // The raw counts, whatever their units.
  long long const start = iEvent.mTime.AsInt64();
  long long const end = Time_Saturating::Add(start, note.GetDuration().AsInt64());
  Vrad_ScrubEvent * const startP =
      startOwner.Release(start, Vrad_ScrubEvent::kNoteStart, note.GetPitch());
  Vrad_ScrubEvent * const endP = endOwner.Release(end, Vrad_ScrubEvent::kNoteEnd, note.GetPitch());
  SetVelocities(*startP, note);
  SetVelocities(*endP, note);
  if (mHeadP) {
    InsertPair(startP, endP, iFromEnd);
    return;
  }
  Link(nullptr, startP, nullptr);
  MakeCurrentIfNext(startP);
  Link(startP, endP, nullptr);
  MakeCurrentIfNext(endP);
}

void Vrad_ScrubList::AddPitchBend(Vrae_TimedEvent const & iEvent, short iPreviousBend,
                                  bool iFromEnd) {
  Vrae_PitchBendEvent const & bend = iEvent.mEvent.AsPitchBend();
  NodeOwner beforeOwner, afterOwner;
  long long const time = iEvent.mTime.AsInt64();
  Vrad_ScrubEvent * const beforeP =
      beforeOwner.Release(time, Vrad_ScrubEvent::kBendBefore, iPreviousBend);
  Vrad_ScrubEvent * const afterP =
      afterOwner.Release(time, Vrad_ScrubEvent::kBendAfter, bend.GetBendValue());
  if (mHeadP) {
    InsertPair(beforeP, afterP, iFromEnd);
    return;
  }
  // The cursor stays past the end, on purpose.
  Link(nullptr, beforeP, nullptr);
  Link(beforeP, afterP, nullptr);
}

Vrad_ScrubEvent * Vrad_ScrubList::MoveTowards(Time_Typed iTime) {
  long long const time = iTime.AsInt64();
  if (mCurrentP && !EventIsAfterTime(mCurrentP, time)) {
    Vrad_ScrubEvent * const passedP = mCurrentP;
    mCurrentP = passedP->mNextP;
    mPosition = passedP->mTime;
    return passedP;
  }
  bool const isMovingOnPastEnd = !mCurrentP && time > mPosition;
  Vrad_ScrubEvent * const candidateP = mCurrentP ? mCurrentP->mPrevP : mTailP;
  if (isMovingOnPastEnd || !candidateP || !EventIsAfterTime(candidateP, time)) {
    mPosition = time;
    return nullptr;
  }
  mCurrentP = candidateP;
  mPosition = candidateP->mTime;
  return candidateP;
}

void Vrad_ScrubList::Clear() {
  for (Vrad_ScrubEvent * nodeP = mHeadP; nodeP;)
    nodeP = Vrad_ScrubEventPool::ReleaseEvent(nodeP);
  mHeadP = mTailP = mCurrentP = nullptr;
}

bool Vrad_ScrubList::EventIsAfterTime(Vrad_ScrubEvent const * iEventP, long long iTime) const {
  return iEventP->mTime > iTime ||
         (iEventP->mTime == iTime && iEventP->mType >= Vrad_ScrubEvent::kBendAfter);
}

// The second place is looked for from the first one on.
void Vrad_ScrubList::InsertPair(Vrad_ScrubEvent * iFirstP, Vrad_ScrubEvent * iSecondP,
                                bool iFromEnd) {
  if (iFromEnd) {
    Vrad_ScrubEvent * cursorP = mTailP;
    InsertBefore(iSecondP, cursorP);
    InsertBefore(iFirstP, cursorP);
  } else {
    Vrad_ScrubEvent * cursorP = mHeadP;
    InsertAfter(iFirstP, cursorP);
    InsertAfter(iSecondP, cursorP);
  }
}

void Vrad_ScrubList::InsertAfter(Vrad_ScrubEvent * iNodeP, Vrad_ScrubEvent *& ioCursorP) {
  while (ioCursorP->GoesBefore(iNodeP) && ioCursorP->mNextP)
    ioCursorP = ioCursorP->mNextP;
  if (ioCursorP->GoesBefore(iNodeP))
    Link(ioCursorP, iNodeP, nullptr);
  else
    Link(ioCursorP->mPrevP, iNodeP, ioCursorP);
  MakeCurrentIfNext(iNodeP);
}

void Vrad_ScrubList::InsertBefore(Vrad_ScrubEvent * iNodeP, Vrad_ScrubEvent *& ioCursorP) {
  while (iNodeP->GoesBefore(ioCursorP) && ioCursorP->mPrevP)
    ioCursorP = ioCursorP->mPrevP;
  if (iNodeP->GoesBefore(ioCursorP))
    Link(nullptr, iNodeP, ioCursorP);
  else
    Link(ioCursorP, iNodeP, ioCursorP->mNextP);
  MakeCurrentIfNext(iNodeP);
}

void Vrad_ScrubList::Link(Vrad_ScrubEvent * iPrevP, Vrad_ScrubEvent * iNodeP,
                          Vrad_ScrubEvent * iNextP) {
  iNodeP->mPrevP = iPrevP;
  iNodeP->mNextP = iNextP;
  (iPrevP ? iPrevP->mNextP : mHeadP) = iNodeP;
  (iNextP ? iNextP->mPrevP : mTailP) = iNodeP;
}

// A node put in directly ahead of the cursor takes its place if the position has not reached it.
void Vrad_ScrubList::MakeCurrentIfNext(Vrad_ScrubEvent * iNodeP) {
  if (iNodeP->mNextP == mCurrentP && EventIsAfterTime(iNodeP, mPosition)) mCurrentP = iNodeP;
}

Vrad_ScrubEvent * Vrad_ScrubEventPool::sFirstEvent = nullptr;
Vrad_ScrubEventPool * Vrad_ScrubEventPool::sFirstPool = nullptr;

Vrad_ScrubEventPool::Vrad_ScrubEventPool() : mNextP(sFirstPool) {
  for (int i = 0; i + 1 < kNumEvents; ++i)
    mEvents[i].mNextP = &mEvents[i + 1];
  mEvents[kNumEvents - 1].mNextP = sFirstEvent;
  sFirstEvent = &mEvents[0];
  sFirstPool = this;
}

Vrad_ScrubEvent * Vrad_ScrubEventPool::GetEvent() {
  if (!sFirstEvent) new Vrad_ScrubEventPool;
  Vrad_ScrubEvent * const eventP = sFirstEvent;
  sFirstEvent = eventP->mNextP;
  return eventP;
}

Vrad_ScrubEvent * Vrad_ScrubEventPool::ReleaseEvent(Vrad_ScrubEvent * iEventP) {
  Vrad_ScrubEvent * const nextP = iEventP->mNextP;
  iEventP->mNextP = sFirstEvent;
  sFirstEvent = iEventP;
  return nextP;
}

// The free nodes lie in the blocks and are left dangling: there is no scrubbing after this.
void Vrad_ScrubEventPool::Free() {
  while (sFirstPool) {
    Vrad_ScrubEventPool * const poolP = sFirstPool;
    sFirstPool = poolP->mNextP;
    delete poolP;
  }
}
