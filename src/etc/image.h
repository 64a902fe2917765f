// Checks of the images and places that the codec is called with.
#pragma once

#include <qpx/etc.h>

#include <cstddef>
#include <cstdint>

#include "engine/format_code.h"

namespace qpx::etc {

constexpr int64_t kSide = 4;
constexpr ptrdiff_t kBlockBytes = 8;

constexpr bool isBlockMultiple(int64_t value) { return value % kSide == 0; }

inline bool isRgb24(const MBitmap* image) {
  return image != nullptr && withoutOrder(image->format) == QPX_FORMAT_BGR24 &&
         image->plane[0] != nullptr;
}

// Bytes of a compressed image, or 0 for sides that it cannot have. An image of 24 bits of that size
// can be addressed too.
inline int64_t compressedBytes(int32_t width, int32_t height) {
  if (width <= 0 || height <= 0 || !isBlockMultiple(width) || !isBlockMultiple(height)) return 0;
  const int64_t pixels = int64_t{width} * height;
  if (width > INT32_MAX / 3 || pixels / 2 > INT32_MAX || pixels > PTRDIFF_MAX / 3) return 0;
  return pixels / 2;
}

inline bool isCompressed(const MBitmap* image) {
  return image != nullptr && image->format == QPX_FORMAT_ETC1 && image->plane[0] != nullptr &&
         compressedBytes(image->width, image->height) > 0;
}

inline ptrdiff_t blockRowBytes(int32_t width) { return ptrdiff_t{width} * 2; }

inline uint8_t* blockAt(const MBitmap& image, int64_t x, int64_t y) {
  return image.plane[0] + static_cast<ptrdiff_t>(y / kSide) * blockRowBytes(image.width) +
         static_cast<ptrdiff_t>(x / kSide) * kBlockBytes;
}

inline void storeBigEndian(uint32_t word, uint8_t* bytes) {
  for (int32_t k = 0; k < 4; ++k) bytes[k] = static_cast<uint8_t>(word >> (24 - 8 * k));
}

// True where a rectangle of this size lies inside.
inline bool isInside(const uint8_t* image, int32_t width, int32_t height, int32_t x, int32_t y,
                     int32_t across, int32_t down) {
  return image != nullptr && x >= 0 && y >= 0 && width >= across && height >= down &&
         x <= width - across && y <= height - down;
}

inline const uint8_t* pixelAt(const uint8_t* image, int32_t width, int32_t x, int32_t y) {
  return image + (ptrdiff_t{width} * y + x) * 3;
}

inline ptrdiff_t tightPitch(int32_t width) { return ptrdiff_t{width} * 3; }

}  // namespace qpx::etc
