// Selective colour: what a channel gains or loses when a class of colours takes on ink or gives it
// up. Integers throughout; the order of products and shifts is part of the formulas.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "simd/selective_rows.h"

namespace qpx::simd {

// Percent with ten fractional bits.
constexpr int32_t percentShare(int32_t percent) { return percent * 1024 / 100; }

// The most percent of ink that is worth adding: from there on the channel is at 0.
inline constexpr std::array<int32_t, 256> kInkCap = [] {
  std::array<int32_t, 256> cap = {};
  for (int32_t v = 0; v < 255; ++v) cap[static_cast<size_t>(v)] = 100 * v / (255 - v);
  cap[255] = cap[254];
  return cap;
}();

// What one percent of ink counts, with ten fractional bits, by the cap.
inline constexpr std::array<int32_t, 101> kInkScale = [] {
  std::array<int32_t, 101> scale = {1024};
  for (int32_t i = 1; i <= 100; ++i) scale[static_cast<size_t>(i)] = 1024 / i;
  return scale;
}();

// How a channel answers to added ink: linear in the lower half, bent down in the upper one.
constexpr int32_t answerToInk(int32_t v) {
  return v < 128 ? v : 128 + ((v - 128) * (v - 128) >> 7);
}

// How it answers to ink that is taken away: bent up in the upper half.
constexpr int32_t answerToRemoval(int32_t v) {
  return v < 128 ? v : 255 + (-(255 - v) * (255 - v) >> 7);
}

// A channel loses this to `percent` of ink, which is 0 or more, in a colour of a class by `weight`.
constexpr int32_t inkLoss(int32_t v, int32_t percent, int32_t weight) {
  const auto at = static_cast<size_t>(v);
  const int32_t cap = kInkCap[at];
  const auto product = static_cast<uint32_t>(std::min(cap, percent) * weight * answerToInk(v));
  const auto scale = static_cast<uint32_t>(kInkScale[static_cast<size_t>(std::min(cap, 100))]);
  return static_cast<int32_t>((scale * (product >> 8)) >> 10);
}

// A channel gains this from ink taken away, a share with ten fractional bits.
constexpr int32_t inkGain(int32_t v, int32_t share, int32_t weight) {
  return (share * (weight * answerToRemoval(v))) >> 18;
}

// Tones give ink up by the ink that a channel holds, 255 - v, which a curve of the colour's extreme
// and a slope from that extreme to the channel make fade out towards the border of the class: at an
// extreme of 127 or 128 nothing is left, so that neighbouring tones do not break apart.
constexpr int32_t whiteRoom(int32_t v, int32_t least) {
  return answerToRemoval(least) - ((255 - least) * (least - v) >> 7) - v;
}

constexpr int32_t blackRoom(int32_t v, int32_t most) {
  const int32_t curve = 128 + (-(128 - most) * (128 - most) >> 7);
  return curve - (((most - v) * most) >> 7) - v;
}

// Neutrals have no border but in their weight. Above the middle the curve rises as far as keeps the
// slope from darkening the lesser channels of light colours.
constexpr int32_t neutralRoom(int32_t v, int32_t most) {
  const int32_t above = std::max(most - 127, 0);
  return 255 + (above * above >> 6) - (((most - v) * most) >> 7) - v;
}

// 2^20 / v, and of 0 as of 1.
inline constexpr std::array<int32_t, 256> kReciprocal20 = [] {
  std::array<int32_t, 256> table = {};
  for (int32_t v = 0; v < 256; ++v) table[static_cast<size_t>(v)] = 0x100000 / std::max(v, 1);
  return table;
}();

// How many levels an absolute amount in 256ths counts for.
constexpr int32_t absoluteLevels(int32_t amount) { return (amount * 255) >> 8; }

// What levels of ink take from a channel: no more light than the channel has, and no more ink given
// back than it holds. In the weight, p is the part that falls to light.
constexpr int32_t absoluteLoss(int32_t v, int32_t levels, int32_t weight) {
  const int32_t p = weight * v / 255;
  if (levels > 0) {
    return (kReciprocal20[static_cast<size_t>(v)] * (std::min(v, levels) * p)) >> 20;
  }
  const int32_t given = (weight - p) * std::max(levels, v - 255);
  return (kReciprocal20[static_cast<size_t>(255 - v)] * given) >> 20;
}

// The distance of two channels from the nearer end of the tones.
constexpr int32_t neutralWeight(int32_t mid, int32_t most) {
  return std::min(255 - mid, mid) + std::min(255 - most, most);
}

}  // namespace qpx::simd
