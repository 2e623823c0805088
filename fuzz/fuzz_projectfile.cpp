// Reads any bytes as a project file, as they are and once more with the sums of their records put
// right, without which chance would hardly get past them. What is read holds up: reading takes no
// more memory than the input accounts for, problems lie inside the file, and the song that comes
// out is written, and read again as the same song without a loss, which is written as the same
// bytes. As a MIDI file it is written too, and what that does not hold is counted.
#include <algorithm>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <boost/crc.hpp>

#include "cmn/cmn_assert.h"
#include "cut_counts.h"
#include "foundation/sys_delayeddeletion.h"
#include "fuzz_input.h"
#include "host/host_midifile.h"
#include "host/host_midiwriter.h"
#include "host/host_projectfile.h"
#include "ndo/ndo_manager.h"
#include "tests/host/memory_meter.h"
#include "tests/host/song_print.h"

namespace {

typedef std::vector<unsigned char> Bytes;

// A few bytes may ask for thousands of empty tracks, whose records take long and tell nothing new.
constexpr size_t kManyTracks = 100;

// A store of one value takes a block of its own, where a file has some 70 bytes for it. At least:
// tracks of which the file has a late one and the last alone, so that the list of them grows from
// nearly full to twice its size, and the words about damage.
constexpr long long kMemoryForEachByte = 64;
constexpr long long kMemoryForTracks = 3LL * 0xffff * sizeof(Host_MidiTrack);
constexpr long long kMemoryAtLeast = kMemoryForTracks + 1024 * 1024;

constexpr std::ptrdiff_t kHeaderSize = 19, kFrameSize = kHeaderSize + 8;
constexpr unsigned char kBeginning[] = {8, 'v', 'r', 'a', 'd'};

void DropAll() {
  Ndo_gManager.DropUnreferenced();
  Sys_DelayedDeletionQueue::DeletePending();
}

void Put(unsigned char * oBytes, unsigned long long iNumber, int iNumBytes) {
  for (int i = 0; i < iNumBytes; ++i)
    oBytes[i] = static_cast<unsigned char>(iNumber >> (8 * i));
}

unsigned SumOf(unsigned char const * iBegin, unsigned char const * iEnd) {
  boost::crc_32_type sum;
  sum.process_block(iBegin, iEnd);
  return sum.checksum();
}

// Ends each record where the next one begins, and makes its sums right.
Bytes PutRight(Bytes iBytes) {
  unsigned char * const end = iBytes.data() + iBytes.size();
  auto const findFrom = [end](unsigned char * iFrom) {
    return std::search(iFrom, end, std::begin(kBeginning), std::end(kBeginning));
  };
  for (unsigned char * at = findFrom(iBytes.data()); end - at >= kFrameSize;) {
    unsigned char * const next = findFrom(at + kFrameSize);
    Put(at + kHeaderSize - 8, static_cast<unsigned long long>(next - at - kHeaderSize), 8);
    Put(at + kHeaderSize, SumOf(at, at + kHeaderSize), 4);
    Put(at + kHeaderSize + 4, SumOf(at + kFrameSize, next), 4);
    at = next;
  }
  return iBytes;
}

// Nothing if there is nothing to read.
std::optional<Host_Song> Read(Bytes const & iBytes) {
  try {
    return Host_ReadProjectFile(iBytes);
  } catch (Host_ProjectFileError const &) {
    return std::nullopt;
  }
}

// Gives what was read from what was written. Values that fail a check are saved as they are, and
// fail it again: a problem, as in corpus/projectfile/original_fails_a_check.vrad, but no loss.
Host_Song CheckWriting(Host_Song const & iSong, bool iIsAlike) {
  Bytes const bytes = Host_WriteProjectFile(iSong);
  FuzzExpect(Host_IsProjectFile(bytes), "written as a project");
  Host_Song copy = Host_ReadProjectFile(bytes);
  FuzzExpect(!copy.mReport.IsLossy(), "what was written reads whole");
  FuzzExpect(copy.mReport.GetNotKept().empty(), "what was written is known");
  if (!iIsAlike && HasCutCounts(bytes)) return copy;
  FuzzExpect(midi::PrintSong(copy) == midi::PrintSong(iSong), "songs alike");
  FuzzExpect(Host_WriteProjectFile(copy) == bytes, "read and written alike");
  return copy;
}

// A project's chunk may have its events in any order, a MIDI file has them in order of time.
std::vector<std::string> PrintSorted(Host_Song const & iSong) {
  std::vector<std::string> lines = midi::PrintMusic(iSong);
  std::sort(lines.begin(), lines.end());
  return lines;
}

void CheckMidi(Host_Song const & iSong) {
  Host_WriteReport report;
  Host_Song const copy = Host_ReadMidiFile(Host_WriteMidiFile(iSong, report));
  FuzzExpect(copy.mReport.GetNumProblems() == 0, "the MIDI file reads whole");
  if (report.IsEmpty()) FuzzExpect(PrintSorted(copy) == PrintSorted(iSong), "clips alike");
}

void CheckReading(Bytes const & iBytes) {
  std::optional<Host_Song> song;
  long long const memory = memory_meter::Measure([&] { song = Read(iBytes); });
  long long const size = std::ssize(iBytes);
  FuzzExpect(memory <= kMemoryAtLeast + kMemoryForEachByte * size, "memory in bounds");
  if (song) {
    for (Host_MidiReport::Problem const & problem : song->mReport.GetProblems())
      FuzzExpect(problem.mOffset <= iBytes.size(), "problems lie inside the file");
    if (song->mTracks.size() < kManyTracks) {
      CheckMidi(*song);
      CheckWriting(CheckWriting(*song, false), true);
    }
  }
  song.reset();
  DropAll();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const * iData, size_t iSize) {
  Cmn_AssertRecorder const checks;
  Bytes const bytes(iData, iData + iSize);
  CheckReading(bytes);
  Bytes const right = PutRight(bytes);
  if (right != bytes) CheckReading(right);
  return 0;
}
