// Numbers that all sizes and places of turned pictures are computed with.
#pragma once

#include <cstdint>

namespace qpx {

// As far as all sizes and places are defined by.
inline constexpr double kPi = 3.1415926535;

inline double radiansOf(double degrees) { return degrees * kPi / 180.0; }

// To an integer as a cast does it, without undefined results for numbers beyond it.
inline int32_t truncated(double value) {
  if (!(value > INT32_MIN)) return INT32_MIN;
  return value < INT32_MAX ? static_cast<int32_t>(value) : INT32_MAX;
}

}  // namespace qpx
