// What the parts of the sample scene are drawn with.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qpx::tool {

struct Color {
  float r, g, b;  // 0 ... 1
};

constexpr Color rgb(int r, int g, int b) {
  return {static_cast<float>(r) / 255.0f, static_cast<float>(g) / 255.0f,
          static_cast<float>(b) / 255.0f};
}

inline Color operator*(Color c, float f) { return {c.r * f, c.g * f, c.b * f}; }
inline Color operator+(Color a, Color b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
inline Color mix(Color a, Color b, float t) { return a * (1.0f - t) + b * t; }
inline Color tinted(Color a, Color b) { return {a.r * b.r, a.g * b.g, a.b * b.b}; }

inline float clamp01(float v) { return std::clamp(v, 0.0f, 1.0f); }

inline float smoothStep(float from, float to, float v) {
  const float t = clamp01((v - from) / (to - from));
  return t * t * (3.0f - 2.0f * t);
}

// A point of the scene: from the left and the top in units of the shorter side of the picture.
// `pixel` is the size of a pixel in these units, over which edges fade.
struct Place {
  float x, y;
  float pixel;

  // How much of the pixel lies inside an edge at signed distance `d` (negative inside).
  float inside(float d) const { return clamp01(0.5f - d / pixel); }
};

// Size of the scene in the same units.
struct Extent {
  float width, height;
  int32_t pixelsAcross, pixelsDown;
};

inline uint32_t hash(int32_t x, int32_t y, uint32_t seed) {
  uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1u ^ static_cast<uint32_t>(y) * 0x85EBCA77u ^
               seed * 0xC2B2AE3Du;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  h = (h ^ h >> 12) * 0x297A2D39u;
  return h ^ h >> 15;
}

inline float random01(int32_t x, int32_t y, uint32_t seed) {
  return static_cast<float>(hash(x, y, seed) >> 8) / 16777216.0f;
}

// Smooth noise, 0 ... 1, with features about 1 wide.
inline float noise(float x, float y, uint32_t seed) {
  const float fx = std::floor(x), fy = std::floor(y);
  const auto ix = static_cast<int32_t>(fx), iy = static_cast<int32_t>(fy);
  const float u = smoothStep(0, 1, x - fx), v = smoothStep(0, 1, y - fy);
  const float top = random01(ix, iy, seed) * (1 - u) + random01(ix + 1, iy, seed) * u;
  const float bottom = random01(ix, iy + 1, seed) * (1 - u) + random01(ix + 1, iy + 1, seed) * u;
  return top * (1 - v) + bottom * v;
}

// Noise of several sizes, each half as wide and half as strong as the one before.
inline float cloudNoise(float x, float y, int octaves, uint32_t seed) {
  float sum = 0, weight = 0.5f, total = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += weight * noise(x, y, seed + static_cast<uint32_t>(i));
    total += weight;
    // Turned a little each time, so that the grids of the sizes do not line up.
    const float turned = x * 1.6f + y * 1.2f;
    y = y * 1.6f - x * 1.2f;
    x = turned;
    weight *= 0.5f;
  }
  return sum / total;
}

// Parts that lie over the landscape.
Color drawPeople(Color behind, Place place, const Extent& extent, uint32_t seed);
Color drawBalls(Color behind, Place place, const Extent& extent);
Color drawPanel(Color behind, Place place, const Extent& extent, int32_t x, int32_t y);

// Where the panel starts, in the units of Place.
inline float panelTop(const Extent& extent) { return extent.height * 0.79f; }

}  // namespace qpx::tool
