// The exported blends, greys and tints: arguments kept to bytes, then the arithmetic that recipes
// use too.
#include <qpx/blend.h>

#include "simd/blend_math.h"
#include "toolkit/tint.h"

using namespace qpx;

namespace {

Rgb keepColor(uint32_t red, uint32_t green, uint32_t blue) {
  return {keepByte(red), keepByte(green), keepByte(blue)};
}

Span spanOf(const int32_t* pair) {
  return {static_cast<double>(pair[0]), static_cast<double>(pair[1])};
}

}  // namespace

uint32_t normalPixel(uint32_t top, uint32_t base, uint32_t mask, float opacity) {
  return mixNormal(keepByte(top), keepByte(base), keepByte(mask), opacity);
}

uint32_t screenPixel(uint32_t top, uint32_t base) {
  return blendScreen(keepByte(top), keepByte(base));
}

uint32_t overlayPixel(uint32_t top, uint32_t base) {
  return blendOverlay(keepByte(top), keepByte(base));
}

uint32_t softPixel(uint32_t top, uint32_t base) { return blendSoft(keepByte(top), keepByte(base)); }

uint32_t screenPixel4(uint32_t top, uint32_t base, uint32_t mask, float opacity) {
  return laidScreen(keepByte(top), keepByte(base), keepByte(mask), opacity);
}

uint32_t overlayPixel4(uint32_t top, uint32_t base, uint32_t mask, float opacity) {
  return laidOverlay(keepByte(top), keepByte(base), keepByte(mask), opacity);
}

uint32_t softPixel4(uint32_t top, uint32_t base, uint32_t mask, float opacity) {
  return laidSoft(keepByte(top), keepByte(base), keepByte(mask), opacity);
}

uint32_t multiplyPixel(uint32_t top, uint32_t base, uint32_t mask, float opacity) {
  return laidMultiply(keepByte(top), keepByte(base), keepByte(mask), opacity);
}

uint32_t Multiply(uint32_t a, uint32_t b) { return blendMultiplyShift(keepByte(a), keepByte(b)); }

uint32_t overlayPixelWithOpaqueness(uint32_t top, uint32_t base, float o) {
  return overlayUnder(keepByte(top), keepByte(base), o);
}

uint32_t alphaPixel(uint32_t top, uint32_t base, float o) {
  return overlayAtOpacity(keepByte(top), keepByte(base), o);
}

uint32_t Screen(uint32_t top, uint32_t base, float o) {
  return screenAtOpacity(keepByte(top), keepByte(base), o);
}

uint32_t MergeWithAlpha(uint32_t a, uint32_t b, float o) {
  return mergeTwice(keepByte(a), keepByte(b), o);
}

uint32_t linearReducePixel(uint32_t a, uint32_t b, float o) {
  return addLinear(keepByte(a), keepByte(b), o);
}

uint32_t lighten(uint32_t a, uint32_t b) { return std::max(keepByte(a), keepByte(b)); }

uint32_t darken(uint32_t a, uint32_t b) { return std::min(keepByte(a), keepByte(b)); }

uint32_t VintageBlend(uint32_t a, uint32_t b) { return mixVintage(keepByte(a), keepByte(b)); }

uint32_t bilinearCorners(const int32_t* xPair, const int32_t* yPair, uint32_t c00, uint32_t c10,
                         uint32_t c01, uint32_t c11, double x, double y) {
  if (xPair == nullptr || yPair == nullptr) return 0;
  const Corners corners = {keepByte(c00), keepByte(c10), keepByte(c01), keepByte(c11)};
  return mixCorners(spanOf(xPair), spanOf(yPair), corners, x, y);
}

uint32_t ApplyBlackAndWhite(double reds, double yellows, double greens, double cyans, double blues,
                            double magentas, uint32_t red, uint32_t green, uint32_t blue) {
  return hueGrey(keepByte(red), keepByte(green), keepByte(blue),
                 {reds, yellows, greens, cyans, blues, magentas});
}

uint32_t ApplyBlackAndWhiteForChalkBoard(uint32_t red, uint32_t green, uint32_t blue) {
  return chalkBoardGrey(keepByte(red), keepByte(green), keepByte(blue));
}

void ApplyBlackAndWhiteWithTint(double reds, double yellows, double greens, double cyans,
                                double blues, double magentas, uint8_t* red, uint8_t* green,
                                uint8_t* blue, uint32_t tintRed, uint32_t tintGreen,
                                uint32_t tintBlue) {
  if (red == nullptr || green == nullptr || blue == nullptr) return;
  const uint8_t grey =
      hueGrey(*red, *green, *blue, {reds, yellows, greens, cyans, blues, magentas});
  const TintedColor color = tintedGrey(grey, keepColor(tintRed, tintGreen, tintBlue));
  *red = static_cast<uint8_t>(color.red);
  *green = static_cast<uint8_t>(color.green);
  *blue = static_cast<uint8_t>(color.blue);
}

void ApplyLumaTint(uint8_t* red, uint8_t* green, uint8_t* blue, uint32_t tintRed,
                   uint32_t tintGreen, uint32_t tintBlue) {
  if (red == nullptr || green == nullptr || blue == nullptr) return;
  const uint8_t luma = lumaOf(*red, *green, *blue, kTintLuma);
  const TintedColor color = tintedGrey(luma, keepColor(tintRed, tintGreen, tintBlue));
  *red = clampToByte(color.red);
  *green = clampToByte(color.green);
  *blue = clampToByte(color.blue);
}
