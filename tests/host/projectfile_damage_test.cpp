// Damaged project files: each damage costs the records that it hits and no other, is told, and
// takes neither time nor memory.
#include <algorithm>
#include <ctime>
#include <map>
#include <optional>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clip_print.h"
#include "cmn/cmn_assert.h"
#include "foundation/sys_delayeddeletion.h"
#include "memory_meter.h"
#include "ndo/ndo_manager.h"
#include "project_samples.h"

namespace {

using midi::PrintProblems;
using midi::Text;
using project::Bytes;
using project::FindBounds;
using project::Head;
using project::Int;
using project::Ints;
using project::Last;
using project::Read;
using project::Record;
using testing::ElementsAre;
using project::operator+;

void DropAll() {
  Ndo_gManager.DropUnreferenced();
  Sys_DelayedDeletionQueue::DeletePending();
}

// Nothing if there is no whole record.
std::optional<Bytes> Reread(Bytes const & iFile) {
  try {
    return Host_WriteProjectFile(Read(iFile));
  } catch (Host_ProjectFileError const &) {
    return std::nullopt;
  }
}

// A file, where its records begin, and what there is without some of them.
class Damage : public testing::Test {
protected:
  ~Damage() override { DropAll(); }

  size_t NumRecords() const { return mBounds.size() - 1; }
  // The record that holds the byte.
  size_t RecordAt(size_t iOffset) const {
    return static_cast<size_t>(std::upper_bound(mBounds.begin(), mBounds.end(), iOffset) -
                               mBounds.begin()) -
           1;
  }
  Bytes Part(size_t iBegin, size_t iEnd) const {
    return Bytes(mFile.begin() + static_cast<std::ptrdiff_t>(iBegin),
                 mFile.begin() + static_cast<std::ptrdiff_t>(iEnd));
  }
  // What comes of the file without the records from the first to before the last.
  std::optional<Bytes> Without(size_t iFirst, size_t iLast) {
    std::optional<std::optional<Bytes>> & known = mWithout[iFirst * 100 + iLast];
    if (!known) known = Reread(Part(0, mBounds[iFirst]) + Part(mBounds[iLast], mFile.size()));
    return *known;
  }

  // The fewest records that the loss of these bytes, or of others with the same outcome, hits.
  std::pair<size_t, size_t> FindHit(size_t iBegin, size_t iEnd) const {
    size_t const size = iEnd - iBegin;
    while (iBegin > 0 && mFile[iBegin - 1] == mFile[iBegin + size - 1])
      --iBegin;
    std::pair<size_t, size_t> hit = HitAt(iBegin, size);
    for (; iBegin + size < mFile.size() && mFile[iBegin] == mFile[iBegin + size]; ++iBegin) {
      std::pair<size_t, size_t> const other = HitAt(iBegin + 1, size);
      if (other.second - other.first < hit.second - hit.first) hit = other;
    }
    return hit;
  }

  Bytes const mFile = Host_WriteProjectFile(project::MakeSong());
  std::vector<size_t> const mBounds = FindBounds(mFile);
  std::mt19937 mRandom{20261121};

private:
  std::pair<size_t, size_t> HitAt(size_t iBegin, size_t iSize) const {
    return {RecordAt(iBegin), RecordAt(iBegin + iSize - 1) + 1};
  }

  std::map<size_t, std::optional<std::optional<Bytes>>> mWithout;
};

TEST_F(Damage, HasSomethingToHit) {
  EXPECT_EQ(NumRecords(), 13u);
  EXPECT_GT(mFile.size(), 2500u);
  EXPECT_EQ(Reread(mFile), mFile);
}

TEST_F(Damage, OfAByteCostsItsRecordAlone) {
  for (size_t at = 0; at < mFile.size(); at += 3) {  // a frame has 27 bytes
    Bytes changed = mFile;
    changed[at] ^= 0xff;
    size_t const record = RecordAt(at);
    ASSERT_EQ(Reread(changed), Without(record, record + 1)) << at;
  }
}

TEST_F(Damage, OfAByteIsToldAtItsRecord) {
  for (size_t record = 0; record < NumRecords(); ++record) {
    for (size_t at : {mBounds[record], mBounds[record] + 18, mBounds[record] + 20,
                      mBounds[record] + 24, mBounds[record + 1] - 1}) {
      Bytes changed = mFile;
      changed[at] ^= 0x01;
      Host_Song const song = Read(changed);
      ASSERT_TRUE(song.mReport.IsLossy()) << at;
      ASSERT_EQ(song.mReport.GetProblems()[0].mOffset, mBounds[record]) << at;
    }
  }
}

TEST_F(Damage, OfABitCostsItsRecordAlone) {
  Cmn_AssertRecorder const checks;
  for (int round = 0; round < 10000; ++round) {
    size_t const at = mRandom() % mFile.size();
    Bytes changed = mFile;
    changed[at] ^= static_cast<unsigned char>(1u << mRandom() % 8);
    size_t const record = RecordAt(at);
    ASSERT_EQ(Reread(changed), Without(record, record + 1)) << at;
    if (round % 100 == 0) DropAll();
  }
  EXPECT_EQ(checks.GetNum(), 0);
}

TEST_F(Damage, ByACutLeavesAllThatIsWhole) {
  Cmn_AssertRecorder const checks;
  for (int round = 0; round < 10000; ++round) {
    size_t const size = mRandom() % mFile.size();
    ASSERT_EQ(Reread(Part(0, size)), Without(RecordAt(size), NumRecords())) << size;
    if (round % 100 == 0) DropAll();
  }
  EXPECT_EQ(checks.GetNum(), 0);
}

TEST_F(Damage, ByACutIsTold) {
  for (size_t size = mBounds[1]; size < mFile.size(); ++size)
    ASSERT_TRUE(Read(Part(0, size)).mReport.IsLossy()) << size;
}

TEST_F(Damage, AtTheBeginningLeavesWhatFollows) {
  for (size_t begin = 1; begin < mFile.size(); begin += 3)
    ASSERT_EQ(Reread(Part(begin, mFile.size())), Without(0, RecordAt(begin - 1) + 1)) << begin;
}

TEST_F(Damage, ByLostBytesCostsTheRecordsThatHadThem) {
  for (int round = 0; round < 1000; ++round) {
    size_t const begin = mRandom() % mFile.size();
    size_t const end = std::min(mFile.size(), begin + 1 + mRandom() % 300);
    auto const [first, last] = FindHit(begin, end);
    ASSERT_EQ(Reread(Part(0, begin) + Part(end, mFile.size())), Without(first, last))
        << begin << " to " << end;
  }
}

TEST_F(Damage, ByInsertedBytesCostsOneRecordAtMost) {
  for (int round = 0; round < 1000; ++round) {
    size_t const at = mRandom() % mFile.size();
    Bytes noise(1 + mRandom() % 300);
    for (unsigned char & byte : noise)
      byte = static_cast<unsigned char>(mRandom());
    size_t const record = RecordAt(at);
    bool const isBetween = at == mBounds[record];
    ASSERT_EQ(Reread(Part(0, at) + noise + Part(at, mFile.size())),
              Without(record, isBetween ? record : record + 1))
        << at;
  }
}

TEST_F(Damage, ByTwoHitsCostsTwoRecords) {
  for (int round = 0; round < 500; ++round) {
    size_t const record = mRandom() % (NumRecords() - 1);
    Bytes changed = mFile;
    changed[mBounds[record + 1] - 1 - mRandom() % 5] ^= 0x10;
    changed[mBounds[record + 1] + mRandom() % 27] ^= 0x10;
    ASSERT_EQ(Reread(changed), Without(record, record + 2)) << record;
  }
}

TEST(Host_ProjectScanner, TellsWhatIsNoRecord) {
  Bytes const file = Text("noise") + Head(0, 0) + Text("\x08vradmore") + Last(2) + Bytes{1};
  EXPECT_THAT(PrintProblems(Read(file)),
              ElementsAre("0: 5 bytes are no record", "52: 9 bytes are no record",
                          "92: 1 bytes are no record"));
}

TEST(Host_ProjectScanner, TellsDamagedAndCutRecords) {
  Bytes damaged = Record("vradTest", {1, 2, 3});
  damaged.back() = 4;
  Bytes cut = Last(2);
  cut.pop_back();
  EXPECT_THAT(PrintProblems(Read(Head(0, 0) + damaged + cut)),
              ElementsAre("47: record 'vradTest' is damaged", "77: record 'vradLast' is cut short",
                          "107: the end of the file is missing"));
}

TEST(Host_ProjectScanner, DoesNotLookIntoWholeRecords) {
  Bytes const file = Head(0, 0) + Record("vradTest", Record("vradTest", {})) + Last(3);
  Host_Song const song = Read(file);
  EXPECT_EQ(song.mReport.GetNumNotKept(kNotKept_UnknownRecord), 1);
  EXPECT_THAT(PrintProblems(song), ElementsAre());
}

// A header and its sum are right; the contents are said to have so many bytes, and are not there.
Bytes Lure(long long iSize) {
  Bytes lure = Record("vradTest", Bytes(static_cast<size_t>(iSize)));
  lure.resize(27);
  return lure;
}

// Processor time, and generous: a pass for each record would take minutes.
template <class F>
void ExpectQuick(F iBody) {
  std::clock_t const start = std::clock();
  iBody();
  EXPECT_LT(std::clock() - start, 10 * CLOCKS_PER_SEC);
}

TEST(Host_ProjectScanner, PassesOverNestedHeadersQuickly) {
  constexpr size_t kNum = 40000;
  Bytes file = Head(0, 0) + Last(2);
  Bytes const lure = Lure(kNum * 14);  // so half of them are cut short
  for (size_t i = 0; i < kNum; ++i)
    file.insert(file.end(), lure.begin(), lure.end());
  ExpectQuick([&] {
    Host_Song const song = Read(file);
    EXPECT_TRUE(song.mReport.IsLossy());
    EXPECT_EQ(song.mReport.GetProblems()[0].mOffset, 78u);
  });
}

TEST(Host_ProjectScanner, PassesOverHalfHeadersQuickly) {
  Bytes file = Head(0, 0) + Last(2);
  Bytes const half = Text("\x08vrad");
  for (size_t i = 0; i < 400000; ++i)
    file.insert(file.end(), half.begin(), half.end());
  ExpectQuick([&] {
    EXPECT_THAT(PrintProblems(Read(file)), ElementsAre("78: 2000000 bytes are no record"));
  });
}

TEST(Host_ProjectScanner, FindsARecordBehindALure) {
  Bytes const file = Head(0, 0) + Lure(60) + Record("vradTest", {}) + Last(4);
  Host_Song const song = Read(file);
  EXPECT_EQ(song.mReport.GetNumNotKept(kNotKept_UnknownRecord), 1);
  EXPECT_THAT(PrintProblems(song), ElementsAre("47: record 'vradTest' is cut short"));
}

TEST(Host_ReadProjectFile, ReservesNothingForAnnouncedCounts) {
  Bytes const name = Int(0) + project::Int64(0) + Int(0x7fffffff);
  Bytes const file = Head(0, 0x7fffffff) + Record(kHost_ProjectTempo, Int(0x7fffffff)) +
                     Record(kHost_ProjectTrack, name) + Last(4);
  long long const most = memory_meter::Measure([&] { EXPECT_TRUE(Read(file).mReport.IsLossy()); });
  EXPECT_LT(most, 100000);
}

TEST(Host_ReadProjectFile, HoldsNoMoreTracksThanAMidiFile) {
  long long const most = memory_meter::Measure(
      [&] { EXPECT_EQ(Read(Head(0x7fffffff, 0) + Last(2)).mTracks.size(), 65535u); });
  EXPECT_LT(most, 5000000);
}

TEST(Host_ReadProjectFile, KeepsAHundredOfManyProblems) {
  Bytes file;
  Bytes const bad = Record(kHost_ProjectClip, Ints({-1, 0}));
  for (int i = 0; i < 5000; ++i)
    file.insert(file.end(), bad.begin(), bad.end());
  Host_Song const song = Read(file);
  EXPECT_EQ(song.mReport.GetNumProblems(), 5001);
  EXPECT_EQ(song.mReport.GetProblems().size(), 100u);
}

}  // namespace
