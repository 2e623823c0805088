// The event record: one fixed-size value for every kind of MIDI event, and the typed views on it.
// Ordering and message encoding are operations of the record.
//
// Thread: a record belongs to one thread at a time. Copies of one long sysex may live on several
// threads, as their shared payload is counted atomically. Building, copying and destroying events
// is safe on the audio thread, but for the sysex operations that say otherwise.
#pragma once

#include <cstring>
#include <string>

#include "cmn/cmn_polyvector.h"
#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"

class Mem2_MasterAllocator;
class Sys_TypedInStream;
class Sys_TypedOutStream;
class Vrae_SysexDataBase;

class Vrae_NoteOnEvent;
class Vrae_NoteOffEvent;
class Vrae_NoteWithDurationEvent;
class Vrae_PitchBendEvent;
class Vrae_ControllerEvent;
class Vrae_ProgramEvent;
class Vrae_MonoPressureEvent;
class Vrae_PolyPressureEvent;
class Vrae_SongPositionEvent;
class Vrae_SysexEvent;
class Vrae_SysexPacketEvent;
class Vrae_ClearNoteInProgressEvent;
class Vrae_AddNoteInProgressEvent;
class Vrae_ReleaseControllerEvent;
class Vrae_QuarterFrameEvent;
class Vrae_PitchToMIDINoteWithDuration;
class Vrae_ClipEvent;

/// One MIDI event of any kind, as a value. Plain data, but that a long sysex (kind 15) holds one
/// counted reference on its payload. Pitches, velocities, values and pressures are 0 to 127.
/// Out-of-range arguments are reported and stored all the same.
class VRAD_EXPORT Vrae_Event {
public:
  // The numbers are saved in projects and index tables: never renumber, never reuse.
  enum EType {
    kNoEvent = 0,
    kNoteOn = 1,
    kNoteOff = 2,
    kNoteWithDuration = 3,
    kPitchBend = 4,
    kController = 5,
    kProgram = 6,
    kMonoPressure = 7,
    kPolyPressure = 8,
    kSongPosition = 9,
    kStart = 10,
    kContinue = 11,
    kStop = 12,
    kTimingClock = 13,
    kShortSysex = 14,
    kLongSysex = 15,
    kSysexPacket = 16,
    kClearNoteInProgress = 17,
    kAddNoteInProgress = 18,
    kReleaseController = 19,
    kAllNotesOff = 20,
    kQuarterFrame = 21,
    kPitchToMIDINoteWithDuration = 22,
    kClipEvent = 23
  };

  static constexpr int kMaxShortSysexLength = 14;  // bytes held in the record itself
  static constexpr int kRegionNameSize = 64;       // bytes, the terminating zero included

  struct BaseData {
    signed char mType;
  };
  struct NoteData {
    signed char mType;
    signed char mPitch;
    signed char mVelocity;
  };
  struct NoteWithDurationData {
    signed char mType;
    signed char mPitch;
    signed char mOnVelocity;  // 0 marks the note as deleted
    signed char mOffVelocity;
    long long mDuration;  // a count of mDurationType
    Time_EType mDurationType;
  };
  // The note-with-duration fields once more, so that either variant reads them.
  struct PitchToMIDINoteWithDurationData {
    signed char mType;
    signed char mPitch;
    signed char mOnVelocity;
    signed char mOffVelocity;
    long long mDuration;
    Time_EType mDurationType;
    float mFractionalPitch;
  };
  struct PitchBendData {
    signed char mType;
    short mBend;  // -8192 to 8191, centre 0
  };
  struct ControllerData {
    signed char mType;
    signed char mControllerNumber;  // 0 to 119
    signed char mValue;
  };
  // A set flag means disabled, so that a zeroed record sends all three parts.
  struct ProgramData {
    signed char mType;
    unsigned char mFullProgram;  // bit 7: program disabled; bits 6 to 0: program
    unsigned short mFullBank;    // bits 15, 14: MSB, LSB disabled; 13 to 7: MSB; 6 to 0: LSB
  };
  struct MonoPressureData {
    signed char mType;
    signed char mPressure;
  };
  struct PolyPressureData {
    signed char mType;
    signed char mPitch;
    signed char mPressure;
  };
  struct SongPositionData {
    signed char mType;
    short mPosition;  // 0 to 0x3fff, in MIDI song position units
  };
  // Kind 14: the contents without 0xF0 and 0xF7. Kind 16: a fragment as it came in.
  struct ShortSysexData {
    signed char mType;
    signed char mLength;
    unsigned char mData[kMaxShortSysexLength];
  };
  struct LongSysexData {
    signed char mType;
    Vrae_SysexDataBase * mSysexP;  // one reference; never null while the kind is 15
  };
  struct ReleaseControllerData {
    signed char mType;
    int mIndex;  // in the index space of Vrae_SubStream
  };
  struct QuarterFrameData {
    signed char mType;
    unsigned char mDataByte;  // bits 6 to 4: the message; 3 to 0: the nibble
  };
  struct ClipEventData {
    signed char mType;
    char mRegionName[kRegionNameSize];
    unsigned long long mDuration;  // a count without its unit
  };

  union {
    BaseData mBase;
    NoteData mNoteOn;
    NoteData mNoteOff;
    NoteWithDurationData mNoteWithDuration;  // kinds 3, 17, 18, and 22 but for its fraction
    PitchBendData mPitchBend;
    ControllerData mController;
    ProgramData mProgram;
    MonoPressureData mMonoPressure;
    PolyPressureData mPolyPressure;
    SongPositionData mSongPosition;
    ShortSysexData mShortSysex;  // kinds 14 and 16
    LongSysexData mLongSysex;
    ReleaseControllerData mReleaseController;
    QuarterFrameData mQuarterFrame;
    PitchToMIDINoteWithDurationData mPitchToMIDINoteWithDuration;
    ClipEventData mClipEvent;  // the largest
  } mU;

  /// Kind 0, all bytes zero.
  Vrae_Event() noexcept;
  /// Copies the record; a long sysex takes one more reference on its payload.
  Vrae_Event(Vrae_Event const & iOther) noexcept;
  /// A long sysex drops its reference.
  inline ~Vrae_Event();  // inline here already: the views below refer to it before its body
  /// A long sysex on the left drops its reference, one on the right takes one more.
  Vrae_Event const & operator=(Vrae_Event const & iOther) noexcept;

  /// The kind, 0 to 23 in a sound record.
  signed char GetType() const { return mU.mBase.mType; }

  // Ordering. Records of different kinds are neither equal nor ordered. Kinds 22, 23 and unknown
  // ones fail a throwing check, "0"; with throwing off the answer is true.

  /// Field by field. A long sysex is compared by identity of its payload.
  bool operator==(Vrae_Event const & iOther) const;
  /// Orders records of one kind only, and not strictly: kinds without fields are less than
  /// themselves. Never sort a mixed list with it.
  bool operator<(Vrae_Event const & iOther) const;
  /// 0 to 100: the lower plays first among events of one time. 0 for an unknown kind.
  int GetPlaybackPriority() const;

  // Encoding. Channel messages come with channel 0; whoever sends them supplies the channel.
  // Kinds that must never reach the encoder (17, 18, 22, 23, unknown ones; 16 but for the count)
  // fail a throwing check, "0". Thread: any. None of the four allocates.

  /// The number of MIDI messages, 0 to 3. Sysex is one message however long, and none while a long
  /// one is incomplete. A note with duration has none.
  int GetNumMessages() const;
  /// In bytes. A message number beyond the last is reported; kinds with one message go on with it.
  int GetMessageLength(int iMessageNumber) const;
  /// Writes the whole message. Needs: room for `GetMessageLength(iMessageNumber)` bytes.
  void GetMessageData(signed char * oData, int iMessageNumber) const;
  /// Writes bytes [iByteOffset, iByteOffset + iByteLength) of the message, for sending a long one
  /// in slices. Needs: room for `iByteLength` bytes.
  void GetPartialMessageData(signed char * oData, int iMessageNumber, int iByteOffset,
                             int iByteLength) const;
  /// True for kinds 14 and 15, whatever the number; false for a sysex packet.
  bool IsMessageSysex(int iMessageNumber) const;
  /// True for a long sysex that begins with 0xF0 and ends with another byte, 0xF7.
  bool IsCompleteLongSysex() const;

  // Saving. Only sysex is saved as an event; notes and continuous values have records of their own.

  /// Writes the event's record, for kinds 14 and 15. Any other kind is reported, and its record is
  /// empty. Only the contents are saved: what does not begin with 0xF0 and end with 0xF7 loses the
  /// bytes there.
  void StreamOut(Sys_TypedOutStream & ioStream) const;
  /// Becomes the event of the next record: kind 14 or 15, or kind 0 where the record says none.
  /// Fails: `Sys_StreamException`; `std::bad_alloc` for a negative length. The event is unchanged.
  void StreamIn(Sys_TypedInStream & ioStream);

  // For containers that move records as raw images.

  /// Call on the record before a byte copy of it is kept: takes the copy's reference.
  void PrepareToImageOut() const;
  /// Call on a slot before a byte copy overwrites it: the record becomes kind 0.
  void PrepareToImageIn();

  // Views: this very record, seen as one kind. A record of another kind is reported and handed
  // back all the same; the caller then reads the other kind's bytes.

  Vrae_NoteOnEvent & AsNoteOn();
  Vrae_NoteOnEvent const & AsNoteOn() const;
  Vrae_NoteOffEvent & AsNoteOff();
  Vrae_NoteOffEvent const & AsNoteOff() const;
  /// Kinds 3 and 22.
  Vrae_NoteWithDurationEvent & AsNoteWithDuration();
  Vrae_NoteWithDurationEvent const & AsNoteWithDuration() const;
  Vrae_PitchBendEvent & AsPitchBend();
  Vrae_PitchBendEvent const & AsPitchBend() const;
  Vrae_ControllerEvent & AsController();
  Vrae_ControllerEvent const & AsController() const;
  Vrae_ProgramEvent & AsProgram();
  Vrae_ProgramEvent const & AsProgram() const;
  Vrae_MonoPressureEvent & AsMonoPressure();
  Vrae_MonoPressureEvent const & AsMonoPressure() const;
  Vrae_PolyPressureEvent & AsPolyPressure();
  Vrae_PolyPressureEvent const & AsPolyPressure() const;
  Vrae_SongPositionEvent & AsSongPosition();
  Vrae_SongPositionEvent const & AsSongPosition() const;
  /// Kind 14, and kind 15 when complete.
  Vrae_SysexEvent & AsSysex();
  Vrae_SysexEvent const & AsSysex() const;
  /// Kinds 14, 15 and 16.
  Vrae_SysexPacketEvent & AsSysexPacket();
  Vrae_SysexPacketEvent const & AsSysexPacket() const;
  Vrae_ClearNoteInProgressEvent & AsClearNoteInProgress();
  Vrae_ClearNoteInProgressEvent const & AsClearNoteInProgress() const;
  Vrae_AddNoteInProgressEvent & AsAddNoteInProgress();
  Vrae_AddNoteInProgressEvent const & AsAddNoteInProgress() const;
  Vrae_ReleaseControllerEvent & AsReleaseController();
  Vrae_ReleaseControllerEvent const & AsReleaseController() const;
  Vrae_QuarterFrameEvent & AsQuarterFrame();
  Vrae_QuarterFrameEvent const & AsQuarterFrame() const;
  Vrae_PitchToMIDINoteWithDuration & AsPitchToMIDINoteWithDuration();
  Vrae_PitchToMIDINoteWithDuration const & AsPitchToMIDINoteWithDuration() const;
  Vrae_ClipEvent & AsClipEvent();
  Vrae_ClipEvent const & AsClipEvent() const;

protected:
  /// All bytes zero, then the kind.
  explicit Vrae_Event(EType iType);

private:
  void LongSysexCopyConstruct() const;
  void LongSysexDestruct() const;
  void LongSysexAssign(Vrae_Event const & iOther);
  void CheckView(EType iType) const;
  static void ReportWrongView(EType iType);
};

static_assert(sizeof(Vrae_Event) == sizeof(Vrae_Event::ClipEventData));

/// Kind 1.
class VRAD_EXPORT Vrae_NoteOnEvent : public Vrae_Event {
public:
  /// With the default velocity.
  explicit Vrae_NoteOnEvent(signed char iPitch);
  /// Velocity 0 is reported: a note-off is built with `Vrae_NoteOffEvent`.
  Vrae_NoteOnEvent(signed char iPitch, signed char iVelocity);

  signed char GetPitch() const { return mU.mNoteOn.mPitch; }
  void SetPitch(signed char iPitch);
  signed char GetVelocity() const { return mU.mNoteOn.mVelocity; }
  /// 1 to 127.
  void SetVelocity(signed char iVelocity);

  /// One for the process, 80 at start. Thread: unsynchronised; set it while nothing plays.
  static signed char GetDefaultVelocity();
  /// 1 to 127.
  static void SetDefaultVelocity(signed char iDefaultVelocity);
};

/// Kind 2. Its velocity is the release velocity.
class VRAD_EXPORT Vrae_NoteOffEvent : public Vrae_Event {
public:
  Vrae_NoteOffEvent(signed char iPitch, signed char iVelocity);

  signed char GetPitch() const { return mU.mNoteOff.mPitch; }
  void SetPitch(signed char iPitch);
  signed char GetVelocity() const { return mU.mNoteOff.mVelocity; }
  void SetVelocity(signed char iVelocity);
};

/// What kinds 3, 17, 18 and 22 have in common. Durations are at least 1 of their unit.
class VRAD_EXPORT Vrae_NoteWithDurationBase : public Vrae_Event {
public:
  signed char GetPitch() const { return mU.mNoteWithDuration.mPitch; }
  void SetPitch(signed char iPitch);
  Time_TypedLength GetDuration() const;
  void SetDuration(Time_TypedLength iDuration);
  signed char GetOnVelocity() const { return mU.mNoteWithDuration.mOnVelocity; }
  /// 1 to 127.
  void SetOnVelocity(signed char iOnVelocity);
  signed char GetOffVelocity() const { return mU.mNoteWithDuration.mOffVelocity; }
  void SetOffVelocity(signed char iOffVelocity);

  /// Makes the on velocity 0, which no checked operation does.
  void MarkForDeletion() { mU.mNoteWithDuration.mOnVelocity = 0; }

protected:
  explicit Vrae_NoteWithDurationBase(signed char iType);
  Vrae_NoteWithDurationBase(signed char iPitch, Time_TypedLength iDuration, signed char iOnVelocity,
                            signed char iOffVelocity, signed char iType);
};

/// Kind 3; a view on kind 22 too.
class VRAD_EXPORT Vrae_NoteWithDurationEvent : public Vrae_NoteWithDurationBase {
public:
  /// All fields zero, which is no sound note yet.
  Vrae_NoteWithDurationEvent();
  Vrae_NoteWithDurationEvent(signed char iPitch, Time_TypedLength iDuration,
                             signed char iOnVelocity, signed char iOffVelocity);
};

/// Kind 18: tells a track state of a note that sounds already.
class VRAD_EXPORT Vrae_AddNoteInProgressEvent : public Vrae_NoteWithDurationBase {
public:
  Vrae_AddNoteInProgressEvent(signed char iPitch, Time_TypedLength iDuration,
                              signed char iOnVelocity, signed char iOffVelocity);
};

/// Kind 17: the reverse.
class VRAD_EXPORT Vrae_ClearNoteInProgressEvent : public Vrae_NoteWithDurationBase {
public:
  Vrae_ClearNoteInProgressEvent(signed char iPitch, Time_TypedLength iDuration,
                                signed char iOnVelocity, signed char iOffVelocity);
};

/// Kind 22: a note found in audio, with the pitch's fraction.
class VRAD_EXPORT Vrae_PitchToMIDINoteWithDuration : public Vrae_NoteWithDurationBase {
public:
  /// The fraction is not checked here.
  Vrae_PitchToMIDINoteWithDuration(signed char iPitch, Time_TypedLength iDuration,
                                   signed char iOnVelocity, signed char iOffVelocity,
                                   float iFractionalPitch);

  float GetFractionalPitch() const { return mU.mPitchToMIDINoteWithDuration.mFractionalPitch; }
  /// 0 or more.
  void SetFractionalPitch(float inFractionalPitch);
};

/// Kind 4.
class VRAD_EXPORT Vrae_PitchBendEvent : public Vrae_Event {
public:
  /// -8192 to 8191, centre 0.
  explicit Vrae_PitchBendEvent(short iBend);

  short GetBendValue() const { return mU.mPitchBend.mBend; }
  void SetBendValue(short iBend);
};

/// Kind 5.
class VRAD_EXPORT Vrae_ControllerEvent : public Vrae_Event {
public:
  /// Numbers 0 to 119: channel mode messages are not controllers here.
  Vrae_ControllerEvent(signed char iControllerNumber, signed char iValue);

  signed char GetControllerNumber() const { return mU.mController.mControllerNumber; }
  void SetControllerNumber(signed char iControllerNumber);
  signed char GetValue() const { return mU.mController.mValue; }
  void SetValue(signed char iValue);
};

/// Kind 6: program, bank MSB and bank LSB, each of which is sent only while enabled.
class VRAD_EXPORT Vrae_ProgramEvent : public Vrae_Event {
public:
  /// The packed fields as they stand, disabling flags included; see `ProgramData`.
  Vrae_ProgramEvent(signed char iFullProgram, short iFullBank);

  /// 0 to 127. The setter keeps the flag.
  signed char GetProgram() const;
  void SetProgram(signed char iProgramNumber);
  /// 0 to 16383, MSB times 128 plus LSB. The setter keeps both flags.
  short GetBank() const;
  void SetBank(short iBankNumber);
  signed char GetMSBBank() const;
  void SetMSBBank(signed char iMSBNumber);
  signed char GetLSBBank() const;
  void SetLSBBank(signed char iLSBNumber);

  bool IsProgramEnabled() const { return (mU.mProgram.mFullProgram & kProgramDisabled) == 0; }
  void SetProgramEnable(bool iEnable);
  bool IsMSBBankEnabled() const { return (mU.mProgram.mFullBank & kMSBDisabled) == 0; }
  void SetMSBBankEnable(bool iEnable);
  bool IsLSBBankEnabled() const { return (mU.mProgram.mFullBank & kLSBDisabled) == 0; }
  void SetLSBBankEnable(bool iEnable);

  signed char GetFullProgram() const { return static_cast<signed char>(mU.mProgram.mFullProgram); }
  void SetFullProgram(signed char iFullProgram);
  short GetFullBank() const { return static_cast<short>(mU.mProgram.mFullBank); }
  void SetFullBank(short iFullBank);

  /// 0xFF in bits 31 to 24, the MSB in 22 to 16 and the LSB in 14 to 8 where enabled, and the full
  /// program with its sign: a disabled program sets every bit from 7 upward.
  int GetOMSPatchNum() const;

private:
  static constexpr int kProgramDisabled = 0x80, kMSBDisabled = 0x8000, kLSBDisabled = 0x4000;
};

/// Kind 7.
class VRAD_EXPORT Vrae_MonoPressureEvent : public Vrae_Event {
public:
  explicit Vrae_MonoPressureEvent(signed char iPressure);

  signed char GetPressure() const { return mU.mMonoPressure.mPressure; }
  void SetPressure(signed char iPressure);
};

/// Kind 8.
class VRAD_EXPORT Vrae_PolyPressureEvent : public Vrae_Event {
public:
  Vrae_PolyPressureEvent(signed char iPitch, signed char iPressure);

  signed char GetPitch() const { return mU.mPolyPressure.mPitch; }
  void SetPitch(signed char iPitch);
  signed char GetPressure() const { return mU.mPolyPressure.mPressure; }
  void SetPressure(signed char iPressure);
};

/// Kind 9.
class VRAD_EXPORT Vrae_SongPositionEvent : public Vrae_Event {
public:
  /// 0 to 0x3fff, in MIDI song position units.
  explicit Vrae_SongPositionEvent(int iPosition);

  int GetPosition() const { return mU.mSongPosition.mPosition; }
  void SetPosition(int iPosition);
};

/// Kind 10.
class VRAD_EXPORT Vrae_StartEvent : public Vrae_Event {
public:
  Vrae_StartEvent();
};

/// Kind 11.
class VRAD_EXPORT Vrae_ContinueEvent : public Vrae_Event {
public:
  Vrae_ContinueEvent();
};

/// Kind 12.
class VRAD_EXPORT Vrae_StopEvent : public Vrae_Event {
public:
  Vrae_StopEvent();
};

/// Kind 13.
class VRAD_EXPORT Vrae_TimingClockEvent : public Vrae_Event {
public:
  Vrae_TimingClockEvent();
};

/// Kinds 14 and 15: a complete system-exclusive message. Lengths and indices count its contents,
/// without the 0xF0 and 0xF7. Up to 14 bytes of contents lie in the record; more live in a payload
/// on the ordinary heap, which copies share.
class VRAD_EXPORT Vrae_SysexEvent : public Vrae_Event {
public:
  /// The contents are copied. Not for the audio thread above 14 bytes; see `SetData`.
  Vrae_SysexEvent(int iLength, unsigned char const * iData);
  explicit Vrae_SysexEvent(Cmn_PolyVector<unsigned char, 0> * iVector);

  /// Replaces the contents, which may be given out of this very record. A former payload is let go.
  /// Fails: `std::bad_alloc` above 14 bytes; the record is kind 0 then if it had a payload.
  void SetData(int iLength, unsigned char const * iData);
  int GetLength() const;
  /// Copies contents [iStartIndex, iEndIndex) to the start of `oData`. A range that leaves the
  /// contents is reported; only what lies inside is written, in its place.
  void GetData(unsigned char * oData, int iStartIndex, int iEndIndex) const;
  /// The stored bytes, the 0xF0 first. Kind 15 only, else a throwing check fails and null comes.
  /// Lives: as long as any copy of the event, unchanged.
  unsigned char const * GetDirectDataPtr() const;
  /// The contents. Lives: kind 14 as long as the record stays as it is, kind 15 as above.
  unsigned char const * GetInternalDataPtr() const;

private:
  void SetLongData(int iLength, unsigned char const * iData);
};

/// Kinds 14, 15 and 16: what raw MIDI input brings, a complete message or a fragment. Lengths and
/// indices count bytes on the wire, 0xF0 and 0xF7 included. Thread: any, the audio thread too.
class VRAD_EXPORT Vrae_SysexPacketEvent : public Vrae_Event {
public:
  /// Chooses the constructor that takes over a block.
  struct InitWithBlock {};

  /// Copies the bytes, above 14 bytes of contents into the pool. Fails: a pool that is exhausted
  /// leaves kind 0.
  Vrae_SysexPacketEvent(int iLength, unsigned char const * iData,
                        Mem2_MasterAllocator * iAllocator);
  /// Takes over a block that `iAllocator` gave, without copying. Fails: a pool that is exhausted
  /// leaves kind 0, and the block stays the caller's.
  Vrae_SysexPacketEvent(InitWithBlock, unsigned char * iBlock, int iLength,
                        Mem2_MasterAllocator * iAllocator);

  int GetLength() const;
  /// Begins with 0xF0 and ends with 0xF7.
  bool IsComplete() const;
  /// Opens a message; a complete one in a payload is told by `IsComplete` alone.
  bool IsBeginningPacket() const;
  /// Closes a message; a complete one in a payload is told by `IsComplete` alone.
  bool IsEndingPacket() const;
  /// Copies bytes [iStartIndex, iEndIndex) to the start of `oData`. A range that leaves the message
  /// is reported; only what lies inside is written, in its place.
  void GetData(unsigned char * oData, int iStartIndex, int iEndIndex) const;
  /// The stored bytes of kind 15, else null. Lives: as long as any copy of the event, unchanged.
  unsigned char const * GetDirectDataPtr() const;

private:
  void SetShortData(EType iType, int iLength, unsigned char const * iData);
  void SetPoolData(int iLength, unsigned char const * iData, Mem2_MasterAllocator * iAllocator);
  bool TakeBlock(int iLength, unsigned char * iBlock, Mem2_MasterAllocator * iAllocator);
};

/// Kind 19: asks for the release value of a controller-like stream.
class VRAD_EXPORT Vrae_ReleaseControllerEvent : public Vrae_Event {
public:
  /// An index of `Vrae_SubStream`.
  explicit Vrae_ReleaseControllerEvent(int iIndex);

  int GetIndex() const { return mU.mReleaseController.mIndex; }
  void SetIndex(int iIndex);
};

/// Kind 20.
class VRAD_EXPORT Vrae_AllNotesOffEvent : public Vrae_Event {
public:
  Vrae_AllNotesOffEvent();
};

/// Kind 21: one eighth of a MIDI time code position.
class VRAD_EXPORT Vrae_QuarterFrameEvent : public Vrae_Event {
public:
  enum EQuarterFrameMessage : int {
    kFrameLowNibble = 0,
    kFrameHighNibble = 1,
    kSecondLowNibble = 2,
    kSecondHighNibble = 3,
    kMinuteLowNibble = 4,
    kMinuteHighNibble = 5,
    kHourLowNibble = 6,
    kHourHighNibbleAndRate = 7
  };

  explicit Vrae_QuarterFrameEvent(unsigned char iDataByte);
  /// Message times 16, or-ed with the nibble; neither is masked.
  Vrae_QuarterFrameEvent(EQuarterFrameMessage iMessage, unsigned char iNibble);

  unsigned char GetQFDataByte() const { return mU.mQuarterFrame.mDataByte; }
  EQuarterFrameMessage GetQFMessage() const;
  unsigned char GetQFNibble() const;

private:
  void Init(unsigned char iDataByte);
};

/// Kind 23: a clip of audio beside the MIDI.
class VRAD_EXPORT Vrae_ClipEvent : public Vrae_Event {
public:
  /// Keeps the first 63 bytes of the name, and the count of the duration without its unit.
  Vrae_ClipEvent(std::string const & iRegionName, Time_TypedLength iDuration);

  std::string GetRegionName() const;
  unsigned long long GetDuration() const { return mU.mClipEvent.mDuration; }
};

inline Vrae_Event::Vrae_Event() noexcept {
  std::memset(&mU, 0, sizeof(mU));
}

inline Vrae_Event::Vrae_Event(EType iType) : Vrae_Event() {
  mU.mBase.mType = static_cast<signed char>(iType);
}

inline Vrae_Event::Vrae_Event(Vrae_Event const & iOther) noexcept : mU(iOther.mU) {
  if (mU.mBase.mType == kLongSysex) LongSysexCopyConstruct();
}

inline Vrae_Event::~Vrae_Event() {
  if (mU.mBase.mType == kLongSysex) LongSysexDestruct();
}

inline Vrae_Event const & Vrae_Event::operator=(Vrae_Event const & iOther) noexcept {
  if (mU.mBase.mType == kLongSysex || iOther.mU.mBase.mType == kLongSysex) {
    if (this != &iOther) LongSysexAssign(iOther);
  } else {
    mU = iOther.mU;
  }
  return *this;
}

inline void Vrae_Event::CheckView(EType iType) const {
  if (mU.mBase.mType != iType) ReportWrongView(iType);
}

inline bool Vrae_Event::IsMessageSysex(int) const {
  return mU.mBase.mType == kShortSysex || mU.mBase.mType == kLongSysex;
}

inline Vrae_NoteOnEvent & Vrae_Event::AsNoteOn() {
  CheckView(kNoteOn);
  return static_cast<Vrae_NoteOnEvent &>(*this);
}

inline Vrae_NoteOnEvent const & Vrae_Event::AsNoteOn() const {
  CheckView(kNoteOn);
  return static_cast<Vrae_NoteOnEvent const &>(*this);
}

inline Vrae_NoteOffEvent & Vrae_Event::AsNoteOff() {
  CheckView(kNoteOff);
  return static_cast<Vrae_NoteOffEvent &>(*this);
}

inline Vrae_NoteOffEvent const & Vrae_Event::AsNoteOff() const {
  CheckView(kNoteOff);
  return static_cast<Vrae_NoteOffEvent const &>(*this);
}

inline Vrae_NoteWithDurationEvent & Vrae_Event::AsNoteWithDuration() {
  if (mU.mBase.mType != kPitchToMIDINoteWithDuration) CheckView(kNoteWithDuration);
  return static_cast<Vrae_NoteWithDurationEvent &>(*this);
}

inline Vrae_NoteWithDurationEvent const & Vrae_Event::AsNoteWithDuration() const {
  if (mU.mBase.mType != kPitchToMIDINoteWithDuration) CheckView(kNoteWithDuration);
  return static_cast<Vrae_NoteWithDurationEvent const &>(*this);
}

inline Vrae_PitchBendEvent & Vrae_Event::AsPitchBend() {
  CheckView(kPitchBend);
  return static_cast<Vrae_PitchBendEvent &>(*this);
}

inline Vrae_PitchBendEvent const & Vrae_Event::AsPitchBend() const {
  CheckView(kPitchBend);
  return static_cast<Vrae_PitchBendEvent const &>(*this);
}

inline Vrae_ControllerEvent & Vrae_Event::AsController() {
  CheckView(kController);
  return static_cast<Vrae_ControllerEvent &>(*this);
}

inline Vrae_ControllerEvent const & Vrae_Event::AsController() const {
  CheckView(kController);
  return static_cast<Vrae_ControllerEvent const &>(*this);
}

inline Vrae_ProgramEvent & Vrae_Event::AsProgram() {
  CheckView(kProgram);
  return static_cast<Vrae_ProgramEvent &>(*this);
}

inline Vrae_ProgramEvent const & Vrae_Event::AsProgram() const {
  CheckView(kProgram);
  return static_cast<Vrae_ProgramEvent const &>(*this);
}

inline Vrae_MonoPressureEvent & Vrae_Event::AsMonoPressure() {
  CheckView(kMonoPressure);
  return static_cast<Vrae_MonoPressureEvent &>(*this);
}

inline Vrae_MonoPressureEvent const & Vrae_Event::AsMonoPressure() const {
  CheckView(kMonoPressure);
  return static_cast<Vrae_MonoPressureEvent const &>(*this);
}

inline Vrae_PolyPressureEvent & Vrae_Event::AsPolyPressure() {
  CheckView(kPolyPressure);
  return static_cast<Vrae_PolyPressureEvent &>(*this);
}

inline Vrae_PolyPressureEvent const & Vrae_Event::AsPolyPressure() const {
  CheckView(kPolyPressure);
  return static_cast<Vrae_PolyPressureEvent const &>(*this);
}

inline Vrae_SongPositionEvent & Vrae_Event::AsSongPosition() {
  CheckView(kSongPosition);
  return static_cast<Vrae_SongPositionEvent &>(*this);
}

inline Vrae_SongPositionEvent const & Vrae_Event::AsSongPosition() const {
  CheckView(kSongPosition);
  return static_cast<Vrae_SongPositionEvent const &>(*this);
}

inline Vrae_SysexEvent & Vrae_Event::AsSysex() {
  if (mU.mBase.mType != kShortSysex && !this->IsCompleteLongSysex()) ReportWrongView(kShortSysex);
  return static_cast<Vrae_SysexEvent &>(*this);
}

inline Vrae_SysexEvent const & Vrae_Event::AsSysex() const {
  if (mU.mBase.mType != kShortSysex && !this->IsCompleteLongSysex()) ReportWrongView(kShortSysex);
  return static_cast<Vrae_SysexEvent const &>(*this);
}

inline Vrae_SysexPacketEvent & Vrae_Event::AsSysexPacket() {
  if (!this->IsMessageSysex(0)) CheckView(kSysexPacket);
  return static_cast<Vrae_SysexPacketEvent &>(*this);
}

inline Vrae_SysexPacketEvent const & Vrae_Event::AsSysexPacket() const {
  if (!this->IsMessageSysex(0)) CheckView(kSysexPacket);
  return static_cast<Vrae_SysexPacketEvent const &>(*this);
}

inline Vrae_ClearNoteInProgressEvent & Vrae_Event::AsClearNoteInProgress() {
  CheckView(kClearNoteInProgress);
  return static_cast<Vrae_ClearNoteInProgressEvent &>(*this);
}

inline Vrae_ClearNoteInProgressEvent const & Vrae_Event::AsClearNoteInProgress() const {
  CheckView(kClearNoteInProgress);
  return static_cast<Vrae_ClearNoteInProgressEvent const &>(*this);
}

inline Vrae_AddNoteInProgressEvent & Vrae_Event::AsAddNoteInProgress() {
  CheckView(kAddNoteInProgress);
  return static_cast<Vrae_AddNoteInProgressEvent &>(*this);
}

inline Vrae_AddNoteInProgressEvent const & Vrae_Event::AsAddNoteInProgress() const {
  CheckView(kAddNoteInProgress);
  return static_cast<Vrae_AddNoteInProgressEvent const &>(*this);
}

inline Vrae_ReleaseControllerEvent & Vrae_Event::AsReleaseController() {
  CheckView(kReleaseController);
  return static_cast<Vrae_ReleaseControllerEvent &>(*this);
}

inline Vrae_ReleaseControllerEvent const & Vrae_Event::AsReleaseController() const {
  CheckView(kReleaseController);
  return static_cast<Vrae_ReleaseControllerEvent const &>(*this);
}

inline Vrae_QuarterFrameEvent & Vrae_Event::AsQuarterFrame() {
  CheckView(kQuarterFrame);
  return static_cast<Vrae_QuarterFrameEvent &>(*this);
}

inline Vrae_QuarterFrameEvent const & Vrae_Event::AsQuarterFrame() const {
  CheckView(kQuarterFrame);
  return static_cast<Vrae_QuarterFrameEvent const &>(*this);
}

inline Vrae_PitchToMIDINoteWithDuration & Vrae_Event::AsPitchToMIDINoteWithDuration() {
  CheckView(kPitchToMIDINoteWithDuration);
  return static_cast<Vrae_PitchToMIDINoteWithDuration &>(*this);
}

inline Vrae_PitchToMIDINoteWithDuration const & Vrae_Event::AsPitchToMIDINoteWithDuration() const {
  CheckView(kPitchToMIDINoteWithDuration);
  return static_cast<Vrae_PitchToMIDINoteWithDuration const &>(*this);
}

inline Vrae_ClipEvent & Vrae_Event::AsClipEvent() {
  CheckView(kClipEvent);
  return static_cast<Vrae_ClipEvent &>(*this);
}

inline Vrae_ClipEvent const & Vrae_Event::AsClipEvent() const {
  CheckView(kClipEvent);
  return static_cast<Vrae_ClipEvent const &>(*this);
}
