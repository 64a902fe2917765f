// Arithmetic of one sample or pixel that the looks are made of: the exported blends, the plain rows
// and the tables of setups share it, and vector rows give the same bytes.
//
// Samples and masks are 0..255; opacities are single precision, meant for 0..1. Constants, order of
// operations and ways of rounding are part of each formula: looks are compared byte for byte.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qpx {

// Float to integer: towards zero and saturating. Below 0, and what is no number, gives 0.
template <typename Float>
constexpr uint32_t truncate(Float value) {
  if (!(value > Float{0})) return 0;
  return value >= Float{4294967296.0} ? UINT32_MAX : static_cast<uint32_t>(value);
}

// The low eight bits: 256 gives 0.
constexpr uint8_t keepByte(uint32_t value) { return static_cast<uint8_t>(value); }

template <typename Float>
constexpr uint8_t truncateClamped(Float value) {
  return static_cast<uint8_t>(std::min<uint32_t>(truncate(value), 255));
}

// To the nearest integer, a fraction of exactly one half down: 100.5 gives 100. The 1 is added in
// the type of the value, so that one just below a power of two, whose sum rounds up, gains 2.
template <typename Float>
constexpr uint8_t roundHalfDown(Float value) {
  if (value - static_cast<Float>(truncate(value)) > Float{0.5}) value += Float{1};
  return truncateClamped(value);
}

// A top laid over a base through a mask. At full mask and opacity it is the top itself.
constexpr uint8_t mixNormal(uint8_t top, uint8_t base, uint8_t mask, float opacity) {
  const float m = mask / 255.0f;
  return roundHalfDown(base * (1.0f - opacity) + opacity * ((1.0f - m) * base + top * m));
}

// 255 - (255 - base) * (255 - top) / 256. The shift in place of a division by 255 loses up to 1:
// black on black gives 1.
constexpr uint8_t blendScreen(uint8_t top, uint8_t base) {
  return keepByte(static_cast<uint32_t>(255 - (((255 - base) * (255 - top)) >> 8)));
}

// Multiplies below 128 and screens from 128 on, at twice the strength, division cut.
constexpr uint8_t blendOverlay(uint8_t top, uint8_t base) {
  const int32_t result =
      base >= 128 ? 255 - 2 * (255 - base) * (255 - top) / 255 : 2 * base * top / 255;
  return keepByte(static_cast<uint32_t>(result));
}

// Darkens below a top of 129 by a square, lightens from there on by a square root: the two do not
// meet, and neither is rounded.
inline uint8_t blendSoft(uint8_t top, uint8_t base) {
  const float a = base / 255.0f;
  const float d = 2.0f * (top / 255.0f) - 1.0f;
  if (top < 129) return keepByte(truncate((a + d * (a - a * a)) * 255.0f));
  const double wide = a;
  return keepByte(truncate((wide + d * (std::sqrt(wide) - wide)) * 255.0));
}

// a * b / 256: white times white is 254.
constexpr uint8_t blendMultiplyShift(uint8_t a, uint8_t b) {
  return keepByte(static_cast<uint32_t>(a * b) >> 8);
}

constexpr uint8_t laidScreen(uint8_t top, uint8_t base, uint8_t mask, float opacity) {
  return mixNormal(blendScreen(top, base), base, mask, opacity);
}

constexpr uint8_t laidOverlay(uint8_t top, uint8_t base, uint8_t mask, float opacity) {
  return mixNormal(blendOverlay(top, base), base, mask, opacity);
}

inline uint8_t laidSoft(uint8_t top, uint8_t base, uint8_t mask, float opacity) {
  return mixNormal(blendSoft(top, base), base, mask, opacity);
}

// The product enters the mix before it is rounded.
constexpr uint8_t laidMultiply(uint8_t top, uint8_t base, uint8_t mask, float opacity) {
  const float m = mask / 255.0f;
  const float product = static_cast<float>(top * base) / 255.0f;
  return roundHalfDown(base * (1.0f - opacity) + opacity * (base * (1.0f - m) + m * product));
}

// The mixes below are cut, not rounded.

// Full strength shows the base alone, the reverse of all the other blends.
constexpr uint8_t overlayUnder(uint8_t top, uint8_t base, float o) {
  return keepByte(truncate(blendOverlay(top, base) * (1.0f - o) + base * o));
}

constexpr uint8_t overlayAtOpacity(uint8_t top, uint8_t base, float o) {
  return truncateClamped(blendOverlay(top, base) * o + base * (1.0f - o));
}

constexpr uint8_t screenAtOpacity(uint8_t top, uint8_t base, float o) {
  return keepByte(truncate(blendScreen(top, base) * o + (1.0f - o) * base));
}

// a is mixed in once; the result, multiplied by b, is mixed in again.
constexpr uint8_t mergeTwice(uint8_t a, uint8_t b, float o) {
  const float p = b * (1.0f - o);
  const uint32_t once = keepByte(truncate(p + a * o));
  const uint32_t product = once * b / 255;
  return keepByte(truncate(p + static_cast<float>(product) * o));
}

// b + a * o; callers that subtract give a negative o.
constexpr uint8_t addLinear(uint8_t a, uint8_t b, float o) { return truncateClamped(b + a * o); }

// A screen at twice the product, kept to eight bits before it is weighed: bright pairs wrap round.
constexpr uint8_t mixVintage(uint8_t a, uint8_t b) {
  const float s = keepByte(static_cast<uint32_t>(a + b - ((a * b) >> 7)));
  return truncateClamped(0.45f * s + 0.55f * a);
}

// Two columns or rows, and the values where they cross: c10 is that of the second column and first
// row.
struct Span {
  double from;
  double to;
};

struct Corners {
  uint8_t c00, c10, c01, c11;
};

// Bilinear mix at (x, y), cut. Outside the rectangle it goes on; an empty one gives 0.
constexpr uint8_t mixCorners(const Span& columns, const Span& rows, const Corners& c, double x,
                             double y) {
  const double left = x - columns.from;
  const double right = columns.to - x;
  const double width = columns.to - columns.from;
  const double height = rows.to - rows.from;
  if (width == 0.0 || height == 0.0) return 0;
  const double near = (c.c10 * left + c.c00 * right) / width;
  const double far = (c.c11 * left + c.c01 * right) / width;
  return truncateClamped(((y - rows.from) * far + (rows.to - y) * near) / height);
}

// The finished look over its source: (k * look + (100 - k) * source) / 100 to the nearest, halves
// up. 10486 / 2^20 is 1/100 and a little; of the sums of k in 0..100 it changes none.
constexpr uint8_t mixIntensity(uint8_t look, uint8_t source, int64_t k) {
  const int64_t sum = (k * look + (100 - k) * source) * 10486 + 0x80000;
  return static_cast<uint8_t>(std::clamp<int64_t>(sum >> 20, 0, 255));
}

// (largest + smallest) / 2, cut.
constexpr uint8_t lightnessOf(uint8_t r, uint8_t g, uint8_t b) {
  return static_cast<uint8_t>((std::max({r, g, b}) + std::min({r, g, b})) >> 1);
}

// Weights with eight fractional bits. They add up to 256, so that a grey keeps its value.
struct LumaWeights {
  int32_t red;
  int32_t green;
  int32_t blue;
};

inline constexpr LumaWeights kTintLuma = {77, 151, 28};   // of tints
inline constexpr LumaWeights kLooksLuma = {77, 150, 29};  // of all other recipes

constexpr uint8_t lumaOf(uint8_t r, uint8_t g, uint8_t b, const LumaWeights& w) {
  return static_cast<uint8_t>((w.red * r + w.green * g + w.blue * b + 128) >> 8);
}

// Away from a centre by amount / 1024 of the distance, or towards it for a negative amount. The two
// differ in where the cut falls: moving apart it falls downwards, drawing together upwards.
constexpr uint8_t moveApart(uint8_t c, uint8_t centre, int32_t amount) {
  return static_cast<uint8_t>(std::clamp(c + ((amount * (c - centre)) >> 10), 0, 255));
}

constexpr uint8_t drawTogether(uint8_t c, uint8_t centre, int32_t amount) {
  return static_cast<uint8_t>(std::clamp(c - ((amount * (c - centre)) >> 10), 0, 255));
}

// What is left of the light where a row and a column term meet, 512 for all of it: it falls with
// the square of their sum behind 128.
constexpr uint16_t falloffWeight(int32_t rowTerm, int32_t colTerm) {
  const int64_t sum = int64_t{rowTerm} + colTerm - 128;
  const int32_t behind = static_cast<int32_t>(std::clamp<int64_t>(sum, 0, 1024));
  return static_cast<uint16_t>(std::max(512 - ((behind * behind) >> 10), 0));
}

constexpr uint8_t scaleByFalloff(uint8_t c, uint16_t weight) {
  return static_cast<uint8_t>(c * weight >> 9);
}

// A sample moved towards its corner tone by weight / 2^20, of which amount / 1024 show.
constexpr uint8_t mixCorner(uint8_t c, uint8_t tone, int32_t weight, int32_t amount) {
  const int32_t darkened = c + ((weight * (tone - c)) >> 20);
  const int32_t mixed = (c * (1024 - amount) + amount * darkened + 512) >> 10;
  return static_cast<uint8_t>(std::clamp(mixed, 0, 255));
}

// The six hues that a grey is weighed by.
template <typename Float>
struct HueWeights {
  Float reds, yellows, greens, cyans, blues, magentas;
};

inline constexpr HueWeights<float> kChalkBoardWeights = {0.4f, 0.6f, 0.4f, 0.6f, 0.2f, 0.8f};

// The part that all three channels share weighs 1, what two of them share weighs as their hue, what
// the largest has alone as its own: a grey keeps its value whatever the weights. Where channels are
// equal either order gives the same sum.
template <typename Float>
constexpr Float hueSum(uint8_t a, uint8_t b, uint8_t c, const HueWeights<Float>& w) {
  const auto sum = [](int32_t largest, int32_t middle, int32_t least, Float primary,
                      Float secondary) {
    return static_cast<Float>(middle - least) * secondary +
           static_cast<Float>(largest - middle) * primary + static_cast<Float>(least);
  };
  if (a > b) {
    if (a > c) {
      return b > c ? sum(a, b, c, w.reds, w.yellows) : sum(a, c, b, w.reds, w.magentas);
    }
    return sum(c, a, b, w.blues, w.magentas);
  }
  if (b > c) {
    return c < a ? sum(b, a, c, w.greens, w.yellows) : sum(b, c, a, w.greens, w.cyans);
  }
  return sum(c, b, a, w.blues, w.cyans);
}

constexpr uint8_t hueGrey(uint8_t r, uint8_t g, uint8_t b, const HueWeights<double>& weights) {
  return roundHalfDown(hueSum(r, g, b, weights));
}

constexpr uint8_t chalkBoardGrey(uint8_t r, uint8_t g, uint8_t b) {
  return truncateClamped(hueSum(r, g, b, kChalkBoardWeights));
}

}  // namespace qpx
