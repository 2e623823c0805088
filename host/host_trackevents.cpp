#include "host/host_trackevents.h"

#include <algorithm>
#include <array>

#include "foundation/time_convert.h"
#include "host/host_midinumbers.h"
#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrad_eventstream.h"
#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrad_notelist.h"
#include "vrad/vrae_substream.h"

namespace {

constexpr signed char kBankLSB = 32;
constexpr int kMinBend = -8192;
constexpr int kMaxBend = 8191;

bool IsData(int iValue) {
  return iValue >= 0 && iValue <= 127;
}

bool IsSameNote(Vrae_NoteWithDurationEvent const & iA, Vrae_NoteWithDurationEvent const & iB) {
  return iA.GetPitch() == iB.GetPitch() && iA.GetOnVelocity() == iB.GetOnVelocity() &&
         iA.GetOffVelocity() == iB.GetOffVelocity() &&
         iA.GetDuration().AsInt64() == iB.GetDuration().AsInt64() &&
         iA.GetDuration().GetType() == iB.GetDuration().GetType();
}

bool IsValueOfMIDI(Vrae_Event const & iEvent) {
  if (iEvent.GetType() == Vrae_Event::kPitchBend) {
    int const bend = iEvent.AsPitchBend().GetBendValue();
    return bend >= kMinBend && bend <= kMaxBend;
  }
  return true;
}

// Takes one clip apart.
class ClipReader {
public:
  ClipReader(Host_Song const & iSong, int iClip, Time_TempoMap const & iTempo,
             Host_TrackEvents & ioTrack, Host_WriteReport & ioReport)
      : mClip(iSong.mClips[static_cast<size_t>(iClip)]),
        mIndex(iClip),
        mTempo(iTempo),
        mTrack(ioTrack),
        mReport(ioReport) {}

  void Read() {
    ReadSysex();
    ReadValues();
    ReadNotes();
    if (mIsEmpty) mReport.Count(kNotWritten_EmptyClip, mIndex, Time_Tick(0));
  }

private:
  void ReadSysex() {
    Vrad_EventStream const * const stream = mClip.mChunk.Get()->GetEventStream();
    for (Vrad_EventStream_RangeIter iter(stream); iter.IsMore(); iter.Next()) {
      Vrae_TimedEvent const & event = iter.GetEvent();
      mIsEmpty = false;
      if (event.mEvent.GetNumMessages() != 1) {
        mReport.Count(kNotWritten_BadEvent, mIndex, event.mTime);
        continue;
      }
      long long tick;
      if (!ToTick(event.mTime, tick)) continue;
      if (mClip.mChannel >= 0) mReport.Count(kNotWritten_SysexOfChannel, mIndex, event.mTime);
      AddSysex(tick, event.mEvent.AsSysex());
    }
  }

  void AddSysex(long long iTick, Vrae_SysexEvent const & iSysex) {
    size_t const numContents = static_cast<size_t>(iSysex.GetLength());
    if (numContents + 1 > kHost_MaxVariableLength) {
      return mReport.Count(kNotWritten_LongSysex, mIndex, Time_Tick(iTick));
    }
    std::vector<unsigned char> bytes = {0xf0};
    Host_AppendVariableLength(bytes, static_cast<unsigned>(numContents + 1));
    unsigned char const * const contents = iSysex.GetInternalDataPtr();
    bytes.insert(bytes.end(), contents, contents + numContents);
    bytes.push_back(0xf7);
    mTrack.AddMessage({iTick, kTrackRank_Sysex, mIndex, -1, 0, 0}, bytes);
  }

  // As stored, in the order in which a player would send them: a retrieval would give times in
  // samples as ticks, and what comes before the beginning at the beginning.
  void ReadValues() {
    Vrae_TimedEventList list;
    for (Ndo_Ptr<Vrad_ContinuousDataStream> const & stream :
         mClip.mChunk.Get()->GetContinuousList()) {
      Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(stream.Get());
      for (; iter.IsMore(); ++iter)
        list.push_back(*iter);
    }
    Vrad_EventListWrapper(&list).sort(0);
    for (Vrae_TimedEvent const & event : list)
      AddValue(event.mTime, event.mEvent);
  }

  void AddValue(Time_Typed iTime, Vrae_Event const & iEvent) {
    mIsEmpty = false;
    std::array<unsigned char, 9> bytes;  // a program's are the most: two controllers and itself
    size_t numBytes = 0;
    int const numMessages = iEvent.GetNumMessages();
    bool isGood = numMessages > 0 && IsValueOfMIDI(iEvent);
    for (int i = 0; i < numMessages; ++i) {
      unsigned char * const message = bytes.data() + numBytes;
      size_t const length = static_cast<size_t>(iEvent.GetMessageLength(i));
      iEvent.GetMessageData(reinterpret_cast<signed char *>(message), i);
      message[0] = WithChannel(message[0]);
      isGood = isGood && std::all_of(message + 1, message + length, IsData);
      numBytes += length;
    }
    if (!isGood) return mReport.Count(kNotWritten_BadEvent, mIndex, iTime);
    long long tick;
    if (!ToTick(iTime, tick)) return;
    CountBankTroubles(iTime, iEvent);
    CountMissingChannel(iTime);
    mTrack.AddMessage({tick, kTrackRank_Value, mIndex, Vrae_SubStream(iEvent).GetIndex(), 0, 0},
                      std::span(bytes.data(), numBytes));
  }

  void CountBankTroubles(Time_Typed iTime, Vrae_Event const & iEvent) {
    if (iEvent.GetType() == Vrae_Event::kController &&
        iEvent.AsController().GetControllerNumber() == kBankLSB) {
      mReport.Count(kNotWritten_BankController, mIndex, iTime);
    }
    if (iEvent.GetType() != Vrae_Event::kProgram) return;
    if (mHasLoneBank) mReport.Count(kNotWritten_TakenBankSelect, mIndex, mLoneBankTime);
    mHasLoneBank = !iEvent.AsProgram().IsProgramEnabled();
    mLoneBankTime = iTime;
  }

  void ReadNotes() {
    Vrad_NoteListBase::FullNotesInRangeIter iter(mClip.mChunk.Get()->GetNoteList());
    for (; iter.IsMore(); ++iter)
      AddNote(*iter);
  }

  void AddNote(Vrad_NoteListBase_Note const & iNote) {
    Vrae_NoteWithDurationEvent const & event = iNote.mEvent;
    mIsEmpty = false;
    if (iNote.mMuted) return mReport.Count(kNotWritten_MutedNote, mIndex, iNote.mTime);
    if (event.GetOnVelocity() == 0) {
      return mReport.Count(kNotWritten_SilentNote, mIndex, iNote.mTime);
    }
    Time_Typed const endTime = iNote.mTime.GetType() == event.GetDuration().GetType()
                                   ? iNote.mTime + event.GetDuration()
                                   : mTempo.AddLength(iNote.mTime, event.GetDuration());
    long long start, end;
    if (!IsData(event.GetPitch()) || event.GetOnVelocity() < 0 || event.GetOffVelocity() < 0) {
      return mReport.Count(kNotWritten_BadEvent, mIndex, iNote.mTime);
    }
    if (!ToTick(iNote.mTime, start) || !ToTick(endTime, end)) return;
    if (end <= start) mReport.Count(kNotWritten_NoLength, mIndex, iNote.mTime);
    CountLostParts(iNote);
    CountMissingChannel(iNote.mTime);
    mTrack.mNotes.push_back({start, std::max(end, Time_Saturating::Add(start, 1)), mIndex,
                             WithChannel(0), event.GetPitch(), event.GetOnVelocity(),
                             event.GetOffVelocity()});
  }

  void CountLostParts(Vrad_NoteListBase_Note const & iNote) {
    if (iNote.mQuantizeTimeDelta.AsInt64() != 0 || !IsSameNote(iNote.mEvent, iNote.mOrigEvent)) {
      mReport.Count(kNotWritten_OriginalNote, mIndex, iNote.mTime);
    }
    if (iNote.mEvent.GetType() == Vrae_Event::kPitchToMIDINoteWithDuration) {
      mReport.Count(kNotWritten_PitchFraction, mIndex, iNote.mTime);
    }
    if (iNote.mEvent.GetDuration().GetType() != Time_eType_Ticks &&
        iNote.mTime.GetType() == Time_eType_Ticks) {
      mReport.Count(kNotWritten_SampleTime, mIndex, iNote.mTime);
    }
  }

  void CountMissingChannel(Time_Typed iTime) {
    if (mClip.mChannel < 0) mReport.Count(kNotWritten_NoChannel, mIndex, iTime);
  }

  unsigned char WithChannel(unsigned char iStatus) const {
    return static_cast<unsigned char>(iStatus | (std::max(mClip.mChannel, 0) & 0x0f));
  }

  // False, and counted, for a time before the beginning.
  bool ToTick(Time_Typed iTime, long long & oTick) {
    oTick = iTime.AsInt64();
    if (iTime.GetType() != Time_eType_Ticks) {
      mReport.Count(kNotWritten_SampleTime, mIndex, iTime);
      oTick = mTempo.ToType(iTime, Time_eType_Ticks).AsInt64();
    }
    if (oTick < 0) mReport.Count(kNotWritten_EarlyEvent, mIndex, iTime);
    return oTick >= 0;
  }

  Host_Clip const & mClip;
  int mIndex;
  Time_TempoMap const & mTempo;
  Host_TrackEvents & mTrack;
  Host_WriteReport & mReport;
  bool mIsEmpty = true;
  bool mHasLoneBank = false;  // the latest program event has its program disabled
  Time_Typed mLoneBankTime;
};

}  // namespace

void Host_TrackEvents::AddMessage(Message iMessage, std::span<unsigned char const> iBytes) {
  iMessage.mFirst = mBytes.size();
  iMessage.mNumBytes = iBytes.size();
  mBytes.insert(mBytes.end(), iBytes.begin(), iBytes.end());
  mMessages.push_back(iMessage);
}

void Host_AddClip(Host_Song const & iSong, int iClip, Time_TempoMap const & iTempo,
                  Host_TrackEvents & ioTrack, Host_WriteReport & ioReport) {
  ClipReader(iSong, iClip, iTempo, ioTrack, ioReport).Read();
}
