// Records of 24 and 32-bit RGB, as the calls on whole pictures take them.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

#include "geometry/packed_rgb.h"

namespace qpx {

inline constexpr double kPi = 3.1415926535;  // as far as all sizes and places are defined by

inline double radiansOf(double degrees) { return degrees * kPi / 180.0; }

inline bool isBgr(uint32_t format) {
  return format == QPX_FORMAT_BGR24 || format == QPX_FORMAT_BGRA32;
}

inline bool isRgb(uint32_t format) { return isBgr(format & ~kReversedOrder); }

inline int32_t bytesOfRgb(uint32_t format) {
  return (format & ~kReversedOrder) == QPX_FORMAT_BGRA32 ? 4 : 3;
}

inline bool hasSize(const MBitmap& image) { return image.width > 0 && image.height > 0; }

// Whether the pixels of a 24 or 32-bit record can be walked.
inline bool hasPixels(const MBitmap& image) { return hasRows(image, bytesOfRgb(image.format)); }

// To an integer as a cast does it, without undefined results for numbers beyond it.
inline int32_t truncated(double value) {
  if (!(value > INT32_MIN)) return INT32_MIN;
  return value < INT32_MAX ? static_cast<int32_t>(value) : INT32_MAX;
}

inline uint8_t* pixelAt(const MBitmap& image, int32_t x, int32_t y, int32_t bytes) {
  return rowOf(image, y) + ptrdiff_t{x} * bytes;
}

}  // namespace qpx
