#include "kit/surface.h"

#include "kit/shapes.h"

namespace qpx::drawing {
namespace {

void lay(Color& c, Color ink, float amount) {
  c = {mix(c.r, ink.r, amount), mix(c.g, ink.g, amount), mix(c.b, ink.b, amount), c.a};
}

}  // namespace

float paperTooth(float x, float y, float grain, uint32_t seed) {
  const float k = 1 / grain;
  const float bumps =
      perlin(x * k, y * k, seed) + 0.9f * perlin(x * k * 0.41f, y * k * 0.41f, seed + 1);
  const float fibres = ridged(x * k * 0.23f, y * k * 0.31f, 3, seed + 5) - 0.6f;
  return 0.55f * bumps + 0.7f * fibres;
}

float weave(float x, float y, float pitch, uint32_t seed) {
  const float slub = 0.22f * pitch;
  const float px = (x + slub * perlin(x / (9 * pitch), y / (2 * pitch), seed)) / pitch;
  const float py = (y + slub * perlin(x / (2 * pitch), y / (9 * pitch), seed + 1)) / pitch;
  const auto thread = [](float t) { return std::abs(static_cast<float>(sine(double{kPi} * t))); };
  const bool over = (static_cast<int>(std::floor(px)) + static_cast<int>(std::floor(py))) % 2 == 0;
  const float warp = thread(px) * (0.6f + 0.4f * thread(py));
  const float weft = thread(py) * (0.6f + 0.4f * thread(px));
  return over ? std::max(warp, 0.55f * weft) : std::max(0.55f * warp, weft);
}

float grain(float x, float y, float size, int steps, uint32_t seed) {
  const float lump =
      perlin(x / size, y / size, seed) + 0.5f * perlin(1.9f * x / size, 1.9f * y / size, seed + 3);
  const float k = static_cast<float>(steps);
  return std::clamp(std::floor(lump * k + 0.5f) / k, -1.0f, 1.0f);
}

float stains(Point p, float wavelength, float amount, uint32_t seed) {
  const Point q = bent(p, 0.12f * wavelength, 0.6f * wavelength, seed + 11);
  const float cloud = fbm(q.x / wavelength, q.y / wavelength, 5, seed);
  return smooth(0.45f - amount, 1.05f - amount * 0.5f, 0.5f + cloud);
}

void drawScratches(Canvas& canvas, const Scratches& scratches, Color ink, float opacity) {
  Random random(scratches.seed);
  const Point reach = canvas.reach();
  const float half = scratches.thickness / canvas.unit();
  for (int i = 0; i < scratches.count; ++i) {
    const Point middle{random.between(-reach.x, reach.x), random.between(-reach.y, reach.y)};
    const float reachAlong = scratches.longest * mix(0.08f, 0.5f, square(random.unit()));
    const Point axis = direction(scratches.angle + scratches.spread * random.around());
    const float bend = scratches.curl * random.around() / std::max(reachAlong, 0.05f);
    const float strength = opacity * random.between(0.25f, 1.0f);
    const float width = half * random.between(0.5f, 1.0f);
    const uint32_t seed = random.bits();
    canvas.eachNear(middle, reachAlong * 1.1f + 2 * half, [&](const Spot& s, Color& c) {
      const Point d = alongAxis(s.p - middle, axis);
      const float across = std::abs(d.y - bend * d.x * d.x);
      if (across > 3 * width) {
        return;
      }
      const float fade = smooth(1.0f, 0.4f, std::abs(d.x) / reachAlong);
      const float broken = smooth(-0.75f, 0.1f, wander(d.x * 14, seed));
      lay(c, ink,
          strength * fade * broken *
              coverage(across - width / 2, std::max(width, 1.2f / canvas.unit())));
    });
  }
}

void drawDust(Canvas& canvas, int specks, int hairs, float largest, Color ink, float opacity,
              uint32_t seed) {
  Random random(seed);
  const Point reach = canvas.reach();
  for (int i = 0; i < specks; ++i) {
    const Point middle{random.between(-reach.x, reach.x), random.between(-reach.y, reach.y)};
    const float radius = largest * mix(0.12f, 1.0f, square(square(random.unit())));
    const float strength = opacity * random.between(0.3f, 1.0f);
    const uint32_t lump = random.bits();
    canvas.eachNear(middle, 1.6f * radius + 2 / canvas.unit(), [&](const Spot& s, Color& c) {
      const Point d = s.p - middle;
      const float wobble = 1 + 0.35f * wander(3 + 1.3f * angleOf(d), lump, 0);
      lay(c, ink,
          strength *
              coverage(length(d) - radius * wobble, std::max(radius * 0.5f, 1.6f / canvas.unit())));
    });
  }
  for (int i = 0; i < hairs; ++i) {
    Point p{random.between(-reach.x, reach.x), random.between(-reach.y, reach.y)};
    float heading = random.between(0, 2 * kPi);
    const float turn = random.around() * 0.5f;
    const float strength = opacity * random.between(0.4f, 0.9f);
    const int pieces = 6 + random.below(10);
    for (int k = 0; k < pieces; ++k) {
      const Point next = p + direction(heading) * (largest * 1.6f);
      canvas.eachNear(next, largest * 1.8f + 2 / canvas.unit(), [&](const Spot& s, Color& c) {
        const float distance = distanceToSegment(s.p, p, next);
        lay(c, ink, strength * coverage(distance - 0.4f / canvas.unit(), 1.4f / canvas.unit()));
      });
      p = next;
      heading += turn + 0.3f * random.around();
    }
  }
}

float raggedFrame(const Canvas& canvas, const Spot& s, float roughness, float wavelength,
                  uint32_t seed) {
  const Point reach = canvas.reach();
  const float across = reach.x - std::abs(s.p.x);
  const float down = reach.y - std::abs(s.p.y);
  // Rounded inside: the plain minimum of the two would show its crease as a mitre.
  const float straight = 1.4f * (across + down - std::sqrt(across * across + down * down));
  const Point q = s.p * (1 / wavelength);
  return straight + roughness * fbm(q.x, q.y, 5, seed);
}

}  // namespace qpx::drawing
