// Randomness that is the same everywhere: a hash of whole numbers, and the noises built on it.
#pragma once

#include "kit/maths.h"

namespace qpx::drawing {

/// A well-mixed 32-bit value for a place on the lattice.
uint32_t hashOf(int x, int y, uint32_t seed);

/// The same as a number in 0..1 (1 excluded).
inline float unitHash(int x, int y, uint32_t seed) {
  return static_cast<float>(hashOf(x, y, seed) >> 8) * (1.0f / 16777216.0f);
}

/// Gradient noise of wavelength 1, about -1..1, mean 0.
float perlin(float x, float y, uint32_t seed);

/// `octaves` of gradient noise, each half as large and twice as fine; about -1..1.
float fbm(float x, float y, int octaves, uint32_t seed);

/// As `fbm`, of folded noise: creases and veins. 0..1, high on the crease.
float ridged(float x, float y, int octaves, uint32_t seed);

/// Smooth random line of wavelength 1 in -1..1, repeating after `period` units when that is not 0.
float wander(float t, uint32_t seed, int period = 0);

struct Cell {
  float nearest;  ///< distance to the closest point
  float border;   ///< distance to the border with the next cell
  uint32_t id;    ///< hash of the cell
  Point centre;   ///< the closest point, in noise units
};

/// The cell of a jittered lattice of points that (x, y) lies in.
Cell cellAt(float x, float y, uint32_t seed, float jitter = 1.0f);

/// A sequence of random numbers for placing things. Two draws belong in two statements or one
/// braced list: compilers differ in which operand or argument they compute first.
class Random {
 public:
  explicit Random(uint32_t seed) : state_(seed * 747796405u + 2891336453u) {}

  float unit();
  float between(float low, float high) { return mix(low, high, unit()); }
  /// Bell shaped about 0, within -1..1.
  float around() {
    float sum = unit();
    sum += unit();
    sum += unit();
    return sum * (2.0f / 3.0f) - 1;
  }
  int below(int limit) { return static_cast<int>(unit() * static_cast<float>(limit)); }
  uint32_t bits();

 private:
  uint32_t state_;
};

}  // namespace qpx::drawing
