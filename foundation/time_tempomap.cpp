#include "foundation/time_convert.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "foundation/time_tempotable.h"

namespace {

constexpr double kTempoAtStart = 120.0;

constinit std::atomic<double> sSampleRate(48000.0);
constinit Time_TempoMap * sFirstMapP = nullptr;

typedef std::unique_ptr<Time_TempoTable> TablePtr;

// Orders the edits of all maps and of the sample rate. Made at first use and never destroyed, since
// static maps come before and go after any object of this file.
std::mutex & EditMutex() {
  static std::mutex & mutex = *new std::mutex;
  return mutex;
}

void CheckPositive(double iValue, char const * iWhat) {
  if (!std::isfinite(iValue) || iValue <= 0)
    throw std::invalid_argument(std::string(iWhat) + " is not finite and positive");
}

std::shared_ptr<Time_TempoNumbers> MakeUniformNumbers(double iTempo) {
  auto numbersP = std::make_shared<Time_TempoNumbers>();
  numbersP->mLines.push_back({0, iTempo, 0, 0});
  numbersP->Derive(sSampleRate);
  return numbersP;
}

TablePtr MakeUniform(double iTempo) {
  return std::make_unique<Time_TempoTable>(MakeUniformNumbers(iTempo));
}

std::shared_ptr<Time_TempoNumbers> CopyNumbers(Time_TempoTable const * iTableP) {
  return iTableP ? iTableP->CopyNumbers() : MakeUniformNumbers(kTempoAtStart);
}

// Sets a tempo in numbers that nobody else sees.
TablePtr MakeEdited(std::shared_ptr<Time_TempoNumbers> const & iNumbersP, long long iTick,
                    double iTempo) {
  std::vector<Time_TempoLine> & lines = iNumbersP->mLines;
  auto const place = std::lower_bound(
      lines.begin(), lines.end(), iTick,
      [](Time_TempoLine const & iLine, long long iAt) { return iLine.mTick < iAt; });
  if (place != lines.end() && place->mTick == iTick)
    place->mTempo = iTempo;
  else
    lines.insert(place, {iTick, iTempo, 0, 0});
  iNumbersP->Derive(sSampleRate);
  return std::make_unique<Time_TempoTable>(iNumbersP);
}

bool IsLimit(long long iCount) {
  return iCount == Time_Saturating::kMin || iCount == Time_Saturating::kMax;
}

bool IsBetweenUnits(Time_EType iA, Time_EType iB) {
  return (iA == Time_eType_Samples && iB == Time_eType_Ticks) ||
         (iA == Time_eType_Ticks && iB == Time_eType_Samples);
}

void DeleteAll(Time_TempoTable const * iFirstP) {
  while (iFirstP)
    delete std::exchange(iFirstP, iFirstP->mNextReplacedP);
}

}  // namespace

// Keeps the table that it reads from being freed. The count goes up before the table is taken, so
// an edit that finds no reader after putting the next table in place knows that nobody has the
// former.
class Time_TempoMap::Reader : public Time_TempoLines {
public:
  explicit Reader(Time_TempoMap const & iMap) : Reader(iMap, iMap.mNumReaders.fetch_add(1)) {}
  ~Reader() { mMap.mNumReaders.fetch_sub(1); }
  Reader(Reader const &) = delete;
  Reader & operator=(Reader const &) = delete;

private:
  Reader(Time_TempoMap const & iMap, int) : Time_TempoLines(iMap.mTableP.load()), mMap(iMap) {}

  Time_TempoMap const & mMap;
};

union Time_TempoMap::DefaultMap {
  constexpr DefaultMap() : mMap(Unset()) {}
  ~DefaultMap() {}  // the map stays usable to the very end
  Time_TempoMap mMap;

  static DefaultMap sDefault;
};

constinit Time_TempoMap::DefaultMap Time_TempoMap::DefaultMap::sDefault;

constinit Time_Converter * Time_Convert::sTimeConverter = &Time_TempoMap::DefaultMap::sDefault.mMap;

Time_TempoMap & Time_Convert::GetDefaultTempoMap() {
  return Time_TempoMap::DefaultMap::sDefault.mMap;
}

double Time_Globals::GetSampleRate() {
  return sSampleRate.load(std::memory_order_relaxed);
}

void Time_Globals::SetSampleRate(double iHertz) {
  Time_TempoMap::SetSampleRate(iHertz);
}

Time_TempoMap::Time_TempoMap(double iBeatsPerMinute) {
  CheckPositive(iBeatsPerMinute, "tempo");
  std::lock_guard<std::mutex> const lock(EditMutex());
  mTableP = MakeUniform(iBeatsPerMinute).release();
  mNextMapP = std::exchange(sFirstMapP, this);
}

Time_TempoMap::~Time_TempoMap() {
  {
    std::lock_guard<std::mutex> const lock(EditMutex());
    Time_TempoMap ** linkP = &sFirstMapP;
    while (*linkP != this)
      linkP = &(*linkP)->mNextMapP;
    *linkP = mNextMapP;
  }
  DeleteAll(mReplacedP);
  delete mTableP.load();
}

void Time_TempoMap::Publish(Time_TempoTable const * iTableP) {
  Time_TempoTable const * const formerP = mTableP.exchange(iTableP);
  if (formerP) formerP->mNextReplacedP = std::exchange(mReplacedP, formerP);
  if (mNumReaders.load() == 0) DeleteAll(std::exchange(mReplacedP, nullptr));
}

void Time_TempoMap::SetSampleRate(double iHertz) {
  CheckPositive(iHertz, "sample rate");
  std::lock_guard<std::mutex> const lock(EditMutex());
  std::vector<std::pair<Time_TempoMap *, TablePtr>> tables;  // all of them before the first change
  auto const add = [&](Time_TempoMap & iMap) {
    std::shared_ptr<Time_TempoNumbers> const numbersP = CopyNumbers(iMap.mTableP);
    numbersP->Derive(iHertz);
    tables.emplace_back(&iMap, std::make_unique<Time_TempoTable>(numbersP));
  };
  add(DefaultMap::sDefault.mMap);
  for (Time_TempoMap * mapP = sFirstMapP; mapP; mapP = mapP->mNextMapP)
    add(*mapP);
  sSampleRate = iHertz;
  for (auto & [mapP, tableP] : tables)
    mapP->Publish(tableP.release());
}

void Time_TempoMap::Reset(double iBeatsPerMinute) {
  CheckPositive(iBeatsPerMinute, "tempo");
  std::lock_guard<std::mutex> const lock(EditMutex());
  Publish(MakeUniform(iBeatsPerMinute).release());
}

void Time_TempoMap::SetTempoAt(Time_Tick iTick, double iBeatsPerMinute) {
  CheckPositive(iBeatsPerMinute, "tempo");
  std::lock_guard<std::mutex> const lock(EditMutex());
  long long const tick = iTick.AsInt64();
  Time_TempoTable const * const formerP = mTableP;
  bool const isAppended =
      formerP && tick > 0 && tick > formerP->mLinesP[formerP->mNumLines - 1].mTick;
  TablePtr tableP = isAppended ? formerP->MakeAppended(tick, iBeatsPerMinute, sSampleRate)
                               : MakeEdited(CopyNumbers(formerP), tick, iBeatsPerMinute);
  Publish(tableP.release());
}  // NOLINT(*.NewDeleteLeaks): the map frees it when no reader is inside

int Time_TempoMap::GetNumTempoChanges() const {
  return Reader(*this).GetNum();
}

double Time_TempoMap::GetTempoAt(Time_Tick iTick) const {
  return Reader(*this).TempoAt(iTick.AsInt64());
}

Time_Typed Time_TempoMap::ToType(Time_Typed iTime, Time_EType iType) const {
  long long const count = iTime.AsInt64();
  if (!IsBetweenUnits(iTime.GetType(), iType) || IsLimit(count)) return Time_Typed(count, iType);
  if (iType == Time_eType_Ticks) return Time_Tick(Reader(*this).SampleToTick(count));
  return Time_Sample(Reader(*this).TickToSample(count));
}

Time_Typed Time_TempoMap::AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const {
  long long const start = iStart.AsInt64(), length = iLength.AsInt64();
  if (IsLimit(start)) return iStart;
  if (!IsBetweenUnits(iStart.GetType(), iLength.GetType()))
    return Time_Typed(Time_Saturating::Add(start, length), iStart.GetType());
  if (iStart.GetType() == Time_eType_Ticks)
    return Time_Tick(Reader(*this).AddSamplesToTick(start, length));
  return Time_Sample(Reader(*this).AddTicksToSample(start, length));
}

int Time_TempoMap::Compare(Time_Typed iA, Time_Typed iB) const {
  long long const a = iA.AsInt64(), b = iB.AsInt64();
  if (!IsBetweenUnits(iA.GetType(), iB.GetType()) || IsLimit(a) || IsLimit(b))
    return a < b ? -1 : a > b;
  if (iA.GetType() == Time_eType_Samples) return Reader(*this).CompareSampleWithTick(a, b);
  return -Reader(*this).CompareSampleWithTick(b, a);
}
