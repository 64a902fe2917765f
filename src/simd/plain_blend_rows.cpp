#include "simd/blend_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

template <typename Laid>
void lay(const Laid& laid, const uint8_t* base, const uint8_t* top, const uint8_t* mask,
         uint8_t* dst, ptrdiff_t count, float opacity) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = laid(top[i], base[i], mask == nullptr ? uint8_t{255} : mask[i], opacity);
  }
}

}  // namespace

void layNormal(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, float opacity) {
  lay(mixNormal, base, top, mask, dst, count, opacity);
}

void layScreen(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, float opacity) {
  lay(laidScreen, base, top, mask, dst, count, opacity);
}

void layOverlay(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                ptrdiff_t count, float opacity) {
  lay(laidOverlay, base, top, mask, dst, count, opacity);
}

void laySoft(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
             ptrdiff_t count, float opacity) {
  lay(laidSoft, base, top, mask, dst, count, opacity);
}

void layMultiply(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                 ptrdiff_t count, float opacity) {
  lay(laidMultiply, base, top, mask, dst, count, opacity);
}

void multiplyShift(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = blendMultiplyShift(a[i], b[i]);
}

void lighten(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = std::max(a[i], b[i]);
}

void darken(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = std::min(a[i], b[i]);
}

void lightness(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
               ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = lightnessOf(r[i], g[i], b[i]);
}

void weighedLuma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                 ptrdiff_t count, const LumaWeights& weights) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = lumaOf(r[i], g[i], b[i], weights);
}

void hueGrey(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count,
             const HueWeights<double>& weights) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = qpx::hueGrey(r[i], g[i], b[i], weights);
}

void chalkBoardGrey(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                    ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = qpx::chalkBoardGrey(r[i], g[i], b[i]);
}

void moveApart(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
               int32_t amount) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = qpx::moveApart(src[i], centre[i], amount);
}

void drawTogether(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
                  int32_t amount) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = qpx::drawTogether(src[i], centre[i], amount);
}

void falloffWeights(int32_t rowTerm, const int32_t* colTerms, uint16_t* weights, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) weights[i] = falloffWeight(rowTerm, colTerms[i]);
}

void scaleByFalloff(const uint8_t* src, const uint16_t* weights, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = qpx::scaleByFalloff(src[i], weights[i]);
}

// A double holds the square of any distance in a picture exactly, and its root is cut rightly.
void cornerWeights(const CornerRow& row, int32_t* weights, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int64_t dx = row.dx + i;
    const double square = static_cast<double>(dx * dx + row.dy * row.dy);
    const int64_t distance = static_cast<int64_t>(std::sqrt(square));
    const int32_t t = static_cast<int32_t>((row.scale * distance) >> 10) - row.start;
    weights[i] = distance <= row.inner ? 0 : t * t;
  }
}

void mixCorner(const uint8_t* src, const uint8_t* tone, const int32_t* weights, uint8_t* dst,
               ptrdiff_t count, int32_t amount) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = qpx::mixCorner(src[i], tone[i], weights[i], amount);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(BlendRows, QPX_BLEND_ROWS)

}  // namespace qpx::simd
