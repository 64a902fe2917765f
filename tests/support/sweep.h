// How densely the heaviest tests cover a domain that they walk whole in the optimised build. Where
// code runs many times slower, with sanitizers or on an emulated processor, the tests' environment
// says QPX_TEST_THINNING=n: every n-th value then.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace qpx {

inline int32_t sweepThinning() {
  static const int32_t thinning = [] {
    const char* text = std::getenv("QPX_TEST_THINNING");
    return text == nullptr ? 1 : std::max(1, std::atoi(text));
  }();
  return thinning;
}

inline int32_t sweepStep(int32_t step = 1) { return step * sweepThinning(); }
inline int32_t sweepCount(int32_t count) { return count / sweepThinning(); }

}  // namespace qpx
