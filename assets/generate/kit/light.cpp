#include "kit/light.h"

#include "kit/shapes.h"

namespace qpx::drawing {
namespace {

constexpr float kChannelScale[3] = {1, 0, -1};  // red is bent outwards, blue inwards

void addLight(Color& c, Color light, float amount) {
  c.r += light.r * amount;
  c.g += light.g * amount;
  c.b += light.b * amount;
}

float skirt(float distanceSquared, float falloff) {
  return power(1 / (1 + distanceSquared), falloff);
}

}  // namespace

void addGlow(Canvas& canvas, Point centre, float radius, Color light, float falloff) {
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = (s.p - centre) * (1 / radius);
    addLight(c, light, skirt(dot(d, d), falloff));
  });
}

void addStreak(Canvas& canvas, Point centre, float radius, float stretch, float angle, Color light,
               float falloff) {
  const Point axis = direction(angle);
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = alongAxis(s.p - centre, axis) * (1 / radius);
    const float along = d.x / stretch;
    // The tips get thinner, as the light that makes them does.
    addLight(c, light,
             skirt(along * along, falloff) * skirt(d.y * d.y * (1 + along * along), falloff));
  });
}

void addRays(Canvas& canvas, Point centre, float radius, Color light, int count, uint32_t seed) {
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = s.p - centre;
    const float r = length(d) / radius;
    const float turn = (angleOf(d) / (2 * kPi) + 0.5f) * static_cast<float>(count);
    const float coarse = wander(turn, seed, count);
    const float fine = wander(turn * 4, seed + 1, count * 4);
    const float ray = square(clamp01(0.45f + 0.6f * coarse + 0.25f * fine));
    const float reach = 0.35f + 0.65f * (0.5f + 0.5f * wander(turn * 2, seed + 2, count * 2));
    // Rays blend into the core: near the middle the angle means nothing.
    addLight(c, light, ray * smooth(0.0f, 0.12f, r) * bell(r / reach * 1.4f) / (1 + 6 * r));
  });
}

void addStar(Canvas& canvas, Point centre, float radius, float width, Color light, int blades,
             float turn) {
  const int spikes = blades % 2 == 0 ? blades / 2 : blades;
  for (int i = 0; i < spikes; ++i) {
    const Point axis = direction(turn + kPi * static_cast<float>(i) / static_cast<float>(spikes));
    canvas.each([&](const Spot& s, Color& c) {
      const Point d = alongAxis(s.p - centre, axis);
      const float along = std::abs(d.x) / radius;
      const float taper = width * (1 + 0.6f * along);
      // Diffraction spreads red further than blue, hence a spectrum that repeats faintly along the
      // spike.
      const float ripple = 1 + 0.25f * static_cast<float>(cosine(40.0 * along));
      const float amount = bell(d.y / taper) * bell(along * 1.2f) / (1 + 5 * along);
      addLight(c, {light.r * ripple, light.g, light.b * (2 - ripple)}, amount);
    });
  }
}

void addGhost(Canvas& canvas, const Ghost& ghost) {
  const float widest = ghost.radius * (1 + 2 * ghost.fringe + 2 * ghost.softness) * 1.2f;
  canvas.eachNear(ghost.centre, widest, [&](const Spot& s, Color& c) {
    float* channels[3] = {&c.r, &c.g, &c.b};
    const float light[3] = {ghost.light.r, ghost.light.g, ghost.light.b};
    const Point d = (s.p - ghost.centre) * (1 / ghost.radius);
    for (int i = 0; i < 3; ++i) {
      const Point q = d * (1 / (1 + kChannelScale[i] * ghost.fringe));
      const float distance =
          ghost.blades > 0 ? distanceToPolygon(q, ghost.blades, 0.93f, ghost.turn) : length(q) - 1;
      const float disc = smooth(ghost.softness, -ghost.softness, distance);
      const float rim = mix(1.0f, smooth(-0.9f, 0.0f, distance), ghost.rim);
      *channels[i] += light[i] * disc * rim;
    }
  });
}

void addRing(Canvas& canvas, Point centre, float radius, float width, float light, float facing,
             float span) {
  const Point axis = direction(facing);
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = s.p - centre;
    const float r = length(d);
    const float side = (1 - dot(d, axis) / std::max(r, 1e-6f)) / 2;
    const float amount = light * (span >= 1 ? 1 : smooth(span, span * 0.3f, side));
    const float across = (r - radius) / width;
    addLight(c, {bell(across - 0.8f), bell(across), bell(across + 0.8f)}, amount);
  });
}

void addGhostChain(Canvas& canvas, Point source, const Color* tints, int tintCount, int count,
                   float light, uint32_t seed) {
  Random random(seed);
  for (int i = 0; i < count; ++i) {
    const float along =
        mix(0.35f, 2.3f, (static_cast<float>(i) + random.unit()) / static_cast<float>(count));
    const float size =
        mix(0.03f, 0.2f, square(random.unit())) * (0.6f + 0.5f * std::abs(along - 1));
    addGhost(canvas, {.centre = source * (1 - along),
                      .radius = size,
                      .light = tints[i % tintCount] *
                               (light * random.between(0.35f, 1.0f) * 0.08f / (size + 0.05f)),
                      .blades = i % 3 == 0 ? 0 : 6,
                      .rim = random.between(0.1f, 0.8f),
                      .fringe = random.between(0.01f, 0.05f),
                      .softness = random.between(0.04f, 0.3f)});
  }
}

void addLeak(Canvas& canvas, const Leak& leak) {
  const Point axis = direction(leak.inward);
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = alongAxis(s.p - leak.edge, axis);
    const float tongue =
        1 + leak.tongues * fbm(d.y / leak.wavelength, d.x / (3 * leak.wavelength), 3, leak.seed);
    const float inside = std::max(0.0f, d.x) / (leak.depth * std::max(tongue, 0.15f));
    const float along = smooth(leak.span, leak.span * 0.25f, std::abs(d.y));
    // Hot at the gap with a long veil behind it.
    addLight(c, leak.tint, leak.light * along * (bell(inside) + 0.12f * bell(inside * 0.45f)));
  });
}

void addTrail(Canvas& canvas, const Trail& trail) {
  const Point axis = direction(trail.angle);
  const auto path = [&](float along) {
    return trail.offset + trail.sway * (wander(along * 0.7f + 20, trail.seed) +
                                        0.3f * wander(along * 1.9f, trail.seed + 1));
  };
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = alongAxis(s.p, axis);
    const float here = path(d.x);
    const float slope = (path(d.x + 0.01f) - here) * 100;
    const float distance = std::abs(d.y - here) / std::sqrt(1 + slope * slope) / trail.width;
    const float lit = smooth(-1.0f, 0.6f, wander(d.x * 0.9f + 9, trail.seed + 2));
    addLight(c, trail.light,
             lit * (bell(distance) + 0.16f * bell(distance / 3) + 0.07f * bell(distance / 8)));
  });
}

}  // namespace qpx::drawing
