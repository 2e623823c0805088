// Every check of the event classes, with what makes it fail and the nearest thing that does not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "support/event_samples.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

typedef std::vector<std::string> Texts;

constexpr signed char kMinByte = SCHAR_MIN;
constexpr char const * kDurationText = "iDuration >= Time_TypedLength(1, iDuration.GetType())";

Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}

struct Row {
  std::string mName;
  std::function<void()> mBody;
  Texts mTexts;
};

void PrintTo(Row const & iRow, std::ostream * oStream) {
  *oStream << iRow.mName;
}

// Reported checks: the value is stored all the same.
Row const kReporting[] = {
    {"NoteOnPitch", [] { Vrae_NoteOnEvent(-1); }, {"iPitch >= 0"}},
    {"NoteOnPitchZero", [] { Vrae_NoteOnEvent(0); }, {}},
    {"NoteOnBoth", [] { Vrae_NoteOnEvent(-1, 0); }, {"iVelocity >= 1", "iPitch >= 0"}},
    {"NoteOnLeast", [] { Vrae_NoteOnEvent(0, 1); }, {}},
    {"NoteOnSetPitch", [] { Vrae_NoteOnEvent(60).SetPitch(kMinByte); }, {"iPitch >= 0"}},
    {"NoteOnSetPitchZero", [] { Vrae_NoteOnEvent(60).SetPitch(0); }, {}},
    {"NoteOnSetVelocity", [] { Vrae_NoteOnEvent(60).SetVelocity(0); }, {"iVelocity >= 1"}},
    {"NoteOnSetVelocityOne", [] { Vrae_NoteOnEvent(60).SetVelocity(1); }, {}},
    {"DefaultVelocity",
     [] {
       Vrae_NoteOnEvent::SetDefaultVelocity(0);
       Vrae_NoteOnEvent::SetDefaultVelocity(80);
     },
     {"iDefaultVelocity >= 1"}},
    {"DefaultVelocityOne",
     [] {
       Vrae_NoteOnEvent::SetDefaultVelocity(1);
       Vrae_NoteOnEvent::SetDefaultVelocity(80);
     },
     {}},
    {"NoteOffBoth", [] { Vrae_NoteOffEvent(-1, -1); }, {"iVelocity >= 0", "iPitch >= 0"}},
    {"NoteOffLeast", [] { Vrae_NoteOffEvent(0, 0); }, {}},
    {"NoteOffSetPitch", [] { Vrae_NoteOffEvent(60, 0).SetPitch(-1); }, {"iPitch >= 0"}},
    {"NoteOffSetVelocity", [] { Vrae_NoteOffEvent(60, 0).SetVelocity(-1); }, {"iVelocity >= 0"}},
    {"NoteOffSetLeast",
     [] {
       Vrae_NoteOffEvent event(60, 64);
       event.SetPitch(0);
       event.SetVelocity(0);
     },
     {}},
    {"NoteWithDurationAll",
     [] { Vrae_NoteWithDurationEvent(-1, Ticks(0), 0, -1); },
     {"iPitch >= 0", kDurationText, "iOnVelocity >= 1", "iOffVelocity >= 0"}},
    {"NoteWithDurationLeast", [] { Vrae_NoteWithDurationEvent(0, Ticks(1), 1, 0); }, {}},
    {"NoteWithDurationDefault", [] { Vrae_NoteWithDurationEvent(); }, {}},
    {"NoteWithDurationSamples",
     [] { Vrae_NoteWithDurationEvent(60, Time_TypedLength(0, Time_eType_Samples), 80, 64); },
     {kDurationText}},
    {"NoteWithDurationOneSample",
     [] { Vrae_NoteWithDurationEvent(60, Time_TypedLength(1, Time_eType_Samples), 80, 64); },
     {}},
    {"NoteWithDurationSetters",
     [] {
       Vrae_NoteWithDurationEvent event(60, Ticks(1), 80, 64);
       event.SetPitch(-1);
       event.SetDuration(Ticks(-5));
       event.SetOnVelocity(-1);
       event.SetOffVelocity(-1);
     },
     {"iPitch >= 0", kDurationText, "iOnVelocity >= 1", "iOffVelocity >= 0"}},
    {"NoteWithDurationSettersLeast",
     [] {
       Vrae_NoteWithDurationEvent event(60, Ticks(9), 80, 64);
       event.SetPitch(0);
       event.SetDuration(Ticks(1));
       event.SetOnVelocity(1);
       event.SetOffVelocity(0);
       event.MarkForDeletion();
     },
     {}},
    {"AddNoteInProgress",
     [] { Vrae_AddNoteInProgressEvent(-1, Ticks(0), 0, -1); },
     {"iPitch >= 0", kDurationText, "iOnVelocity >= 1", "iOffVelocity >= 0"}},
    {"ClearNoteInProgress",
     [] { Vrae_ClearNoteInProgressEvent(-1, Ticks(0), 0, -1); },
     {"iPitch >= 0", kDurationText, "iOnVelocity >= 1", "iOffVelocity >= 0"}},
    {"PitchToMIDIAll",
     [] { Vrae_PitchToMIDINoteWithDuration(-1, Ticks(0), 0, -1, -1.0f); },
     {"iPitch >= 0", kDurationText, "iOnVelocity >= 1", "iOffVelocity >= 0"}},
    {"PitchToMIDIFractionInConstructor",
     [] { Vrae_PitchToMIDINoteWithDuration(60, Ticks(1), 80, 64, -0.5f); },
     {}},
    {"PitchToMIDISetFraction",
     [] { Vrae_PitchToMIDINoteWithDuration(60, Ticks(1), 80, 64, 0.0f).SetFractionalPitch(-0.5f); },
     {"inFractionalPitch >= 0"}},
    {"PitchToMIDISetFractionZero",
     [] { Vrae_PitchToMIDINoteWithDuration(60, Ticks(1), 80, 64, 1.0f).SetFractionalPitch(0.0f); },
     {}},
    {"PitchBendLow", [] { Vrae_PitchBendEvent(-8193); }, {"-8192 <= iBend && iBend <= 8191"}},
    {"PitchBendHigh", [] { Vrae_PitchBendEvent(8192); }, {"-8192 <= iBend && iBend <= 8191"}},
    {"PitchBendLimits",
     [] {
       Vrae_PitchBendEvent(-8192);
       Vrae_PitchBendEvent(8191);
     },
     {}},
    {"PitchBendSet",
     [] { Vrae_PitchBendEvent(0).SetBendValue(SHRT_MAX); },
     {"-8192 <= iBend && iBend <= 8191"}},
    {"ControllerNegative",
     [] { Vrae_ControllerEvent(-1, -1); },
     {"iControllerNumber >= 0", "iValue >= 0"}},
    {"ControllerMode", [] { Vrae_ControllerEvent(120, 0); }, {"iControllerNumber < 120"}},
    {"ControllerLimits",
     [] {
       Vrae_ControllerEvent(0, 0);
       Vrae_ControllerEvent(119, 127);
     },
     {}},
    {"ControllerSetters",
     [] {
       Vrae_ControllerEvent event(7, 90);
       event.SetControllerNumber(-1);
       event.SetControllerNumber(120);
       event.SetValue(-1);
     },
     {"iControllerNumber >= 0", "iControllerNumber < 120", "iValue >= 0"}},
    {"ProgramConstructor", [] { Vrae_ProgramEvent(-1, -1); }, {}},
    {"ProgramSetters",
     [] {
       Vrae_ProgramEvent event(0, 0);
       event.SetProgram(-1);
       event.SetBank(-1);
       event.SetBank(16384);
       event.SetMSBBank(-1);
       event.SetLSBBank(-1);
     },
     {"iProgramNumber >= 0", "iBankNumber >= 0", "iBankNumber < 16384", "iMSBNumber >= 0",
      "iLSBNumber >= 0"}},
    {"ProgramSettersLimits",
     [] {
       Vrae_ProgramEvent event(0, 0);
       event.SetProgram(0);
       event.SetProgram(127);
       event.SetBank(0);
       event.SetBank(16383);
       event.SetMSBBank(0);
       event.SetMSBBank(127);
       event.SetLSBBank(0);
       event.SetLSBBank(127);
       event.SetFullProgram(-1);
       event.SetFullBank(-1);
     },
     {}},
    {"MonoPressure", [] { Vrae_MonoPressureEvent(-1); }, {"iPressure >= 0"}},
    {"MonoPressureSet", [] { Vrae_MonoPressureEvent(0).SetPressure(-1); }, {"iPressure >= 0"}},
    {"PolyPressure", [] { Vrae_PolyPressureEvent(-1, -1); }, {"iPitch >= 0", "iPressure >= 0"}},
    {"PolyPressureSetters",
     [] {
       Vrae_PolyPressureEvent event(0, 0);
       event.SetPitch(-1);
       event.SetPressure(-1);
     },
     {"iPitch >= 0", "iPressure >= 0"}},
    {"SongPositionLow", [] { Vrae_SongPositionEvent(-1); }, {"iPosition >= 0"}},
    {"SongPositionHigh", [] { Vrae_SongPositionEvent(0x4000); }, {"iPosition <= 0x3fff"}},
    {"SongPositionLimits",
     [] {
       Vrae_SongPositionEvent(0);
       Vrae_SongPositionEvent(0x3fff);
     },
     {}},
    {"SongPositionSet",
     [] {
       Vrae_SongPositionEvent(0).SetPosition(-1);
       Vrae_SongPositionEvent(0).SetPosition(0x4000);
     },
     {"iPosition >= 0", "iPosition <= 0x3fff"}},
    {"Unchecked",
     [] {
       Vrae_ReleaseControllerEvent(-1).SetIndex(INT_MAX);
       Vrae_QuarterFrameEvent(255);
       Vrae_QuarterFrameEvent(Vrae_QuarterFrameEvent::EQuarterFrameMessage(99), 99);
       Vrae_ClipEvent(std::string(200, 'x'), Ticks(-1));
     },
     {}},
    {"ImageOutWithoutPayload",
     [] {
       Vrae_Event event = MakeBlankEvent(15);
       event.PrepareToImageOut();
       event.mU.mBase.mType = 0;
     },
     {"mU.mLongSysex.mSysexP != 0"}},
    {"CopyWithoutPayload",
     [] {
       Vrae_Event event = MakeBlankEvent(15);
       Vrae_Event copy(event);
       event.mU.mBase.mType = 0;
       copy.mU.mBase.mType = 0;
     },
     {"mU.mLongSysex.mSysexP != 0"}},
    {"DestroyWithoutPayload", [] { MakeBlankEvent(15); }, {"mU.mLongSysex.mSysexP != 0"}},
    {"AssignFromWithoutPayload",
     [] {
       Vrae_Event event = MakeBlankEvent(15);
       Vrae_Event target;
       target = event;
       event.mU.mBase.mType = 0;
       target.mU.mBase.mType = 0;
     },
     {"mU.mLongSysex.mSysexP != 0"}},
    {"AssignOverWithoutPayload",
     [] {
       Vrae_Event event = MakeBlankEvent(15);
       event = Vrae_NoteOnEvent(60);
     },
     {"mU.mLongSysex.mSysexP != 0"}},
    {"ImageInWithoutPayload",
     [] { MakeBlankEvent(15).PrepareToImageIn(); },
     {"mU.mLongSysex.mSysexP != 0"}},
};

// Throwing checks. The first thrown text ends the body.
Row const kThrowing[] = {
    {"Equal22", [] { (void)(MakeSampleEvent(22) == MakeSampleEvent(22)); }, {"0"}},
    {"Equal23", [] { (void)(MakeSampleEvent(23) == MakeSampleEvent(23)); }, {"0"}},
    {"Equal24", [] { (void)(MakeBlankEvent(24) == MakeBlankEvent(24)); }, {"0"}},
    {"EqualNegative", [] { (void)(MakeBlankEvent(-1) == MakeBlankEvent(-1)); }, {"0"}},
    {"Less22", [] { (void)(MakeSampleEvent(22) < MakeSampleEvent(22)); }, {"0"}},
    {"Less23", [] { (void)(MakeSampleEvent(23) < MakeSampleEvent(23)); }, {"0"}},
    {"Less24", [] { (void)(MakeBlankEvent(24) < MakeBlankEvent(24)); }, {"0"}},
    {"LessNegative", [] { (void)(MakeBlankEvent(-1) < MakeBlankEvent(-1)); }, {"0"}},
    {"NumMessages17", [] { (void)MakeSampleEvent(17).GetNumMessages(); }, {"0"}},
    {"NumMessages18", [] { (void)MakeSampleEvent(18).GetNumMessages(); }, {"0"}},
    {"NumMessages22", [] { (void)MakeSampleEvent(22).GetNumMessages(); }, {"0"}},
    {"NumMessages23", [] { (void)MakeSampleEvent(23).GetNumMessages(); }, {"0"}},
    {"NumMessages24", [] { (void)MakeBlankEvent(24).GetNumMessages(); }, {"0"}},
    {"MessageLength16", [] { (void)MakeSampleEvent(16).GetMessageLength(0); }, {"0"}},
    {"MessageLength17", [] { (void)MakeSampleEvent(17).GetMessageLength(0); }, {"0"}},
    {"MessageLength23", [] { (void)MakeSampleEvent(23).GetMessageLength(0); }, {"0"}},
    {"MessageData16", [] { MakeSampleEvent(16).GetMessageData(nullptr, 0); }, {"0"}},
    {"MessageData18", [] { MakeSampleEvent(18).GetMessageData(nullptr, 0); }, {"0"}},
    {"MessageDataNegative", [] { MakeBlankEvent(-1).GetMessageData(nullptr, 0); }, {"0"}},
    {"DirectDataPtrOfShortSysex",
     [] { (void)MakeSampleEvent(14).AsSysex().GetDirectDataPtr(); },
     {"mU.mBase.mType == kLongSysex"}},
    {"PayloadWithoutBytes", [] { (void)Vrae_SysexData::New(3, nullptr); }, {"mDataP != 0"}},
};

class ReportingCheck : public testing::TestWithParam<Row> {};
class ThrowingCheck : public testing::TestWithParam<Row> {};

std::string GetRowName(testing::TestParamInfo<Row> const & iInfo) {
  return iInfo.param.mName;
}

TEST_P(ReportingCheck, ReportsItsTextsInOrder) {
  EXPECT_EQ(GetFailedChecks(GetParam().mBody), GetParam().mTexts);
}

TEST_P(ReportingCheck, IsOfTheReturningFormWithTheFlagUp) {
  Cmn_AssertRecorder const recorder;
  GetParam().mBody();
  EXPECT_EQ(recorder.GetEntries().size(), GetParam().mTexts.size());
  for (Cmn_AssertRecorder::Entry const & entry : recorder.GetEntries()) {
    EXPECT_FALSE(entry.mThrowing);
    EXPECT_TRUE(entry.mFlag);
    EXPECT_THAT(entry.mPath, testing::StartsWith("vrad/vrae_event"));
  }
}

TEST_P(ThrowingCheck, ThrowsItsText) {
  Cmn_AssertRecorder const recorder;
  std::string text = "nothing thrown";
  try {
    GetParam().mBody();
  } catch (Cmn_AssertException const & exception) {
    text = exception.what();
  }
  EXPECT_EQ(text, GetParam().mTexts.front());
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST_P(ThrowingCheck, IsOfTheThrowingFormWithTheFlagDown) {
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(GetParam().mBody(), Cmn_AssertException);
  for (Cmn_AssertRecorder::Entry const & entry : recorder.GetEntries()) {
    EXPECT_TRUE(entry.mThrowing);
    EXPECT_FALSE(entry.mFlag);
    EXPECT_THAT(entry.mPath, testing::StartsWith("vrad/vrae_"));
  }
}

INSTANTIATE_TEST_SUITE_P(Vrae_Event, ReportingCheck, testing::ValuesIn(kReporting), GetRowName);
INSTANTIATE_TEST_SUITE_P(Vrae_Event, ThrowingCheck, testing::ValuesIn(kThrowing), GetRowName);

// The views. A row accepts its kinds in silence and reports its text for all others.
struct ViewRow {
  std::string mName;
  std::vector<int> mKinds;
  std::string mText;
  std::function<void const *(Vrae_Event &)> mView;
  std::function<void const *(Vrae_Event const &)> mConstView;
};

void PrintTo(ViewRow const & iRow, std::ostream * oStream) {
  *oStream << iRow.mName;
}

template <class TView, class TConstView>
ViewRow MakeRow(char const * iName, std::vector<int> const & iKinds, char const * iText,
                TView iView, TConstView iConstView) {
  return {iName, iKinds, iText, [iView](Vrae_Event & ioEvent) { return &(ioEvent.*iView)(); },
          [iConstView](Vrae_Event const & iEvent) { return &(iEvent.*iConstView)(); }};
}

template <class TView>
ViewRow MakeRow(char const * iName, std::vector<int> const & iKinds, char const * iText,
                TView & (Vrae_Event::*iView)(), TView const & (Vrae_Event::*iConstView)() const) {
  return MakeRow<TView & (Vrae_Event::*)(), TView const & (Vrae_Event::*)() const>(
      iName, iKinds, iText, iView, iConstView);
}

std::vector<ViewRow> MakeViewRows() {
  typedef Vrae_Event E;
  return {
      MakeRow("NoteOn", {1}, "mU.mBase.mType == kNoteOn", &E::AsNoteOn, &E::AsNoteOn),
      MakeRow("NoteOff", {2}, "mU.mBase.mType == kNoteOff", &E::AsNoteOff, &E::AsNoteOff),
      MakeRow("NoteWithDuration", {3, 22},
              "mU.mBase.mType == kNoteWithDuration || "
              "mU.mBase.mType == kPitchToMIDINoteWithDuration",
              &E::AsNoteWithDuration, &E::AsNoteWithDuration),
      MakeRow("PitchBend", {4}, "mU.mBase.mType == kPitchBend", &E::AsPitchBend, &E::AsPitchBend),
      MakeRow("Controller", {5}, "mU.mBase.mType == kController", &E::AsController,
              &E::AsController),
      MakeRow("Program", {6}, "mU.mBase.mType == kProgram", &E::AsProgram, &E::AsProgram),
      MakeRow("MonoPressure", {7}, "mU.mBase.mType == kMonoPressure", &E::AsMonoPressure,
              &E::AsMonoPressure),
      MakeRow("PolyPressure", {8}, "mU.mBase.mType == kPolyPressure", &E::AsPolyPressure,
              &E::AsPolyPressure),
      MakeRow("SongPosition", {9}, "mU.mBase.mType == kSongPosition", &E::AsSongPosition,
              &E::AsSongPosition),
      MakeRow("Sysex", {14, 15}, "mU.mBase.mType == kShortSysex || this->IsCompleteLongSysex()",
              &E::AsSysex, &E::AsSysex),
      MakeRow("SysexPacket", {14, 15, 16},
              "mU.mBase.mType == kSysexPacket || mU.mBase.mType == kShortSysex || "
              "mU.mBase.mType == kLongSysex",
              &E::AsSysexPacket, &E::AsSysexPacket),
      MakeRow("ClearNoteInProgress", {17}, "mU.mBase.mType == kClearNoteInProgress",
              &E::AsClearNoteInProgress, &E::AsClearNoteInProgress),
      MakeRow("AddNoteInProgress", {18}, "mU.mBase.mType == kAddNoteInProgress",
              &E::AsAddNoteInProgress, &E::AsAddNoteInProgress),
      MakeRow("ReleaseController", {19}, "mU.mBase.mType == kReleaseController",
              &E::AsReleaseController, &E::AsReleaseController),
      MakeRow("QuarterFrame", {21}, "mU.mBase.mType == kQuarterFrame", &E::AsQuarterFrame,
              &E::AsQuarterFrame),
      MakeRow("PitchToMIDINoteWithDuration", {22}, "mU.mBase.mType == kPitchToMIDINoteWithDuration",
              &E::AsPitchToMIDINoteWithDuration, &E::AsPitchToMIDINoteWithDuration),
      MakeRow("ClipEvent", {23}, "mU.mBase.mType == kClipEvent", &E::AsClipEvent, &E::AsClipEvent),
  };
}

class EventView : public testing::TestWithParam<ViewRow> {
protected:
  // Runs iBody for kinds -1 to 24 and checks what it reports.
  template <class TBody>
  void ExpectReports(TBody const & iBody) {
    for (int kind = -1; kind <= 24; ++kind) {
      SCOPED_TRACE(kind);
      bool const fits = std::count(GetParam().mKinds.begin(), GetParam().mKinds.end(), kind) != 0;
      Vrae_Event event = 0 <= kind && kind <= 23 ? MakeSampleEvent(kind) : MakeBlankEvent(kind);
      EXPECT_EQ(GetFailedChecks([&] { iBody(event); }), fits ? Texts() : Texts{GetParam().mText});
    }
  }
};

TEST_P(EventView, AcceptsItsKindsAlone) {
  ExpectReports([](Vrae_Event & ioEvent) { (void)GetParam().mView(ioEvent); });
}

TEST_P(EventView, AcceptsItsKindsAloneWhenConst) {
  ExpectReports([](Vrae_Event & ioEvent) { (void)GetParam().mConstView(ioEvent); });
}

TEST_P(EventView, HandsBackTheSameRecordWhateverItsKind) {
  Cmn_AssertRecorder const silent;
  for (int kind = 0; kind <= 23; ++kind) {
    SCOPED_TRACE(kind);
    Vrae_Event event = MakeSampleEvent(kind);
    EXPECT_EQ(GetParam().mView(event), &event);
    EXPECT_EQ(GetParam().mConstView(event), &event);
    EXPECT_EQ(event.GetType(), kind);
  }
}

INSTANTIATE_TEST_SUITE_P(Vrae_Event, EventView, testing::ValuesIn(MakeViewRows()),
                         [](auto const & iInfo) { return "As" + iInfo.param.mName; });

}  // namespace
