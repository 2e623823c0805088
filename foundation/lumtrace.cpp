#include "foundation/lumtrace.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <set>

#include "foundation/lumtrace_loader.h"

// Set before any code runs, so that a trace site in another file's initialiser finds them empty.
constinit bool gLumTraceActive = false;
constinit LumTraceIsActiveProc LumTraceIsActiveFunc = nullptr;
constinit LumTraceFormatProc LumTraceFormat = nullptr;
constinit LumTraceFormatProc LumTraceFormatQuiet = nullptr;
constinit LumTraceFormatProc LumTraceFormatTimestamp = nullptr;
constinit LumTracePutsProc LumTracePuts = nullptr;
constinit LumTraceMemProc LumTraceMem = nullptr;
constinit LumTraceStackProc LumTraceStack = nullptr;

namespace {

enum ELoadResult : int { kLoaded = 0, kNoLibrary = -1501, kNoEntryPoint = -1502 };

template <class TProc>
ELoadResult Resolve(void * iLibraryP, char const * iName, TProc & oSlot) {
  void * const entryP = LumTraceFindEntry(iLibraryP, iName);
  if (!entryP) return kNoEntryPoint;
  oSlot = reinterpret_cast<TProc>(entryP);
  return kLoaded;
}

// Loads the trace library once, at load. Nobody needs its result: a slot that stays empty says all.
class Loader {
public:
  Loader() : mResult(Load()) {}

private:
  static ELoadResult Load() {
    void * const libraryP = LumTraceOpenLibrary();
    if (!libraryP) return kNoLibrary;
    ELoadResult const results[] = {
        Resolve(libraryP, "LumTraceIsActiveFunc", LumTraceIsActiveFunc),
        Resolve(libraryP, "LumTraceFormat", LumTraceFormat),
        Resolve(libraryP, "LumTraceFormatQuiet", LumTraceFormatQuiet),
        Resolve(libraryP, "LumTraceFormatTimestamp", LumTraceFormatTimestamp),
        Resolve(libraryP, "LumTracePuts", LumTracePuts),
        Resolve(libraryP, "LumTraceMem", LumTraceMem),
        Resolve(libraryP, "LumTraceStack", LumTraceStack),
    };
    for (ELoadResult const result : results) {
      if (result != kLoaded) return result;
    }
    return kLoaded;
  }

  [[maybe_unused]] ELoadResult mResult;  // for whoever looks with a debugger
};

Loader const sLoader;

// The slots as they were, to be put back.
struct Slots {
  bool mActive = gLumTraceActive;
  LumTraceIsActiveProc mIsActive = LumTraceIsActiveFunc;
  LumTraceFormatProc mFormat = LumTraceFormat, mFormatQuiet = LumTraceFormatQuiet,
                     mFormatTimestamp = LumTraceFormatTimestamp;
  LumTracePutsProc mPuts = LumTracePuts;

  void PutBack() const {
    gLumTraceActive = mActive;
    LumTraceIsActiveFunc = mIsActive;
    LumTraceFormat = mFormat;
    LumTraceFormatQuiet = mFormatQuiet;
    LumTraceFormatTimestamp = mFormatTimestamp;
    LumTracePuts = mPuts;
  }
};

std::string FormatText(char const * iFormat, std::va_list iArguments) {
  std::va_list again;
  va_copy(again, iArguments);
  int const length = std::vsnprintf(nullptr, 0, iFormat,
                                    iArguments);  // NOLINT(clang-analyzer-valist.Uninitialized)
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, iFormat, again);
  va_end(again);
  return text;
}

}  // namespace

struct LumTraceRecorder::Records {
  static Records * sCurrentP;  // what the slots' functions write to

  static bool IsActive(unsigned iFacility) {
    std::lock_guard const lock(sCurrentP->mMutex);
    return !sCurrentP->mInactive.contains(iFacility);
  }

  static void Format(unsigned iFacility, char const * iFormat, ...) {
    std::va_list arguments;
    va_start(arguments, iFormat);
    std::string const text = FormatText(iFormat, arguments);
    va_end(arguments);
    Puts(iFacility, text.c_str());
  }

  static void Puts(unsigned iFacility, char const * iText) {
    std::lock_guard const lock(sCurrentP->mMutex);
    sCurrentP->mLines.emplace_back(iFacility, iText);
  }

  Slots const mFormerSlots{};
  Records * const mFormerP = sCurrentP;
  mutable std::mutex mMutex;
  std::set<unsigned> mInactive;                          // guarded by mMutex
  std::vector<std::pair<unsigned, std::string>> mLines;  // guarded by mMutex
};

LumTraceRecorder::Records * LumTraceRecorder::Records::sCurrentP = nullptr;

LumTraceRecorder::LumTraceRecorder() : mRecordsP(new Records) {
  Records::sCurrentP = mRecordsP;
  LumTraceIsActiveFunc = &Records::IsActive;
  LumTraceFormat = LumTraceFormatQuiet = LumTraceFormatTimestamp = &Records::Format;
  LumTracePuts = &Records::Puts;
  gLumTraceActive = true;
}

LumTraceRecorder::~LumTraceRecorder() {
  mRecordsP->mFormerSlots.PutBack();
  Records::sCurrentP = mRecordsP->mFormerP;
  delete mRecordsP;
}

void LumTraceRecorder::SetActive(unsigned iFacility, bool iActive) {
  std::lock_guard const lock(mRecordsP->mMutex);
  if (iActive) {
    mRecordsP->mInactive.erase(iFacility);
  } else {
    mRecordsP->mInactive.insert(iFacility);
  }
}

std::vector<std::pair<unsigned, std::string>> LumTraceRecorder::GetLines() const {
  std::lock_guard const lock(mRecordsP->mMutex);
  return mRecordsP->mLines;
}
