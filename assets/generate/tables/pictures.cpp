// Pictures that are stored without a PNG header.
#include "kit/etc1.h"
#include "kit/light.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// 512 x 512 RGB. The effect turns it about its middle, so the light leaves the corners dark.
std::vector<uint8_t> buildLightLeak() {
  Canvas canvas(512, 512);
  addLeak(canvas, {.edge = {-1, -0.1f},
                   .inward = 0.12f,
                   .depth = 0.75f,
                   .light = 2.6f,
                   .tint = kFilmLeak,
                   .seed = 2301,
                   .tongues = 0.45f,
                   .wavelength = 0.9f,
                   .span = 1.15f});
  addLeak(canvas, {.edge = {1, 0.3f},
                   .inward = kPi - 0.2f,
                   .depth = 0.40f,
                   .light = 0.7f,
                   .tint = {0.9f, 0.2f, 0.45f},
                   .seed = 2302,
                   .tongues = 0.5f,
                   .wavelength = 0.7f,
                   .span = 0.9f});
  canvas.each([](const Spot& s, Color& c) { c = c * smooth(1.30f, 0.75f, length(s.p)); });
  canvas.develop(1, 0.95f);
  return toBytes(canvas, 3);
}

// Hudson's blend of a sample (row) with the light map (column): soft light, cool below and warm
// above.
std::vector<uint8_t> buildHudsonBlend() {
  Canvas canvas(256, 256);
  canvas.each([](const Spot& s, Color& c) {
    const float base = (s.y - 0.5f) / 255;
    const float top = (s.x - 0.5f) / 255;
    const float blended = top < 0.5f ? base - (1 - 2 * top) * base * (1 - base)
                                     : base + (2 * top - 1) * (std::sqrt(base) - base);
    c = {blended + 0.020f * base * (1 - base), blended,
         blended + 0.12f * (1 - base) * (1 - base) * (1 - top)};
  });
  const uint8_t header[16] = {'P', 'K', 'M', ' ', '1', '0', 0, 0, 1, 0, 1, 0, 1, 0, 1, 0};
  std::vector<uint8_t> bytes(header, header + sizeof header);
  const std::vector<uint8_t> blocks = toEtc1(canvas);
  bytes.insert(bytes.end(), blocks.begin(), blocks.end());
  return bytes;
}

constexpr Table kTables[] = {
    {"LightLeakTexture", 786432, buildLightLeak},
    {"textureData2", 32784, buildHudsonBlend},
};

}  // namespace

std::span<const Table> pictureTables() { return kTables; }

}  // namespace qpx::drawing
