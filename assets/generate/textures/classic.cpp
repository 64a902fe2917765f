// The light maps of the numbered looks: Hudson (1), Toaster (5 to 7), Lofi (11), Valencia (13), and
// those of Amaro, Rise and X-Pro. Most are small and get enlarged without a filter, so they hold
// nothing finer than a few pixels.
#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

void drawHudsonLight(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x3A3E48), rgb(0x5C6470), rgb(0x868E98), rgb(0xAEB6BC),
                              rgb(0xC6CCCC)};
  canvas.each([&](const Spot& s, Color& c) {
    // The chalky smear of a wiped board keeps the middle from being a plain spotlight.
    const Point q = bent({s.p.x * 0.6f, s.p.y * 1.4f}, 0.2f, 0.7f, 101);
    const float smear = 0.10f * fbm(q.x * 2.2f, q.y * 2.2f, 3, 102);
    c = ramp(kStops, 1 - smooth(-0.1f, 1.1f, s.corner) + smear);
  });
}

void drawToasterMetal(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x2A1418), rgb(0x5A3440), rgb(0x8C6A60), rgb(0xBC9270),
                              rgb(0xE0BC8C)};
  canvas.each([&](const Spot& s, Color& c) {
    const float r = std::max(length(s.p), 0.01f);
    const float brushed = 0.03f * fbm(r * 7 + 0.8f * s.p.x / r, 0.8f * s.p.y / r, 3, 111) +
                          0.04f * fbm(s.p.x, s.p.y, 4, 112);
    const float sheen = 0.06f * static_cast<float>(cosine(2 * double{angleOf(s.p)} - 0.9));
    c = ramp(kStops, 1.02f - smooth(0.0f, 1.5f, r) + brushed + sheen * smooth(0.1f, 0.6f, r));
  });
}

void drawToasterGlow(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float glow = bell(length(s.p) * 1.05f);
    c = mix(rgb(0x5C2C50), rgb(0xF0A058), glow);
    c.a = 0.5f + 0.4f * glow;
  });
}

void drawToasterShift(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0xB08258), rgb(0x968070), rgb(0x807C84), rgb(0x645C90)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.2f, 1.5f, 121);
    c = ramp(kStops, 0.5f + 0.28f * q.x + 0.34f * q.y);
  });
}

void drawLofiCorners(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x08060A), rgb(0x34303A), rgb(0x6C6868), rgb(0x848480),
                              rgb(0x888884)};
  canvas.each([&](const Spot& s, Color& c) {
    c = ramp(kStops, vignette(s, 0.15f, 1.0f));
    c.a = 0.25f + 0.75f * (1 - vignette(s, 0.15f));
  });
}

void drawValenciaWash(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x9C8AA0), rgb(0xB09C84), rgb(0xC0A878), rgb(0xB89C64)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.25f, 1.8f, 131);
    c = ramp(kStops, 0.45f - 0.25f * q.x + 0.3f * q.y);
    c.a = 0.8f - 0.2f * s.corner;
  });
}

void drawAmaroShade(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float open = vignette(s, 0.35f, 0.8f);
    c = mix(rgb(0x5A6478), rgb(0xFFFEFA), open);
  });
}

void drawAmaroGlow(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float glow = bell(length(Point{s.u - 0.5f, s.v - 0.42f}) * 2.0f);
    c = mix(rgb(0x748098), rgb(0xE8DCC0), glow);
    c.a = 0.25f + 0.7f * glow;
  });
}

void drawAmaroFade(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x3C4C7C), rgb(0x6C7484), rgb(0x808078), rgb(0x948868)};
  canvas.each([&](const Spot& s, Color& c) {
    c = ramp(kStops, s.v + 0.06f * fbm(s.u * 1.5f, s.v * 1.5f, 2, 141));
    c.a = mix(0.85f, 0.35f, s.v);
  });
}

// A level that is both colour and alpha, so that a recipe may read either as its mask.
void setLevel(Color& c, float level) { c = grey(clamp01(level), clamp01(level)); }

void drawRiseCurveMask(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) { setLevel(c, vignette(s, 0.1f, 0.9f)); });
}

void drawRiseCornerMask(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) { setLevel(c, 0.9f * (1 - vignette(s, 0.35f, 1.0f))); });
}

void drawRiseGlow(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float glow = bell(length(Point{s.u - 0.45f, s.v - 0.4f}) * 1.7f);
    c = mix(rgb(0x8A6450), rgb(0xF4E0B8), glow);
    c.a = 0.2f + 0.7f * glow;
  });
}

void drawXproCurveMask(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) { setLevel(c, vignette(s, 0.2f, 1.1f)); });
}

void drawXproCorners(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    c = mix(rgb(0x14343C), rgb(0x000A10), smooth(0.5f, 1.0f, s.corner));
    c.a = 0.85f * (1 - vignette(s, 0.3f, 1.2f));
  });
}

void drawXproCentre(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float centre = bell(1.25f * s.corner);
    c = mix(rgb(0x786C50), rgb(0xDCD088), centre);
    c.a = 0.75f * centre;
  });
}

constexpr Texture kTextures[] = {
    {"textureData1", 256, 256, Channels::rgb, drawHudsonLight,
     "column of the blend table textureData2"},
    {"textureData5", 512, 512, Channels::rgb, drawToasterMetal, "soft light"},
    {"textureData6", 256, 256, Channels::rgba, drawToasterGlow, "soft light or overlay by alpha"},
    {"textureData7", 256, 256, Channels::rgb, drawToasterShift, "soft light"},
    {"textureData11", 256, 256, Channels::rgba, drawLofiCorners, "soft light or overlay by alpha"},
    {"textureData13", 256, 256, Channels::rgba, drawValenciaWash, "soft light by alpha"},
    {"AmaroInstagramData1", 256, 253, Channels::rgba, drawAmaroShade, "multiply"},
    {"AmaroInstagramData2", 256, 252, Channels::rgba, drawAmaroGlow, "soft light by alpha"},
    {"AmaroInstagramData3", 256, 252, Channels::rgba, drawAmaroFade, "soft light by alpha"},
    {"RiseInstagramStep5Curve2Mask", 307, 306, Channels::rgba, drawRiseCurveMask,
     "mask, open in the middle"},
    {"RiseInstagramStep6Curve2BackupMask", 307, 306, Channels::rgba, drawRiseCornerMask,
     "mask, open in the corners"},
    {"RiseInstagramStep7LayerMask", 307, 306, Channels::rgba, drawRiseGlow, "soft light by alpha"},
    {"XProIIInstagramCurveMaskTexture", 256, 256, Channels::rgba, drawXproCurveMask,
     "mask, open in the middle"},
    {"XProIIInstagramLayer2Mask1Texture", 256, 256, Channels::rgba, drawXproCorners,
     "normal by alpha"},
    {"XProIIInstagramLayer2Mask2Texture", 256, 256, Channels::rgba, drawXproCentre,
     "soft light by alpha"},
};

}  // namespace

std::span<const Texture> classicTextures() { return kTextures; }

}  // namespace qpx::drawing
