#include "etc/blend_block.h"

#include <qpx/etc.h>

#include <algorithm>

#include "simd/etc_rows.h"

using namespace qpx;
using namespace qpx::etc;

namespace qpx::etc {
namespace {

using simd::EtcWords;

// Sums and products of 32 bits that wrap round.
constexpr int32_t wrapped(int64_t value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

constexpr int32_t dividedBy255(int32_t v) { return wrapped(int64_t{v} + (v >> 8) + 128) >> 8; }
constexpr int32_t to4Bits(int32_t sample) { return dividedBy255(wrapped(int64_t{sample} * 15)); }
constexpr int32_t to5Bits(int32_t sample) { return dividedBy255(wrapped(int64_t{sample} * 31)); }

int32_t mixed(int32_t overlay, int32_t base, BlendWeights weights) {
  return (weights.base * base + weights.overlay * overlay) >> 10;
}

// Mode bit and base colours.
uint32_t blendBases(EtcWords overlay, EtcWords base, BlendWeights weights) {
  int32_t colors[2][3];
  for (int32_t half = 0; half < 2; ++half) {
    const simd::EtcBase a = etcBase(overlay, half), b = etcBase(base, half);
    colors[half][0] = mixed(a.r, b.r, weights);
    colors[half][1] = mixed(a.g, b.g, weights);
    colors[half][2] = mixed(a.b, b.b, weights);
  }
  uint32_t differential = 2, individual = 0;
  bool close = true;
  for (int32_t c = 0; c < 3; ++c) {
    const int32_t first = to5Bits(colors[0][c]), step = to5Bits(colors[1][c]) - first;
    close = close && step >= -4 && step <= 3;
    differential |= static_cast<uint32_t>(first << 3 | (step & 7)) << (24 - 8 * c);
    individual |= static_cast<uint32_t>(to4Bits(colors[0][c]) << 4 | to4Bits(colors[1][c]))
                  << (24 - 8 * c);
  }
  return close ? differential : individual;
}

uint32_t blendTable(EtcWords overlay, EtcWords base, int32_t half, BlendWeights weights) {
  const auto doubled = [=](EtcWords words) {
    return static_cast<int32_t>(etcTable(words, half)) * 2;
  };
  return static_cast<uint32_t>(
      (weights.base * doubled(base) + weights.overlay * doubled(overlay)) >> 11);
}

// What a pixel adds to the base colour of its half.
int32_t offsetOf(EtcWords words, int32_t pixel) {
  const int32_t half = simd::etcHalf(pixel, etcFlipped(words));
  const simd::EtcOffsets by = simd::kEtcTables[etcTable(words, half)];
  const uint32_t index = simd::etcIndex(words.lower, pixel);
  const int32_t size = (index & 1) != 0 ? by.large : by.small;
  return (index & 2) != 0 ? -size : size;
}

// Index bits of the table's offset nearest to `value`, of two that are equally near the lower one.
// The middles between the four lie at the sums of their neighbours, halved.
uint32_t nearestIndexBits(int32_t value, simd::EtcOffsets by) {
  const int32_t middle = by.small + by.large;
  const bool darker = value <= 0;
  const bool outer = darker ? 2 * value <= -middle : 2 * value > middle;
  return (darker ? 1u << 16 : 0u) | (outer ? 1u : 0u);
}

}  // namespace

EtcWords blendBlocks(EtcWords overlay, EtcWords base, BlendWeights weights) {
  const bool flipped = etcFlipped(weights.overlay > weights.base ? overlay : base);
  EtcWords blended = {blendBases(overlay, base, weights) | (flipped ? 1u : 0u), 0};
  for (int32_t half = 0; half < 2; ++half) {
    blended.upper |= blendTable(overlay, base, half, weights) << (half == 0 ? 5 : 2);
  }
  for (int32_t pixel = 0; pixel < 16; ++pixel) {
    const int32_t value = mixed(offsetOf(overlay, pixel), offsetOf(base, pixel), weights);
    const uint32_t table = etcTable(blended, simd::etcHalf(pixel, flipped));
    blended.lower |= nearestIndexBits(value, simd::kEtcTables[table]) << pixel;
  }
  return blended;
}

}  // namespace qpx::etc

namespace {

constexpr int32_t kWhole = 1024;

}  // namespace

int32_t TEXPKABlock(uint32_t word0, uint32_t word1, uint32_t word2, uint32_t word3, uint32_t* out0,
                    uint32_t* out1, int32_t weight0, int32_t weight1) {
  const bool inRange = weight0 >= 0 && weight0 <= kWhole && weight1 >= 0 && weight1 <= kWhole &&
                       weight0 + weight1 <= kWhole + 1;
  if (out0 == nullptr || out1 == nullptr || !inRange) return QPX_BAD_PARAM;
  const simd::EtcWords blended = blendBlocks({word0, word1}, {word2, word3}, {weight0, weight1});
  *out0 = blended.upper;
  *out1 = blended.lower;
  return QPX_OK;
}

int32_t divideBy255(int32_t v) { return dividedBy255(v); }
int32_t convert8To4(int32_t x) { return to4Bits(x); }
int32_t convert8To5(int32_t x) { return to5Bits(x); }

uint32_t read_big_endian_4byte_word(const uint8_t* bytes) {
  return bytes == nullptr ? 0 : simd::readBigEndian(bytes);
}
