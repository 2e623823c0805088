#include "host/host_clipbuilder.h"

#include <utility>

#include "vrad/vrad_eventstream.h"
#include "vrad/vrae_timedevent.h"

namespace {

constexpr size_t kMaxSysexSize = 1u << 30;  // an event counts its bytes in 32 bits

// Adds events of one time in front of any of that time, in the order given. The stream puts each
// new event in front of its equals, so small runs go in from the back; a large run goes in by
// halves, which keeps the moving of events to n log n.
void AddRun(Vrad_EventStream & ioStream, Time_Typed iTime, std::span<Vrae_Event const> iRun) {
  constexpr size_t kSmall = 64;
  if (iRun.size() <= kSmall) {
    for (auto event = iRun.rbegin(); event != iRun.rend(); ++event) {
      ioStream.AddEvent(Vrae_TimedEvent(iTime, *event));
    }
    return;
  }
  size_t const half = iRun.size() / 2;
  AddRun(ioStream, iTime, iRun.subspan(half));
  Vrad_EventStream front(Ndo_Object::kNotUndoable, false);
  AddRun(front, iTime, iRun.first(half));
  Time_TypedLength const one(1, iTime.GetType());
  ioStream.AddFromStream(&front, iTime, iTime + one, Time_TypedLength(0, iTime.GetType()));
}

}  // namespace

Host_ClipBuilder::Host_ClipBuilder(std::vector<Host_Clip> & ioClips, Host_MidiReport & ioReport)
    : mClips(ioClips), mReport(ioReport), mBudget(kHost_MaxStores, ioReport) {}

Host_ClipBuilder::~Host_ClipBuilder() = default;

void Host_ClipBuilder::BeginTrack(int iTrack) {
  mTrack = iTrack;
}

void Host_ClipBuilder::AddChannelMessage(long long iTick, unsigned char iStatus,
                                         unsigned char iData1, unsigned char iData2,
                                         size_t iOffset) {
  size_t const index = iStatus & 0x0fu;
  if (!mIsInUse[index]) {
    if (!mBudget.Take(iOffset)) return;
    mIsInUse[index] = true;
    if (!mChannels[index]) mChannels[index] = std::make_unique<Host_ChannelClip>(mReport, mBudget);
  }
  mChannels[index]->AddMessage(iTick, iStatus, iData1, iData2, iOffset);
}

void Host_ClipBuilder::AddSysex(long long iTick, std::span<unsigned char const> iContents,
                                size_t iOffset) {
  if (iContents.size() > kMaxSysexSize) {
    return mReport.AddProblem(iOffset, "a sysex of more than 2^30 bytes is not read", true);
  }
  if (!mSysexChunk.Get()) {
    if (!mBudget.Take(iOffset)) return;
    mSysexChunk = Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kUndoable, false));
  }
  if (iTick != mSysexTick) AddSysexRun();
  mSysexTick = iTick;
  mSysexRun.push_back(Vrae_SysexEvent(static_cast<int>(iContents.size()), iContents.data()));
}

void Host_ClipBuilder::EndTrack(long long iTick) {
  for (size_t i = 0; i < mChannels.size(); ++i) {
    if (mIsInUse[i]) AppendClip(static_cast<int>(i), mChannels[i]->Finish(iTick));
    mIsInUse[i] = false;
  }
  if (!mSysexChunk.Get()) return;
  AddSysexRun();
  AppendClip(-1, std::move(mSysexChunk));
}

void Host_ClipBuilder::AddSysexRun() {
  if (mSysexRun.empty()) return;
  AddRun(*mSysexChunk.Get()->GetEventStream(), Time_Tick(mSysexTick), mSysexRun);
  mSysexRun.clear();
}

void Host_ClipBuilder::AppendClip(int iChannel, Ndo_AutoPtr<Vrad_Chunk> iChunk) {
  if (iChunk.Get()) mClips.push_back({mTrack, iChannel, std::move(iChunk)});
}
