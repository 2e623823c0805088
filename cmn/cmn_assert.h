// Checks that report. A failed check of the reporting kind is told to the sink and the code goes on
// with the value as it is; one of the throwing kind is told to the sink and then thrown.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/vrad_export.h"

/// What a throwing check raises. `what()` is the condition alone.
class VRAD_EXPORT Cmn_AssertException : public std::runtime_error {
public:
  explicit Cmn_AssertException(std::string const & iCondition);
  Cmn_AssertException(Cmn_AssertException const &);
  Cmn_AssertException(Cmn_AssertException &&) noexcept;
  Cmn_AssertException & operator=(Cmn_AssertException const &);
  Cmn_AssertException & operator=(Cmn_AssertException &&) noexcept;
  ~Cmn_AssertException() override;
};

/// One failed check. The views hold only while the sink is being told.
struct Cmn_AssertReport {
  std::string_view mCondition;  // as written in the source
  std::string_view mPath;       // of the source file, relative to the source root
  int mLine;
  bool mFlag;      // the first argument of the handler
  bool mThrowing;  // the form of the check, whether or not throwing is switched off
};

/// Where failed checks are told. Owned by whoever installs it.
/// Thread: any, several at once; a sink for the audio thread must neither lock nor allocate.
class VRAD_EXPORT Cmn_AssertSink {
public:
  virtual ~Cmn_AssertSink();
  virtual void Report(Cmn_AssertReport const & iReport) = 0;
};

/// The two handlers behind every check, and the host's hold on them.
/// Thread: any. `SetSink` and `SetThrowing` take effect for the calls that follow.
class VRAD_EXPORT Cmn_Assert {
public:
  /// Tells the sink, then throws `Cmn_AssertException`, unless throwing is switched off.
  /// `iText` is the condition, "@$^$@" and the source path; without the separator, a condition.
  static void HandleMagicAssert(bool iFlag, char const * iText, int iLine);

  /// Tells the sink and returns. Allocates nothing.
  static void HandleMagicAssertNoThrow(bool iFlag, char const * iText, int iLine);

  /// Returns the former sink. 0 restores the one that writes to the standard error stream.
  static Cmn_AssertSink * SetSink(Cmn_AssertSink * iSinkP);

  /// Returns the former setting, true at start.
  static bool SetThrowing(bool iThrowing);
};

/// Keeps a copy of each failed check, for tests and for hosts that log. Installs itself when built
/// and restores the former sink when destroyed; recorders nest.
/// Thread: any for `Report`; it locks and allocates, so not for the audio thread.
class VRAD_EXPORT Cmn_AssertRecorder : public Cmn_AssertSink {
public:
  struct Entry {
    std::string mCondition, mPath;
    int mLine;
    bool mFlag;
    bool mThrowing;
  };

  Cmn_AssertRecorder();
  ~Cmn_AssertRecorder() override;
  Cmn_AssertRecorder(Cmn_AssertRecorder const &) = delete;
  Cmn_AssertRecorder & operator=(Cmn_AssertRecorder const &) = delete;

  int GetNum() const;
  int GetNum(std::string const & iCondition) const;
  std::vector<Entry> GetEntries() const;
  void Clear();

  void Report(Cmn_AssertReport const & iReport) override;

private:
  struct Records;
  Records * mRecordsP;  // owned
  Cmn_AssertSink * mFormerP;
};

// The checks themselves. Each is an expression that is true when the condition holds, so that code
// can carry on differently when it does not. The text is given beside the condition, never made
// from it: it is part of the behaviour, while the names in scope are not.
//
// CMN_CHECK            reports and goes on; the handler's first argument is true
// CMN_REQUIRE          throws; the first argument is false
// CMN_REQUIRE_FLAGGED  throws; the first argument is true
#define CMN_ASSERT_TEXT(iText) iText "@$^$@" __FILE__
#define CMN_CHECK(iCondition, iText)                                                               \
  ((iCondition) || Cmn_AssertFailed(CMN_ASSERT_TEXT(iText), __LINE__))
#define CMN_REQUIRE(iCondition, iText)                                                             \
  ((iCondition) || Cmn_AssertFailedThrowing(false, CMN_ASSERT_TEXT(iText), __LINE__))
#define CMN_REQUIRE_FLAGGED(iCondition, iText)                                                     \
  ((iCondition) || Cmn_AssertFailedThrowing(true, CMN_ASSERT_TEXT(iText), __LINE__))

/// The failing halves of the checks: call the handler and give false.
inline bool Cmn_AssertFailed(char const * iText, int iLine) {
  Cmn_Assert::HandleMagicAssertNoThrow(true, iText, iLine);
  return false;
}
inline bool Cmn_AssertFailedThrowing(bool iFlag, char const * iText, int iLine) {
  Cmn_Assert::HandleMagicAssert(iFlag, iText, iLine);
  return false;
}
