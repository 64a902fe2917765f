#include "kit/noise.h"

namespace qpx::drawing {
namespace {

float fade(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }

// Sixteen directions are enough to hide the lattice and need no sine.
float gradientDot(uint32_t hash, float dx, float dy) {
  constexpr float kDirections[16][2] = {
      {1, 0},  {0.92f, 0.38f},   {0.71f, 0.71f},   {0.38f, 0.92f},
      {0, 1},  {-0.38f, 0.92f},  {-0.71f, 0.71f},  {-0.92f, 0.38f},
      {-1, 0}, {-0.92f, -0.38f}, {-0.71f, -0.71f}, {-0.38f, -0.92f},
      {0, -1}, {0.38f, -0.92f},  {0.71f, -0.71f},  {0.92f, -0.38f}};
  const float* direction = kDirections[hash >> 28];
  return direction[0] * dx + direction[1] * dy;
}

}  // namespace

uint32_t hashOf(int x, int y, uint32_t seed) {
  uint32_t h = seed * 0x9E3779B1u + static_cast<uint32_t>(x) * 0x85EBCA77u;
  h = (h ^ (h >> 15)) * 0xC2B2AE3Du + static_cast<uint32_t>(y) * 0x27D4EB2Fu;
  h = (h ^ (h >> 13)) * 0x165667B1u;
  h = (h ^ (h >> 16)) * 0x9E3779B1u;
  return h ^ (h >> 15);
}

float perlin(float x, float y, uint32_t seed) {
  const float fx = std::floor(x);
  const float fy = std::floor(y);
  const int ix = static_cast<int>(fx);
  const int iy = static_cast<int>(fy);
  const float dx = x - fx;
  const float dy = y - fy;
  const float u = fade(dx);
  const float top = mix(gradientDot(hashOf(ix, iy, seed), dx, dy),
                        gradientDot(hashOf(ix + 1, iy, seed), dx - 1, dy), u);
  const float bottom = mix(gradientDot(hashOf(ix, iy + 1, seed), dx, dy - 1),
                           gradientDot(hashOf(ix + 1, iy + 1, seed), dx - 1, dy - 1), u);
  return 1.4f * mix(top, bottom, fade(dy));
}

float fbm(float x, float y, int octaves, uint32_t seed) {
  float sum = 0;
  float total = 0;
  float weight = 1;
  for (int i = 0; i < octaves; ++i) {
    sum += weight * perlin(x, y, seed + static_cast<uint32_t>(i) * 101u);
    total += weight;
    weight *= 0.5f;
    // Turning the octaves against each other keeps their lattices from showing.
    const float turned = 1.6f * x + 1.2f * y;
    y = 1.6f * y - 1.2f * x + 17.3f;
    x = turned + 5.1f;
  }
  return 1.3f * sum / total;
}

float ridged(float x, float y, int octaves, uint32_t seed) {
  float sum = 0;
  float total = 0;
  float weight = 1;
  for (int i = 0; i < octaves; ++i) {
    sum +=
        weight *
        square(1 - std::min(1.0f, std::abs(perlin(x, y, seed + static_cast<uint32_t>(i) * 59u))));
    total += weight;
    weight *= 0.5f;
    x = x * 2 + 3.7f;
    y = y * 2 + 9.2f;
  }
  return sum / total;
}

float wander(float t, uint32_t seed, int period) {
  const float ft = std::floor(t);
  int i = static_cast<int>(ft);
  int j = i + 1;
  if (period > 0) {
    i = ((i % period) + period) % period;
    j = ((j % period) + period) % period;
  }
  return 2 * mix(unitHash(i, 0, seed), unitHash(j, 0, seed), fade(t - ft)) - 1;
}

Cell cellAt(float x, float y, uint32_t seed, float jitter) {
  const int ix = static_cast<int>(std::floor(x));
  const int iy = static_cast<int>(std::floor(y));
  Cell cell{9, 9, 0, {}};
  Point points[25];
  int count = 0;
  for (int j = iy - 2; j <= iy + 2; ++j) {
    for (int i = ix - 2; i <= ix + 2; ++i) {
      const Point p{static_cast<float>(i) + 0.5f + jitter * (unitHash(i, j, seed) - 0.5f),
                    static_cast<float>(j) + 0.5f + jitter * (unitHash(i, j, seed + 1) - 0.5f)};
      points[count++] = p;
      const float distance = length(p - Point{x, y});
      if (distance < cell.nearest) {
        cell.nearest = distance;
        cell.centre = p;
        cell.id = hashOf(i, j, seed + 2);
      }
    }
  }
  for (const Point p : points) {
    const Point between = p - cell.centre;
    const float gap = length(between);
    if (gap > 1e-4f) {
      const Point middle = (p + cell.centre) * 0.5f;
      cell.border = std::min(cell.border, dot(middle - Point{x, y}, between) / gap);
    }
  }
  return cell;
}

uint32_t Random::bits() {
  state_ = state_ * 747796405u + 2891336453u;
  const uint32_t word = ((state_ >> ((state_ >> 28) + 4)) ^ state_) * 277803737u;
  return (word >> 22) ^ word;
}

float Random::unit() { return static_cast<float>(bits() >> 8) * (1.0f / 16777216.0f); }

}  // namespace qpx::drawing
