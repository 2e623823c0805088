// Real-time properties that do what a test says and note how they were asked.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "vrad/vrad_extendedevent.h"

class TestProperties : public Vrad_IRTProperties {
public:
  typedef std::function<void(Vrad_ExtendedEvent &, int)> Change;

  explicit TestProperties(Change iChange = Change()) : mChange(std::move(iChange)) {}

  void ApplyRealTimeProperties(Vrad_ExtendedEvent & ioEvent, int iPropertyMask) const override {
    mMasks.push_back(iPropertyMask);
    if (mChange) mChange(ioEvent, iPropertyMask);
  }

  Change mChange;
  mutable std::vector<int> mMasks;  // in order of the calls
};
