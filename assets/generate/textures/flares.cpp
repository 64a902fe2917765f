// Light in the lens, screened over a picture: three flares and the aurora.
#include "kit/light.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// Afternoon sun in the upper right corner, its reflections running down to the left.
void drawGoldenFlare(Canvas& canvas) {
  constexpr Point kSun{0.62f, -1.12f};
  constexpr Color kTints[] = {rgb(0xFFB060), rgb(0xFF7838), rgb(0xB8E070), rgb(0xFFD890),
                              rgb(0x80C8C0)};
  addGlow(canvas, kSun, 0.05f, Color{9, 8, 6.4f}, 1.6f);
  addGlow(canvas, kSun, 0.42f, Color{1.5f, 0.80f, 0.26f}, 1.7f);
  addGlow(canvas, {0.5f, -0.9f}, 1.25f, Color{0.34f, 0.15f, 0.045f}, 2.2f);
  addRays(canvas, kSun, 1.7f, Color{1.6f, 1.15f, 0.62f}, 34, 701);
  addStar(canvas, kSun, 0.9f, 0.006f, Color{2.2f, 1.8f, 1.3f}, 6, 0.35f);
  addRing(canvas, kSun, 0.86f, 0.045f, 0.085f, 2.2f, 0.8f);
  addRing(canvas, {0, 0}, 1.22f, 0.03f, 0.05f, 2.0f, 0.35f);
  addGhostChain(canvas, kSun, kTints, 5, 13, 0.32f, 702);
  addGhost(canvas, {.centre = kSun * -0.55f,
                    .radius = 0.26f,
                    .light = rgb(0xFF9048) * 0.10f,
                    .blades = 6,
                    .rim = 0.7f,
                    .fringe = 0.05f,
                    .softness = 0.05f});
  canvas.develop(1.0f, 0.9f);
  canvas.moveLightToAlpha();
}

// An anamorphic lens against a cold lamp: a long blue streak, oval reflections.
void drawBlueFlare(Canvas& canvas) {
  constexpr Point kLamp{-0.48f, -0.52f};
  constexpr Color kTints[] = {rgb(0x4870FF), rgb(0x38D0FF), rgb(0x9858FF), rgb(0x60FFE0),
                              rgb(0xFF70C0)};
  addGlow(canvas, kLamp, 0.045f, Color{7, 8, 9}, 1.6f);
  addGlow(canvas, kLamp, 0.30f, Color{0.28f, 0.55f, 1.25f}, 1.6f);
  addGlow(canvas, kLamp, 1.1f, Color{0.03f, 0.09f, 0.26f}, 2.0f);
  addStreak(canvas, kLamp, 0.016f, 34, 0.02f, Color{1.0f, 2.0f, 4.2f}, 1.3f);
  addStreak(canvas, kLamp + Point{0.1f, 0.055f}, 0.007f, 60, 0.02f, Color{0.2f, 0.5f, 1.0f}, 1.5f);
  addStreak(canvas, kLamp + Point{0.4f, -0.04f}, 0.004f, 70, 0.02f, Color{0.35f, 0.2f, 0.8f}, 1.5f);
  addStreak(canvas, kLamp, 0.012f, 10, 1.59f, Color{0.5f, 0.7f, 1.1f}, 1.5f);
  addRays(canvas, kLamp, 0.9f, Color{0.45f, 0.7f, 1.2f}, 46, 711);
  addGhostChain(canvas, kLamp, kTints, 5, 15, 0.30f, 712);
  addRing(canvas, kLamp * -1.1f, 0.40f, 0.03f, 0.12f, 0.8f, 0.55f);
  addRing(canvas, kLamp * -1.1f, 0.52f, 0.05f, 0.05f, 0.8f, 0.45f);
  canvas.develop(1.0f, 0.9f);
  canvas.moveLightToAlpha();
}

// A low sun through haze, seen across the frame. Its recipe takes colour alone.
void drawHazyFlare(Canvas& canvas) {
  constexpr Point kSun{-0.95f, -0.55f};
  constexpr Color kTints[] = {rgb(0xFFC890), rgb(0xFF9078), rgb(0x90B8FF), rgb(0xD8A0FF)};
  addGlow(canvas, kSun, 0.07f, Color{6, 5.6f, 5}, 1.5f);
  addGlow(canvas, kSun, 0.55f, Color{0.85f, 0.62f, 0.46f}, 1.5f);
  addGlow(canvas, {-0.4f, -0.2f}, 1.6f, Color{0.13f, 0.07f, 0.10f}, 2.4f);
  addStar(canvas, kSun, 0.8f, 0.010f, Color{1.4f, 1.3f, 1.2f}, 8, 0.2f);
  addRays(canvas, kSun, 1.5f, Color{0.5f, 0.42f, 0.36f}, 28, 721);
  addGhostChain(canvas, kSun, kTints, 4, 9, 0.42f, 722);
  addRing(canvas, {0, 0}, 1.05f, 0.05f, 0.07f, 0.52f, 0.4f);
  canvas.develop(1.0f, 0.95f);
}

// One curtain of the aurora: a bright hem that wanders across the sky, with rays standing on it.
struct Curtain {
  float height, sway, slope, tall, light;
  uint32_t seed;
};

void addCurtain(Canvas& canvas, const Curtain& curtain) {
  canvas.each([&](const Spot& s, Color& c) {
    const float fold = 0.16f * wander(s.p.x * 2.6f + 3, curtain.seed + 1);
    const float x = s.p.x + fold * (s.p.y - curtain.height);
    const float hem = curtain.height + curtain.slope * x +
                      curtain.sway * wander(x * 0.9f + 7, curtain.seed) +
                      0.35f * curtain.sway * wander(x * 2.3f, curtain.seed + 2);
    const float ray = 0.6f + 0.4f * fbm(x * 9, s.p.y * 0.35f, 3, curtain.seed + 3);
    const float tall = curtain.tall * (0.75f + 0.5f * wander(x * 3.1f, curtain.seed + 4));
    const float up = (hem - s.p.y) / tall;
    const float body =
        up > 0 ? static_cast<float>(exponential(-1.7 * up)) : bell(up * tall / 0.05f);
    const float presence = smooth(-0.9f, 0.5f, wander(x * 0.8f + 1, curtain.seed + 5));
    const float amount = curtain.light * body * ray * presence;
    // Green oxygen at the hem, red oxygen and violet nitrogen above.
    const float high = clamp01(up * 0.75f);
    c = c + mix(Color{0.10f, 1.0f, 0.42f}, Color{1.5f, 0.30f, 2.1f}, smooth(0.15f, 1.0f, high)) *
                amount;
  });
}

void drawAurora(Canvas& canvas) {
  addCurtain(canvas, {0.10f, 0.34f, -0.18f, 1.0f, 1.1f, 731});
  addCurtain(canvas, {-0.28f, 0.22f, 0.22f, 0.7f, 0.6f, 741});
  addCurtain(canvas, {0.42f, 0.20f, 0.12f, 0.8f, 0.42f, 751});
  addGlow(canvas, {0.1f, 0.1f}, 0.9f, Color{0.01f, 0.07f, 0.06f}, 2.0f);
  canvas.develop(1.0f, 0.9f);
}

constexpr Texture kTextures[] = {
    {"flare06_land", 600, 400, Channels::rgba, drawHazyFlare, "screen; black is clear"},
    {"flare07_port", 1280, 1920, Channels::rgba, drawGoldenFlare, "screen by alpha"},
    {"flare08_port", 1280, 1920, Channels::rgba, drawBlueFlare, "screen by alpha"},
    {"Aurora_SquareData", 600, 600, Channels::rgba, drawAurora, "screen; black is clear"},
};

}  // namespace

std::span<const Texture> flareTextures() { return kTextures; }

}  // namespace qpx::drawing
