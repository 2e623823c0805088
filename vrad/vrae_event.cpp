#include "vrad/vrae_event.h"

#include "cmn/cmn_assert.h"
#include "vrad/vrae_sysexdatabase.h"

static_assert(sizeof(Vrae_NoteOnEvent) == sizeof(Vrae_Event) &&
                  sizeof(Vrae_PitchToMIDINoteWithDuration) == sizeof(Vrae_Event) &&
                  sizeof(Vrae_SysexPacketEvent) == sizeof(Vrae_Event) &&
                  sizeof(Vrae_ClipEvent) == sizeof(Vrae_Event),
              "views add no data");

bool Vrae_Event::IsCompleteLongSysex() const {
  if (mU.mBase.mType != kLongSysex || mU.mLongSysex.mSysexP == nullptr) return false;
  unsigned char const * const dataP = mU.mLongSysex.mSysexP->GetDataPtr();
  int const length = mU.mLongSysex.mSysexP->GetLength();
  return dataP != nullptr && length >= 2 && dataP[0] == 0xF0 && dataP[length - 1] == 0xF7;
}

void Vrae_Event::PrepareToImageOut() const {
  if (mU.mBase.mType == kLongSysex) this->LongSysexCopyConstruct();
}

void Vrae_Event::PrepareToImageIn() {
  *this = Vrae_Event();
}

void Vrae_Event::LongSysexCopyConstruct() const {
  CMN_CHECK(mU.mBase.mType == kLongSysex, "mU.mBase.mType == kLongSysex");
  if (CMN_CHECK(mU.mLongSysex.mSysexP != nullptr, "mU.mLongSysex.mSysexP != 0")) {
    mU.mLongSysex.mSysexP->AddReference();
  }
}

void Vrae_Event::LongSysexDestruct() const {
  CMN_CHECK(mU.mBase.mType == kLongSysex, "mU.mBase.mType == kLongSysex");
  if (CMN_CHECK(mU.mLongSysex.mSysexP != nullptr, "mU.mLongSysex.mSysexP != 0")) {
    mU.mLongSysex.mSysexP->RemoveReference();
  }
}

void Vrae_Event::LongSysexAssign(Vrae_Event const & iOther) {
  if (mU.mBase.mType == kLongSysex) this->LongSysexDestruct();
  mU = iOther.mU;
  if (mU.mBase.mType == kLongSysex) this->LongSysexCopyConstruct();
}

// Views are tested in line; only the report of a wrong one lies here.
void Vrae_Event::ReportWrongView(EType iType) {
  static constexpr char const * kTexts[] = {
      nullptr,
      CMN_ASSERT_TEXT("mU.mBase.mType == kNoteOn"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kNoteOff"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kNoteWithDuration || "
                      "mU.mBase.mType == kPitchToMIDINoteWithDuration"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kPitchBend"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kController"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kProgram"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kMonoPressure"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kPolyPressure"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kSongPosition"),
      nullptr,
      nullptr,
      nullptr,
      nullptr,
      CMN_ASSERT_TEXT("mU.mBase.mType == kShortSysex || this->IsCompleteLongSysex()"),
      nullptr,
      CMN_ASSERT_TEXT("mU.mBase.mType == kSysexPacket || mU.mBase.mType == kShortSysex || "
                      "mU.mBase.mType == kLongSysex"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kClearNoteInProgress"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kAddNoteInProgress"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kReleaseController"),
      nullptr,
      CMN_ASSERT_TEXT("mU.mBase.mType == kQuarterFrame"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kPitchToMIDINoteWithDuration"),
      CMN_ASSERT_TEXT("mU.mBase.mType == kClipEvent")};
  static_assert(sizeof(kTexts) / sizeof(kTexts[0]) == kClipEvent + 1);
  Cmn_AssertFailed(kTexts[iType], __LINE__);
}
