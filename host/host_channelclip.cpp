#include "host/host_channelclip.h"

#include <algorithm>
#include <utility>

#include "vrad/vrad_extendedevent.h"
#include "vrad/vrad_notelist.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_substream.h"

namespace {

constexpr unsigned char kImpliedOffVelocity = 64;  // of a note-on of velocity 0, and of no note-off
constexpr unsigned char kBankMSB = 0;
constexpr unsigned char kBankLSB = 32;
constexpr unsigned char kFirstChannelMode = 120;

signed char AsSigned(int iData) {
  return static_cast<signed char>(iData);
}

Vrae_ProgramEvent MakeProgram(int iProgram, int iMSB, int iLSB) {
  Vrae_ProgramEvent event(0, 0);
  if (iProgram >= 0) event.SetProgram(AsSigned(iProgram));
  if (iMSB >= 0) event.SetMSBBank(AsSigned(iMSB));
  if (iLSB >= 0) event.SetLSBBank(AsSigned(iLSB));
  event.SetProgramEnable(iProgram >= 0);
  event.SetMSBBankEnable(iMSB >= 0);
  event.SetLSBBankEnable(iLSB >= 0);
  return event;
}

}  // namespace

bool Host_StoreBudget::Take(size_t iOffset) {
  if (mNumLeft > 0) {
    --mNumLeft;
    return true;
  }
  if (!mIsTold) {
    mReport.AddProblem(
        iOffset, "too many tracks, channels and controllers; further ones are not read", true);
  }
  mIsTold = true;
  return false;
}

Host_ChannelClip::Host_ChannelClip(Host_MidiReport & ioReport, Host_StoreBudget & ioBudget)
    : mReport(ioReport), mBudget(ioBudget) {
  StartAnew();
}

void Host_ChannelClip::AddMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                                  unsigned char iData2, size_t iOffset) {
  switch (iStatus & 0xf0) {
  case 0x80:
    EndNote(iTick, iData1, iData2, iOffset);
    break;
  case 0x90:
    if (iData2 != 0) {
      StartNote(iTick, iData1, iData2);
    } else {
      EndNote(iTick, iData1, kImpliedOffVelocity, iOffset);
    }
    break;
  case 0xa0:
    AddValue(iTick, Vrae_PolyPressureEvent(AsSigned(iData1), AsSigned(iData2)), iOffset);
    break;
  case 0xb0:
    AddController(iTick, iData1, iData2, iOffset);
    break;
  case 0xc0:
    AddProgram(iTick, iData1, iOffset);
    break;
  case 0xd0:
    AddValue(iTick, Vrae_MonoPressureEvent(AsSigned(iData1)), iOffset);
    break;
  case 0xe0:
    AddValue(iTick, Vrae_PitchBendEvent(static_cast<short>((iData2 << 7 | iData1) - 8192)),
             iOffset);
    break;
  default:
    break;
  }
}

Ndo_AutoPtr<Vrad_Chunk> Host_ChannelClip::Finish(long long iTick) {
  AddLoneBankSelect();
  AddNotes(iTick);
  Ndo_AutoPtr<Vrad_Chunk> chunk(std::move(mChunk));
  StartAnew();
  return chunk;
}

void Host_ChannelClip::StartNote(long long iTick, unsigned char iPitch, unsigned char iVelocity) {
  int const index = static_cast<int>(mNotes.size());
  mNotes.push_back(
      {iTick, 0, kNone, AsSigned(iPitch), AsSigned(iVelocity), AsSigned(kImpliedOffVelocity)});
  if (mFirstOpen[iPitch] == kNone) {
    mFirstOpen[iPitch] = index;
  } else {
    mNotes[static_cast<size_t>(mLastOpen[iPitch])].mNextOpen = index;
  }
  mLastOpen[iPitch] = index;
}

void Host_ChannelClip::EndNote(long long iTick, unsigned char iPitch, unsigned char iVelocity,
                               size_t iOffset) {
  int const index = mFirstOpen[iPitch];
  if (index == kNone) return mReport.CountNotKept(kNotKept_UnmatchedNoteOff, iOffset);
  Note & note = mNotes[static_cast<size_t>(index)];
  note.mDuration = std::max(iTick - note.mStart, 1ll);
  note.mOffVelocity = AsSigned(iVelocity);
  mFirstOpen[iPitch] = note.mNextOpen;
}

void Host_ChannelClip::AddController(long long iTick, unsigned char iNumber, unsigned char iValue,
                                     size_t iOffset) {
  if (iNumber == kBankMSB) {
    SelectBank(iTick, mBank.mMSB, mBank.mMSBOffset, iValue, iOffset);
  } else if (iNumber == kBankLSB) {
    SelectBank(iTick, mBank.mLSB, mBank.mLSBOffset, iValue, iOffset);
  } else if (iNumber >= kFirstChannelMode) {
    mReport.CountNotKept(kNotKept_ChannelMode, iOffset);
  } else {
    AddValue(iTick, Vrae_ControllerEvent(AsSigned(iNumber), AsSigned(iValue)), iOffset);
  }
}

void Host_ChannelClip::SelectBank(long long iTick, int & ioPart, size_t & ioPartOffset, int iValue,
                                  size_t iOffset) {
  if (ioPart != kNone) mReport.CountNotKept(kNotKept_EarlierBankSelect, ioPartOffset);
  ioPart = iValue;
  ioPartOffset = iOffset;
  mBank.mTick = iTick;
}

void Host_ChannelClip::AddProgram(long long iTick, int iProgram, size_t iOffset) {
  AddValue(iTick, MakeProgram(iProgram, mBank.mMSB, mBank.mLSB), iOffset);
  mBank = BankSelect();
}

void Host_ChannelClip::AddLoneBankSelect() {
  if (!mBank.IsGiven()) return;
  Vrae_ProgramEvent const event = MakeProgram(kNone, mBank.mMSB, mBank.mLSB);
  size_t const index = static_cast<size_t>(Vrae_SubStream(event).GetIndex());
  if (mLastValues[index].mTick != mBank.mTick) {
    AddValue(mBank.mTick, event, std::max(mBank.mMSBOffset, mBank.mLSBOffset));
    return;
  }
  if (mBank.mMSB != kNone) mReport.CountNotKept(kNotKept_LoneBankSelect, mBank.mMSBOffset);
  if (mBank.mLSB != kNone) mReport.CountNotKept(kNotKept_LoneBankSelect, mBank.mLSBOffset);
}

// The store keeps one value at a time, so a later one puts an earlier one out.
void Host_ChannelClip::AddValue(long long iTick, Vrae_Event const & iEvent, size_t iOffset) {
  LastValue & last = mLastValues[static_cast<size_t>(Vrae_SubStream(iEvent).GetIndex())];
  if (last.mTick == kNone && !mBudget.Take(iOffset)) return;
  if (last.mTick == iTick) mReport.CountNotKept(kNotKept_EarlierValue, last.mOffset);
  last = {iTick, iOffset};
  GetChunk().AddEvent(Vrad_ExtendedEvent(Time_Tick(iTick), iEvent));
}

// Notes stand in order of their beginning, so each goes to the end of the list.
void Host_ChannelClip::AddNotes(long long iEnd) {
  if (mNotes.empty()) return;
  Vrad_NoteListBase & list = *GetChunk().GetNoteList();
  for (Note const & note : mNotes) {
    long long const duration =
        note.mDuration != 0 ? note.mDuration : std::max(iEnd - note.mStart, 1ll);
    list.AddNote(Vrad_NoteListBase_Note(
        Time_Tick(note.mStart), Vrae_NoteWithDurationEvent(note.mPitch, Time_TickLength(duration),
                                                           note.mOnVelocity, note.mOffVelocity)));
  }
}

Vrad_Chunk & Host_ChannelClip::GetChunk() {
  // Times stay as the file has them, so contents are not put on the coarse grid.
  if (!mChunk.Get())
    mChunk = Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kUndoable, false));
  return *mChunk.Get();
}

void Host_ChannelClip::StartAnew() {
  mNotes = {};
  mFirstOpen.fill(kNone);
  mLastOpen.fill(kNone);
  mLastValues.fill({kNone, 0});
  mBank = BankSelect();
}
