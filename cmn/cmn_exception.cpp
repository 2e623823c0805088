#include "cmn/cmn_exception.h"

Cmn_ExceptionDescription::~Cmn_ExceptionDescription() = default;

Cmn_StackDump::~Cmn_StackDump() = default;

Cmn_Exception::Cmn_Exception(std::string const & iText, Cmn_StackDump * iStackDumpP)
    : mText(iText), mStackDumpP(iStackDumpP) {}
Cmn_Exception::Cmn_Exception(Cmn_Exception const &) noexcept = default;
Cmn_Exception & Cmn_Exception::operator=(Cmn_Exception const &) noexcept = default;
Cmn_Exception::~Cmn_Exception() = default;

char const * Cmn_Exception::what() const noexcept {
  return mText.what();
}

std::string Cmn_Exception::GetDescription() const {
  return mText.what();
}

Cmn_Exception * Cmn_Exception::Clone() const {
  return new Cmn_Exception(*this);
}

void Cmn_Exception::Throw() const {
  throw Cmn_Exception(*this);
}

Cmn_StackDump * Cmn_Exception::GetStackDump() const {
  return mStackDumpP;
}

// Hosts catch it by type even if they never throw it.
template class Cmn_TypedExceptionDescription<L10N_ExceptionData>;
template class Cmn_TypedException<L10N_ExceptionData>;
