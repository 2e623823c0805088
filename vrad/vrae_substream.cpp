#include "vrad/vrae_substream.h"

#include <iterator>
#include <stdexcept>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "vrad/vrad_init.h"

namespace {

constexpr int kBadSubTypeString = 201, kBadTypeString = 202;

constexpr char const * kTag = "Vrss";

// The last pitch's pressure has index 249.
constexpr int kMonoPressureIndex = 120, kProgramIndex = 121, kFirstPolyPressureIndex = 122;

signed char AsDataByte(int iValue) {
  return static_cast<signed char>(iValue);
}

class NullType final : public Vrae_SubStreamType {
public:
  int GetIndex(int) const override { return Fail(); }
  Vrae_Event MakeEvent(int, int) const override {
    Fail();
    return Vrae_Event();
  }
  Vrae_SubStream_ValueRange GetValueRange() const override {
    Fail();
    return {0, 0};
  }
  int GetValueFromEvent(Vrae_Event const &) const override { return Fail(); }
  int GetTypeCode() const override { return Fail(); }
  bool IsValidSubType(int) const override { return Fail() != 0; }

private:
  static int Fail() {
    CMN_REQUIRE(false, "0");
    return 0;
  }
};

class PitchBendType final : public Vrae_SubStreamType {
public:
  int GetIndex(int) const override { return 0; }
  Vrae_Event MakeEvent(int, int iValue) const override {
    return Vrae_PitchBendEvent(static_cast<short>(iValue));
  }
  Vrae_SubStream_ValueRange GetValueRange() const override { return {-8192, 8191}; }
  int GetValueFromEvent(Vrae_Event const & iEvent) const override {
    return iEvent.AsPitchBend().GetBendValue();
  }
  int GetTypeCode() const override { return 1; }
  bool IsValidSubType(int) const override { return true; }
};

class ControllerType final : public Vrae_SubStreamType {
public:
  int GetIndex(int iSubType) const override { return iSubType; }
  Vrae_Event MakeEvent(int iSubType, int iValue) const override {
    return Vrae_ControllerEvent(AsDataByte(iSubType), AsDataByte(iValue));
  }
  Vrae_SubStream_ValueRange GetValueRange() const override { return {0, 127}; }
  int GetValueFromEvent(Vrae_Event const & iEvent) const override {
    return iEvent.AsController().GetValue();
  }
  int GetTypeCode() const override { return 2; }
  bool IsValidSubType(int iSubType) const override { return 1 <= iSubType && iSubType < 120; }
};

// The value is the bank's 16 bits, then the program's 8, so that the flags travel with it.
class ProgramType final : public Vrae_SubStreamType {
public:
  int GetIndex(int) const override { return kProgramIndex; }
  Vrae_Event MakeEvent(int, int iValue) const override {
    return Vrae_ProgramEvent(AsDataByte(iValue), static_cast<short>(iValue >> 8));
  }
  Vrae_SubStream_ValueRange GetValueRange() const override { return {0, 0xffffff}; }
  int GetValueFromEvent(Vrae_Event const & iEvent) const override {
    Vrae_ProgramEvent const & program = iEvent.AsProgram();
    return program.mU.mProgram.mFullBank << 8 | program.mU.mProgram.mFullProgram;
  }
  int GetTypeCode() const override { return 3; }
  bool IsValidSubType(int) const override { return true; }
};

class MonoPressureType final : public Vrae_SubStreamType {
public:
  int GetIndex(int) const override { return kMonoPressureIndex; }
  Vrae_Event MakeEvent(int, int iValue) const override {
    return Vrae_MonoPressureEvent(AsDataByte(iValue));
  }
  Vrae_SubStream_ValueRange GetValueRange() const override { return {0, 127}; }
  int GetValueFromEvent(Vrae_Event const & iEvent) const override {
    return iEvent.AsMonoPressure().GetPressure();
  }
  int GetTypeCode() const override { return 4; }
  bool IsValidSubType(int) const override { return true; }
};

class PolyPressureType final : public Vrae_SubStreamType {
public:
  int GetIndex(int iSubType) const override { return iSubType + kFirstPolyPressureIndex; }
  Vrae_Event MakeEvent(int iSubType, int iValue) const override {
    return Vrae_PolyPressureEvent(AsDataByte(iSubType), AsDataByte(iValue));
  }
  Vrae_SubStream_ValueRange GetValueRange() const override { return {0, 127}; }
  int GetValueFromEvent(Vrae_Event const & iEvent) const override {
    return iEvent.AsPolyPressure().GetPressure();
  }
  int GetTypeCode() const override { return 5; }
  bool IsValidSubType(int iSubType) const override { return 0 <= iSubType && iSubType < 128; }
};

// Usable before any dynamic initialiser and after any static destructor.
template <class T>
union Constant {
  constexpr Constant() : mType() {}
  ~Constant() {}
  T mType;
};

constinit Constant<NullType> const sNull;
constinit Constant<PitchBendType> const sPitchBend;
constinit Constant<ControllerType> const sController;
constinit Constant<ProgramType> const sProgram;
constinit Constant<MonoPressureType> const sMonoPressure;
constinit Constant<PolyPressureType> const sPolyPressure;

}  // namespace

Vrae_SubStreamType::~Vrae_SubStreamType() = default;

void Vrae_SubStreamType::CheckValidSubType(int iSubType) const {
  if (!this->IsValidSubType(iSubType)) {
    throw std::runtime_error(Vrad_LoadString(kBadSubTypeString));
  }
}

Vrae_SubStream::Vrae_SubStream() : Vrae_SubStream(&sNull.mType) {}

Vrae_SubStream::Vrae_SubStream(Vrae_SubStreamType const * iTypeP) : Vrae_SubStream(iTypeP, 0) {}

Vrae_SubStream::Vrae_SubStream(Vrae_SubStreamType const * iTypeP, int iSubType)
    : mTypeP(iTypeP), mSubType(iSubType) {}

Vrae_SubStream::Vrae_SubStream(Vrae_Event const & iEvent) : Vrae_SubStream() {
  switch (iEvent.GetType()) {
  case Vrae_Event::kPitchBend:
    mTypeP = &sPitchBend.mType;
    break;
  case Vrae_Event::kController:
    // A controller without a stream leaves its number in the null sub-stream.
    mSubType = iEvent.AsController().GetControllerNumber();
    if (sController.mType.IsValidSubType(mSubType)) mTypeP = &sController.mType;
    break;
  case Vrae_Event::kProgram:
    mTypeP = &sProgram.mType;
    break;
  case Vrae_Event::kMonoPressure:
    mTypeP = &sMonoPressure.mType;
    break;
  case Vrae_Event::kPolyPressure:
    mTypeP = &sPolyPressure.mType;
    mSubType = iEvent.AsPolyPressure().GetPitch();
    break;
  default:
    break;
  }
}

Vrae_SubStream Vrae_SubStream::Controller(signed char iControllerNumber) {
  CMN_CHECK(iControllerNumber >= 0 && iControllerNumber < 121,
            "iControllerNumber >= 0 && iControllerNumber < 121");
  return Vrae_SubStream(&sController.mType, iControllerNumber);
}

Vrae_SubStream Vrae_SubStream::PolyPressure(signed char iPitch) {
  return Vrae_SubStream(&sPolyPressure.mType, iPitch);
}

Vrae_SubStream Vrae_SubStream::PitchBend() {
  return Vrae_SubStream(&sPitchBend.mType);
}

Vrae_SubStream Vrae_SubStream::Program() {
  return Vrae_SubStream(&sProgram.mType);
}

Vrae_SubStream Vrae_SubStream::MonoPressure() {
  return Vrae_SubStream(&sMonoPressure.mType);
}

bool Vrae_SubStream::IsNull() const {
  return mTypeP == &sNull.mType;
}

int Vrae_SubStream::GetIndex() const {
  return mTypeP->GetIndex(mSubType);
}

Vrae_Event Vrae_SubStream::MakeEvent(int iValue) const {
  Vrae_SubStream_ValueRange const range = mTypeP->GetValueRange();
  CMN_CHECK(iValue >= range.mMin && iValue <= range.mMax,
            "iValue >= mTypeP->GetValueRange().mMin && iValue <= mTypeP->GetValueRange().mMax");
  return mTypeP->MakeEvent(mSubType, iValue);
}

Vrae_SubStream_ValueRange Vrae_SubStream::GetValueRange() const {
  return mTypeP->GetValueRange();
}

int Vrae_SubStream::GetValueFromEvent(Vrae_Event const & iEvent) const {
  return mTypeP->GetValueFromEvent(iEvent);
}

void Vrae_SubStream::GetInfo(signed char & oType, signed char & oSubType) const {
  static constexpr signed char kTypes[] = {Vrae_Event::kNoEvent,      Vrae_Event::kPitchBend,
                                           Vrae_Event::kController,   Vrae_Event::kProgram,
                                           Vrae_Event::kMonoPressure, Vrae_Event::kPolyPressure};
  int const typeCode = mTypeP->GetTypeCode();
  oType = typeCode >= 0 && typeCode <= 5 ? kTypes[typeCode] : kTypes[0];
  // The pitch of a pressure is not told.
  if (oType == Vrae_Event::kController) oSubType = static_cast<signed char>(mSubType);
}

// subStream := header("Vrss", 1)  type:uint8  subType:int32
void Vrae_SubStream::StreamOut(Sys_TypedOutStream & ioStream) const {
  int const typeCode = mTypeP->GetTypeCode();
  Sys_StdStreamHeaderWriter header(ioStream, kTag, 1);
  ioStream.Write(static_cast<signed char>(typeCode));
  ioStream.Write(mSubType);
  header.PatchSize();
}

void Vrae_SubStream::StreamIn(Sys_TypedInStream & ioStream) {
  static constexpr Vrae_SubStreamType const * kTypes[] = {
      &sNull.mType,    &sPitchBend.mType,    &sController.mType,
      &sProgram.mType, &sMonoPressure.mType, &sPolyPressure.mType};
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(1, 1);
  signed char type;
  int subType;
  ioStream.Read(&type);
  ioStream.Read(&subType);
  size_t const typeCode = static_cast<unsigned char>(type);
  if (typeCode >= std::size(kTypes)) Vrad_ThrowBadData(kBadTypeString);
  kTypes[typeCode]->CheckValidSubType(subType);
  mTypeP = kTypes[typeCode];
  mSubType = subType;
  header.SkipTheRest();
}
