// Colours of a tint's hue and chroma at a given luma, by kTintLuma.
#pragma once

#include <cstdint>

#include "simd/blend_math.h"

namespace qpx {

struct Rgb {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};

// Results before they are made bytes: they can leave 0..255 by a little.
struct TintedColor {
  int32_t red;
  int32_t green;
  int32_t blue;
};

namespace tint {

// One way of ordering the channels of a tint, 0 red, 1 green, 2 blue.
struct Ordering {
  int largest;
  int middle;
  int smallest;
};

// Tested in this sequence, so that tints with equal channels take the earlier row.
inline constexpr Ordering kOrderings[] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1},
                                          {2, 1, 0}, {1, 0, 2}, {1, 2, 0}};

inline constexpr int32_t kLuma[] = {kTintLuma.red, kTintLuma.green, kTintLuma.blue};

inline const Ordering& orderingOf(const int32_t (&tint)[3]) {
  for (const Ordering& order : kOrderings) {
    if (tint[order.largest] >= tint[order.middle] && tint[order.middle] >= tint[order.smallest]) {
      return order;
    }
  }
  return kOrderings[0];  // not reached: some order holds of any three numbers
}

struct Tones {
  int32_t largest;
  int32_t middle;
  int32_t smallest;
};

// The colour would fall below black: no smallest channel, and the other two in proportion.
inline Tones aboveBlack(int32_t grey, int32_t place, int32_t largestLuma, int32_t middleLuma) {
  const int32_t luma = largestLuma + ((middleLuma * place) >> 10);
  const int32_t largest = ((grey << 20) / luma) >> 12;
  return {largest, (place * largest) >> 10, 0};
}

// The colour would rise above white: the largest channel is white. In the first ordering the
// middle's luma counts one less in the numerator, which is a part of the look.
inline Tones belowWhite(int32_t grey, int32_t place, const Ordering& order) {
  const int32_t middleLuma = kLuma[order.middle];
  const int32_t numeratorLuma = &order == &kOrderings[0] ? middleLuma - 1 : middleLuma;
  const int32_t luma = kLuma[order.smallest] + 1 - ((middleLuma * (place - 1024)) >> 10);
  const int32_t rest = grey - kLuma[order.largest] - ((numeratorLuma * place) >> 10);
  const int32_t smallest = (rest * (1 << 20) / luma) >> 12;
  return {255, (smallest * (1024 - place) + (place << 8)) >> 10, smallest};
}

}  // namespace tint

// The tint's colour of luma `grey`.
inline TintedColor tintedGrey(int32_t grey, const Rgb& tint) {
  const int32_t channels[3] = {tint.red, tint.green, tint.blue};
  const tint::Ordering& order = tint::orderingOf(channels);
  const int32_t range = channels[order.largest] - channels[order.smallest];
  const int32_t above = channels[order.middle] - channels[order.smallest];
  // Where the middle channel stands between the other two, in ten fractional bits.
  const int32_t place = ((above + 1) << 10) / (range + 1);
  const int32_t middle256 = (grey << 8) - tint::kLuma[order.largest] * range +
                            (256 - tint::kLuma[order.middle]) * above + 128;
  tint::Tones tones;
  tones.middle = middle256 >> 8;
  tones.smallest = tones.middle - above;
  tones.largest = tones.smallest + range;
  if (middle256 < 256 || tones.smallest < 0) {
    tones = tint::aboveBlack(grey, place, tint::kLuma[order.largest], tint::kLuma[order.middle]);
  } else if (tones.largest > 255) {
    tones = tint::belowWhite(grey, place, order);
  }
  int32_t result[3];
  result[order.largest] = tones.largest;
  result[order.middle] = tones.middle;
  result[order.smallest] = tones.smallest;
  return {result[0], result[1], result[2]};
}

}  // namespace qpx
