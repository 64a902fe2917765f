// Image records of 24 and 32-bit RGB, as the whole-image services take them: channels are treated
// alike, so that their order does not matter.
#pragma once

#include <qpx/image.h>

#include <cstddef>
#include <cstdint>

#include "engine/format_code.h"

namespace qpx {

// Bytes of a pixel of 8-bit channels in either order; 0 for every other format.
constexpr int32_t packedRgbBytes(uint32_t format) {
  switch (withoutOrder(format)) {
    case QPX_FORMAT_BGR24:
      return 3;
    case QPX_FORMAT_BGRA32:
    case QPX_FORMAT_BGRX32:
      return 4;
    default:
      return 0;
  }
}

// The formats that turn. A fourth byte without meaning is not among them: fill and border would
// give it one.
constexpr bool isBgr(uint32_t format) {
  return format == QPX_FORMAT_BGR24 || format == QPX_FORMAT_BGRA32;
}

inline bool hasSize(const MBitmap& bitmap) { return bitmap.width > 0 && bitmap.height > 0; }

// A plane that can be walked: of positive size, its pitch holding a row.
inline bool hasRows(const MBitmap& bitmap, int32_t bytesPerPixel) {
  return bitmap.plane[0] != nullptr && hasSize(bitmap) &&
         bitmap.pitch[0] >= int64_t{bitmap.width} * bytesPerPixel;
}

inline bool sameSize(const MBitmap& a, const MBitmap& b) {
  return a.width == b.width && a.height == b.height;
}

inline uint8_t* rowOf(const MBitmap& bitmap, int32_t y) {
  return bitmap.plane[0] + ptrdiff_t{bitmap.pitch[0]} * y;
}

inline uint8_t* pixelAt(const MBitmap& bitmap, int32_t x, int32_t y, int32_t bytesPerPixel) {
  return rowOf(bitmap, y) + ptrdiff_t{x} * bytesPerPixel;
}

}  // namespace qpx
