// Positions as they stand in streams: count and unit in one number. Not installed.
#pragma once

#include "foundation/time_typed.h"

inline long long Vrae_SavedTime(Time_Typed iTime) {
  return Time_TypedDefs::GetRawDataForSave(iTime.AsInt64(), iTime.GetType());
}
inline Time_Typed Vrae_TimeFromSaved(long long iWord) {
  long long count;
  Time_EType type;
  Time_TypedDefs::SetFromRawSavedData(iWord, &count, &type);
  return Time_Typed(count, type);
}
