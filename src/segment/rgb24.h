// Pictures that are cut into regions: 24-bit RGB, whose channels are told apart by their place
// alone.
#pragma once

#include "geometry/packed_rgb.h"

namespace qpx {

inline constexpr int32_t kRgb24Bytes = 3;

inline size_t pixelsOf(const MBitmap& image) {
  return static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
}

// Returns 0; 2 for null or a picture that cannot be walked; 3 for another format.
inline int32_t checkRgb24(const MBitmap* image) {
  if (image == nullptr || !hasRows(*image, kRgb24Bytes)) return QPX_BAD_PARAM;
  return packedRgbBytes(image->format) == kRgb24Bytes ? QPX_OK : QPX_UNSUPPORTED;
}

}  // namespace qpx
