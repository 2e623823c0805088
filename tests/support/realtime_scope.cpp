#include "support/realtime_scope.h"

#include "support/realtime_interpose.h"

namespace {

thread_local RealtimeScope * sScopeP = nullptr;

}  // namespace

RealtimeScope::RealtimeScope() : mOuterP(sScopeP), mNumViolations{}, mFirst(nullptr) {
  sScopeP = this;
}

RealtimeScope::~RealtimeScope() {
  sScopeP = mOuterP;
}

int RealtimeScope::GetNumViolations() const {
  int num = 0;
  for (int const numOfKind : mNumViolations)
    num += numOfKind;
  return num;
}

int RealtimeScope::GetNumViolations(RealtimeViolation iKind) const {
  return mNumViolations[static_cast<int>(iKind)];
}

char const * RealtimeScope::GetFirst() const {
  return mFirst;
}

bool RealtimeScope::CanSee(RealtimeViolation iKind) {
  return RealtimeInterposeCanSee(iKind);
}

void RealtimeScope::Note(RealtimeViolation iKind, char const * iFunction) {
  if (!sScopeP) return;
  ++sScopeP->mNumViolations[static_cast<int>(iKind)];
  if (!sScopeP->mFirst) sScopeP->mFirst = iFunction;
}
