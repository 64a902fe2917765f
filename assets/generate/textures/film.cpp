// What film and old prints gather: scratches, dust, fog, folds, uneven baths.
#include "kit/light.h"
#include "kit/paint.h"
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

constexpr float kUpright = kPi / 2;

void drawFilmDust(Canvas& canvas) {
  drawScratches(canvas,
                {.count = 26,
                 .angle = kUpright,
                 .spread = 0.05f,
                 .longest = 4,
                 .thickness = 1.1f,
                 .seed = 801,
                 .curl = 0.01f},
                grey(0.75f), 0.5f);
  drawScratches(
      canvas,
      {.count = 40, .angle = 0.6f, .spread = 2.5f, .longest = 0.5f, .thickness = 1.0f, .seed = 802},
      grey(0.8f), 0.35f);
  drawDust(canvas, 240, 9, 0.011f, grey(0.92f), 0.75f, 803);
}

// A fold: a line where the emulsion broke, light on one side and shaded on the other.
void addFold(Color& c, const Spot& s, Point through, float angle, float strength, uint32_t seed) {
  const Point d = alongAxis(s.p - through, direction(angle));
  const float across = d.y + 0.012f * fbm(d.x * 5, 1, 3, seed);
  const float here = strength * smooth(-0.7f, 0.4f, wander(d.x * 2.2f, seed + 1));
  const float shade = 0.16f * (bell(across / 0.035f - 0.9f) - bell(across / 0.05f + 0.9f)) +
                      0.75f * bell(across / 0.003f);
  c = grey(clamp01(c.r + here * shade * 0.42f));
}

void drawMonochrome14(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float bath = 0.07f * fbm(s.p.x * 0.9f, s.p.y * 0.9f, 4, 811);
    const float tide = blotDepth(s.p, {-0.7f, 1.0f}, 0.55f, 0.25f, 812);
    const float stain = -0.08f * smooth(-0.02f, 0.03f, tide) - 0.10f * bell((tide - 0.01f) / 0.02f);
    const float shine = 0.035f * grain(s.x, s.y, 2.4f, 3, 813);
    c = grey(mix(0.18f, 0.54f, vignette(s, 0.25f, 0.8f)) + bath + stain + shine);
    addFold(c, s, {0.2f, 0.35f}, 0.12f, 1, 814);
    addFold(c, s, {-0.35f, 0}, 1.50f, 0.8f, 815);
    addFold(c, s, {0.78f, -1.0f}, 2.3f, 0.9f, 816);
  });
  drawScratches(
      canvas,
      {.count = 60, .angle = 1.2f, .spread = 1.4f, .longest = 1.1f, .thickness = 1.2f, .seed = 817},
      grey(0.85f), 0.35f);
  drawDust(canvas, 240, 8, 0.010f, grey(0.88f), 0.6f, 818);
  drawDust(canvas, 120, 0, 0.008f, grey(0.12f), 0.5f, 819);
  canvas.coarsen(5);
}

// Window light falling across the print, its bars out of focus.
void drawMonochrome13(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point d = alongAxis(bent(s.p, 0.05f, 1.0f, 821), direction(-0.35f));
    const float blinds = 0.5f + 0.5f * static_cast<float>(sine(double{d.y} * 15 + 0.7));
    const float window =
        smooth(1.15f, 0.55f, std::abs(d.x + 0.1f)) * smooth(1.1f, 0.6f, std::abs(d.y));
    c = grey(0.36f + 0.36f * window * smooth(0.05f, 0.8f, blinds) +
             0.03f * fbm(s.p.x, s.p.y, 3, 822));
  });
}

void draw1915Damage(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float edge = raggedFrame(canvas, s, 0.12f, 0.35f, 831);
    const float eaten = smooth(0.05f, -0.03f, edge) * 0.8f;
    const float mould = 0.18f * stains(s.p, 0.10f, -0.04f, 832) * smooth(0.4f, 0.05f, edge);
    c = rgb(0xF4E8D0) * (eaten + mould);
  });
  drawScratches(canvas,
                {.count = 34,
                 .angle = kUpright,
                 .spread = 0.06f,
                 .longest = 3,
                 .thickness = 1.2f,
                 .seed = 833,
                 .curl = 0.02f},
                rgb(0xD8CCB8), 0.55f);
  drawDust(canvas, 260, 12, 0.014f, rgb(0xE8DCC8), 0.7f, 834);
}

void draw1915Fog(Canvas& canvas) {
  const Point reach = canvas.reach();
  addLeak(canvas, {.edge = {-reach.x, 0},
                   .inward = 0,
                   .depth = 0.32f,
                   .light = 0.55f,
                   .tint = {1, 0.82f, 0.58f},
                   .seed = 841,
                   .tongues = 0.35f,
                   .wavelength = 1.1f});
  addLeak(canvas, {.edge = {0, reach.y},
                   .inward = -kUpright,
                   .depth = 0.5f,
                   .light = 0.5f,
                   .tint = {1, 0.80f, 0.54f},
                   .seed = 842,
                   .tongues = 0.35f,
                   .wavelength = 1.1f});
  addGlow(canvas, {0.9f, -1.2f}, 0.4f, Color{0.4f, 0.32f, 0.22f}, 2);
  canvas.develop(1, 0.95f);
  // The blacks of such a print were never black.
  canvas.each([](const Spot&, Color& c) { c = c + rgb(0x2A2018) * (1 - brightest(c)); });
}

void draw1915Paper(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float cloud = fbm(s.p.x * 1.2f, s.p.y * 1.2f, 5, 851);
    const float stain = stains(s.p, 0.6f, 0.1f, 852);
    const float level = mix(0.20f, 0.60f, vignette(s, 0.3f, 0.8f)) + 0.07f * cloud - 0.08f * stain;
    c = Color{level + 0.03f, level, level - 0.05f};
    c.a = 0.65f + 0.3f * (1 - vignette(s, 0.3f));
  });
  canvas.coarsen(3);
}

void draw1915Border(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float edge = raggedFrame(canvas, s, 0.035f, 0.12f, 861);
    const float tooth = edge < 0.12f ? paperTooth(s.x, s.y, 3, 862) : 0;
    c = rgb(0xEFE2C8) * (0.95f + 0.02f * tooth - 0.10f * smooth(0.06f, 0.10f, edge));
    c.a = smooth(0.105f, 0.085f, edge);
  });
  canvas.coarsen(3);
}

// Long even scratches and a hot scan line or two: a worn cinema print.
void drawFilter05(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float flicker = 0.05f * wander(s.p.x * 1.3f, 871) + 0.05f * fbm(s.p.x, s.p.y, 4, 872);
    c = grey(mix(0.30f, 0.53f, vignette(s, 0.3f)) + flicker);
  });
  drawScratches(canvas,
                {.count = 16,
                 .angle = kUpright,
                 .spread = 0.02f,
                 .longest = 6,
                 .thickness = 1.5f,
                 .seed = 873,
                 .curl = 0},
                grey(0.95f), 0.6f);
  drawScratches(canvas,
                {.count = 12,
                 .angle = kUpright,
                 .spread = 0.02f,
                 .longest = 5,
                 .thickness = 1.5f,
                 .seed = 874,
                 .curl = 0},
                grey(0.08f), 0.6f);
  drawDust(canvas, 80, 4, 0.014f, grey(0.9f), 0.6f, 875);
}

void drawFilter05Glow(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float glow = bell(length(s.p - Point{0.1f, -0.15f}) * 0.95f);
    c = mix(rgb(0x6A5A70), rgb(0xD8B890), glow);
    c.a = 0.9f;
  });
}

constexpr Texture kTextures[] = {
    {"A10Data5", 860, 645, Channels::rgb, drawFilmDust, "screen; black is clear"},
    {"MonoChrome14Data", 900, 1200, Channels::rgba, drawMonochrome14,
     "soft light; mid grey is clear"},
    {"Monochrome_13Mask", 360, 360, Channels::rgba, drawMonochrome13,
     "soft light; mid grey is clear"},
    {"filter1915_data1", 500, 667, Channels::rgba, draw1915Damage, "screen; black is clear"},
    {"filter1915_data2", 500, 667, Channels::rgba, draw1915Fog, "lighten"},
    {"filter1915_data3", 500, 667, Channels::rgba, draw1915Paper, "soft light by alpha"},
    {"filter1915_data4", 500, 667, Channels::rgba, draw1915Border, "normal by alpha"},
    {"filter05_data", 500, 500, Channels::rgba, drawFilter05, "overlay; mid grey is clear"},
    {"filter05_data1", 500, 500, Channels::rgba, drawFilter05Glow, "soft light; mid grey is clear"},
};

}  // namespace

std::span<const Texture> filmTextures() { return kTextures; }

}  // namespace qpx::drawing
