// What a chunk says about itself, as a tree and as text.
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/chunk_samples.h"

namespace {

std::string PrintChildren(Cmn_XMLNodePtr const & iNode) {
  std::string text;
  for (int i = 0; i < iNode->GetNumChildren(); ++i)
    text += (i == 0 ? "" : " ") + iNode->GetChild(i)->GetName();
  return text;
}

bool Has(std::string const & iText, std::string const & iPart) {
  return iText.find(iPart) != std::string::npos;
}

// 00 01 02 .. 0f
Sys_Umid RisingID() {
  unsigned char bytes[16];
  for (int i = 0; i < 16; ++i)
    bytes[i] = static_cast<unsigned char>(i);
  Sys_Umid id;
  id.SetBytes(bytes);
  return id;
}

}  // namespace

TEST(Vrad_Chunk_GetAsXML, IsConst) {
  static_assert(
      std::is_same_v<decltype(std::declval<Vrad_Chunk const &>().GetAsXML()), Cmn_XMLNodePtr>);
}

TEST(Vrad_Chunk_GetAsXML, HasThreeChildrenInOrder) {
  ChunkPtr const chunk = MakeChunk();
  Cmn_XMLNodePtr const node = chunk->GetAsXML();
  EXPECT_EQ(node->GetName(), "MIDI_Chunk");
  EXPECT_EQ(node->GetValue(), "");
  EXPECT_EQ(PrintChildren(node), "NoteList NumContinuousControllerDataStreams UID");
}

TEST(Vrad_Chunk_GetAsXML, EmptyChunkHasNoNotesAndNoStreams) {
  ChunkPtr const chunk = MakeChunk();
  Cmn_XMLNodePtr const node = chunk->GetAsXML();
  Cmn_XMLNodePtr const notes = node->FindChild("NoteList");
  EXPECT_EQ(PrintChildren(notes), "nNumNotes");
  EXPECT_EQ(notes->GetChild(0)->GetValue(), "0");
  EXPECT_EQ(node->FindChild("NumContinuousControllerDataStreams")->GetValue(), "0");
}

TEST(Vrad_Chunk_GetAsXML, HoldsTheTreeOfItsNoteList) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(960), 61));
  Cmn_XMLNodePtr const notes = chunk->GetAsXML()->GetChild(0);
  EXPECT_EQ(PrintChildren(notes), "nNumNotes Note");
  EXPECT_EQ(notes->GetChild(0)->GetValue(), "1");
  EXPECT_EQ(notes->GetChild(1)->FindChild("nPitch")->GetValue(), "61");
  EXPECT_EQ(notes->GetChild(1)->FindChild("Time")->GetValue(), "960t");
}

TEST(Vrad_Chunk_GetAsXML, CountsStreamsAndNotTheirValues) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 100));
  chunk->AddEvent(ControllerAt(Ticks(10), 7, 90));
  chunk->AddEvent(BendAt(Ticks(0), 1));
  chunk->AddEvent(SysexAt(Ticks(0), 1));
  EXPECT_EQ(chunk->GetAsXML()->FindChild("NumContinuousControllerDataStreams")->GetValue(), "2");
}

TEST(Vrad_Chunk_GetAsXML, HasNoNoteListWhereTheChunkHasNone) {
  ChunkPtr const chunk = MakeChunk();
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  EXPECT_EQ(PrintChildren(chunk->GetAsXML()), "NumContinuousControllerDataStreams UID");
  EXPECT_EQ(chunk->PrintContents(), "Notes: \nSorted list: none\n");
}

TEST(Vrad_Chunk_GetAsXML, ShowsItsIdentityInHexadecimal) {
  ChunkPtr const chunk = MakeChunk();
  chunk->SetUID(RisingID());
  EXPECT_EQ(chunk->GetAsXML()->FindChild("UID")->GetValue(), "000102030405060708090a0b0c0d0e0f");
}

TEST(Vrad_Chunk_GetAsXML, ShowsABlankIdentityAsZeros) {
  ChunkPtr const chunk = MakeChunk();
  chunk->SetUID(Sys_Umid::NoID());
  EXPECT_EQ(chunk->GetAsXML()->FindChild("UID")->GetValue(), std::string(32, '0'));
}

TEST(Vrad_Chunk_PrintContents, IsConst) {
  static_assert(
      std::is_same_v<decltype(std::declval<Vrad_Chunk const &>().PrintContents()), std::string>);
}

TEST(Vrad_Chunk_PrintContents, EmptyChunkHasBothSections) {
  ChunkPtr const chunk = MakeChunk();
  EXPECT_EQ(chunk->PrintContents(), "Notes: 0\nSorted list: none\n");
}

TEST(Vrad_Chunk_PrintContents, WithoutACacheSaysNone) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 100));
  EXPECT_TRUE(Has(chunk->PrintContents(), "Sorted list: none"));
}

TEST(Vrad_Chunk_PrintContents, GivesTheSizeOfTheCache) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  for (int i = 0; i < 3; ++i)
    listP->push_back(Vrad_DisplayItem());
  chunk->StoreSortedEventList(listP);
  EXPECT_TRUE(Has(chunk->PrintContents(), "Sorted list: 3"));
  EXPECT_FALSE(Has(chunk->PrintContents(), "none"));
}

TEST(Vrad_Chunk_PrintContents, AnEmptyCacheIsNotNone) {
  ChunkPtr const chunk = MakeChunk();
  chunk->StoreSortedEventList(new Vrad_DisplayItemList);
  EXPECT_EQ(chunk->PrintContents(), "Notes: 0\nSorted list: 0\n");
}

TEST(Vrad_Chunk_PrintContents, AnEditBringsNoneBack) {
  ChunkPtr const chunk = MakeChunk();
  chunk->StoreSortedEventList(new Vrad_DisplayItemList);
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  EXPECT_TRUE(Has(chunk->PrintContents(), "Sorted list: none"));
}

TEST(Vrad_Chunk_PrintContents, ListsNotesThenStreamsThenTheCache) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(BendAt(Samples(5), -8192));
  chunk->AddEvent(ControllerAt(Ticks(10), 7, 90));
  chunk->AddEvent(NoteAt(Ticks(960), 62, 480, true));
  chunk->AddEvent(NoteAt(Samples(0), 60, 24));
  EXPECT_EQ(chunk->PrintContents(), "Notes: 2\n"
                                    "  0s pitch 60, duration 24s, on 100, off 64\n"
                                    "  960t pitch 62, duration 480t, on 100, off 64, muted\n"
                                    "PitchBend: 1\n"
                                    "  5s -8192\n"
                                    "Controller 7: 1\n"
                                    "  10t 90\n"
                                    "Sorted list: none\n");
}

TEST(Vrad_Chunk_PrintContents, HoldsTheTextOfEachStream) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(BendAt(Ticks(5), 1));
  chunk->AddEvent(ControllerAt(Ticks(10), 7, 90));
  std::string const text = chunk->PrintContents();
  size_t at = text.find("Notes: ");
  for (auto const & streamP : chunk->GetContinuousList()) {
    size_t const next = text.find(streamP->PrintContents());
    ASSERT_NE(next, std::string::npos);
    EXPECT_GT(next, at);
    at = next;
  }
  EXPECT_GT(text.find("Sorted list: "), at);
}

TEST(Vrad_Chunk_PrintContents, ShowsANoteAtTheEndOfTime) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Time_Typed::MaxTime(Time_eType_Ticks), 60));
  EXPECT_TRUE(Has(chunk->PrintContents(), "  9223372036854775807t pitch 60, "));
}

TEST(Vrad_ContinuousDataStream_PrintContents, NamesEachKindOfValue) {
  auto const nameOf = [](Vrae_SubStream const & iSubStream) {
    return Vrad_ContinuousDataStream(iSubStream, Ndo_Object::kNotUndoable, false).PrintContents();
  };
  EXPECT_EQ(nameOf(Vrae_SubStream::PitchBend()), "PitchBend: 0\n");
  EXPECT_EQ(nameOf(Vrae_SubStream::Controller(74)), "Controller 74: 0\n");
  EXPECT_EQ(nameOf(Vrae_SubStream::Program()), "Program: 0\n");
  EXPECT_EQ(nameOf(Vrae_SubStream::MonoPressure()), "MonoPressure: 0\n");
  EXPECT_EQ(nameOf(Vrae_SubStream::PolyPressure(60)), "PolyPressure 60: 0\n");
}

TEST(Vrad_ContinuousDataStream_PrintContents, TheNullSubStreamHasAName) {
  Vrad_ContinuousDataStream const stream(Vrae_SubStream(), Ndo_Object::kNotUndoable, false);
  EXPECT_EQ(stream.PrintContents(), "NoSubStream: 0\n");
}

TEST(Vrad_ContinuousDataStream_PrintContents, HasALineForEachSegment) {
  Vrad_ContinuousDataStream stream(Vrae_SubStream::Controller(1), Ndo_Object::kNotUndoable, false);
  stream.AddEvent(ControllerAt(Ticks(-5), 1, 3));
  stream.AddEvent(ControllerAt(Ticks(10), 1, 127));
  EXPECT_EQ(stream.PrintContents(), "Controller 1: 2\n  -5t 3\n  10t 127\n");
}
