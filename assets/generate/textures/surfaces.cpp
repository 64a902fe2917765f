// Things that photographs are printed on or nailed to, multiplied into a picture: white is clear.
#include "kit/paint.h"
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

void drawPaper(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    // Lit from the upper left: the slope of the tooth, not its height, is what one sees.
    const float slope =
        paperTooth(s.x, s.y, 3.2f, 501) - paperTooth(s.x - 1.2f, s.y - 1.2f, 3.2f, 501);
    const float cloud = fbm(s.p.x * 1.3f, s.p.y * 1.3f, 4, 502);
    const float level = 0.945f + 0.055f * slope + 0.018f * cloud - 0.05f * square(s.corner);
    c = rgb(0xFFFBF2) * level;
  });
  drawScratches(canvas,
                {.count = 90,
                 .angle = 0,
                 .spread = 3,
                 .longest = 0.16f,
                 .thickness = 1.1f,
                 .seed = 503,
                 .curl = 0.03f},
                rgb(0xB8A88C), 0.22f);
  canvas.coarsen(3);
}

struct Knot {
  Point centre;
  float radius;
};

// Distance from the pith that the saw laid bare at a place of a plank, in pixels of 1200.
float ringDepth(Point p, float pith, uint32_t seed) {
  // The trunk is not straight: its axis dives under the surface and comes up again, which draws the
  // cathedrals.
  const float dive = 60 + 75 * (1 + wander(p.x / 420, seed));
  const float side = p.y - pith - 22 * wander(p.x / 300, seed + 1);
  return std::sqrt(side * side + dive * dive) + 7 * fbm(p.x / 130, p.y / 24, 3, seed + 2);
}

Color woodAt(Point p, float pith, const Knot& knot, uint32_t seed) {
  constexpr Color kWood[] = {rgb(0x94704F), rgb(0xC4A27C), rgb(0xE0C8A8), rgb(0xF2E4CC)};
  const Point toKnot{(p.x - knot.centre.x) * 0.55f, p.y - knot.centre.y};
  const float away = length(toKnot) / knot.radius;
  const float around = bell(away * 0.42f);
  // Rings flow round a knot; within it they are its own.
  const float flow =
      ringDepth({p.x, p.y + 26 * around * (toKnot.y > 0 ? 1.0f : -1.0f) * smooth(0.0f, 0.5f, away)},
                pith, seed);
  // Years differ: the rings must not be evenly spaced.
  const float ring = fract(flow / 13.0f + 0.8f * wander(flow / 31, seed + 7));
  const float late = smooth(0.25f, 0.88f, ring) * smooth(1.0f, 0.93f, ring);
  const float fibre =
      perlin(p.x / 46, p.y / 1.7f, seed + 3) + 0.5f * perlin(p.x / 19, p.y / 0.9f, seed + 4);
  const float pores = smooth(0.55f, 0.8f, perlin(p.x / 15, p.y / 1.3f, seed + 5));
  float lightness = 0.86f - 0.42f * late * (0.8f + 0.2f * fibre) + 0.07f * fibre - 0.16f * pores;
  const float heart = smooth(1.25f, 0.75f, away + 0.12f * fbm(p.x / 9, p.y / 9, 2, seed + 6));
  const float knotRings = 0.25f + 0.16f * static_cast<float>(cosine(double{away} * 16 + fibre));
  lightness = mix(lightness - 0.25f * bell((away - 1.15f) * 3), knotRings, heart);
  return ramp(kWood, lightness);
}

void drawWood(Canvas& canvas) {
  constexpr float kPlank = 150;
  constexpr Knot kKnots[] = {{{240, 70}, 17}, {{930, 96}, 12},  {{-900, 0}, 9},
                             {{620, 60}, 21}, {{1105, 40}, 10}, {{130, 104}, 14}};
  canvas.each([&](const Spot& s, Color& c) {
    const int plank = std::min(static_cast<int>(s.y / kPlank), 5);
    const auto seed = static_cast<uint32_t>(520 + 17 * plank);
    const Point p{s.x, s.y - kPlank * static_cast<float>(plank)};
    const float pith = mix(-40.0f, 190.0f, unitHash(plank, 0, 519));
    const float tone = mix(0.88f, 1.04f, unitHash(plank, 1, 519));
    const Color warm = mix(rgb(0xFFF6EA), rgb(0xF6E6D2), unitHash(plank, 2, 519));
    const float edge = std::min(p.y, kPlank - p.y) + 1.2f * wander(s.x / 60, seed + 9);
    const float gap = smooth(0.4f, 2.6f, edge);
    const float bevel = mix(0.86f, 1.0f, smooth(1.0f, 9.0f, edge));
    c = mix(rgb(0x2A1A10), woodAt(p, pith, kKnots[plank], seed) * warm * (tone * bevel), gap);
  });
  const Color iron = rgb(0x3A3230);
  for (int plank = 0; plank < 6; ++plank) {
    for (const float x : {54.0f, 1146.0f}) {
      const Point nail =
          Point{x + 6 * unitHash(plank, 3, 519), kPlank * (static_cast<float>(plank) + 0.5f)} *
              (1 / canvas.unit()) -
          canvas.reach();
      canvas.eachNear(nail, 0.05f, [&](const Spot& s, Color& c) {
        const float r = length(s.p - nail) * canvas.unit();
        c = c * mix(0.72f, 1.0f, smooth(4.0f, 13.0f, r));
        c = mix(c, iron * (1.1f - 1.5f * (s.p.y - nail.y + s.p.x - nail.x) * 10),
                smooth(5.4f, 4.2f, r));
      });
    }
  }
  canvas.coarsen(3);
}

// Plaster that has been painted, weathered and painted again.
void drawGrunge(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.12f, 0.7f, 541, 5);
    const float worn = fbm(q.x * 1.4f, q.y * 1.4f, 6, 542);
    const float edge = raggedFrame(canvas, s, 0.26f, 0.55f, 543);
    const float peeled = smooth(0.10f, 0.14f, worn + 0.35f * smooth(0.35f, 0.0f, edge));
    const float lip = bell((worn + 0.35f * smooth(0.35f, 0.0f, edge) - 0.10f) * 26);
    const float run =
        smooth(0.2f, 0.8f, fbm(s.p.x * 7, s.p.y * 0.5f, 3, 544)) * smooth(-1.6f, 1.4f, s.p.y);
    const Cell cell = cellAt(q.x * 1.7f + 0.12f * fbm(q.x * 5, q.y * 5, 4, 545),
                             q.y * 1.7f + 0.12f * fbm(q.y * 5, q.x * 5, 4, 546), 547);
    const float crack =
        smooth(0.014f, 0.003f, cell.border) * smooth(-0.15f, 0.35f, fbm(q.x, q.y, 2, 548));
    float level = 0.95f + 0.03f * fbm(s.p.x * 12, s.p.y * 12, 3, 549);
    level -= 0.17f * peeled + 0.16f * lip + 0.13f * run + 0.40f * crack;
    level *= mix(0.42f, 1.0f, smooth(-0.06f, 0.45f, edge));
    c = mix(rgb(0xFFFDF8), mix(rgb(0xE4D6C4), rgb(0xD8D4CC), peeled), 0.7f) * level;
  });
  drawScratches(
      canvas,
      {.count = 70, .angle = 1.3f, .spread = 1.1f, .longest = 1.3f, .thickness = 1.5f, .seed = 550},
      rgb(0x5A4A40), 0.5f);
  drawDust(canvas, 260, 0, 0.012f, rgb(0x40342C), 0.7f, 551);
  canvas.coarsen(3);
}

// A leaf that lay in a drawer for a century: foxing, a water line, browned margins.
void drawSepiaPaper(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float edge = raggedFrame(canvas, s, 0.10f, 0.5f, 561);
    const float tooth =
        paperTooth(s.x, s.y, 3.5f, 562) - paperTooth(s.x - 1.3f, s.y - 1.3f, 3.5f, 562);
    const float tide = blotDepth(s.p, {0.75f, 0.55f}, 0.62f, 0.22f, 563);
    const float waterLine =
        bell((tide - 0.01f) / 0.018f) * 0.30f + 0.14f * smooth(-0.02f, 0.05f, tide);
    const float fox = stains(s.p, 0.12f, -0.05f, 564) *
                      smooth(-0.2f, 0.5f, fbm(s.p.x * 1.2f, s.p.y * 1.2f, 2, 565));
    const float cloud = 0.5f + 0.5f * fbm(s.p.x * 1.4f, s.p.y * 1.4f, 5, 566);
    c = mix(rgb(0xFFF6DC), rgb(0xF0DCAE), cloud) * (1 + 0.035f * tooth);
    c = glazed(c, rgb(0xB88448), clamp01(waterLine + 0.45f * fox));
    c = glazed(c, rgb(0x9A6A38), 0.75f * power(1 - smooth(-0.02f, 0.55f, edge), 1.6f));
  });
  drawScratches(canvas,
                {.count = 24,
                 .angle = 0.8f,
                 .spread = 2.6f,
                 .longest = 0.5f,
                 .thickness = 1.1f,
                 .seed = 567,
                 .curl = 0.08f},
                rgb(0x8A6840), 0.3f);
  canvas.coarsen(3);
}

constexpr Texture kTextures[] = {
    {"Paper_SquareData", 480, 480, Channels::rgba, drawPaper, "multiply; white is clear"},
    {"Wood_85Mask", 1200, 900, Channels::rgba, drawWood, "multiply; white is clear"},
    {"GrungeData", 682, 1024, Channels::rgba, drawGrunge, "multiply; white is clear"},
    {"SepiaYellowTextureData", 600, 600, Channels::rgba, drawSepiaPaper,
     "multiply; white is clear"},
};

}  // namespace

std::span<const Texture> surfaceTextures() { return kTextures; }

}  // namespace qpx::drawing
