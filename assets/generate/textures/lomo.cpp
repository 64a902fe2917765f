// The toy camera: its vignettes, its colour casts, and the first textures the library had.
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

void drawLomoFalloff(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x160A14), rgb(0x3A2A38), rgb(0x74685E), rgb(0xA39A84),
                              rgb(0xC0B79A)};
  canvas.each([&](const Spot& s, Color& c) {
    // A plastic lens is never centred on its film.
    const Point q = bent(s.p - Point{0.06f, -0.05f}, 0.06f, 1.4f, 11);
    c = ramp(kStops, 1 - smooth(0.1f, 1.45f, length(q)));
  });
}

void drawLomoCast(Canvas& canvas) {
  constexpr Color kAcross[] = {rgb(0x7E5A4A), rgb(0x8E8258), rgb(0x84907C), rgb(0x5A7A8E),
                               rgb(0x473F7C)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.25f, 1.6f, 21);
    const float diagonal = 0.5f + 0.30f * q.x + 0.26f * q.y;
    c = ramp(kAcross, diagonal) * (0.92f + 0.24f * bell(length(q - Point{-0.15f, -0.2f}) * 1.1f));
  });
}

void drawFleeting(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float light =
        0.60f - 0.30f * smooth(0.35f, 1.15f, s.corner) + 0.05f * fbm(s.u * 1.6f, s.v * 1.6f, 3, 31);
    const float fogged = 0.25f * bell((s.u + 0.05f + 0.08f * wander(s.v * 2, 32)) * 3.2f);
    const float stain = stains(s.p, 0.9f, 0.15f, 33);
    c = Color{light + fogged, light + 0.4f * fogged - 0.02f, light - 0.05f + 0.1f * fogged} *
        mix(Color{1, 1, 1}, rgb(0xE8D8BC), stain);
  });
}

void drawDarkCorners(Canvas& canvas) {
  canvas.each(
      [&](const Spot& s, Color& c) { c = grey(mix(0.08f, 1.0f, vignette(s, 0.30f, 1.2f))); });
}

// Black that gathers in the corners, as alpha; `tone` keeps it from being dead.
void drawCornersInAlpha(Canvas& canvas, Color tone, float clear, float strength) {
  canvas.each([&](const Spot& s, Color& c) {
    c = tone;
    c.a = strength * (1 - vignette(s, clear, 1.1f));
  });
}

void drawLomo55(Canvas& canvas) { drawCornersInAlpha(canvas, rgb(0x060408), 0.22f, 0.96f); }

void drawLomo56(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x0C1420), rgb(0x3C4450), rgb(0x808078), rgb(0xB4A488),
                              rgb(0xC8B48C)};
  canvas.each([&](const Spot& s, Color& c) {
    c = ramp(kStops, vignette(s, 0.0f, 0.9f));
    c.a = 0.85f;
  });
}

void drawLomo57Warm(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float lit = bell(length(s.p - Point{-0.5f, -0.35f}) * 0.75f);
    c = mix(rgb(0x6C6470), rgb(0xE0A860), lit);
    c.a = 0.35f + 0.6f * lit;
  });
}

void drawLomo57Cool(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float far = smooth(0.25f, 1.1f, 0.5f * s.u + 0.6f * s.v);
    c = mix(rgb(0x807C74), rgb(0x2C5C7C), far);
    c.a = 0.25f + 0.7f * far;
  });
}

void drawLomo57Corners(Canvas& canvas) { drawCornersInAlpha(canvas, rgb(0x1C0E10), 0.30f, 0.9f); }

void drawLomo58(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float centre = vignette(s, 0.02f, 1.0f);
    const float red = bell((1 - s.u + 0.05f * wander(s.v * 3, 58)) * 3.0f);
    c = mix(rgb(0x241820), rgb(0xA09C90), centre) + Color{0.75f, 0.16f, 0.08f} * (0.7f * red);
    c.a = 0.9f;
  });
}

constexpr Texture kTextures[] = {
    {"lomo_mask0", 256, 256, Channels::rgb, drawLomoFalloff, "soft light, first layer"},
    {"lomo_mask1", 256, 256, Channels::rgb, drawLomoCast, "soft light, second layer"},
    {"fleet_data1", 256, 256, Channels::rgb, drawFleeting, "soft light"},
    {"LomoDarkCornerData", 600, 600, Channels::grey, drawDarkCorners, "multiply; 255 is clear"},
    {"Lomo55BlackMask", 150, 150, Channels::rgba, drawLomo55, "normal by alpha"},
    {"Lomo56Mask", 150, 150, Channels::rgba, drawLomo56, "overlay by alpha"},
    {"Lomo57Mask1", 150, 100, Channels::rgba, drawLomo57Warm, "overlay or soft light by alpha"},
    {"Lomo57Mask3", 150, 100, Channels::rgba, drawLomo57Cool, "soft light by alpha"},
    {"Lomo57Mask4", 150, 100, Channels::rgba, drawLomo57Corners, "normal or multiply by alpha"},
    {"Lomo58Mask", 250, 167, Channels::rgba, drawLomo58, "soft light by alpha"},
};

}  // namespace

std::span<const Texture> lomoTextures() { return kTextures; }

}  // namespace qpx::drawing
