#include "kit/paint.h"

#include "kit/shapes.h"

namespace qpx::drawing {

void drawStroke(Canvas& canvas, const Stroke& stroke) {
  const Point middle = (stroke.from + stroke.to) * 0.5f;
  const float halfLength = length(stroke.to - stroke.from) / 2;
  const Point axis = (stroke.to - stroke.from) * (0.5f / std::max(halfLength, 1e-4f));
  const float reach = halfLength + 2 * stroke.width + std::abs(stroke.bend);
  const float bristle = 0.055f * stroke.width + 0.8f / canvas.unit();
  canvas.eachNear(middle, reach, [&](const Spot& s, Color& c) {
    const Point d = alongAxis(s.p - middle, axis);
    const float along = d.x / halfLength;
    const float across = d.y - stroke.bend * (1 - along * along);
    if (std::abs(across) > 1.25f * stroke.width ||
        std::abs(along) > 1 + stroke.width / halfLength) {
      return;
    }
    const float t = (along + 1) / 2;
    // A streak is one bristle's life: constant along the stroke, changing slowly.
    const float streak = fbm(across / bristle, t * 2.5f, 2, stroke.seed);
    const float clump = perlin(across / (5 * bristle), t * 1.5f, stroke.seed + 1);
    const float dry = stroke.dryness * (0.25f + 1.1f * t * t);
    const float paint = smooth(-0.35f, 0.25f, 0.75f - 1.5f * dry + 0.55f * streak + 0.45f * clump);
    const float edge =
        coverage(std::abs(across) - stroke.width * (0.92f + 0.12f * wander(t * 9, stroke.seed + 2)),
                 2.2f / canvas.unit() + 0.08f * stroke.width);
    const float lead = 0.10f * stroke.width * (streak + clump) / halfLength;
    const float starts = smooth(-1.0f - 0.6f * stroke.width / halfLength, -1.0f, along + lead);
    const float ends =
        smooth(1.0f, 0.93f - 0.3f * stroke.dryness, along + 3.5f * lead + 0.06f * streak);
    const float amount = clamp01(stroke.opacity * paint * edge * starts * ends);
    const float ridge = 1 + stroke.relief * (streak + 0.6f * clump);
    const float alpha = amount + c.a * (1 - amount);
    const float share = alpha > 0 ? amount / alpha : 0;
    c = {mix(c.r, clamp01(stroke.color.r * ridge), share),
         mix(c.g, clamp01(stroke.color.g * ridge), share),
         mix(c.b, clamp01(stroke.color.b * ridge), share), alpha};
  });
}

float washPigment(float depth, float edge, float tooth) {
  const float inside = smooth(-0.012f, 0.012f, depth);
  const float rim = bell((depth - 0.012f) / edge);
  return clamp01(inside * (0.55f + 0.45f * rim) * (1 + 0.35f * tooth));
}

Color glazed(Color under, Color pigment, float amount) {
  return {under.r * mix(1.0f, pigment.r, amount), under.g * mix(1.0f, pigment.g, amount),
          under.b * mix(1.0f, pigment.b, amount), under.a};
}

float blotDepth(Point p, Point centre, float radius, float roughness, uint32_t seed) {
  const Point q = bent(p, roughness * radius, 0.8f * radius, seed, 5) - centre;
  return radius - length(q);
}

}  // namespace qpx::drawing
