// A pixel of the plain forms of YuvRows and WideRows.
#pragma once

#include "simd/clamp_byte.h"
#include "simd/yuv_rows.h"

namespace qpx::simd::plain {

struct Rgb {
  int32_t r, g, b;
};

// Each channel clamped; `alpha` in orders that have one.
inline void storePixel(const Rgb& pixel, PixelOrder order, uint8_t alpha, uint8_t* dst) {
  dst[0] = clampByte(blueFirst(order) ? pixel.b : pixel.r);
  dst[1] = clampByte(pixel.g);
  dst[2] = clampByte(blueFirst(order) ? pixel.r : pixel.b);
  if (bytesOf(order) == 4) dst[3] = alpha;
}

}  // namespace qpx::simd::plain
