// Rows of the widest conversions, beside YuvRows and under the same rules: sums of 16 bits that a
// shift brings back to bytes, with the offset of chroma folded into one constant a channel.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"
#include "simd/yuv_rows.h"

namespace qpx::simd {

// A pixel from luma and chroma as they are stored:
//   r = clamp(((y << shift) + redV * v - redBias) >> shift)
//   g = clamp(((y << shift) + greenBias - greenV * v - greenU * u) >> shift)
//   b = clamp(((y << shift) + blueU * u - blueBias) >> shift)
// No sum may leave 16 bits, nor any of its parts without luma.
struct FoldedWeights {
  int16_t redV, redBias;
  int16_t greenV, greenU, greenBias;
  int16_t blueU, blueBias;
  int16_t shift;  // 6 or 7
};

struct WideRows {
  // Two pixels a sample of chroma.
  void (*toPixelsFolded)(const YuvSource& src, const FoldedWeights& weights, PixelOrder order,
                         uint8_t alpha, uint8_t* dst, ptrdiff_t pairs);

  // A sample of chroma a pixel, all steps 1, to B, G, R and `alpha`.
  void (*toPixelsFullChroma)(const YuvSource& src, const FoldedWeights& weights, uint8_t alpha,
                             uint8_t* dst, ptrdiff_t pixels);

  // To B, G, R and `alpha`, two pixels a sample of chroma, with weights of 20 fractional bits of
  // which 16 are dropped at once; u and v minus 128:
  //   r = clamp(((y << 4) + (v * 1470104 >> 16)) >> 4)
  //   g = clamp(((y << 4) - (u * 360853 >> 16) - (v * 748826 >> 16)) >> 4)
  //   b = clamp(((y << 4) + (u * 1858077 >> 16)) >> 4)
  void (*toPixelsFine)(const YuvSource& src, uint8_t alpha, uint8_t* dst, ptrdiff_t pairs);
};

#define QPX_WIDE_ROWS(ROW, Table) \
  ROW(Table, toPixelsFolded)      \
  ROW(Table, toPixelsFullChroma)  \
  ROW(Table, toPixelsFine)
QPX_DECLARE_ROWS(WideRows, QPX_WIDE_ROWS)

inline const WideRows& wideRows() { return chosenForm<WideRows>(); }

}  // namespace qpx::simd
