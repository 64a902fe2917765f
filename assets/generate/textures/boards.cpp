// School boards, as they look after a lesson: to draw on with chalk.
#include "kit/paint.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// A wiped board: sweeps of the sponge have carried the dust along and left it at their turns.
void drawBoard(Canvas& canvas, Color slate, Color chalk, uint32_t seed) {
  Canvas dust(canvas.width(), canvas.height(), {1, 1, 1, 0});
  Random random(seed);
  for (int i = 0; i < 26; ++i) {
    const Point from{random.between(-1.2f, 0.3f), random.between(-1.0f, 1.0f)};
    const Point to = from + Point{random.between(0.6f, 1.6f), random.between(-0.5f, 0.5f)};
    drawStroke(dust, {.from = from,
                      .to = to,
                      .width = random.between(0.10f, 0.22f),
                      .color = {1, 1, 1},
                      .seed = random.bits(),
                      .bend = 0.25f * random.around(),
                      .dryness = random.between(0.4f, 0.75f),
                      .opacity = random.between(0.06f, 0.18f),
                      .relief = 0});
  }
  dust.blur(3);
  canvas.each([&](const Spot& s, Color& c) {
    const int x = static_cast<int>(s.x);
    const int y = static_cast<int>(s.y);
    const float stone = 0.5f + 0.5f * fbm(s.p.x * 5, s.p.y * 5, 4, seed + 1);
    const float veil = 0.5f + 0.5f * fbm(s.p.x * 1.1f, s.p.y * 1.5f, 5, seed + 2);
    const float tooth = 0.85f + 0.3f * paperTooth(s.x, s.y, 2.6f, seed + 3);
    const float amount = clamp01((0.55f * dust.at(x, y).a + 0.10f * veil) * tooth);
    const Color ground = slate * ((0.90f + 0.12f * stone) * mix(0.72f, 1.0f, vignette(s, 0.2f)));
    c = mix(ground, chalk, amount);
    c.a = 1;
  });
  canvas.coarsen(3);
}

void drawSlate(Canvas& canvas) { drawBoard(canvas, rgb(0x2C3032), rgb(0xE6E8E4), 1001); }
void drawBlack(Canvas& canvas) { drawBoard(canvas, rgb(0x1C1C1E), rgb(0xD8D8DC), 1101); }
void drawGreen(Canvas& canvas) { drawBoard(canvas, rgb(0x1E4434), rgb(0xDCEAD8), 1201); }

constexpr Texture kTextures[] = {
    {"chalkboard_data", 512, 512, Channels::rgba, drawSlate, "ground to screen chalk over"},
    {"MaskBlack", 480, 480, Channels::rgba, drawBlack, "ground to screen chalk over"},
    {"MaskGreen", 480, 480, Channels::rgba, drawGreen, "ground to screen chalk over"},
};

}  // namespace

std::span<const Texture> boardTextures() { return kTextures; }

}  // namespace qpx::drawing
