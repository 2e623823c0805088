// What is thrown inside the shared library is caught outside by its type, and what it makes can be
// cast outside: each class is one class on both sides.
#include <gtest/gtest.h>

#include "foundation/foundation.h"
#include "vrad/vrad.h"

namespace {

constexpr int kOutOfNotesText = 200;

struct HostMessage {
  int mNumber = 0;
};

Ndo_AutoPtr<Vrad_Chunk> MakeChunk() {
  return Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kUndoable, false));
}

}  // namespace

TEST(Boundary_Catch, AssertExceptionByItsType) {
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(Cmn_Assert::HandleMagicAssert(false, "x@$^$@y.cpp", 1), Cmn_AssertException);
}

TEST(Boundary_Catch, AssertExceptionAsStandardRunTimeError) {
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(Cmn_Assert::HandleMagicAssert(false, "x@$^$@y.cpp", 1), std::runtime_error);
}

TEST(Boundary_Catch, LocalisedExceptionByItsType) {
  EXPECT_THROW(Vrad_ThrowBadData(kOutOfNotesText), Cmn_TypedException<L10N_ExceptionData>);
}

TEST(Boundary_Catch, LocalisedExceptionByItsBase) {
  EXPECT_THROW(Vrad_ThrowBadData(kOutOfNotesText), Cmn_Exception);
}

TEST(Boundary_Catch, LocalisedExceptionThrownHereByItsType) {
  try {
    Vrad_ThrowBadData(kOutOfNotesText);
  } catch (Cmn_Exception const & exception) {
    EXPECT_THROW(exception.Throw(), Cmn_TypedException<L10N_ExceptionData>);
  }
}

TEST(Boundary_Catch, StreamExceptionByItsType) {
  Sys_MemoryInStream stream{std::vector<unsigned char>()};
  int value;
  EXPECT_THROW(stream.Read(&value), Sys_StreamException);
}

TEST(Boundary_Catch, StreamExceptionThroughTheHostsStream) {
  class HostStream : public Sys_TypedInStream {
  public:
    void ReadBlock(void *, int) override {
      throw Sys_StreamException(Sys_StreamException::kIO, "host");
    }
    long long GetPos() override { return 0; }
    void SetPos(long long) override {}
    long long BytesLeft() override { return 1; }
  };
  HostStream stream;
  int value;
  EXPECT_THROW(stream.Read(&value), Sys_StreamException);
}

TEST(Boundary_Catch, LogicErrorOfTheUndoManager) {
  EXPECT_THROW(Ndo_gManager.EndTransaction(), std::logic_error);
}

TEST(Boundary_Cast, UndoableObjectToChunk) {
  Ndo_AutoPtr<Vrad_Chunk> const chunk = MakeChunk();
  Ndo_Object * const objectP = Ndo_gManager.LookupObject(chunk->NdoGetID());
  EXPECT_EQ(chunk.Get(), dynamic_cast<Vrad_Chunk *>(objectP));
}

TEST(Boundary_Cast, UndoableObjectToNoOtherStore) {
  Ndo_AutoPtr<Vrad_Chunk> const chunk = MakeChunk();
  Ndo_Object * const objectP = Ndo_gManager.LookupObject(chunk->NdoGetID());
  EXPECT_EQ(nullptr, dynamic_cast<Vrad_NoteListBase *>(objectP));
}

TEST(Boundary_Cast, NoteListOfAChunkToItsClass) {
  Ndo_AutoPtr<Vrad_Chunk> const chunk = MakeChunk();
  EXPECT_NE(nullptr, dynamic_cast<Vrad_NoteList *>(chunk->GetNoteList()));
}

TEST(Boundary_Cast, ContinuousDataFromItsIdentifier) {
  Ndo_AutoPtr<Vrad_Chunk> const chunk = MakeChunk();
  chunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(0), Vrae_ControllerEvent(7, 90)));
  long long const id = chunk->GetContinuousList()[0]->GetDataID();
  EXPECT_NE(nullptr, dynamic_cast<Vrad_ContinuousData *>(Ndo_gManager.LookupObject(id)));
}

TEST(Boundary_Cast, StateOfAChunkToItsClass) {
  Ndo_AutoPtr<Vrad_Chunk> const chunk = MakeChunk();
  std::unique_ptr<Ndo_State> const state(chunk->NdoGetState());
  EXPECT_NE(nullptr, dynamic_cast<Vrad_Chunk_NdoState *>(state.get()));
}

TEST(Boundary_Message, OfTheHostsOwnTypeArrives) {
  int received = 0;
  Cmn_MsgConnection const connection = Cmn_N10nCenter::Sender()->Connect<HostMessage>(
      [&](HostMessage const & iMessage) { received = iMessage.mNumber; });
  Cmn_N10nCenter::Sender()->Send(HostMessage{7});
  EXPECT_EQ(7, received);
}

TEST(Boundary_Global, OverlapSwitchStartsOff) {
  EXPECT_FALSE(gAvoidOverlapsAndDuplicates);
}

TEST(Boundary_Global, DisplaySwitchStartsOn) {
  EXPECT_TRUE(Vrad_DisplayItem::sMIDIDisplayPropertyEffects);
}

TEST(Boundary_Global, DisplaySwitchIsTheLibrarysOwn) {
  Vrad_ExtendedEvent const shown(Time_Tick(1), Vrae_ControllerEvent(7, 1));
  Vrad_ExtendedEvent const stored(Time_Tick(2), Vrae_ControllerEvent(7, 2));
  Vrad_DisplayItem const item(shown, stored, false, 0);
  Vrad_DisplayItem::sMIDIDisplayPropertyEffects = false;
  EXPECT_EQ(2, item.GetDisplayedEvent().mTime.AsInt64());
  Vrad_DisplayItem::sMIDIDisplayPropertyEffects = true;
}

TEST(Boundary_Global, StartFlagFollowsInit) {
  EXPECT_FALSE(Vrad_Init::sIsInitialized);
  Vrad_Init::Init();
  EXPECT_TRUE(Vrad_Init::sIsInitialized);
  Vrad_Init::Free();
  EXPECT_FALSE(Vrad_Init::sIsInitialized);
}

TEST(Boundary_Global, TimeConverterCanBeReplaced) {
  Time_TempoMap map(60.0);
  Time_Converter * const former = Time_Convert::sTimeConverter;
  Time_Convert::sTimeConverter = &map;
  EXPECT_EQ(48000,
            Time_Convert::sTimeConverter->ToType(Time_Tick(960000), Time_eType_Samples).AsInt64());
  Time_Convert::sTimeConverter = former;
}
