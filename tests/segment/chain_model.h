// Outlines once more, word for word.
#pragma once

#include <qpx/types.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace qpx::testing {

// Bytes of a picture, 0 outside of it.
struct Plane {
  int32_t width, height;
  std::vector<uint8_t> bytes;

  Plane(int32_t w, int32_t h) : width(w), height(h), bytes(static_cast<size_t>(w) * h) {}

  bool has(int32_t x, int32_t y) const { return x >= 0 && y >= 0 && x < width && y < height; }
  bool inner(int32_t x, int32_t y) const {
    return x > 0 && y > 0 && x < width - 1 && y < height - 1;
  }
  bool corner(int32_t x, int32_t y) const {
    return (x == 0 || x == width - 1) && (y == 0 || y == height - 1);
  }
  uint8_t get(int32_t x, int32_t y) const {
    return has(x, y)
               ? bytes[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]
               : 0;
  }
  void set(int32_t x, int32_t y, uint8_t value) {
    bytes[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] = value;
  }
  int coveredAround(int32_t x, int32_t y) const {
    int covered = 0;
    for (int dy = -1; dy <= 1; ++dy) {
      for (int dx = -1; dx <= 1; ++dx) {
        covered += (dx != 0 || dy != 0) && get(x + dx, y + dy) != 0;
      }
    }
    return covered;
  }
};

struct EdgeModel {
  Plane edges;
  int32_t count = 0;
};

// Edge pixels of a mask, `whole` with the outer pixels of the border too.
inline EdgeModel edgesOf(const Plane& mask, bool whole) {
  EdgeModel model = {Plane(mask.width, mask.height), 0};
  for (int32_t y = 0; y < mask.height; ++y) {
    for (int32_t x = 0; x < mask.width; ++x) {
      const bool around = mask.coveredAround(x, y) > 0;
      if (mask.get(x, y) == 0) {
        if (!around || (!mask.inner(x, y) && !whole)) continue;
        model.edges.set(x, y, 255);
        ++model.count;
        continue;
      }
      if (mask.inner(x, y)) continue;
      model.count += 3;
      model.edges.set(x, y, 255);
      if (mask.corner(x, y)) continue;
      const bool across = y == 0 || y == mask.height - 1;
      for (const int k : {-1, 1}) model.edges.set(x + (across ? k : 0), y + (across ? 0 : k), 255);
    }
  }
  return model;
}

struct ChainModel {
  std::vector<MPoint> points;
  bool closed = false;
};

// All chains, in the order in which they are found. The pixel that one starts from ends it.
inline std::vector<ChainModel> chainsOf(const Plane& edges) {
  constexpr int kSteps[8][2] = {{-1, 1}, {0, 1},  {1, 1},   {1, 0},
                                {1, -1}, {0, -1}, {-1, -1}, {-1, 0}};
  Plane visited(edges.width, edges.height);
  std::vector<ChainModel> chains;
  int direction = 0;
  for (int32_t y = 0; y < edges.height; ++y) {
    for (int32_t x = 0; x < edges.width; ++x) {
      if (edges.get(x, y) == 0 || visited.get(x, y) != 0) continue;
      ChainModel chain = {{{x, y}}, false};
      for (bool moved = true; moved && !chain.closed;) {
        moved = false;
        for (int t = 0; t < 7 && !moved; ++t) {
          const int d = (direction + t) % 8;
          const MPoint& last = chain.points.back();
          const MPoint next = {last.x + kSteps[d][0], last.y + kSteps[d][1]};
          if (edges.get(next.x, next.y) == 0 || visited.get(next.x, next.y) != 0) continue;
          visited.set(next.x, next.y, 1);
          direction = (d + 6) % 8;
          moved = true;
          chain.closed = next.x == x && next.y == y;
          if (!chain.closed) chain.points.push_back(next);
        }
      }
      visited.set(x, y, 1);
      chains.push_back(chain);
    }
  }
  return chains;
}

inline bool same(const MPoint& a, const MPoint& b) { return a.x == b.x && a.y == b.y; }

inline bool neighbours(const MPoint& a, const MPoint& b) {
  return std::abs(a.x - b.x) <= 1 && std::abs(a.y - b.y) <= 1 && !same(a, b);
}

}  // namespace qpx::testing
