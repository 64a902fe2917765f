// What the tests of cut-outs share.
#pragma once

#include <qpx/cutout.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "support/picture.h"

namespace qpx::testing {

// A BGR picture without padding.
struct Canvas {
  int32_t width, height;
  std::vector<uint8_t> bytes;

  Canvas(int32_t w, int32_t h) : width(w), height(h), bytes(static_cast<size_t>(w) * h * 3) {}

  MBitmap bitmap() {
    return {QPX_FORMAT_BGR24, width, height, {3 * width, 0, 0}, {bytes.data(), nullptr, nullptr}};
  }
  uint8_t* at(int32_t x, int32_t y) {
    return bytes.data() +
           3 * (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
  }
};

using Inside = std::function<bool(int32_t x, int32_t y)>;

// An object of one colour on ground of another, both with noise of this amplitude.
inline Canvas paintedCanvas(int32_t width, int32_t height, const Inside& inside, int amplitude,
                            uint64_t seed) {
  constexpr int kObject[3] = {60, 90, 190}, kGround[3] = {150, 140, 70};
  Canvas canvas(width, height);
  Random random(seed);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const int* const color = inside(x, y) ? kObject : kGround;
      for (int c = 0; c < 3; ++c) {
        canvas.at(x, y)[c] = static_cast<uint8_t>(color[c] + random.between(-amplitude, amplitude));
      }
    }
  }
  return canvas;
}

// All pixels between two points of a row or column.
inline std::vector<MPoint> line(MPoint from, const MPoint& to) {
  std::vector<MPoint> points = {from};
  while (from.x != to.x || from.y != to.y) {
    from.x += (to.x > from.x) - (to.x < from.x);
    from.y += (to.y > from.y) - (to.y < from.y);
    points.push_back(from);
  }
  return points;
}

// A handle and what it handed out last.
class Cutting {
 public:
  explicit Cutting(const MBitmap& image) { created = STRKM_Create(&handle, &image); }
  ~Cutting() { STRKM_Destroy(handle); }
  Cutting(const Cutting&) = delete;
  Cutting& operator=(const Cutting&) = delete;

  int32_t stroke(int32_t side, const std::vector<MPoint>& places) const {
    return STRKM_AddLine(handle, side, places.data(), static_cast<int32_t>(places.size()));
  }
  int32_t process() { return STRKM_Process(handle, &mask, &points, &count); }

  uint8_t maskAt(int32_t x, int32_t y) const {
    return mask->plane[0][static_cast<ptrdiff_t>(mask->pitch[0]) * y + x];
  }
  std::vector<uint8_t> maskBytes() const {
    std::vector<uint8_t> bytes;
    for (int32_t y = 0; y < mask->height; ++y) {
      for (int32_t x = 0; x < mask->width; ++x) bytes.push_back(maskAt(x, y));
    }
    return bytes;
  }
  std::vector<MPoint> outline() const { return {points, points + count}; }

  StrokeMatting* handle = nullptr;
  int32_t created = -1;
  MBitmap* mask = nullptr;
  MPoint* points = nullptr;
  int32_t count = -1;
};

}  // namespace qpx::testing
