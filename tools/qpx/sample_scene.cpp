#include "sample_scene.h"

#include <array>
#include <thread>
#include <vector>

#include "sample_draw.h"

namespace qpx::tool {

namespace {

constexpr Color kSunLight = rgb(255, 246, 220);

// Towards the sun it grows lighter and warmer, towards the top deeper blue.
Color sky(Place p, const Extent& extent, uint32_t seed) {
  const float height = clamp01(p.y / (extent.height * 0.56f));
  Color color = mix(rgb(44, 96, 176), rgb(150, 194, 232), smoothStep(0.0f, 0.75f, height));
  color = mix(color, rgb(246, 226, 200), smoothStep(0.6f, 1.0f, height));
  const float dx = p.x - extent.width * 0.77f, dy = p.y - extent.height * 0.17f;
  const float distance = std::sqrt(dx * dx + dy * dy);
  const float glow = 0.016f / (distance * distance + 0.016f);
  color = mix(color, kSunLight, clamp01(glow));
  color = mix(color, rgb(255, 253, 244), 1.0f - smoothStep(0.036f, 0.056f, distance));

  // Clouds lie flatter towards the horizon. Their light side is the one that faces the sun.
  const float flat = 2.2f + 3.5f * height;
  const float x = p.x * 2.6f, y = p.y * flat + 3.0f;
  const float here = cloudNoise(x, y, 6, seed);
  const float toSun = cloudNoise(x + 0.12f, y - 0.18f, 4, seed);
  const float cover = smoothStep(0.50f, 0.68f, here) * (0.55f + 0.45f * height);
  const float light = clamp01(0.72f + 2.0f * (here - toSun));
  const Color cloud = mix(rgb(150, 160, 184), rgb(255, 250, 242), light);
  return mix(color, cloud, cover * 0.92f);
}

struct Ridge {
  float base;    // height of the ridge as a share of the scene
  float relief;  // in units of the shorter side
  float width;   // features for each unit
  Color color;
};

constexpr std::array kRidges = {
    Ridge{0.49f, 0.11f, 2.2f, rgb(132, 156, 186)},
    Ridge{0.53f, 0.09f, 3.1f, rgb(96, 128, 140)},
    Ridge{0.57f, 0.07f, 4.3f, rgb(72, 104, 84)},
};

Color hills(Color behind, Place p, const Extent& extent, uint32_t seed) {
  Color color = behind;
  for (const Ridge& ridge : kRidges) {
    seed += 31;
    const float line = ridge.base * extent.height +
                       ridge.relief * (cloudNoise(p.x * ridge.width, 7.5f, 5, seed) - 0.5f) * 2.0f;
    const float below = p.y - line;
    const float mottled = cloudNoise(p.x * 40.0f, p.y * 60.0f, 3, seed) - 0.5f;
    const Color hill =
        mix(ridge.color, rgb(196, 206, 200), clamp01(below * 2.0f)) * (1.0f + 0.22f * mottled);
    color = mix(color, hill, p.inside(-below));
  }
  return color;
}

struct Leaf {
  float along, across;  // from the centre, in lengths of the leaf
  float shade;
  uint32_t kind;
};

Color leafColor(const Leaf& leaf, float light) {
  constexpr std::array kGreens = {rgb(66, 116, 40), rgb(92, 142, 52), rgb(120, 158, 60),
                                  rgb(54, 98, 48), rgb(150, 164, 70)};
  Color color = kGreens[leaf.kind % kGreens.size()];
  if (leaf.kind % 97 == 0) color = rgb(196, 84, 40);  // a few have turned already
  const float side = leaf.across > 0 ? 1.12f : 0.82f;
  const float rib = 1.0f + 0.35f * (1.0f - smoothStep(0.0f, 0.05f, std::abs(leaf.across)));
  const float slant = leaf.along * 9.0f + std::abs(leaf.across) * 14.0f;
  const float vein =
      0.94f + 0.06f * smoothStep(0.1f, 0.4f, std::abs(slant - std::floor(slant) - 0.5f));
  return color * (side * rib * vein * leaf.shade * light);
}

// One layer of leaves on a jittered grid. A pixel can only be covered from the cells around its
// own.
Color leaves(Color behind, Place p, float size, float light, uint32_t seed) {
  const float gx = p.x / size, gy = p.y / size;
  const auto cx = static_cast<int32_t>(std::floor(gx)), cy = static_cast<int32_t>(std::floor(gy));
  Color color = behind;
  for (int32_t j = cy - 1; j <= cy + 1; ++j) {
    for (int32_t i = cx - 1; i <= cx + 1; ++i) {
      float dx = random01(i, j, seed + 3) - 0.5f, dy = random01(i, j, seed + 4) * 0.6f + 0.1f;
      const float length = std::sqrt(dx * dx + dy * dy);
      dx /= length;
      dy /= length;
      const float x = gx - static_cast<float>(i) - random01(i, j, seed + 1);
      const float y = gy - static_cast<float>(j) - random01(i, j, seed + 2);
      const float along = (x * dx + y * dy) / 0.85f, across = (x * dy - y * dx) / 0.85f;
      const float edge = std::abs(across) - 0.42f * (1.0f - along * along);
      const float cover =
          std::abs(along) < 1.0f ? clamp01(0.5f - edge * 0.85f * size / p.pixel) : 0;
      if (cover <= 0) continue;
      const Leaf leaf{along, across, 0.7f + 0.6f * random01(i, j, seed + 5), hash(i, j, seed + 6)};
      color = mix(color, leafColor(leaf, light), cover);
    }
  }
  return color;
}

Color foliage(Color behind, Place p, const Extent& extent, uint32_t seed) {
  const float edge = extent.height * 0.62f - 0.10f * cloudNoise(p.x * 3.0f, 2.5f, 4, seed + 71) -
                     0.018f * noise(p.x * 60.0f, p.y * 60.0f, seed + 72);
  const float cover = p.inside((edge - p.y) / 1.0f);
  if (cover <= 0) return behind;
  const float clump = cloudNoise(p.x * 7.0f, p.y * 7.0f, 3, seed + 73);
  const float depth = clamp01((p.y - edge) * 5.0f);
  const float light = (0.45f + 0.9f * clump) * (1.12f - 0.3f * depth);
  Color color = rgb(22, 38, 20) * (0.5f + clump);
  color = leaves(color, p, 0.016f, light * 0.6f, seed + 80);
  color = leaves(color, p, 0.020f, light * 0.85f, seed + 90);
  if (clump > 0.42f) color = leaves(color, p, 0.024f, light * 1.1f, seed + 100);
  return mix(behind, color, cover);
}

uint8_t toByte(float v) { return static_cast<uint8_t>(clamp01(v) * 255.0f + 0.5f); }

void drawRow(Picture& picture, int32_t y, const Extent& extent, uint32_t seed) {
  const auto shorter = static_cast<float>(std::min(picture.width(), picture.height()));
  uint8_t* out = picture.row(y);
  for (int32_t x = 0; x < picture.width(); ++x, out += 3) {
    const Place p = {(static_cast<float>(x) + 0.5f) / shorter,
                     (static_cast<float>(y) + 0.5f) / shorter, 1.0f / shorter};
    Color color{};
    if (p.y < panelTop(extent) + p.pixel) {
      color = sky(p, extent, seed);
      color = hills(color, p, extent, seed);
      color = foliage(color, p, extent, seed);
      color = drawBalls(color, p, extent);
      color = drawPeople(color, p, extent, seed);
    }
    color = drawPanel(color, p, extent, x, y);
    out[0] = toByte(color.r);
    out[1] = toByte(color.g);
    out[2] = toByte(color.b);
  }
}

}  // namespace

Picture drawSampleScene(int32_t width, int32_t height, uint32_t seed, Progress& progress) {
  Picture picture(width, height, 3);
  const auto shorter = static_cast<float>(std::min(width, height));
  const Extent extent = {static_cast<float>(width) / shorter, static_cast<float>(height) / shorter,
                         width, height};
  const int32_t threads =
      std::clamp(static_cast<int32_t>(std::thread::hardware_concurrency()), 1, 16);
  std::vector<std::jthread> workers;
  for (int32_t t = 0; t < threads; ++t) {
    workers.emplace_back([&, t] {
      for (int32_t y = t; y < height; y += threads) {
        drawRow(picture, y, extent, seed * 1000);
        progress.advance();
      }
    });
  }
  workers.clear();  // joins
  return picture;
}

}  // namespace qpx::tool
