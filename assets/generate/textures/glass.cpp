// Things between the lens and the world: an old pane, a broken signal, a neon tube, the
// kaleidoscope's mirrors.
#include "kit/facets.h"
#include "kit/light.h"
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// A dirty window against the light: the room's lamps reflected, smears, drops and scratches.
void drawOldGlass(Canvas& canvas) {
  constexpr Color kLamps[] = {rgb(0xFFD8A0), rgb(0xFFB878), rgb(0xC8D8F0)};
  addBokeh(canvas,
           {.count = 22,
            .smallest = 0.05f,
            .largest = 0.20f,
            .light = 0.34f,
            .seed = 2201,
            .blades = 0,
            .softness = 0.10f},
           kLamps, 3, [](Point p) { return smooth(0.3f, -0.9f, p.y); });
  canvas.each([](const Spot& s, Color& c) {
    // Drawn glass is wavy, so the reflection of the window frame wanders.
    const Point q = bent(s.p, 0.05f, 0.5f, 2202);
    const Point d = alongAxis(q - Point{0.35f, 0}, direction(1.15f));
    const float reflection = 0.34f * smooth(0.45f, 0.30f, std::abs(d.y)) +
                             0.20f * smooth(0.09f, 0.05f, std::abs(d.y + 0.72f));
    const float smear =
        0.17f * square(clamp01(0.5f + fbm(s.p.x * 0.7f + s.p.y, s.p.y * 3 - s.p.x * 2, 4, 2203)));
    c = c +
        rgb(0xE8F0F4) * ((reflection + smear) * (0.75f + 0.25f * fbm(q.x * 2, q.y * 2, 3, 2204)));
  });
  canvas.develop(1.1f, 1.0f);
  drawScratches(canvas,
                {.count = 80,
                 .angle = 0.5f,
                 .spread = 2.6f,
                 .longest = 0.9f,
                 .thickness = 1.0f,
                 .seed = 2205},
                grey(0.85f), 0.40f);
  drawDust(canvas, 240, 3, 0.010f, grey(0.8f), 0.40f, 2206);
}

// Torn lines of a video signal. Clear lines keep mid grey under their alpha of 0.
void drawGlitch(Canvas& canvas) {
  canvas.each([](const Spot&, Color& c) { c = grey(0.5f, 0); });
  Random random(2211);
  constexpr Color kTints[] = {rgb(0x10F0E8), rgb(0xFF1470), rgb(0x2048FF), rgb(0xF8F8F8),
                              rgb(0x101018)};
  for (int band = 0; band < 26; ++band) {
    const float top = random.unit();
    const float tall =
        random.unit() < 0.3f ? random.between(0.02f, 0.06f) : random.between(0.003f, 0.012f);
    const float start = random.between(-0.4f, 0.9f);
    const float wide = random.between(0.15f, 0.9f);
    const Color tint = kTints[random.below(5)];
    const float strength = random.between(0.25f, 0.8f);
    const uint32_t seed = random.bits();
    canvas.each([&](const Spot& s, Color& c) {
      if (s.v < top || s.v > top + tall || s.u < start || s.u > start + wide) {
        return;
      }
      const int block = static_cast<int>(s.x) / 8;
      const float broken = unitHash(block, static_cast<int>(s.y) / 4, seed) > 0.25f ? 1.0f : 0.35f;
      layOver(c, {tint.r, tint.g, tint.b, strength * broken}, 1);
    });
  }
  canvas.each([](const Spot& s, Color& c) {
    const bool dark = static_cast<int>(s.y) % 4 < 2;
    layOver(c, grey(0, dark ? 0.16f : 0.0f), 1);
  });
}

// Tubes of light as levels: two pixels of full light, and the glow of the gas round them.
void drawNeon(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float ring = std::abs(length(s.p) - 0.72f);
    const float diamond = std::abs(distanceToPolygon(s.p, 4, 0.42f, kPi / 4));
    const float distance = std::min(ring, diamond);
    const float line = smooth(0.012f, 0.006f, distance);
    const float glow = 0.55f * bell(distance / 0.035f) +
                       0.22f / (1 + square(distance / 0.06f)) * smooth(0.5f, 0.0f, distance);
    c = grey(clamp01(std::max(line, glow)));
  });
}

// The wedge between two mirrors that a place falls into, measured from the wedge's middle line.
Point folded(Point p, int mirrors, float turn) {
  const float wedge = kPi / static_cast<float>(mirrors);
  const float angle = angleOf(p) - turn;
  const float k = std::floor(angle / (2 * wedge) + 0.5f);
  const float inside = std::abs(angle - 2 * wedge * k);
  return direction(inside) * length(p);
}

struct Kaleidoscope {
  int mirrors;
  float turn;
  uint32_t seed;
};

// The mirrors' joints and the chips of glass between them, as light and shade by alpha.
void drawFacets(Canvas& canvas, const Kaleidoscope& scope) {
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = folded(s.p, scope.mirrors, scope.turn);
    const Cell cell = cellAt(q.x * 3.1f, q.y * 3.1f, scope.seed);
    const float tone = static_cast<float>(cell.id >> 8 & 255) / 255;
    const float edge = smooth(0.05f, 0.015f, cell.border);
    const float joint = smooth(0.020f, 0.006f, q.y) * smooth(0.02f, 0.12f, length(s.p));
    c = grey(clamp01(tone + 0.8f * edge + joint));
    c.a = clamp01(0.10f + 0.22f * std::abs(tone - 0.5f) + 0.35f * edge + 0.5f * joint);
  });
}

void drawScopeColors(Canvas& canvas, const Kaleidoscope& scope) {
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = folded(s.p, scope.mirrors, scope.turn);
    const Cell cell = cellAt(q.x * 3.1f, q.y * 3.1f, scope.seed);
    const float turns = static_cast<float>(cell.id & 255) / 255;
    const Color glass = mix(grey(0.5f), hue(0.55f + 0.45f * turns), 0.45f);
    c = glass * (1 - 0.25f * smooth(0.06f, 0.0f, cell.border)) * mix(1.1f, 0.6f, s.corner);
    c.a = 0.85f;
  });
}

constexpr Kaleidoscope kTwo{4, 0.0f, 2231};
constexpr Kaleidoscope kThree{6, 0.5236f, 2241};

void drawScope2A(Canvas& canvas) { drawFacets(canvas, kTwo); }
void drawScope2B(Canvas& canvas) { drawScopeColors(canvas, kTwo); }
void drawScope3A(Canvas& canvas) { drawFacets(canvas, kThree); }
void drawScope3B(Canvas& canvas) { drawScopeColors(canvas, kThree); }

constexpr Texture kTextures[] = {
    {"Glass_SquareData", 640, 427, Channels::rgba, drawOldGlass, "screen; black is clear"},
    {"Glitch01Texture", 512, 512, Channels::rgba, drawGlitch, "normal by alpha"},
    {"NeonMask2", 1200, 1200, Channels::palette, drawNeon, "mask; the index is the level"},
    {"Kaleidoscope2ATexture", 256, 256, Channels::rgba, drawScope2A, "normal by alpha"},
    {"Kaleidoscope2BTexture", 256, 256, Channels::rgba, drawScope2B, "soft light by alpha"},
    {"Kaleidoscope3ATexture", 256, 256, Channels::rgba, drawScope3A, "normal by alpha"},
    {"Kaleidoscope3BTexture", 256, 256, Channels::rgba, drawScope3B, "soft light by alpha"},
};

}  // namespace

std::span<const Texture> glassTextures() { return kTextures; }

}  // namespace qpx::drawing
