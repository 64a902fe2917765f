// Mean colours to the levels that a block can hold, channel by channel.
#pragma once

#include <cmath>
#include <cstdint>

#include "simd/etc_block.h"

namespace qpx::etc {

// A channel of `bits` bits: its levels lie `spacing` samples apart, or nearly so.
struct Depth {
  int32_t most;
  double spacing;
  uint32_t (*expand)(uint32_t level);
};

// The level below a mean colour or the one above it, whichever is nearer once expanded; the lower
// of two that are equally near. The perceptual error weighs each channel by itself, so the best of
// the eight colours around a mean is made of the best level of each channel.
inline uint32_t nearestLevel(float average, const Depth& depth) {
  const double place = std::floor(static_cast<double>(average) / depth.spacing);
  // No number at all compares with nothing and counts as 0.
  const double below = place > 0 ? std::fmin(place, depth.most) : 0;
  const double above = place >= 0 ? std::fmin(place + 1, depth.most) : 0;
  const auto low = static_cast<uint32_t>(below), high = static_cast<uint32_t>(above);
  const double toLow = std::fabs(static_cast<double>(depth.expand(low)) - average);
  const double toHigh = std::fabs(static_cast<double>(depth.expand(high)) - average);
  return toHigh < toLow ? high : low;
}

// The same roundings from the sum of the eight samples of a half, in integers: means are sums of
// eighths. With m the mean and s the sum,
//
//   meanLevel5    round(m * 31 / 255), halves up
//   meanLevel4    m / 17 + 0.5001, cut
//   nearLevel5    the nearest expanded level, as nearestLevel
//   nearLevel4    likewise
//
// Sums are 0 ... 2040. Division by 255 is exact for numbers below 65535.
constexpr uint32_t divided255(uint32_t v) { return (v + 1 + (v >> 8)) >> 8; }
// Exact for numbers up to 263.
constexpr uint32_t divided17(uint32_t v) { return v * 241 >> 12; }

constexpr uint32_t meanLevel5(uint32_t sum) { return divided255((sum * 31 + 1020) >> 3); }
constexpr uint32_t meanLevel4(uint32_t sum) { return divided17((sum + 68) >> 3); }

// Twice the sum against the sum of both levels' expansions: nearer to the upper one.
constexpr uint32_t nearLevel5(uint32_t sum) {
  const uint32_t low = divided255(sum * 31 >> 3);
  const uint32_t high = low + (low < 31 ? 1 : 0);
  return 2 * sum > 8 * (simd::etcExpand5(low) + simd::etcExpand5(high)) ? high : low;
}
constexpr uint32_t nearLevel4(uint32_t sum) {
  const uint32_t low = divided17(sum >> 3);
  const uint32_t high = low + (low < 15 ? 1 : 0);
  return 2 * sum > 8 * (simd::etcExpand4(low) + simd::etcExpand4(high)) ? high : low;
}

}  // namespace qpx::etc
