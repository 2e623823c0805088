#include "foundation/sys_stream.h"

#include <climits>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

typedef std::vector<unsigned char> Bytes;
namespace fs = std::filesystem;

template <class F>
int ReasonOf(F iBody) {
  try {
    iBody();
  } catch (Sys_StreamException const & exception) {
    return exception.GetReason();
  }
  return -1;
}

std::string Contents(fs::path const & iPath) {
  std::ifstream file(iPath, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// A folder of its own for each test, gone afterwards.
class Sys_FileStream : public testing::Test {
protected:
  void SetUp() override {
    auto const * const info = testing::UnitTest::GetInstance()->current_test_info();
    mFolder = fs::path(testing::TempDir()) / ("vrad_" + std::string(info->name()));
    fs::remove_all(mFolder);
    fs::create_directories(mFolder);
    mPath = (mFolder / "file.bin").string();
  }
  void TearDown() override { fs::remove_all(mFolder); }

  void WriteText(std::string const & iText) {
    Sys_FileOutStream stream(mPath);
    stream.WriteBlock(iText.data(), static_cast<int>(iText.size()));
    stream.Close();
  }
  long NumFiles() const {
    return static_cast<long>(
        std::distance(fs::directory_iterator(mFolder), fs::directory_iterator()));
  }

  fs::path mFolder;
  std::string mPath;
};

template <class T, class = void>
struct IsWritable : std::false_type {};
template <class T>
struct IsWritable<
    T, std::void_t<decltype(std::declval<Sys_TypedOutStream &>().Write(std::declval<T>()))>>
    : std::true_type {};

}  // namespace

TEST(Sys_TypedOutStream, WritesLittleEndianWithoutMarks) {
  Sys_MemoryOutStream stream;
  stream.Write(true);
  stream.Write(static_cast<signed char>(-2));
  stream.Write(static_cast<short>(0x0102));
  stream.Write(0x01020304);
  stream.Write(0x0102030405060708LL);
  EXPECT_EQ(stream.GetBytes(), (Bytes{1, 0xfe, 2, 1, 4, 3, 2, 1, 8, 7, 6, 5, 4, 3, 2, 1}));
}

TEST(Sys_TypedOutStream, TakesNoOtherType) {
  EXPECT_TRUE(IsWritable<long long>::value);
  EXPECT_FALSE(IsWritable<long>::value);
  EXPECT_FALSE(IsWritable<unsigned>::value);
  EXPECT_FALSE(IsWritable<char>::value);
  EXPECT_FALSE(IsWritable<double>::value);
  EXPECT_FALSE(IsWritable<char const *>::value);
}

TEST(Sys_TypedInStream, ReadsWhatWasWritten) {
  Sys_MemoryOutStream out;
  out.Write(false);
  out.Write(true);
  out.Write(static_cast<signed char>(-128));
  out.Write(static_cast<short>(-32768));
  out.Write(INT_MIN);
  out.Write(LLONG_MIN);
  Sys_MemoryInStream in(out.GetBytes());
  bool no = true, yes = false;
  signed char byte = 0;
  short word = 0;
  int number = 0;
  long long count = 0;
  in.Read(&no);
  in.Read(&yes);
  in.Read(&byte);
  in.Read(&word);
  in.Read(&number);
  in.Read(&count);
  EXPECT_FALSE(no);
  EXPECT_TRUE(yes);
  EXPECT_EQ(byte, -128);
  EXPECT_EQ(word, -32768);
  EXPECT_EQ(number, INT_MIN);
  EXPECT_EQ(count, LLONG_MIN);
  EXPECT_EQ(in.BytesLeft(), 0);
}

TEST(Sys_TypedInStream, AnyByteButZeroIsTrue) {
  Sys_MemoryInStream in(Bytes{2});
  bool value = false;
  in.Read(&value);
  EXPECT_TRUE(value);
}

TEST(Sys_MemoryOutStream, WritesOverAndBehindWhatIsThere) {
  Sys_MemoryOutStream stream;
  stream.WriteBlock("abcd", 4);
  stream.SetPos(3);
  stream.WriteBlock("XY", 2);
  EXPECT_EQ(stream.GetPos(), 5);
  EXPECT_EQ(stream.GetBytes(), (Bytes{'a', 'b', 'c', 'X', 'Y'}));
}

TEST(Sys_MemoryOutStream, FillsASkippedStretchWithZeros) {
  Sys_MemoryOutStream stream;
  stream.SetPos(2);
  EXPECT_EQ(stream.GetBytes().size(), 0u);
  stream.WriteBlock("a", 1);
  EXPECT_EQ(stream.GetBytes(), (Bytes{0, 0, 'a'}));
}

TEST(Sys_MemoryOutStream, AnEmptyBlockWritesNothing) {
  Sys_MemoryOutStream stream;
  stream.WriteBlock("a", 0);
  stream.WriteBlock("a", -1);
  EXPECT_EQ(stream.GetPos(), 0);
  EXPECT_TRUE(stream.GetBytes().empty());
}

TEST(Sys_MemoryOutStream, RefusesToWriteOutside) {
  Sys_MemoryOutStream stream;
  stream.SetPos(-1);
  EXPECT_EQ(ReasonOf([&] { stream.Write(1); }), Sys_StreamException::kIO);
  stream.SetPos(LLONG_MAX);
  EXPECT_EQ(ReasonOf([&] { stream.Write(1); }), Sys_StreamException::kIO);
}

TEST(Sys_MemoryInStream, ThrowsAtTheEndAndStays) {
  Sys_MemoryInStream stream(Bytes{1, 2, 3});
  int value = 7;
  EXPECT_EQ(ReasonOf([&] { stream.Read(&value); }), Sys_StreamException::kEndOfStream);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(stream.GetPos(), 0);
  EXPECT_EQ(stream.BytesLeft(), 3);
}

TEST(Sys_MemoryInStream, APositionOutsideIsLegalUntilTheNextRead) {
  Sys_MemoryInStream stream(Bytes{1, 2, 3});
  signed char value;
  for (long long const pos : {3LL, 100LL, LLONG_MAX, -1LL, LLONG_MIN}) {
    stream.SetPos(pos);
    EXPECT_EQ(stream.GetPos(), pos);
    EXPECT_EQ(stream.BytesLeft(), 0);
    EXPECT_EQ(ReasonOf([&] { stream.Read(&value); }), Sys_StreamException::kEndOfStream);
  }
  stream.SetPos(1);
  stream.Read(&value);
  EXPECT_EQ(value, 2);
}

TEST(Sys_StreamException, ShowsItsTextAndIsCaughtByItsBase) {
  try {
    throw Sys_StreamException(Sys_StreamException::kWrongTag, "what happened");
  } catch (Cmn_Exception const & exception) {
    EXPECT_STREQ(exception.what(), "what happened");
    EXPECT_EQ(exception.GetDescription(), "what happened");
  }
}

TEST(Sys_StreamException, ClonesAndThrowsAsItself) {
  Sys_StreamException const original(Sys_StreamException::kWrongVersion, "text");
  std::unique_ptr<Cmn_Exception> const copyP(original.Clone());
  EXPECT_EQ(ReasonOf([&] { copyP->Throw(); }), Sys_StreamException::kWrongVersion);
}

TEST(Sys_StdStreamHeader, HasTagVersionAndSize) {
  Sys_MemoryOutStream stream;
  Sys_StdStreamHeaderWriter header(stream, "Vrss", 0x0102);
  stream.Write(static_cast<short>(5));
  header.PatchSize();
  EXPECT_EQ(stream.GetBytes(), (Bytes{4, 'V', 'r', 's', 's', 2, 1, 2, 0, 0, 0, 0, 0, 0, 0, 5, 0}));
  EXPECT_EQ(stream.GetPos(), 17);
}

TEST(Sys_StdStreamHeader, SizeIsZeroUntilPatched) {
  Sys_MemoryOutStream stream;
  {
    Sys_StdStreamHeaderWriter header(stream, "a", 1);
    stream.Write(true);
  }
  EXPECT_EQ(stream.GetBytes(), (Bytes{1, 'a', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(Sys_StdStreamHeader, RefusesATagThatDoesNotFit) {
  Sys_MemoryOutStream stream;
  std::string const longest(255, 'x');
  Sys_StdStreamHeaderWriter header(stream, longest.c_str(), 1);
  Sys_MemoryInStream in(stream.GetBytes());
  EXPECT_EQ(Sys_StdStreamHeaderReader(in, longest.c_str()).GetVersion(), 1);
  EXPECT_THROW(Sys_StdStreamHeaderWriter(stream, (longest + "x").c_str(), 1), std::length_error);
}

TEST(Sys_StdStreamHeaderReader, OpensNestedRecords) {
  Sys_MemoryOutStream out;
  Sys_StdStreamHeaderWriter outer(out, "out", 3);
  Sys_StdStreamHeaderWriter inner(out, "in", 4);
  out.Write(7);
  inner.PatchSize();
  out.Write(8);
  outer.PatchSize();

  Sys_MemoryInStream in(out.GetBytes());
  Sys_StdStreamHeaderReader outerReader(in, "out");
  Sys_StdStreamHeaderReader innerReader(in, "in");
  EXPECT_EQ(outerReader.GetVersion(), 3);
  EXPECT_EQ(innerReader.GetVersion(), 4);
  int value;
  in.Read(&value);
  EXPECT_EQ(value, 7);
  EXPECT_FALSE(innerReader.IsMoreLeft());
  EXPECT_TRUE(outerReader.IsMoreLeft());
  in.Read(&value);
  EXPECT_EQ(value, 8);
  EXPECT_FALSE(outerReader.IsMoreLeft());
  EXPECT_EQ(outerReader.GetEndPos(), in.GetPos());
}

TEST(Sys_StdStreamHeaderReader, RefusesAnotherTag) {
  Sys_MemoryOutStream out;
  Sys_StdStreamHeaderWriter header(out, "abc", 1);
  for (char const * const tag : {"abd", "ab", "abcd", ""}) {
    Sys_MemoryInStream in(out.GetBytes());
    EXPECT_EQ(ReasonOf([&] { Sys_StdStreamHeaderReader(in, tag); }),
              Sys_StreamException::kWrongTag);
  }
}

TEST(Sys_StdStreamHeaderReader, MeetsTheEndInATornHeader) {
  Sys_MemoryOutStream out;
  Sys_StdStreamHeaderWriter header(out, "abc", 1);
  for (size_t size = 0; size < out.GetBytes().size(); ++size) {
    Sys_MemoryInStream in(
        Bytes(out.GetBytes().begin(), out.GetBytes().begin() + static_cast<long>(size)));
    EXPECT_EQ(ReasonOf([&] { Sys_StdStreamHeaderReader(in, "abc"); }),
              Sys_StreamException::kEndOfStream);
  }
}

TEST(Sys_StdStreamHeaderReader, ChecksTheVersionAgainstBothBounds) {
  Sys_MemoryOutStream out;
  Sys_StdStreamHeaderWriter header(out, "abc", 3);
  Sys_MemoryInStream in(out.GetBytes());
  Sys_StdStreamHeaderReader reader(in, "abc");
  EXPECT_NO_THROW(reader.CheckVersion(3, 3));
  EXPECT_NO_THROW(reader.CheckVersion(1, 3));
  EXPECT_NO_THROW(reader.CheckVersion(3, 5));
  EXPECT_EQ(ReasonOf([&] { reader.CheckVersion(1, 2); }), Sys_StreamException::kWrongVersion);
  EXPECT_EQ(ReasonOf([&] { reader.CheckVersion(4, 4); }), Sys_StreamException::kWrongVersion);
}

TEST(Sys_StdStreamHeaderReader, SkipsForwardAndBackToTheEnd) {
  Sys_MemoryOutStream out;
  Sys_StdStreamHeaderWriter header(out, "abc", 1);
  out.Write(1);
  header.PatchSize();
  out.Write(2);
  Sys_MemoryInStream in(out.GetBytes());
  Sys_StdStreamHeaderReader reader(in, "abc");
  int value;
  reader.SkipTheRest();
  in.Read(&value);
  EXPECT_EQ(value, 2);
  reader.SkipTheRest();
  in.Read(&value);
  EXPECT_EQ(value, 2);
}

TEST(Sys_StdStreamHeaderReader, SurvivesAnySize) {
  for (long long const size : {LLONG_MAX, LLONG_MIN, -1LL}) {
    Sys_MemoryOutStream out;
    Sys_StdStreamHeaderWriter header(out, "a", 1);
    out.SetPos(4);
    out.Write(size);
    Sys_MemoryInStream in(out.GetBytes());
    Sys_StdStreamHeaderReader reader(in, "a");
    EXPECT_EQ(reader.IsMoreLeft(), size > 0);
    EXPECT_EQ(reader.GetEndPos(), size > 0 ? LLONG_MAX : 12);
    reader.SkipTheRest();
    signed char value;
    EXPECT_EQ(ReasonOf([&] { in.Read(&value); }), Sys_StreamException::kEndOfStream);
  }
}

TEST_F(Sys_FileStream, ReadsWhatWasWritten) {
  {
    Sys_FileOutStream out(mPath);
    Sys_StdStreamHeaderWriter header(out, "abc", 1);
    for (int i = 0; i < 50000; ++i)
      out.Write(i);
    header.PatchSize();
    EXPECT_EQ(out.GetPos(), 14 + 200000);
    out.Close();
  }
  Sys_FileInStream in(mPath);
  Sys_StdStreamHeaderReader reader(in, "abc");
  int value = -1;
  for (int i = 0; i < 50000; ++i) {
    in.Read(&value);
    ASSERT_EQ(value, i);
  }
  EXPECT_FALSE(reader.IsMoreLeft());
  EXPECT_EQ(in.BytesLeft(), 0);
}

TEST_F(Sys_FileStream, CarriesBlocksLargerThanItsBuffer) {
  std::string block(300000, '\0');
  for (size_t i = 0; i < block.size(); ++i)
    block[i] = static_cast<char>(i * 7 + i / 1000);
  {
    Sys_FileOutStream out(mPath);
    out.Write(1);
    out.WriteBlock(block.data(), static_cast<int>(block.size()));
    out.Write(2);
    out.Close();
  }
  Sys_FileInStream in(mPath);
  int first = 0, last = 0;
  std::string back(block.size(), '\0');
  in.Read(&first);
  in.ReadBlock(back.data(), static_cast<int>(back.size()));
  in.Read(&last);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(last, 2);
  EXPECT_TRUE(back == block);
}

TEST_F(Sys_FileStream, ReadsAtAnyPosition) {
  WriteText("0123456789");
  Sys_FileInStream in(mPath);
  char text[3] = {};
  in.SetPos(7);
  in.ReadBlock(text, 2);
  EXPECT_STREQ(text, "78");
  in.SetPos(2);
  in.ReadBlock(text, 2);
  EXPECT_STREQ(text, "23");
  EXPECT_EQ(in.GetPos(), 4);
  EXPECT_EQ(in.BytesLeft(), 6);
}

TEST_F(Sys_FileStream, ThrowsAtTheEndAndStays) {
  WriteText("abc");
  Sys_FileInStream in(mPath);
  int value = 0;
  EXPECT_EQ(ReasonOf([&] { in.Read(&value); }), Sys_StreamException::kEndOfStream);
  EXPECT_EQ(in.GetPos(), 0);
  in.SetPos(100);
  EXPECT_EQ(in.BytesLeft(), 0);
  EXPECT_EQ(ReasonOf([&] { in.Read(&value); }), Sys_StreamException::kEndOfStream);
  in.SetPos(-1);
  EXPECT_EQ(ReasonOf([&] { in.Read(&value); }), Sys_StreamException::kEndOfStream);
}

TEST_F(Sys_FileStream, MeetsTheEndOfAFileThatBecameShorter) {
  WriteText("abcdefgh");
  Sys_FileInStream in(mPath);
  fs::resize_file(mPath, 2);
  int value = 0;
  EXPECT_EQ(ReasonOf([&] { in.Read(&value); }), Sys_StreamException::kEndOfStream);
  EXPECT_EQ(in.GetPos(), 0);
}

TEST_F(Sys_FileStream, FillsASkippedStretchWithZeros) {
  {
    Sys_FileOutStream out(mPath);
    out.SetPos(2);
    out.WriteBlock("a", 1);
    out.Close();
  }
  EXPECT_EQ(Contents(mPath), std::string("\0\0a", 3));
}

TEST_F(Sys_FileStream, TheOldFileStaysUntilClosed) {
  WriteText("old");
  Sys_FileOutStream out(mPath);
  out.WriteBlock("new text", 8);
  EXPECT_EQ(Contents(mPath), "old");
  out.Close();
  EXPECT_EQ(Contents(mPath), "new text");
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, WithoutCloseTheNewFileIsThrownAway) {
  WriteText("old");
  {
    Sys_FileOutStream out(mPath);
    out.WriteBlock(std::string(100000, 'x').data(), 100000);
    EXPECT_EQ(NumFiles(), 2);
  }
  EXPECT_EQ(Contents(mPath), "old");
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, AnExceptionWhileWritingLeavesTheOldFile) {
  WriteText("old");
  try {
    Sys_FileOutStream out(mPath);
    out.WriteBlock("new", 3);
    throw std::runtime_error("stopped");
  } catch (std::runtime_error const &) {
  }
  EXPECT_EQ(Contents(mPath), "old");
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, CloseThrowsAfterAFailedWrite) {
  WriteText("old");
  {
    Sys_FileOutStream out(mPath);
    out.SetPos(LLONG_MAX - 10);  // beyond what any file system holds
    std::string const block(3, 'x');
    out.WriteBlock(block.data(), 3);
    EXPECT_EQ(ReasonOf([&] { out.Close(); }), Sys_StreamException::kIO);
    EXPECT_EQ(ReasonOf([&] { out.Close(); }), Sys_StreamException::kIO);
  }
  EXPECT_EQ(Contents(mPath), "old");
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, AFailedWriteIsNotForgotten) {
  WriteText("old");
  Sys_FileOutStream out(mPath);
  out.SetPos(LLONG_MAX - 10);
  out.WriteBlock("xyz", 3);
  EXPECT_EQ(ReasonOf([&] { out.SetPos(0); }), Sys_StreamException::kIO);
  EXPECT_EQ(ReasonOf([&] { out.Close(); }), Sys_StreamException::kIO);
  EXPECT_EQ(Contents(mPath), "old");
}

TEST_F(Sys_FileStream, AFailedWriteOfALargeBlockIsNotForgotten) {
  WriteText("old");
  {
    Sys_FileOutStream out(mPath);
    std::string const block(100000, 'x');
    out.SetPos(LLONG_MAX - 200000);
    EXPECT_EQ(ReasonOf([&] { out.WriteBlock(block.data(), 100000); }), Sys_StreamException::kIO);
    out.SetPos(0);
    EXPECT_EQ(ReasonOf([&] { out.Close(); }), Sys_StreamException::kIO);
  }
  EXPECT_EQ(Contents(mPath), "old");
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, CloseThrowsWhenTheTargetCannotBeReplaced) {
  {
    Sys_FileOutStream out(mPath);
    out.Write(1);
    fs::create_directories(fs::path(mPath) / "folder");
    EXPECT_EQ(ReasonOf([&] { out.Close(); }), Sys_StreamException::kIO);
    EXPECT_EQ(ReasonOf([&] { out.Close(); }), Sys_StreamException::kIO);
  }
  EXPECT_TRUE(fs::is_directory(mPath));
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, ClosingTwiceDoesNothing) {
  Sys_FileOutStream out(mPath);
  out.WriteBlock("a", 1);
  out.Close();
  EXPECT_NO_THROW(out.Close());
  EXPECT_EQ(Contents(mPath), "a");
}

TEST_F(Sys_FileStream, AClosedStreamTakesNoMore) {
  Sys_FileOutStream out(mPath);
  out.Close();
  EXPECT_EQ(ReasonOf([&] { out.Write(1); }), Sys_StreamException::kIO);
}

TEST_F(Sys_FileStream, TwoWritersOfOneFileDoNotMeet) {
  Sys_FileOutStream first(mPath), second(mPath);
  first.WriteBlock("first", 5);
  second.WriteBlock("second", 6);
  first.Close();
  EXPECT_EQ(Contents(mPath), "first");
  second.Close();
  EXPECT_EQ(Contents(mPath), "second");
  EXPECT_EQ(NumFiles(), 1);
}

TEST_F(Sys_FileStream, ReplacesTheFileBehindALink) {
  WriteText("old");
  fs::path const link = mFolder / "link";
  fs::create_symlink(mPath, link);
  {
    Sys_FileOutStream out(link.string());
    out.WriteBlock("new", 3);
    out.Close();
  }
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(Contents(mPath), "new");
}

TEST_F(Sys_FileStream, KeepsTheRightsOfTheOldFile) {
  WriteText("old");
  fs::permissions(mPath, fs::perms::owner_read | fs::perms::owner_write);
  WriteText("new");
  EXPECT_EQ(fs::status(mPath).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Sys_FileStream, RefusesWhatIsNoFile) {
  EXPECT_EQ(ReasonOf([&] { Sys_FileOutStream out(mFolder.string()); }), Sys_StreamException::kIO);
  EXPECT_EQ(ReasonOf([&] { Sys_FileInStream in(mFolder.string()); }), Sys_StreamException::kIO);
  EXPECT_EQ(ReasonOf([&] { Sys_FileInStream in(mPath); }), Sys_StreamException::kIO);
  EXPECT_EQ(ReasonOf([&] { Sys_FileOutStream out(mPath + "/no/such/folder"); }),
            Sys_StreamException::kIO);
}

TEST_F(Sys_FileStream, TakesPathsOfAnyLanguage) {
  mPath = (mFolder / "d\xc3\xa9j\xc3\xa0 vu").string();
  WriteText("a");
  EXPECT_EQ(Contents(mPath), "a");
}
