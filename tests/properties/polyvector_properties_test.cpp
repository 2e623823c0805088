#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cmn/cmn_polyvector.h"

namespace {

// T comes from a number; a text that lives on the heap, or the number itself.
template <class T>
T Make(int iNumber);
template <>
std::string Make(int iNumber) {
  return std::string(40, 'x') + std::to_string(iNumber);
}
template <>
int Make(int iNumber) {
  return iNumber;
}

template <class T>
void RunScript() {
  Cmn_PolyVector<T, 0> real;
  std::vector<T> model;
  int const numSteps = *rc::gen::inRange(1, 80);
  for (int step = 0; step < numSteps; ++step) {
    size_t const a = *rc::gen::inRange<size_t>(0, model.size() + 1);
    size_t const b = *rc::gen::inRange<size_t>(0, model.size() + 1);
    size_t const at = *rc::gen::inRange<size_t>(0, model.size() + 1);
    size_t const first = std::min(a, b), last = std::max(a, b);
    T const element = Make<T>(step);
    switch (*rc::gen::inRange(0, 7)) {
    case 0:
      real.push_back(element);
      model.push_back(element);
      break;
    case 1:
      real.insert(real.begin() + at, element);
      model.insert(model.begin() + static_cast<long>(at), element);
      break;
    case 2: {
      std::vector<T> const some(model.begin() + static_cast<long>(first),
                                model.begin() + static_cast<long>(last));
      if (model.size() > 2000) break;
      real.insert(real.begin() + at, real.begin() + first, real.begin() + last);
      model.insert(model.begin() + static_cast<long>(at), some.begin(), some.end());
      break;
    }
    case 3:
      real.erase(real.begin() + first, real.begin() + last);
      model.erase(model.begin() + static_cast<long>(first),
                  model.begin() + static_cast<long>(last));
      break;
    case 4:
      real.reserve(2 * at);
      break;
    case 5: {
      Cmn_PolyVector<T, 0> copy(real);
      copy.push_back(element);
      real = copy;
      model.push_back(element);
      break;
    }
    default:
      if (at == first) {
        real.clear();
        model.clear();
      }
    }
    RC_ASSERT(real.size() == model.size());
    RC_ASSERT(std::equal(model.begin(), model.end(), real.begin()));
  }
}

}  // namespace

RC_GTEST_PROP(Cmn_PolyVector_Edits, AnyScriptOfTextsGivesWhatAVectorHolds, ()) {
  RunScript<std::string>();
}
RC_GTEST_PROP(Cmn_PolyVector_Edits, AnyScriptOfNumbersGivesWhatAVectorHolds, ()) {
  RunScript<int>();
}
