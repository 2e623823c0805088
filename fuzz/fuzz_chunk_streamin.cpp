// Reads any bytes as a chunk's record. What does not begin as one is refused with an exception, all
// else gives a chunk, with at most one report of damage. Reading takes no more memory than the
// input accounts for, and what was read is written and read again with the same result.
#include <exception>
#include <memory>
#include <string_view>
#include <vector>

#include "cmn/cmn_assert.h"
#include "cut_counts.h"
#include "foundation/sys_delayeddeletion.h"
#include "foundation/sys_stream.h"
#include "fuzz_input.h"
#include "tests/host/memory_meter.h"
#include "vrad/vrad_chunk.h"

namespace {

typedef std::vector<unsigned char> Bytes;
typedef std::unique_ptr<Vrad_Chunk> ChunkPtr;

// A record in memory is some ten times as large as in a file, and may stand in the long note list
// as well; a store with one record takes a chunk of its own.
constexpr long long kMemoryForEachByte = 64, kMemoryAtLeast = 256 * 1024;

// Counts what must not be said twice; takes no memory.
class DamageSink : public Cmn_AssertSink {
public:
  DamageSink() : mFormerP(Cmn_Assert::SetSink(this)) {}
  ~DamageSink() override { Cmn_Assert::SetSink(mFormerP); }

  void Report(Cmn_AssertReport const & iReport) override {
    if (iReport.mCondition.substr(0, 20) == "Vrad_Chunk::StreamIn") ++mNum;
    FuzzExpect(iReport.mCondition != "Unexpected exception", "only known exceptions");
  }

  int mNum = 0;

private:
  Cmn_AssertSink * mFormerP;
};

ChunkPtr Read(Sys_TypedInStream & ioStream) {
  return ChunkPtr(Vrad_Chunk::StreamIn(ioStream, Ndo_Object::kNotUndoable, false));
}

ChunkPtr Read(Bytes const & iBytes) {
  Sys_MemoryInStream stream(iBytes);
  return Read(stream);
}

Bytes Write(Vrad_Chunk const & iChunk) {
  Sys_MemoryOutStream stream;
  iChunk.StreamOut(stream);
  return stream.GetBytes();
}

// Gives what was read from what was written.
ChunkPtr CheckWriting(Vrad_Chunk const & iChunk, bool iIsAlike) {
  Bytes const bytes = Write(iChunk);
  FuzzExpect(Write(iChunk) == bytes, "written twice alike");
  DamageSink const sink;
  ChunkPtr copyP = Read(bytes);
  FuzzExpect(sink.mNum == 0, "what was written reads whole");
  FuzzExpect(copyP->GetUID() == iChunk.GetUID(), "identities alike");
  if (!iIsAlike && HasCutCounts(bytes)) return copyP;
  FuzzExpect(*copyP->GetNoteList() == *iChunk.GetNoteList(), "notes alike");
  FuzzExpect(Write(*copyP) == bytes, "read and written alike");
  return copyP;
}

void CheckReading(Sys_MemoryInStream & ioStream, long long iSize) {
  DamageSink const sink;
  ChunkPtr chunkP;
  long long const memory = memory_meter::Measure([&] { chunkP = Read(ioStream); });
  FuzzExpect(memory <= kMemoryAtLeast + kMemoryForEachByte * iSize, "memory in bounds");
  FuzzExpect(sink.mNum <= 1, "damage is reported once");
  auto const & streams = chunkP->GetContinuousList();
  for (size_t i = 1; i < streams.size(); ++i)
    FuzzExpect(streams[i - 1]->GetSubStream().GetIndex() < streams[i]->GetSubStream().GetIndex(),
               "streams in order");
  CheckWriting(*CheckWriting(*chunkP, false), true);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const * iData, size_t iSize) {
  Sys_MemoryInStream stream(Bytes(iData, iData + iSize));
  try {
    CheckReading(stream, static_cast<long long>(iSize));
  } catch (Sys_StreamException const &) {  // no chunk's record
  } catch (std::exception const & exception) {
    FuzzFail(exception.what());
  }
  Sys_DelayedDeletionQueue::DeletePending();
  return 0;
}
