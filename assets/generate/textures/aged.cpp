// Faded colour prints: yellowed dyes, burnt margins, tinted grey.
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// A print of the sixties: the dyes went where the sun reached it over the edge of its frame.
void drawFilter1965(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0xC8A070), rgb(0x9C8C74), rgb(0x848078), rgb(0x7C7C7C)};
  canvas.each([&](const Spot& s, Color& c) {
    const float edge = raggedFrame(canvas, s, 0.08f, 0.7f, 1301);
    const float cloud = 0.10f * fbm(s.p.x * 0.9f, s.p.y * 0.9f, 3, 1302);
    c = ramp(kStops, smooth(0.0f, 0.9f, edge) + cloud);
    c = mix(c, rgb(0xE0B890), 0.6f * bell((1 - s.v + 0.05f * wander(s.u * 2, 1303)) * 3.2f));
    c.a = 0.92f;
  });
}

void drawSepiaRed(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float corner = 1 - vignette(s, 0.15f);
    c = mix(rgb(0xC87858), rgb(0x3C0E10), corner);
    c.a = 0.20f + 0.65f * corner;
  });
}

void drawSepiaBrown(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float corner = 1 - vignette(s, 0.2f);
    c = mix(rgb(0xB89468), rgb(0x2C1A0C), corner);
    c.a = 0.15f + 0.75f * corner;
  });
}

void drawSquareGlow(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    // A squircle: a square's own distance field has creases along its diagonals.
    const float r = power(square(square(2 * s.u - 1)) + square(square(2 * s.v - 1)), 0.25f);
    const float inside = smooth(1.15f, 0.15f, r);
    c = grey(mix(0.16f, 0.68f, inside));
    c.a = 0.9f;
  });
}

void drawVintageHWash(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float side = smooth(0.0f, 1.0f, s.u + 0.08f * wander(s.v * 2, 1311));
    c = mix(rgb(0xF0D490), rgb(0xD88C78), side);
    c.a = 0.30f + 0.5f * bell((s.u - 0.1f) * 1.4f);
  });
}

void drawVintageHShade(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    c = mix(rgb(0x54403C), rgb(0xFFFAEC), vignette(s, 0.2f, 0.9f));
  });
}

void drawVintage30(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float corner = 1 - vignette(s, 0.3f, 1.1f);
    c = mix(rgb(0x4A3220), rgb(0x140A06), corner);
    c.a = 0.9f * corner;
  });
}

// Grey grounds of the type looks: the first as paper seen in raking light, the second as a lamp on
// a wall.
void drawType02(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.2f, 0.8f, 1321);
    const float crumple =
        fbm(q.x * 1.3f, q.y * 1.3f, 2, 1322) - fbm(q.x * 1.3f - 0.12f, q.y * 1.3f - 0.12f, 2, 1322);
    c = grey(clamp01(0.52f + 0.30f * crumple - 0.20f * square(s.corner)));
  });
}

void drawType04(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float lamp = bell(length(Point{s.u - 0.5f, (s.v - 0.3f) * 0.8f}) * 1.9f);
    c = mix(rgb(0x3A3430), rgb(0xBCB0A0), lamp);
  });
}

constexpr Texture kTextures[] = {
    {"Filter1965Layer2Texture", 256, 342, Channels::rgba, drawFilter1965, "soft light by alpha"},
    {"SepiaRedLayer3_Square", 120, 120, Channels::rgba, drawSepiaRed,
     "soft light or normal by alpha"},
    {"SepiaBrownLayer2_Square", 120, 120, Channels::rgba, drawSepiaBrown,
     "soft light or normal by alpha"},
    {"SquareMask", 150, 150, Channels::rgba, drawSquareGlow, "soft light by alpha"},
    {"VintageHMask1", 186, 140, Channels::rgba, drawVintageHWash, "normal by alpha"},
    {"VintageHMask2", 186, 140, Channels::rgba, drawVintageHShade, "multiply; white is clear"},
    {"Vintage_30_F_Mask", 360, 360, Channels::rgba, drawVintage30, "normal by alpha"},
    {"Type02MaskTexture", 256, 256, Channels::rgba, drawType02, "soft light; mid grey is clear"},
    {"Type04MaskTexture", 256, 256, Channels::rgba, drawType04, "soft light; mid grey is clear"},
};

}  // namespace

std::span<const Texture> agedTextures() { return kTextures; }

}  // namespace qpx::drawing
