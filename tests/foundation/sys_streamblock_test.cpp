// Blocks behave as the streams they stand on.
#include "foundation/sys_streamblock.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

typedef std::vector<unsigned char> Bytes;

// 0, 1, 2, ..., with every fourth byte 0.
Bytes CountingBytes(int iNum) {
  Bytes bytes;
  for (int i = 0; i < iNum; ++i)
    bytes.push_back(static_cast<unsigned char>(i % 4 == 3 ? 0 : i));
  return bytes;
}

// A stream whose position cannot be set.
class StuckStream : public Sys_MemoryInStream {
public:
  using Sys_MemoryInStream::Sys_MemoryInStream;
  void SetPos(long long) override { throw Sys_StreamException(Sys_StreamException::kIO, "stuck"); }
};

}  // namespace

TEST(Sys_BlockOut, WritesWhatTheStreamWould) {
  Sys_MemoryOutStream plain, blocked;
  Sys_BlockOut out(blocked);
  for (int i = 0; i < 5000; ++i) {
    plain.Write(i % 2 == 0);
    plain.Write(static_cast<signed char>(i));
    plain.Write(static_cast<short>(-i));
    plain.Write(i * 100003);
    plain.Write(i * -1000000000007LL);
    out.Write(i % 2 == 0);
    out.Write(static_cast<signed char>(i));
    out.Write(static_cast<short>(-i));
    out.Write(i * 100003);
    out.Write(i * -1000000000007LL);
  }
  out.Flush();
  EXPECT_EQ(80000u, plain.GetBytes().size());
  EXPECT_TRUE(plain.GetBytes() == blocked.GetBytes());
}

TEST(Sys_BlockOut, FlushesNothingTwice) {
  Sys_MemoryOutStream stream;
  Sys_BlockOut out(stream);
  out.Write(1);
  out.Flush();
  out.Flush();
  EXPECT_EQ((Bytes{1, 0, 0, 0}), stream.GetBytes());
}

TEST(Sys_BlockIn, ReadsWhatTheStreamWould) {
  Bytes const bytes = CountingBytes(75000);
  Sys_MemoryInStream plain(bytes), blocked(bytes);
  Sys_BlockIn in(blocked, 75000);
  for (int i = 0; i < 5000; ++i) {
    long long word, blockedWord;
    int number, blockedNumber;
    short half, blockedHalf;
    bool flag, blockedFlag;
    plain.Read(&word);
    plain.Read(&number);
    plain.Read(&half);
    plain.Read(&flag);
    in.Read(&blockedWord);
    in.Read(&blockedNumber);
    in.Read(&blockedHalf);
    in.Read(&blockedFlag);
    ASSERT_EQ(word, blockedWord);
    ASSERT_EQ(number, blockedNumber);
    ASSERT_EQ(half, blockedHalf);
    ASSERT_EQ(flag, blockedFlag);
  }
}

TEST(Sys_BlockIn, LeavesTheStreamBehindTheLastField) {
  Sys_MemoryInStream stream(CountingBytes(100));
  {
    Sys_BlockIn in(stream, 100);
    int number;
    in.Read(&number);
    in.Read(&number);
  }
  EXPECT_EQ(8, stream.GetPos());
}

TEST(Sys_BlockIn, ReadsBeyondWhatWasExpected) {
  Sys_MemoryInStream stream(CountingBytes(100));
  Sys_BlockIn in(stream, 4);
  int number;
  in.Read(&number);
  in.Read(&number);
  EXPECT_EQ(0x00060504, number);
}

TEST(Sys_BlockIn, FailsAtTheFieldThatIsCutAndStaysThere) {
  Sys_MemoryInStream stream(CountingBytes(10));
  {
    Sys_BlockIn in(stream, 1000);
    int number;
    in.Read(&number);
    in.Read(&number);
    EXPECT_THROW(in.Read(&number), Sys_StreamException);
    short half;
    in.Read(&half);
    EXPECT_EQ(0x0908, half);
  }
  EXPECT_EQ(10, stream.GetPos());
}

TEST(Sys_BlockIn, SkipsWithinTheBlockAndFarBeyondIt) {
  Sys_MemoryInStream stream(CountingBytes(50000));
  Sys_BlockIn in(stream, 50000);
  signed char byte;
  in.Read(&byte);
  in.Skip(4);
  in.Read(&byte);
  EXPECT_EQ(5, byte);
  in.Skip(40000 - 6 + 1);
  in.Read(&byte);
  EXPECT_EQ(static_cast<signed char>(40001), byte);
  in.Skip(0);
  in.Skip(-5);
  in.Read(&byte);
  EXPECT_EQ(static_cast<signed char>(40002), byte);
}

TEST(Sys_BlockIn, FailsAfterASkipBeyondTheEnd) {
  Sys_MemoryInStream stream(CountingBytes(10));
  Sys_BlockIn in(stream, 10);
  signed char byte;
  in.Skip(2000000000LL * 2000000000LL);
  EXPECT_THROW(in.Read(&byte), Sys_StreamException);
}

TEST(Sys_BlockIn, LetsNoExceptionOutOfItsDestructor) {
  StuckStream stream(CountingBytes(10));
  Sys_BlockIn in(stream, 10);
  int number;
  in.Read(&number);
  EXPECT_EQ(0x00020100, number);
}
