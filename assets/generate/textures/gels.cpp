// Coloured filters before the lamp: smooth, saturated, a little uneven.
#include "kit/shapes.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// How far the gel reaches at a place: 1 behind it, 0 beside it, along a soft diagonal.
float gelReach(const Spot& s, float turn, float softness, uint32_t seed) {
  const Point q = bent(s.p, 0.16f, 1.1f, seed);
  return smooth(softness, -softness, dot(q, direction(turn)));
}

void drawRedMask(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float level = gelReach(s, 0.6f, 1.05f, 401);
    c = grey(level, level);
  });
}

void drawRedLayer(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x30061C), rgb(0xA80C2C), rgb(0xF02A30), rgb(0xFF7A50)};
  canvas.each([&](const Spot& s, Color& c) {
    const float lit = gelReach(s, 0.6f, 1.2f, 402);
    c = ramp(kStops, lit + 0.05f * fbm(s.p.x, s.p.y, 2, 403));
    c.a = mix(0.35f, 0.9f, lit);
  });
}

void drawRedGradient(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0xFF5A28), rgb(0xE8203C), rgb(0xB01468), rgb(0x501470)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.15f, 1.6f, 404);
    c = ramp(kStops, 0.5f + 0.36f * q.x + 0.30f * q.y);
  });
}

void drawRedAndBlue(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0xF0283C), rgb(0xA05868), rgb(0x7E7A84), rgb(0x40609C),
                              rgb(0x1C3CC0)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.2f, 1.3f, 405);
    c = ramp(kStops, 0.5f + 0.36f * q.x - 0.10f * q.y);
    c.a = 0.9f;
  });
}

// A lamp behind a creased red sheet.
void drawRedB(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x1A0410), rgb(0x6A0A20), rgb(0xC81C2C), rgb(0xFF5440),
                              rgb(0xFFB890)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.30f, 1.2f, 411);
    const float lamp = bell(length(s.p - Point{0.45f, -0.35f}) * 0.85f);
    const float crease = ridged(0.9f * q.x + 0.5f * q.y, 0.35f * q.y - 0.2f * q.x, 2, 412);
    c = ramp(kStops, 0.78f * lamp + 0.22f * square(crease));
    c.a = clamp01(0.35f + 0.65f * lamp);
  });
}

void drawOrange(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x7C6A64), rgb(0xD07A38), rgb(0xFF9A30), rgb(0xFFD080)};
  canvas.each([&](const Spot& s, Color& c) {
    const float lit = gelReach(s, -2.2f, 1.3f, 421);
    c = ramp(kStops, lit);
    c.a = mix(0.3f, 0.95f, lit);
  });
}

constexpr Texture kTextures[] = {
    {"RedGelAMaskTexture", 512, 512, Channels::rgba, drawRedMask, "mask; alpha and colours agree"},
    {"RedGelALayer11Texture", 512, 512, Channels::rgba, drawRedLayer, "soft light by alpha"},
    {"RedGelAGradientTexture", 512, 512, Channels::rgba, drawRedGradient,
     "overlay, or through the mask"},
    {"RedGelAColorEffectTexture", 512, 384, Channels::rgba, drawRedAndBlue, "soft light by alpha"},
    {"RedGelBTexture", 512, 512, Channels::rgba, drawRedB, "soft light or screen by alpha"},
    {"OrangeGelMask", 205, 300, Channels::rgba, drawOrange, "soft light by alpha"},
};

}  // namespace

std::span<const Texture> gelTextures() { return kTextures; }

}  // namespace qpx::drawing
