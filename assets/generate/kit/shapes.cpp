#include "kit/shapes.h"

namespace qpx::drawing {

float distanceToSegment(Point p, Point a, Point b) {
  const Point ab = b - a;
  const float along = clamp01(dot(p - a, ab) / std::max(dot(ab, ab), 1e-9f));
  return length(p - a - ab * along);
}

float distanceToPolygon(Point p, int sides, float radius, float turn) {
  float distance = -9;
  for (int i = 0; i < sides; ++i) {
    const float angle = turn + 2 * kPi * static_cast<float>(i) / static_cast<float>(sides);
    distance = std::max(distance, dot(p, direction(angle)) - radius);
  }
  return distance;
}

float distanceToPolygon(Point p, std::span<const Point> corners) {
  float nearest = 9;
  bool inside = false;
  for (size_t i = 0; i < corners.size(); ++i) {
    const Point a = corners[i];
    const Point b = corners[(i + 1) % corners.size()];
    nearest = std::min(nearest, distanceToSegment(p, a, b));
    if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x)) {
      inside = !inside;
    }
  }
  return inside ? -nearest : nearest;
}

Weights weightsIn(const Triangle& t, Point p) {
  const float area = cross(t.b - t.a, t.c - t.a);
  const float b = cross(p - t.a, t.c - t.a) / area;
  const float c = cross(t.b - t.a, p - t.a) / area;
  return {1 - b - c, b, c};
}

Point bent(Point p, float amount, float wavelength, uint32_t seed, int octaves) {
  const Point q = p * (1 / wavelength);
  return p + Point{fbm(q.x, q.y, octaves, seed), fbm(q.x + 41.7f, q.y - 13.1f, octaves, seed + 7)} *
                 amount;
}

}  // namespace qpx::drawing
