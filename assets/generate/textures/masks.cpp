// Where a curve or a layer acts. Colours and alpha hold the same level, so that a recipe may read
// either: 255 acts fully.
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

void setLevel(Color& c, float level) { c = grey(clamp01(level), clamp01(level)); }

void drawPolarizedSky(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    // A polariser darkens the sky most at one side of it.
    const float side = 0.75f + 0.25f * static_cast<float>(cosine(2.4 * (s.u - 0.35)));
    setLevel(c, side * smooth(0.85f, -0.05f, s.v + 0.05f * wander(s.u * 2.2f, 901)));
  });
}

void drawPolarizedCurve(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) { setLevel(c, 1 - 0.9f * vignette(s, 0.2f)); });
}

void drawP01(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.12f, 1.2f, 911);
    c = grey(
        mix(0.08f, 1.0f, power(1 - smooth(0.15f, 1.55f, length(q - Point{0.05f, -0.05f})), 1.1f)));
  });
}

void drawP02(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.15f, 1.4f, 921);
    setLevel(c, smooth(-1.1f, 1.0f, 0.55f * q.x + 0.85f * q.y));
  });
}

void drawMomento(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float corner = 1 - vignette(s, 0.3f, 1.0f);
    c = mix(rgb(0x58302C), rgb(0x1C0C10), corner);
    c.a = 0.85f * corner;
  });
}

void drawFilter14Wash(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float cloud = 0.5f + 0.5f * fbm(s.p.x * 0.9f, s.p.y * 0.9f, 4, 931);
    const float open = vignette(s, 0.25f, 0.8f);
    c = mix(rgb(0x9A8890), mix(rgb(0xFFFDF6), rgb(0xF2ECE0), cloud), open);
  });
}

void drawFilter14Veil(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.2f, 1.3f, 941);
    const float veil = smooth(-0.9f, 1.1f, -0.6f * q.x - 0.7f * q.y);
    c = mix(rgb(0xE8D4D0), rgb(0xFFF4E4), veil);
    c.a = 0.2f + 0.6f * veil;
  });
}

void drawFilter14Cast(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x5C6C90), rgb(0x7C8084), rgb(0x9C8C74), rgb(0xC8985C)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.2f, 1.5f, 951);
    c = ramp(kStops, 0.5f - 0.30f * q.x - 0.28f * q.y);
  });
}

constexpr Texture kTextures[] = {
    {"PolarizedBCMaskTexture", 256, 192, Channels::rgba, drawPolarizedSky, "mask, open at the top"},
    {"PolarizedCurveMaskTexture", 256, 192, Channels::rgba, drawPolarizedCurve,
     "mask, open in the corners"},
    {"P01CurveMaskTexture", 1024, 1024, Channels::grey, drawP01, "mask, open in the middle"},
    {"P02CurveMaskTexture", 512, 512, Channels::rgba, drawP02, "mask, open below"},
    {"MomentoMaskTexture", 256, 256, Channels::rgba, drawMomento, "normal by alpha"},
    {"filter14_data", 500, 500, Channels::rgba, drawFilter14Wash, "multiply; white is clear"},
    {"filter14_data1", 500, 500, Channels::rgba, drawFilter14Veil, "merged by alpha"},
    {"filter14_data2", 500, 500, Channels::rgba, drawFilter14Cast, "soft light; mid grey is clear"},
};

}  // namespace

std::span<const Texture> maskTextures() { return kTextures; }

}  // namespace qpx::drawing
