#include "toolkit/tint.h"

#include "simd/blend_math.h"

namespace qpx {
namespace {

// One way of ordering the channels of a tint, 0 red, 1 green, 2 blue.
struct Ordering {
  int largest;
  int middle;
  int smallest;
};

// Tested in this sequence, so that tints with equal channels take the earlier row.
constexpr Ordering kOrderings[] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1},
                                   {2, 1, 0}, {1, 0, 2}, {1, 2, 0}};

constexpr int32_t kLuma[] = {kTintLuma.red, kTintLuma.green, kTintLuma.blue};

const Ordering& orderingOf(const int32_t (&tint)[3]) {
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
Tones aboveBlack(int32_t grey, int32_t place, int32_t largestLuma, int32_t middleLuma) {
  const int32_t luma = largestLuma + ((middleLuma * place) >> 10);
  const int32_t largest = ((grey << 20) / luma) >> 12;
  return {largest, (place * largest) >> 10, 0};
}

// The colour would rise above white: the largest channel is white. In the first ordering the
// middle's luma counts one less in the numerator, which is a part of the look.
Tones belowWhite(int32_t grey, int32_t place, const Ordering& order) {
  const int32_t middleLuma = kLuma[order.middle];
  const int32_t numeratorLuma = &order == &kOrderings[0] ? middleLuma - 1 : middleLuma;
  const int32_t luma = kLuma[order.smallest] + 1 - ((middleLuma * (place - 1024)) >> 10);
  const int32_t rest = grey - kLuma[order.largest] - ((numeratorLuma * place) >> 10);
  const int32_t smallest = (rest * (1 << 20) / luma) >> 12;
  return {255, (smallest * (1024 - place) + (place << 8)) >> 10, smallest};
}

template <typename ToByte>
ColorTables tabulateTint(const Rgb& tint, const ToByte& toByte) {
  ColorTables tables;
  for (int32_t grey = 0; grey < 256; ++grey) {
    const TintedColor color = tintedGrey(grey, tint);
    const size_t i = static_cast<size_t>(grey);
    tables.red[i] = toByte(color.red);
    tables.green[i] = toByte(color.green);
    tables.blue[i] = toByte(color.blue);
  }
  return tables;
}

}  // namespace

TintedColor tintedGrey(int32_t grey, const Rgb& tint) {
  const int32_t channels[3] = {tint.red, tint.green, tint.blue};
  const Ordering& order = orderingOf(channels);
  const int32_t range = channels[order.largest] - channels[order.smallest];
  const int32_t above = channels[order.middle] - channels[order.smallest];
  // Where the middle channel stands between the other two, in ten fractional bits.
  const int32_t place = ((above + 1) << 10) / (range + 1);
  const int32_t middle256 =
      (grey << 8) - kLuma[order.largest] * range + (256 - kLuma[order.middle]) * above + 128;
  Tones tones;
  tones.middle = middle256 >> 8;
  tones.smallest = tones.middle - above;
  tones.largest = tones.smallest + range;
  if (middle256 < 256 || tones.smallest < 0) {
    tones = aboveBlack(grey, place, kLuma[order.largest], kLuma[order.middle]);
  } else if (tones.largest > 255) {
    tones = belowWhite(grey, place, order);
  }
  int32_t result[3];
  result[order.largest] = tones.largest;
  result[order.middle] = tones.middle;
  result[order.smallest] = tones.smallest;
  return {result[0], result[1], result[2]};
}

ColorTables clampedTintTables(const Rgb& tint) {
  return tabulateTint(tint, [](int32_t value) { return clampToByte(value); });
}

ColorTables keptTintTables(const Rgb& tint) {
  return tabulateTint(tint, [](int32_t value) { return static_cast<uint8_t>(value); });
}

}  // namespace qpx
