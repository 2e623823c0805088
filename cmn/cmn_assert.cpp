#include "cmn/cmn_assert.h"

#include <atomic>
#include <cstdio>
#include <mutex>

namespace {

constexpr std::string_view kSeparator = "@$^$@";

class StderrSink final : public Cmn_AssertSink {
public:
  void Report(Cmn_AssertReport const & iReport) override {
    std::fprintf(stderr, "vrad: %.*s:%d: check failed: %.*s\n",
                 static_cast<int>(iReport.mPath.size()), iReport.mPath.data(), iReport.mLine,
                 static_cast<int>(iReport.mCondition.size()), iReport.mCondition.data());
  }
};

// Null stands for the standard error stream, so that a check may fail before any initialiser ran.
constinit std::atomic<Cmn_AssertSink *> sSinkP{nullptr};
constinit std::atomic<bool> sThrowing{true};

Cmn_AssertReport MakeReport(bool iFlag, std::string_view iText, int iLine, bool iThrowing) {
  size_t const end = iText.find(kSeparator);
  if (end == std::string_view::npos) return {iText, {}, iLine, iFlag, iThrowing};
  return {iText.substr(0, end), iText.substr(end + kSeparator.size()), iLine, iFlag, iThrowing};
}

void Tell(Cmn_AssertReport const & iReport) {
  if (Cmn_AssertSink * sinkP = sSinkP.load(std::memory_order_acquire)) {
    sinkP->Report(iReport);
    return;
  }
  StderrSink().Report(iReport);
}

}  // namespace

Cmn_AssertException::Cmn_AssertException(std::string const & iCondition)
    : std::runtime_error(iCondition) {}
Cmn_AssertException::Cmn_AssertException(Cmn_AssertException const &) = default;
Cmn_AssertException::Cmn_AssertException(Cmn_AssertException &&) noexcept = default;
Cmn_AssertException & Cmn_AssertException::operator=(Cmn_AssertException const &) = default;
Cmn_AssertException & Cmn_AssertException::operator=(Cmn_AssertException &&) noexcept = default;
Cmn_AssertException::~Cmn_AssertException() = default;

Cmn_AssertSink::~Cmn_AssertSink() = default;

void Cmn_Assert::HandleMagicAssert(bool iFlag, char const * iText, int iLine) {
  Cmn_AssertReport const report = MakeReport(iFlag, iText, iLine, true);
  Tell(report);
  if (sThrowing.load(std::memory_order_relaxed)) {
    throw Cmn_AssertException(std::string(report.mCondition));
  }
}

void Cmn_Assert::HandleMagicAssertNoThrow(bool iFlag, char const * iText, int iLine) {
  Tell(MakeReport(iFlag, iText, iLine, false));
}

Cmn_AssertSink * Cmn_Assert::SetSink(Cmn_AssertSink * iSinkP) {
  return sSinkP.exchange(iSinkP);
}

bool Cmn_Assert::SetThrowing(bool iThrowing) {
  return sThrowing.exchange(iThrowing);
}

struct Cmn_AssertRecorder::Records {
  mutable std::mutex mMutex;
  std::vector<Entry> mEntries;  // guarded by mMutex; in order of arrival
};

Cmn_AssertRecorder::Cmn_AssertRecorder()
    : mRecordsP(new Records), mFormerP(Cmn_Assert::SetSink(this)) {}

Cmn_AssertRecorder::~Cmn_AssertRecorder() {
  Cmn_Assert::SetSink(mFormerP);
  delete mRecordsP;
}

int Cmn_AssertRecorder::GetNum() const {
  std::lock_guard const lock(mRecordsP->mMutex);
  return static_cast<int>(mRecordsP->mEntries.size());
}

int Cmn_AssertRecorder::GetNum(std::string const & iCondition) const {
  std::lock_guard const lock(mRecordsP->mMutex);
  int num = 0;
  for (Entry const & entry : mRecordsP->mEntries)
    num += entry.mCondition == iCondition;
  return num;
}

std::vector<Cmn_AssertRecorder::Entry> Cmn_AssertRecorder::GetEntries() const {
  std::lock_guard const lock(mRecordsP->mMutex);
  return mRecordsP->mEntries;
}

void Cmn_AssertRecorder::Clear() {
  std::lock_guard const lock(mRecordsP->mMutex);
  mRecordsP->mEntries.clear();
}

void Cmn_AssertRecorder::Report(Cmn_AssertReport const & iReport) {
  std::lock_guard const lock(mRecordsP->mMutex);
  mRecordsP->mEntries.push_back({std::string(iReport.mCondition), std::string(iReport.mPath),
                                 iReport.mLine, iReport.mFlag, iReport.mThrowing});
}
