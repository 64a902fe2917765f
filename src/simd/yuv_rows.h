// Rows of whole-image conversions between YUV and RGB, as a table of row functions beside Rows: no
// alignment needed, nothing outside the count touched, plain form and vector form of the same
// bytes. Outputs overlap no input unless an entry says "in place".
//
// Two neighbouring pixels share a sample of U and one of V, so rows are counted in pairs of pixels.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// Where the samples of a row stand: luma i at y[i * lumaStep], chroma i at u[i * chromaStep] and
// v[i * chromaStep]. Steps are 1 to 6; planes, pairs of chroma and packed rows all are such rows.
// All bytes of the pixels may be read: in packed rows those of whole pairs, and behind every other
// sample of a plane the one that is left out.
template <class Byte>
struct YuvSamples {
  Byte* y;
  Byte* u;
  Byte* v;
  ptrdiff_t lumaStep;
  ptrdiff_t chromaStep;

  YuvSamples from(ptrdiff_t pair) const {
    return {y + 2 * pair * lumaStep, u + pair * chromaStep, v + pair * chromaStep, lumaStep,
            chromaStep};
  }
};
using YuvSource = YuvSamples<const uint8_t>;
using YuvTarget = YuvSamples<uint8_t>;

// Pixels by their bytes in memory.
enum class PixelOrder { rgb24, bgr24, rgba32, bgra32 };

constexpr ptrdiff_t bytesOf(PixelOrder order) {
  return order == PixelOrder::rgb24 || order == PixelOrder::bgr24 ? 3 : 4;
}
constexpr bool blueFirst(PixelOrder order) {
  return order == PixelOrder::bgr24 || order == PixelOrder::bgra32;
}

// What differences from luma weigh in chroma, with 7 fractional bits: (B - Y) in U and (R - Y) in
// V. A product with any difference stays within 16 bits: up to 143 and 181.
struct ChromaWeights {
  int16_t u, v;
};

struct YuvRows {
  // Full-range YUV to RGB, u and v minus 128, each channel clamped:
  //   r = y + ((45 * v) >> 5), g = y - (((23 * v) >> 5) + ((11 * u) >> 5)), b = y + ((57 * u) >> 5)
  // `alpha` is the fourth byte of orders that have one.
  void (*toPixels)(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                   ptrdiff_t pairs);

  // The same, rounded once for each channel:
  //   r = (32 * y + 45 * v + 16) >> 5, g = (32 * y - 11 * u - 23 * v + 16) >> 5,
  //   b = (32 * y + 57 * u + 16) >> 5
  void (*toPixelsRounded)(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                          ptrdiff_t pairs);

  // RGB to full-range YUV, chroma of the left pixel of each pair:
  //   y = (19 * r + 38 * g + 7 * b) >> 6
  //   u = clamp((((b - y) * weights.u) >> 7) + 128), v = clamp((((r - y) * weights.v) >> 7) + 128)
  void (*fromPixels)(const uint8_t* src, PixelOrder order, ChromaWeights weights,
                     const YuvTarget& dst, ptrdiff_t pairs);

  // The luma of fromPixels alone.
  void (*lumaOfPixels)(const uint8_t* src, PixelOrder order, uint8_t* dst, ptrdiff_t pixels);

  // fromPixels with chroma for every pixel, into three planes.
  void (*planesOfPixels)(const uint8_t* src, PixelOrder order, ChromaWeights weights,
                         uint8_t* const* planes, ptrdiff_t pixels);

  // R, G, B, A to full-range YUV with 15 fractional bits, chroma of the left pixel of each pair:
  //   s = 9798 * r + 19235 * g + 3736 * b, y = min(s >> 15, 255), t = s >> 8
  //   u = clamp(((((b << 7) - t) * 18492) >> 22) + 128)
  //   v = clamp(((((r << 7) - t) * 23372) >> 22) + 128)
  void (*fromPixelsFine)(const uint8_t* src, const YuvTarget& dst, ptrdiff_t pairs);

  // The luma of fromPixelsFine alone.
  void (*fineLumaOfPixels)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels);

  // Samples to other places: dst[i * dstStep] = src[i * srcStep]. Steps are 1 to 3. A row of step 1
  // may be copied onto itself.
  void (*moveLuma)(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                   ptrdiff_t pixels);

  // Both chroma samples of each pair to other places. In place where pairs of bytes become pairs
  // in the other order.
  void (*moveChroma)(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs);

  // Luma and chroma at once, out of a row of any shape, into one that is not packed.
  void (*moveRow)(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs);

  // Luma and chroma at once into a packed row of four bytes a pair, whatever their order.
  void (*packPairs)(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs);

  // Three bytes a pixel, Y, U and V; both pixels of a pair get its chroma.
  void (*packPixels)(const YuvSource& src, uint8_t* dst, ptrdiff_t pairs);
};

#define QPX_YUV_ROWS(ROW, Table) \
  ROW(Table, toPixels)           \
  ROW(Table, toPixelsRounded)    \
  ROW(Table, fromPixels)         \
  ROW(Table, lumaOfPixels)       \
  ROW(Table, planesOfPixels)     \
  ROW(Table, fromPixelsFine)     \
  ROW(Table, fineLumaOfPixels)   \
  ROW(Table, moveLuma)           \
  ROW(Table, moveChroma)         \
  ROW(Table, moveRow)            \
  ROW(Table, packPairs)          \
  ROW(Table, packPixels)
QPX_DECLARE_ROWS(YuvRows, QPX_YUV_ROWS)

inline const YuvRows& yuvRows() { return chosenForm<YuvRows>(); }

}  // namespace qpx::simd
