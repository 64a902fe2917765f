// Signed distances, negative inside, in `Spot::p` units, and their soft or antialiased edges.
#pragma once

#include <span>

#include "kit/canvas.h"
#include "kit/noise.h"

namespace qpx::drawing {

/// How much of a pixel a shape covers: `distance` from its edge, `softness` the width of the edge.
inline float coverage(float distance, float softness) {
  return clamp01(0.5f - distance / softness);
}

/// The same with the edge one pixel of `canvas` wide.
inline float crisp(const Canvas& canvas, float distance) {
  return coverage(distance, 1.4f / canvas.unit());
}

float distanceToSegment(Point p, Point a, Point b);
/// Regular polygon about the origin, `turn` in radians; `radius` reaches the middle of a side.
float distanceToPolygon(Point p, int sides, float radius, float turn);
/// A simple polygon of any shape.
float distanceToPolygon(Point p, std::span<const Point> corners);

struct Triangle {
  Point a, b, c;
};

/// Places of `p` in the triangle: weights of its corners, sum 1.
struct Weights {
  float a, b, c;
};
Weights weightsIn(const Triangle& t, Point p);

/// `p` with its surroundings bent by noise: `amount` in units, `wavelength` in units.
Point bent(Point p, float amount, float wavelength, uint32_t seed, int octaves = 3);

}  // namespace qpx::drawing
