#include "host/host_programchase.h"

#include <algorithm>

#include "vrad/vrad_chunk.h"
#include "vrad/vrae_substream.h"

void Host_ProgramChase::Build(Vrad_Chunk const & iChunk, Host_TimeUnits iUnits) {
  std::vector<State> states;
  State state;
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : iChunk.GetContinuousList()) {
    if (streamP->GetSubStream() != Vrae_SubStream::Program()) continue;
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get()); iter.IsMore();
         ++iter) {
      Vrae_TimedEvent const event = *iter;
      Vrae_ProgramEvent const & program = event.mEvent.AsProgram();
      state.mTime = event.mTime;
      if (program.IsMSBBankEnabled()) state.mNextMSB = program.GetMSBBank();
      if (program.IsLSBBankEnabled()) state.mNextLSB = program.GetLSBBank();
      if (program.IsProgramEnabled()) {
        state.mProgram = program.GetProgram();
        state.mMSB = state.mNextMSB;
        state.mLSB = state.mNextLSB;
      }
      states.push_back(state);
    }
  }
  mStates.swap(states);
  mUnits = iUnits;
}

Host_ProgramChase::State Host_ProgramChase::GetState(Host_PlayPosition const & iPosition,
                                                     bool iIsPlayed) const {
  Time_Typed end = iPosition.AsBound(mUnits);
  if (iIsPlayed) ++end;  // as values are chased: up to the end of the tick or sample
  auto const next = std::partition_point(
      mStates.begin(), mStates.end(), [end](State const & iState) { return iState.mTime < end; });
  return next == mStates.begin() ? State() : *(next - 1);
}

Vrae_ProgramEvent Host_ProgramChase::MakeEvent(int iProgram, int iMSB, int iLSB) {
  Vrae_ProgramEvent event(0, 0);
  event.SetProgram(static_cast<signed char>(std::max(iProgram, 0)));
  event.SetMSBBank(static_cast<signed char>(std::max(iMSB, 0)));
  event.SetLSBBank(static_cast<signed char>(std::max(iLSB, 0)));
  event.SetProgramEnable(iProgram != kUnknown);
  event.SetMSBBankEnable(iMSB != kUnknown);
  event.SetLSBBankEnable(iLSB != kUnknown);
  return event;
}

void Host_ProgramChase::Send(Host_PlayPosition const & iPosition, bool iIsReached,
                             Vrae_EventReceiver & iOutput) const {
  State const state = GetState(iPosition, iIsReached);
  if (state.mProgram != kUnknown)
    iOutput.ReceiveEvent(MakeEvent(state.mProgram, state.mMSB, state.mLSB));
  int const nextMSB = state.mNextMSB == state.mMSB ? kUnknown : state.mNextMSB;
  int const nextLSB = state.mNextLSB == state.mLSB ? kUnknown : state.mNextLSB;
  if (nextMSB != kUnknown || nextLSB != kUnknown)
    iOutput.ReceiveEvent(MakeEvent(kUnknown, nextMSB, nextLSB));
}

bool Host_ProgramChase::IsSame(Host_PlayPosition const & iLeft, bool iIsLeftPlayed,
                               Host_PlayPosition const & iPosition) const {
  return GetState(iLeft, iIsLeftPlayed).SendsAs(GetState(iPosition));
}

bool Host_ProgramChase::IsSame(Host_ProgramChase const & iOther,
                               Host_PlayPosition const & iPosition) const {
  return GetState(iPosition).SendsAs(iOther.GetState(iPosition));
}

bool Host_ProgramChase::State::SendsAs(State const & iOther) const {
  return mProgram == iOther.mProgram && mMSB == iOther.mMSB && mLSB == iOther.mLSB &&
         mNextMSB == iOther.mNextMSB && mNextLSB == iOther.mNextLSB;
}
