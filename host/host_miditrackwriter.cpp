#include "host/host_miditrackwriter.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "host/host_midinumbers.h"
#include "host/host_midiparser.h"
#include "vrad/vrae_event.h"

namespace {

typedef std::vector<unsigned char> Bytes;

constexpr int kNumPitches = 128;

// Something to be written, at its tick of the file.
struct Entry {
  long long mTick;
  Host_ETrackRank mRank;
  std::array<unsigned char, 3> mNoteMessage;
  Host_TrackEvents::Message const * mMessageP;  // null: the note message

  std::pair<long long, int> GetPlace() const { return {mTick, mRank}; }
};

// A note at ticks of the file.
struct Note {
  long long mStart, mEnd;
  Host_TrackEvents::Note const * mNoteP;

  Host_ETrackRank GetEndRank() const {
    return mEnd > mStart ? kTrackRank_NoteEnd : kTrackRank_Note;
  }
  std::pair<long long, int> GetEndPlace() const { return {mEnd, GetEndRank()}; }
};

template <class TMessage>
std::array<unsigned char, 3> MakeNoteMessage(TMessage const & iMessage, unsigned char iChannel) {
  std::array<signed char, 3> data;
  iMessage.GetMessageData(data.data(), 0);
  std::array<unsigned char, 3> result;
  std::copy(data.begin(), data.end(), result.begin());
  result[0] |= iChannel;
  return result;
}

class TrackWriter {
public:
  TrackWriter(Host_TrackEvents const & iTrack, Host_MidiTiming const & iTiming,
              Host_WriteReport & ioReport)
      : mTrack(iTrack), mTiming(iTiming), mReport(ioReport) {}

  Bytes Write() {
    AddMessages();
    AddNotes();
    std::stable_sort(mEntries.begin(), mEntries.end(), [](Entry const & iA, Entry const & iB) {
      return iA.GetPlace() < iB.GetPlace();
    });
    for (Entry const & entry : mEntries)
      WriteEntry(entry);
    WriteEnd();
    return std::move(mBytes);
  }

private:
  void AddMessages() {
    typedef std::pair<long long, long long> Ticks;       // of the file, of the library
    std::map<std::pair<int, int>, Ticks> lastOfStreams;  // by clip and stream
    for (Host_TrackEvents::Message const & message : mTrack.mMessages) {
      long long tick;
      if (!ToFileTick(message.mTick, message.mClip, tick)) continue;
      if (!mTiming.IsOnGrid(Time_Tick(message.mTick))) {
        mReport.Count(kNotWritten_OffGrid, message.mClip, Time_Tick(message.mTick));
      }
      if (message.mStream >= 0) {
        Ticks & last =
            lastOfStreams.try_emplace({message.mClip, message.mStream}, -1, 0).first->second;
        if (last.first == tick) {
          mReport.Count(kNotWritten_MergedValue, message.mClip, Time_Tick(last.second));
        }
        last = {tick, message.mTick};
      }
      mEntries.push_back({tick, message.mRank, {}, &message});
    }
  }

  void AddNotes() {
    std::vector<Note> notes;
    notes.reserve(mTrack.mNotes.size());
    mEntries.reserve(mEntries.size() + 2 * mTrack.mNotes.size());
    for (Host_TrackEvents::Note const & note : mTrack.mNotes) {
      long long start, end;
      if (!ToFileTick(note.mStart, note.mClip, start) || !ToFileTick(note.mEnd, note.mClip, end)) {
        continue;
      }
      bool const hasLength = end > start;
      if (ToTick(start) != note.mStart ||
          (hasLength ? ToTick(end) : note.mStart + 1) != note.mEnd) {
        mReport.Count(kNotWritten_OffGrid, note.mClip, Time_Tick(note.mStart));
      }
      notes.push_back({start, end, &note});
      AddNote(notes.back());
    }
    CountCrossedNotes(notes);
  }

  void AddNote(Note const & iNote) {
    Host_TrackEvents::Note const & note = *iNote.mNoteP;
    auto const on = MakeNoteMessage(Vrae_NoteOnEvent(note.mPitch, note.mOnVelocity), note.mChannel);
    auto const off =
        MakeNoteMessage(Vrae_NoteOffEvent(note.mPitch, note.mOffVelocity), note.mChannel);
    mEntries.push_back({iNote.mStart, kTrackRank_Note, on, nullptr});
    mEntries.push_back({iNote.mEnd, iNote.GetEndRank(), off, nullptr});
  }

  // A reader gives the first end of a pitch to the first note of it, and so on.
  void CountCrossedNotes(std::vector<Note> const & iNotes) {
    std::map<int, std::vector<Note>> notesByKey;  // by channel and pitch
    for (Note const & note : iNotes) {
      notesByKey[(note.mNoteP->mChannel & 0x0f) * kNumPitches + note.mNoteP->mPitch].push_back(
          note);
    }
    for (auto & [key, notes] : notesByKey)
      CountCrossedNotesOfKey(notes);
  }

  void CountCrossedNotesOfKey(std::vector<Note> & ioNotes) {
    std::stable_sort(ioNotes.begin(), ioNotes.end(),
                     [](Note const & iA, Note const & iB) { return iA.mStart < iB.mStart; });
    auto const endsBefore = [](Note const & iA, Note const & iB) {
      return iA.GetEndPlace() < iB.GetEndPlace();
    };
    if (std::is_sorted(ioNotes.begin(), ioNotes.end(), endsBefore)) return;
    std::vector<Note> ends = ioNotes;
    std::stable_sort(ends.begin(), ends.end(), endsBefore);
    for (size_t i = 0; i < ends.size(); ++i) {
      Host_TrackEvents::Note const & note = *ioNotes[i].mNoteP;
      if (ends[i].mEnd == ioNotes[i].mEnd && ends[i].mNoteP->mOffVelocity == note.mOffVelocity) {
        continue;
      }
      mReport.Count(kNotWritten_CrossedNote, note.mClip, Time_Tick(note.mStart));
    }
  }

  // False, and counted, for a time that a file cannot reach.
  bool ToFileTick(long long iTick, int iClip, long long & oFileTick) {
    oFileTick = mTiming.ToFileTick(Time_Tick(iTick));
    if (oFileTick <= kHost_MaxFileTick) return true;
    mReport.Count(kNotWritten_LateEvent, iClip, Time_Tick(iTick));
    return false;
  }

  long long ToTick(long long iFileTick) const { return mTiming.ToTick(iFileTick).AsInt64(); }

  void WriteEntry(Entry const & iEntry) {
    WriteDelta(iEntry.mTick);
    if (!iEntry.mMessageP) return WriteChannelMessage(iEntry.mNoteMessage);
    std::span<unsigned char const> const bytes(mTrack.mBytes.data() + iEntry.mMessageP->mFirst,
                                               iEntry.mMessageP->mNumBytes);
    if (iEntry.mRank == kTrackRank_Value) return WriteChannelMessages(bytes);
    mRunningStatus = 0;
    mBytes.insert(mBytes.end(), bytes.begin(), bytes.end());
  }

  // Several of one event stand at its tick, one behind the other.
  void WriteChannelMessages(std::span<unsigned char const> iMessages) {
    for (size_t at = 0; at < iMessages.size();) {
      size_t const length = (iMessages[at] & 0xe0) == 0xc0 ? 2 : 3;
      if (at > 0) mBytes.push_back(0);
      WriteChannelMessage(iMessages.subspan(at, length));
      at += length;
    }
  }

  void WriteChannelMessage(std::span<unsigned char const> iMessage) {
    bool const isRunning = iMessage[0] == mRunningStatus;
    mRunningStatus = iMessage[0];
    mBytes.insert(mBytes.end(), iMessage.begin() + (isRunning ? 1 : 0), iMessage.end());
  }

  void WriteDelta(long long iTick) {
    constexpr std::array<unsigned char, 3> kEmptyText = {0xff, 0x01, 0};
    while (iTick - mTick > kHost_MaxVariableLength) {
      Host_AppendVariableLength(mBytes, kHost_MaxVariableLength);
      mBytes.insert(mBytes.end(), kEmptyText.begin(), kEmptyText.end());
      mTick += kHost_MaxVariableLength;
      mRunningStatus = 0;
    }
    Host_AppendVariableLength(mBytes, static_cast<unsigned>(iTick - mTick));
    mTick = iTick;
  }

  void WriteEnd() {
    constexpr std::array<unsigned char, 3> kEndOfTrack = {0xff, 0x2f, 0};
    long long tick = 0;
    if (ToFileTick(mTrack.mEnd, -1, tick) && tick >= mTick &&
        !mTiming.IsOnGrid(Time_Tick(mTrack.mEnd))) {
      mReport.Count(kNotWritten_OffGrid, -1, Time_Tick(mTrack.mEnd));
    }
    WriteDelta(std::clamp(tick, mTick, kHost_MaxFileTick));
    mBytes.insert(mBytes.end(), kEndOfTrack.begin(), kEndOfTrack.end());
  }

  Host_TrackEvents const & mTrack;
  Host_MidiTiming const & mTiming;
  Host_WriteReport & mReport;
  std::vector<Entry> mEntries;
  Bytes mBytes;
  long long mTick = 0;
  unsigned char mRunningStatus = 0;  // 0: none
};

}  // namespace

std::vector<unsigned char> Host_WriteTrack(Host_TrackEvents const & iTrack,
                                           Host_MidiTiming const & iTiming,
                                           Host_WriteReport & ioReport) {
  return TrackWriter(iTrack, iTiming, ioReport).Write();
}
