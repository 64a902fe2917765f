// Tone curves through knots.
#pragma once

#include <cstddef>

#include "kit/maths.h"

namespace qpx::drawing {

struct Knot {
  float in, out;
};

/// A curve through knots in rising order, 0..255: cubic pieces whose slopes are limited so that it
/// never overshoots.
template <size_t N>
float curve(const Knot (&knots)[N], float v) {
  static_assert(N >= 2);
  size_t i = 0;
  while (i + 2 < N && v > knots[i + 1].in) {
    ++i;
  }
  const auto chord = [&](size_t k) {
    return (knots[k + 1].out - knots[k].out) / (knots[k + 1].in - knots[k].in);
  };
  // The harmonic mean of the two chords, 0 where they disagree, keeps a piece between its knots.
  const auto slope = [&](size_t k) {
    if (k == 0) {
      return chord(0);
    }
    if (k == N - 1) {
      return chord(N - 2);
    }
    const float a = chord(k - 1);
    const float b = chord(k);
    return a * b <= 0 ? 0.0f : 2 * a * b / (a + b);
  };
  const float step = knots[i + 1].in - knots[i].in;
  const float t = clamp01((v - knots[i].in) / step);
  const float u = 1 - t;
  return knots[i].out * u * u * (1 + 2 * t) + knots[i + 1].out * t * t * (1 + 2 * u) +
         step * (slope(i) * t * u * u - slope(i + 1) * t * t * u);
}

inline uint8_t level(float v) { return static_cast<uint8_t>(std::clamp(v + 0.5f, 0.0f, 255.0f)); }

}  // namespace qpx::drawing
