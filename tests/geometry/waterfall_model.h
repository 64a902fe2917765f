// A plain model of the waterfall, pixel by pixel, for tests to hold the library against.
#pragma once

#include <qpx/types.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "geometry/smear_pictures.h"

namespace qpx::testing {

struct ModelArea {
  int32_t left = 1, top = 1, right = 0, bottom = 0;
  bool operator==(const ModelArea&) const = default;
};

class WaterfallModel {
 public:
  explicit WaterfallModel(const MBitmap& image);

  // True when a segment was drawn, which without `filters` is given up before its first row.
  bool touch(const MPoint& point, bool finish, bool filters = true);

  int32_t value(int32_t x, int32_t y, int c) const { return result_[place(x, y, c)]; }
  uint8_t maskValue(int32_t x, int32_t y) const { return mask_[place(x, y, 0) / 3]; }
  const ModelArea& dirty() const { return dirty_; }

  int32_t radius = 20, feather = 4, blurLength = 40;

 private:
  size_t place(int64_t x, int64_t y, int c) const {
    return static_cast<size_t>((y * width_ + x) * 3 + c);
  }
  void put(int64_t x, int64_t y, int32_t value);
  void disc(const MPoint& centre);
  void segment(const MPoint& point, bool filters);
  void filter(int32_t x, int32_t y);

  int32_t width_, height_;
  std::vector<uint8_t> result_, snapshot_, mask_;
  std::optional<MPoint> last_;
  int32_t strokes_ = 0;
  int32_t sin_ = 0, cos_ = 0;
  ModelArea dirty_;
};

}  // namespace qpx::testing
