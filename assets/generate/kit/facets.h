// Flat pieces with crisp edges: panes of glass, shards of a mirror.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "kit/canvas.h"
#include "kit/noise.h"
#include "kit/shapes.h"

namespace qpx::drawing {

using Quad = std::array<Point, 4>;

/// Breaks the picture from `impact` outwards: `sectors` cracks run to the border, `rings` cross
/// them. The pieces share their edges.
std::vector<Quad> fracture(const Canvas& canvas, Point impact, int sectors, int rings,
                           uint32_t seed);

/// The piece moved about its middle: smaller by `scale`, turned, shifted.
Quad moved(const Quad& piece, float scale, float turn, Point shift);

Point middleOf(std::span<const Point> corners);

/// Lays `paint(Spot, distance)` over the inside of a polygon, mixing colour and alpha at its
/// antialiased edge. `distance` is how deep inside the place lies.
template <typename Paint>
void fillPolygon(Canvas& canvas, std::span<const Point> corners, Paint paint);

/// Light refracted at the edge of glass: channels part by `spread` either way of `depth`, each a
/// line `width` wide.
inline Color edgeSpectrum(float depth, float at, float width, float spread) {
  return {bell((depth - at + spread) / width), bell((depth - at) / width),
          bell((depth - at - spread) / width), 1};
}

/// Puts `top`, by its alpha, over `c`.
inline void layOver(Color& c, Color top, float coverage) {
  const float amount = top.a * coverage;
  const float alpha = amount + c.a * (1 - amount);
  const float share = alpha > 0 ? amount / alpha : 0;
  c = {mix(c.r, top.r, share), mix(c.g, top.g, share), mix(c.b, top.b, share), alpha};
}

template <typename Paint>
void fillPolygon(Canvas& canvas, std::span<const Point> corners, Paint paint) {
  const Point middle = middleOf(corners);
  float radius = 0;
  for (const Point p : corners) {
    radius = std::max(radius, length(p - middle));
  }
  canvas.eachNear(middle, radius + 2 / canvas.unit(), [&](const Spot& s, Color& c) {
    const float distance = distanceToPolygon(s.p, corners);
    const float covered = clamp01(0.5f - distance * canvas.unit() / 1.2f);
    if (covered > 0) {
      layOver(c, paint(s, -distance), covered);
    }
  });
}

}  // namespace qpx::drawing
