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
  switch (format & ~kReversedOrder) {
    case QPX_FORMAT_BGR24:
      return 3;
    case QPX_FORMAT_BGRA32:
    case QPX_FORMAT_BGRX32:
      return 4;
    default:
      return 0;
  }
}

// A plane that can be walked: of positive size, its pitch holding a row.
inline bool hasRows(const MBitmap& bitmap, int32_t bytesPerPixel) {
  return bitmap.plane[0] != nullptr && bitmap.width > 0 && bitmap.height > 0 &&
         bitmap.pitch[0] >= int64_t{bitmap.width} * bytesPerPixel;
}

inline bool sameSize(const MBitmap& a, const MBitmap& b) {
  return a.width == b.width && a.height == b.height;
}

inline uint8_t* rowOf(const MBitmap& bitmap, int32_t y) {
  return bitmap.plane[0] + ptrdiff_t{bitmap.pitch[0]} * y;
}

// Bytes of so many rows or entries; more than there can be where they pass the address space, so
// that asking for them fails.
inline size_t blockBytes(int64_t count, int64_t bytesEach) {
  const auto most = static_cast<int64_t>(SIZE_MAX / 4);
  return count > most / bytesEach ? SIZE_MAX : static_cast<size_t>(count * bytesEach);
}

}  // namespace qpx
