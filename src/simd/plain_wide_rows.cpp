#include "simd/plain_pixels.h"
#include "simd/wide_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

Rgb folded(const FoldedWeights& w, int32_t y, int32_t u, int32_t v) {
  const int32_t luma = y << w.shift;
  return {(luma + w.redV * v - w.redBias) >> w.shift,
          (luma + w.greenBias - w.greenV * v - w.greenU * u) >> w.shift,
          (luma + w.blueU * u - w.blueBias) >> w.shift};
}

Rgb fine(int32_t y, int32_t u, int32_t v) {
  const int32_t luma = y << 4;
  return {(luma + (v * 1470104 >> 16)) >> 4, (luma - (u * 360853 >> 16) - (v * 748826 >> 16)) >> 4,
          (luma + (u * 1858077 >> 16)) >> 4};
}

}  // namespace

void toPixelsFolded(const YuvSource& src, const FoldedWeights& weights, PixelOrder order,
                    uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < 2 * pairs; ++i) {
    const ptrdiff_t chroma = i / 2 * src.chromaStep;
    storePixel(folded(weights, src.y[i * src.lumaStep], src.u[chroma], src.v[chroma]), order, alpha,
               dst + i * bytesOf(order));
  }
}

void toPixelsFullChroma(const YuvSource& src, const FoldedWeights& weights, uint8_t alpha,
                        uint8_t* dst, ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i) {
    storePixel(folded(weights, src.y[i], src.u[i], src.v[i]), PixelOrder::bgra32, alpha,
               dst + 4 * i);
  }
}

void toPixelsFine(const YuvSource& src, uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < 2 * pairs; ++i) {
    const ptrdiff_t chroma = i / 2 * src.chromaStep;
    storePixel(fine(src.y[i * src.lumaStep], src.u[chroma] - 128, src.v[chroma] - 128),
               PixelOrder::bgra32, alpha, dst + 4 * i);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(WideRows, QPX_WIDE_ROWS)

}  // namespace qpx::simd
