// Fixed-point forms that many recipes share, for the samples that no table can stand for.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qpx {

// (percent * a + (100 - percent) * b) / 100 with 327 / 2^15 for 1/100, which is a little less: a
// mix of 255 and 255 gives 254. Percentages above 100 overshoot and are clamped.
constexpr uint8_t percentMix(int32_t percent, int32_t a, int32_t b) {
  const int32_t sum = (percent * a + (100 - percent) * b) * 327;
  return static_cast<uint8_t>(std::clamp(sum >> 15, 0, 255));
}

// 30 and 40 percent of a blend over its base, in 1024ths.
constexpr uint8_t mixThirty(uint8_t blended, uint8_t base) {
  return static_cast<uint8_t>((717 * base + 307 * blended) >> 10);
}

constexpr uint8_t mixForty(uint8_t blended, uint8_t base) {
  return static_cast<uint8_t>((614 * base + 410 * blended) >> 10);
}

// The soft light of gradients by luma: like blendSoft, but cut at every division below a top of
// 129, and with 16 for the root of 255 from there on, which lifts lights a little more.
inline uint8_t softByLuma(uint8_t top, uint8_t base) {
  const int32_t x = base;
  const int32_t n = 2 * top - 255;
  if (top < 129) {
    return static_cast<uint8_t>(std::clamp(x + (x - x * x / 255) * n / 255, 0, 255));
  }
  const double lifted = x + n * (16.0 * std::sqrt(static_cast<double>(x)) - x) / 255.0;
  return static_cast<uint8_t>(std::clamp(lifted, 0.0, 255.0));
}

// An overlay by shifts of 7. Its product above 128 can pass 255 by a little and wraps round.
constexpr uint8_t overlaySevenBits(uint8_t top, uint8_t base) {
  const int32_t result = base > 128 ? 255 - (((255 - base) * (255 - top)) >> 7) : (base * top) >> 7;
  return static_cast<uint8_t>(result);
}

// A layer by its alpha, cut.
constexpr uint8_t mixByAlpha(uint8_t top, uint8_t base, uint8_t alpha) {
  return static_cast<uint8_t>((base * (255 - alpha) + top * alpha) / 255);
}

}  // namespace qpx
