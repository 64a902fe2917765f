#include "cutout_scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace qpx::bench {
namespace {

uint8_t byteOf(double value) { return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0)); }

// 1 on the disc in the middle, 0 off it.
double discAt(int32_t x, int32_t y) {
  const double dx = x - Scene::kWidth / 2, dy = y - Scene::kHeight / 2;
  return 1 / (1 + std::exp((std::hypot(dx, dy) - 900) / 4));
}

// Noise of the corners of a grid of cells, -1 to 1, and smooth in between.
double cellNoise(double x, double y, uint32_t seed) {
  const auto corner = [seed](int32_t i, int32_t j) {
    uint32_t h = static_cast<uint32_t>(i) * 0x9E3779B1u ^ static_cast<uint32_t>(j) * 0x85EBCA77u;
    h = (h ^ seed * 0xC2B2AE3Du) * 0x27D4EB2Fu;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    return (h ^ h >> 13) % 2001 / 1000.0 - 1;
  };
  const auto i = static_cast<int32_t>(x), j = static_cast<int32_t>(y);
  const double u = x - i, v = y - j;
  const double s = u * u * (3 - 2 * u), t = v * v * (3 - 2 * v);
  const double above = corner(i, j) * (1 - s) + corner(i + 1, j) * s;
  const double below = corner(i, j + 1) * (1 - s) + corner(i + 1, j + 1) * s;
  return above * (1 - t) + below * t;
}

// Two samples of a row or column that one of the picture lies between.
struct Between {
  int32_t first, second;
  double share;  // of the second

  Between(int32_t at, int32_t of, int32_t size) {
    const double place = std::clamp((at + 0.5) * size / of - 0.5, 0.0, size - 1.0);
    first = static_cast<int32_t>(place);
    second = std::min(first + 1, size - 1);
    share = place - first;
  }
};

struct Ppm {
  int32_t width = 0, height = 0, most = 0;
  std::vector<uint8_t> bytes;

  explicit Ppm(const char* path) {
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr || std::fscanf(file, "P6 %d %d %d%*c", &width, &height, &most) != 3 ||
        width < 1 || height < 1 || most != 255) {
      std::fprintf(stderr, "%s is no PPM file of 8 bits\n", path);
      std::exit(1);
    }
    bytes.resize(3 * static_cast<size_t>(width) * static_cast<size_t>(height));
    const size_t read = std::fread(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    if (read == bytes.size()) return;
    std::fprintf(stderr, "%s ends early\n", path);
    std::exit(1);
  }

  double at(int32_t x, int32_t y, int c) const {
    const size_t pixel = static_cast<size_t>(y) * static_cast<size_t>(width);
    return bytes[3 * (pixel + static_cast<size_t>(x)) + static_cast<size_t>(c)];
  }
};

template <typename ColorAt>
ScenePtr paint(const std::string& name, const ColorAt& colorAt) {
  const auto scene = std::make_shared<Scene>(name);
  for (int32_t y = 0; y < Scene::kHeight; ++y) {
    for (int32_t x = 0; x < Scene::kWidth; ++x) {
      for (int c = 0; c < 3; ++c) scene->pixel(x, y)[c] = byteOf(colorAt(x, y, c));
    }
  }
  return scene;
}

}  // namespace

ScenePtr smoothScene() {
  uint32_t noise = 1;
  return paint("smooth", [&noise](int32_t x, int32_t y, int c) {
    const double u = x / 400.0, v = y / 400.0;
    const double texture = 18 * std::sin(9 * u + 3 * std::sin(5 * v)) * std::sin(8 * v + 2 * u);
    const double light = 20 * u - 12 * v + texture;
    const double ground[3] = {90 + light, 110 + light / 2, 70 - light / 3};
    const double front[3] = {60 + light / 3, 80 + texture, 190 - light / 4};
    noise = noise * 1664525u + 1013904223u;
    return ground[c] + (front[c] - ground[c]) * discAt(x, y) + (noise >> 24) / 64.0;
  });
}

ScenePtr busyScene() {
  return paint("busy", [](int32_t x, int32_t y, int c) {
    double texture = 0;
    for (const auto& [cell, amplitude] :
         {std::pair{420, 45.0}, {90, 35.0}, {31, 22.0}, {11, 9.0}}) {
      const double u = static_cast<double>(x) / cell, v = static_cast<double>(y) / cell;
      const auto seed = static_cast<uint32_t>(cell);
      const double own = cellNoise(u, v, seed + 1 + static_cast<uint32_t>(c));
      texture += amplitude * (0.7 * cellNoise(u, v, seed) + 0.3 * own);
    }
    const double shift[3] = {-14, 4, 22};
    return 120 + texture + shift[c] * discAt(x, y);
  });
}

ScenePtr sceneOf(const char* file) {
  const Ppm picture(file);
  return paint(std::filesystem::path(file).stem(), [&picture](int32_t x, int32_t y, int c) {
    const Between across(x, Scene::kWidth, picture.width), down(y, Scene::kHeight, picture.height);
    const auto rowAt = [&](int32_t row) {
      return picture.at(across.first, row, 2 - c) * (1 - across.share) +
             picture.at(across.second, row, 2 - c) * across.share;
    };
    return rowAt(down.first) * (1 - down.share) + rowAt(down.second) * down.share;
  });
}

}  // namespace qpx::bench
