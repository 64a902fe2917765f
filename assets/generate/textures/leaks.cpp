// Stray light on film, screened over a picture: black is clear.
#include "kit/light.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

constexpr float kFromLeft = 0;
constexpr float kFromTop = kPi / 2;
constexpr float kFromRight = kPi;
constexpr float kFromBottom = -kPi / 2;

void drawA02Leak(Canvas& canvas) {
  addLeak(canvas, {.edge = {1, 0},
                   .inward = kFromRight + 0.15f,
                   .depth = 0.75f,
                   .light = 3.2f,
                   .tint = kFilmLeak,
                   .seed = 201});
  addGlow(canvas, {0.9f, -0.8f}, 0.7f, Color{0.35f, 0.18f, 0.05f}, 2);
  canvas.develop(1, 0.95f);
}

void drawA05Leak(Canvas& canvas) {
  addLeak(canvas, {.edge = {-1, -0.2f},
                   .inward = kFromLeft - 0.25f,
                   .depth = 0.55f,
                   .light = 2.8f,
                   .tint = {1, 0.36f, 0.12f},
                   .seed = 211,
                   .tongues = 0.7f});
  addLeak(canvas, {.edge = {0.2f, 1.05f},
                   .inward = kFromBottom,
                   .depth = 0.4f,
                   .light = 0.4f,
                   .tint = {0.9f, 0.15f, 0.35f},
                   .seed = 212});
  canvas.develop(1, 0.95f);
}

void drawA10Sun(Canvas& canvas) {
  addGlow(canvas, {-0.75f, -0.85f}, 0.45f, Color{1.3f, 0.85f, 0.45f}, 1.4f);
  addGlow(canvas, {-0.3f, -0.5f}, 1.1f, Color{0.30f, 0.12f, 0.05f}, 2);
  addRays(canvas, {-0.9f, -1.0f}, 2.2f, Color{0.5f, 0.32f, 0.18f}, 22, 221);
  canvas.develop(1, 0.95f);
}

void drawA10Veil(Canvas& canvas) {
  addLeak(canvas, {.edge = {0.1f, 1},
                   .inward = kFromBottom + 0.2f,
                   .depth = 0.6f,
                   .light = 0.9f,
                   .tint = {0.75f, 0.30f, 0.55f},
                   .seed = 231,
                   .tongues = 0.8f,
                   .wavelength = 1.1f});
  addLeak(canvas, {.edge = {1, 0.3f},
                   .inward = kFromRight,
                   .depth = 0.45f,
                   .light = 0.6f,
                   .tint = {0.30f, 0.32f, 0.9f},
                   .seed = 232});
  canvas.develop(1, 0.95f);
}

void drawA11Top(Canvas& canvas) {
  addLeak(canvas, {.edge = {-0.5f, -1},
                   .inward = kFromTop - 0.35f,
                   .depth = 0.62f,
                   .light = 1.5f,
                   .tint = {1, 0.42f, 0.14f},
                   .seed = 241,
                   .tongues = 0.75f,
                   .wavelength = 0.9f});
  addGlow(canvas, {-1.1f, -0.9f}, 0.5f, Color{1.6f, 1.1f, 0.5f}, 1.5f);
  canvas.develop(1, 1.0f);
}

void drawA11Bottom(Canvas& canvas) {
  addLeak(canvas, {.edge = {0.3f, 1},
                   .inward = kFromBottom + 0.1f,
                   .depth = 0.42f,
                   .light = 1.0f,
                   .tint = {0.95f, 0.25f, 0.38f},
                   .seed = 251,
                   .tongues = 0.8f,
                   .wavelength = 0.7f});
  addLeak(canvas, {.edge = {1.33f, 0.6f},
                   .inward = kFromRight - 0.3f,
                   .depth = 0.3f,
                   .light = 3.0f,
                   .tint = kFilmLeak,
                   .seed = 252});
  canvas.develop(1, 1.0f);
}

void drawA11Spot(Canvas& canvas) {
  addGlow(canvas, {0.55f, -0.25f}, 0.6f, Color{1.0f, 0.66f, 0.34f}, 1.6f);
  canvas.develop(1, 1.0f);
  canvas.moveLightToAlpha();
}

void drawA13Bokeh(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xFF6A9C), rgb(0xFFB070), rgb(0x9A78FF), rgb(0x60B0FF)};
  addBokeh(canvas,
           {.count = 80,
            .smallest = 0.06f,
            .largest = 0.26f,
            .light = 0.42f,
            .seed = 261,
            .softness = 0.06f},
           kTints, 4, [](Point p) { return smooth(-0.7f, 1.0f, p.y * 0.8f - 0.35f * p.x); });
  addLeak(canvas, {.edge = {-1.33f, 0.5f},
                   .inward = kFromLeft - 0.4f,
                   .depth = 0.7f,
                   .light = 0.6f,
                   .tint = {0.8f, 0.18f, 0.42f},
                   .seed = 262});
  canvas.develop(1, 0.95f);
}

void drawA14Strip(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    // Cut to the picture's shape from the top, so it must look the same wherever it ends.
    const float wave = 0.12f * fbm(s.u * 0.6f, s.y / 180, 3, 271);
    const float light = bell((s.u + wave + 0.02f) * 2.5f);
    c = mix(rgb(0xE8785C), rgb(0xFFE6B8), smooth(0.35f, 1.0f, light));
    c.a = 0.85f * light;
  });
}

void drawA16Haze(Canvas& canvas) {
  addGlow(canvas, {-0.8f, -0.4f}, 0.9f, Color{0.75f, 0.34f, 0.36f}, 1.7f);
  addGlow(canvas, {0.9f, 0.9f}, 0.8f, Color{0.10f, 0.16f, 0.34f}, 1.7f);
  canvas.develop(1, 0.95f);
}

void drawFilter02(Canvas& canvas) {
  const Point reach = canvas.reach();
  addLeak(canvas, {.edge = {reach.x, -0.3f},
                   .inward = kFromRight - 0.3f,
                   .depth = 0.7f,
                   .light = 1.25f,
                   .tint = {1, 0.50f, 0.16f},
                   .seed = 281,
                   .tongues = 0.35f,
                   .wavelength = 1.2f});
  addGlow(canvas, {reach.x * 0.9f, -0.9f}, 0.5f, Color{0.9f, 0.7f, 0.4f}, 1.6f);
  canvas.develop(1, 0.95f);
}

// A print of the nineties: milky shadows, a magenta burn from the side. Only what is lighter than
// the picture shows.
void drawFilter1995(Canvas& canvas) {
  addLeak(canvas, {.edge = {1, 0.5f},
                   .inward = kFromRight + 0.2f,
                   .depth = 0.7f,
                   .light = 1.5f,
                   .tint = {1, 0.30f, 0.22f},
                   .seed = 291,
                   .tongues = 0.5f});
  canvas.develop(1, 0.95f);
  canvas.each([](const Spot& s, Color& c) {
    const float light = brightest(c);
    const Color milk = mix(rgb(0x4C3A5E), rgb(0x5A4A3C), s.v);
    c = {std::max(c.r, milk.r), std::max(c.g, milk.g), std::max(c.b, milk.b),
         mix(0.55f, 1.0f, light)};
  });
}

void drawColorEffect(Canvas& canvas) {
  addGlow(canvas, {-0.9f, -1.0f}, 0.9f, Color{0.10f, 0.42f, 0.80f}, 1.8f);
  addGlow(canvas, {1.0f, -0.1f}, 0.8f, Color{0.85f, 0.14f, 0.42f}, 1.8f);
  addGlow(canvas, {-0.6f, 1.2f}, 0.9f, Color{0.70f, 0.42f, 0.06f}, 1.8f);
  canvas.develop(1, 0.95f);
}

// Lamps that moved while the shutter was open, on the grey that soft light leaves alone.
void drawTrails(Canvas& canvas, float angle, const Color* tints, int tintCount, int count,
                uint32_t seed) {
  Random random(seed);
  for (int i = 0; i < count; ++i) {
    const float near = square(random.unit());
    const Color tint = tints[random.below(tintCount)];
    addTrail(canvas, {.angle = angle + 0.16f * random.around(),
                      .offset = random.between(-1.1f, 1.1f),
                      .sway = mix(0.08f, 0.28f, near),
                      .width = mix(0.006f, 0.034f, near),
                      .light = tint * random.between(0.3f, 1.1f),
                      .seed = seed + 10 * static_cast<uint32_t>(i + 1)});
  }
  canvas.develop(1.3f, 0.85f);
  canvas.each([](const Spot&, Color& c) {
    c = {mix(0.46f, 1.0f, c.r), mix(0.46f, 1.0f, c.g), mix(0.46f, 1.0f, c.b), 1};
  });
}

void drawStreaksWarm(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xFF3C50), rgb(0xFF9C30), rgb(0xFFE070), rgb(0xFF40A8)};
  drawTrails(canvas, 1.15f, kTints, 4, 24, 301);
}

void drawStreaksCool(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0x30FFE0), rgb(0x3C80FF), rgb(0xB050FF), rgb(0x50FF90)};
  drawTrails(canvas, 1.95f, kTints, 4, 22, 601);
}

// The three shapes of one light, always over the upper right.
void drawWarmOverlay(Canvas& canvas) {
  const Point reach = canvas.reach();
  const Point sun{reach.x * 0.85f, -reach.y * 0.85f};
  addGlow(canvas, sun, 0.35f, Color{1.5f, 0.95f, 0.45f}, 1.35f);
  addGlow(canvas, sun * 0.5f, 1.1f, Color{0.30f, 0.11f, 0.04f}, 1.8f);
  addRays(canvas, sun, 2.0f, Color{0.42f, 0.25f, 0.12f}, 18, 311);
  addLeak(canvas, {.edge = {-reach.x, reach.y * 0.4f},
                   .inward = kFromLeft + 0.1f,
                   .depth = 0.35f,
                   .light = 1.1f,
                   .tint = kFilmLeak,
                   .seed = 312});
  canvas.develop(1, 0.95f);
}

constexpr Texture kTextures[] = {
    {"A02Step4Mask", 360, 360, Channels::rgba, drawA02Leak, "screen; black is clear"},
    {"A05Mask", 360, 360, Channels::rgba, drawA05Leak, "screen; black is clear"},
    {"A10Data2", 600, 600, Channels::rgba, drawA10Sun, "screen; black is clear"},
    {"A10Data3", 600, 600, Channels::rgba, drawA10Veil, "screen; black is clear"},
    {"A11Mask0", 869, 652, Channels::rgb, drawA11Top, "screen; black is clear"},
    {"A11Mask1", 869, 652, Channels::rgb, drawA11Bottom, "screen; black is clear"},
    {"A11Mask2", 200, 150, Channels::rgba, drawA11Spot, "screen by alpha"},
    {"A13Data2", 400, 300, Channels::rgba, drawA13Bokeh, "screen; black is clear"},
    {"A14Mask4", 150, 1000, Channels::rgba, drawA14Strip, "normal by alpha"},
    {"A16Mask", 240, 240, Channels::rgba, drawA16Haze, "screen; black is clear"},
    {"filter02_Landscape", 600, 450, Channels::rgba, drawFilter02, "screen; black is clear"},
    {"filter02_Square", 120, 120, Channels::rgba, drawFilter02, "screen; black is clear"},
    {"Filter1995Mask", 225, 300, Channels::rgba, drawFilter1995, "lighten by alpha"},
    {"ColorEffectMask", 600, 800, Channels::rgba, drawColorEffect, "screen; black is clear"},
    {"ColorFullLightStreaks84Data1", 600, 800, Channels::rgba, drawStreaksWarm,
     "soft light; mid grey is clear"},
    {"ColorFullLightStreaks84Data2", 600, 800, Channels::rgba, drawStreaksCool,
     "soft light; mid grey is clear"},
    {"WarmOverlayLayer6Landscape", 600, 450, Channels::rgba, drawWarmOverlay,
     "screen; black is clear"},
    {"WarmOverlayLayer6Portrait", 450, 600, Channels::rgba, drawWarmOverlay,
     "screen; black is clear"},
    {"WarmOverlayLayer6Square", 600, 600, Channels::rgba, drawWarmOverlay,
     "screen; black is clear"},
};

}  // namespace

std::span<const Texture> leakTextures() { return kTextures; }

}  // namespace qpx::drawing
