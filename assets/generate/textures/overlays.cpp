// Soft colour casts of the lettered looks. Soft light and overlay leave the picture alone where the
// layer is mid grey.
#include "kit/light.h"
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// A cast that runs through `stops` along `turn`, softly bent.
template <int N>
void drawCast(Canvas& canvas, const Color (&stops)[N], float turn, uint32_t seed) {
  const Point axis = direction(turn);
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent({2 * s.u - 1, 2 * s.v - 1}, 0.2f, 1.5f, seed);
    c = ramp(stops, 0.5f + 0.42f * dot(q, axis));
  });
}

void drawA02Cast(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x2C5A78), rgb(0x6A8488), rgb(0x8A8478), rgb(0xC09060)};
  drawCast(canvas, kStops, -0.9f, 321);
}

void drawA04Window(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent({2 * s.u - 1, 2 * s.v - 1}, 0.1f, 1.2f, 331);
    const float shaft =
        bell((q.x + 0.55f * q.y + 0.15f) * 1.6f) + 0.5f * bell((q.x + 0.55f * q.y - 0.85f) * 3.5f);
    c = mix(rgb(0x64606C), rgb(0xE4D4A4), clamp01(shaft * 0.85f));
    c.a = 1;
  });
}

void drawA08Glow(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float sun = bell(length(Point{s.u - 0.72f, s.v - 0.25f}) * 2.1f);
    const float ground = smooth(0.55f, 1.0f, s.v);
    c = mix(mix(rgb(0x7C7884), rgb(0x3C4A6C), 0.7f * ground), rgb(0xF0B878), sun);
  });
}

void drawA10Base(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0xA88C68), rgb(0x8C8478), rgb(0x7A7C84), rgb(0x56607C)};
  drawCast(canvas, kStops, 1.1f, 341);
  canvas.each([](const Spot& s, Color& c) { c = c * mix(0.55f, 1.06f, vignette(s, 0.2f)); });
}

void drawA10Finish(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x8E5A78), rgb(0x867878), rgb(0x9C9070), rgb(0xB8A070)};
  drawCast(canvas, kStops, -0.5f, 351);
}

void drawA11Shade(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float corner = 1 - vignette(s, 0.2f);
    c = mix(rgb(0x706464), rgb(0x2A1820), corner);
    c.a = 0.15f + 0.8f * corner;
  });
}

void drawA11Warmth(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float centre = bell(length(Point{s.u - 0.4f, s.v - 0.45f}) * 2.0f);
    c = mix(rgb(0x90786C), rgb(0xFFC078), centre);
    c.a = 0.9f * centre;
  });
}

// Petals out of focus, as if seen through a meadow.
void drawA13Meadow(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xC89CA8), rgb(0xB8A888), rgb(0x94A8A0)};
  canvas.each([](const Spot& s, Color& c) { c = mix(rgb(0x5E5470), rgb(0x8A7468), s.v); });
  Canvas petals(canvas.width(), canvas.height());
  addBokeh(petals,
           {.count = 70,
            .smallest = 0.08f,
            .largest = 0.36f,
            .light = 0.22f,
            .seed = 361,
            .softness = 0.28f},
           kTints, 3, [](Point p) { return smooth(-0.9f, 0.9f, p.y); });
  petals.develop(1, 1);
  canvas.each([&](const Spot& s, Color& c) {
    const Color& light = petals.at(static_cast<int>(s.x), static_cast<int>(s.y));
    c = {c.r + light.r * (1 - c.r), c.g + light.g * (1 - c.g), c.b + light.b * (1 - c.b), 1};
  });
}

void drawA14Haze(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    c = mix(rgb(0xF4D8D4), rgb(0xD8B0C0), s.u);
    c.a = 0.25f + 0.55f * bell((s.v - 0.35f + 0.1f * wander(s.u * 2, 371)) * 2.2f);
  });
}

void drawA14Cast(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x9C7C94), rgb(0x887C84), rgb(0x90846C)};
  drawCast(canvas, kStops, 0.6f, 381);
}

void drawA14Shade(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float open = vignette(s, 0.25f, 0.85f);
    const float cloud = 0.03f * fbm(s.p.x, s.p.y, 3, 391);
    c = mix(rgb(0x6A5468), rgb(0xFFFCF6), clamp01(open + cloud));
    c.a = 1;
  });
}

void drawGolden(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x4A2C18), rgb(0xA8722C), rgb(0xF0B848), rgb(0xFFECA8)};
  canvas.each([&](const Spot& s, Color& c) {
    const float light = bell(length(Point{s.u - 0.62f, s.v - 0.3f}) * 1.6f);
    c = ramp(kStops, light);
    c.a = 0.45f + 0.5f * light;
  });
}

void drawOldGlassLight(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x3A5A5C), rgb(0x6A7C74), rgb(0x948868), rgb(0xC89C58)};
  drawCast(canvas, kStops, -0.75f, 396);
  canvas.each([](const Spot& s, Color& c) { c = c * mix(0.6f, 1.08f, vignette(s, 0.1f)); });
}

void drawWarmEdge(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float corner = 1 - vignette(s, 0.25f);
    c = mix(rgb(0xA4622C), rgb(0x3C1810), corner);
    c.a = 0.9f * corner;
  });
}

// A haze of the two complementary tones that the Dorvik looks share.
void drawDorvik(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x1C4A5C), rgb(0x5C787C), rgb(0x8C8478), rgb(0xC08A58),
                              rgb(0xD89850)};
  drawCast(canvas, kStops, 0.35f, 398);
  canvas.each([](const Spot& s, Color& c) {
    c = c * (1 + 0.10f * fbm(s.p.x * 0.9f, s.p.y * 1.6f, 4, 399));
    c.a = 0.9f;
  });
}

constexpr Texture kTextures[] = {
    {"A02Step3Mask", 360, 360, Channels::rgba, drawA02Cast, "soft light; mid grey is clear"},
    {"A04Texture", 256, 256, Channels::rgba, drawA04Window, "soft light; mid grey is clear"},
    {"A08Mask", 200, 200, Channels::rgba, drawA08Glow, "overlay; mid grey is clear"},
    {"A10Data1", 600, 450, Channels::rgba, drawA10Base, "soft light; mid grey is clear"},
    {"A10Data4", 434, 326, Channels::rgb, drawA10Finish, "soft light; mid grey is clear"},
    {"A11Mask3", 200, 150, Channels::rgba, drawA11Shade, "soft light by alpha"},
    {"A11Mask4", 200, 150, Channels::rgba, drawA11Warmth, "soft light by alpha"},
    {"A13Data1", 400, 300, Channels::rgba, drawA13Meadow, "soft light; mid grey is clear"},
    {"A14Mask1", 160, 44, Channels::rgba, drawA14Haze, "normal by alpha"},
    {"A14Mask2", 160, 110, Channels::rgb, drawA14Cast, "soft light; mid grey is clear"},
    {"A14Mask3", 600, 411, Channels::rgba, drawA14Shade, "multiply; white is clear"},
    {"golden_data", 120, 120, Channels::rgba, drawGolden, "overlay by alpha"},
    {"Gradient_SquareData", 480, 480, Channels::rgba, drawOldGlassLight,
     "soft light; mid grey is clear"},
    {"WarmOverlayLayer10Portrait", 180, 240, Channels::rgba, drawWarmEdge,
     "normal or multiply by alpha"},
    {"DORVIKT02MaskTexture", 512, 512, Channels::rgba, drawDorvik, "soft light by alpha"},
};

}  // namespace

std::span<const Texture> overlayTextures() { return kTextures; }

}  // namespace qpx::drawing
