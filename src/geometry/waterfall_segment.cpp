// One segment of a waterfall in one call: a mask is painted, closed, softened, and the picture
// smeared along the stroke under it.
#include <qpx/waterfall.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "engine/stage.h"
#include "geometry/line_sums.h"
#include "geometry/masked_lines.h"
#include "geometry/packed_rgb.h"
#include "geometry/reciprocals.h"
#include "geometry/stroke.h"
#include "geometry/turn_math.h"
#include "simd/sum_rows.h"

namespace qpx {
namespace {

constexpr int32_t kRun = MaskedLines::kTileWidth;

struct Size {
  int32_t width, height;
};

// A Gaussian of 19 taps with a deviation of 3, with 16 fractional bits. Its taps are cut, so that
// they add up to a little less than 1.
class Gaussian {
 public:
  static constexpr int32_t kReach = 9;
  static constexpr int32_t kTaps = 2 * kReach + 1;

  Gaussian() {
    std::array<double, kTaps> weights;
    double sum = 0;
    for (int32_t i = 0; i < kTaps; ++i) {
      const double distance = i - kReach;
      weights[static_cast<size_t>(i)] = std::exp(-distance * distance / 18.0);
      sum += weights[static_cast<size_t>(i)];
    }
    for (size_t i = 0; i < kTaps; ++i) {
      taps_[i] = static_cast<uint32_t>(weights[i] / sum * 65536.0);
    }
  }

  // to[i] from taps that start at from(t)[i], at most kRun of them.
  template <typename Source>
  void smooth(const Source& from, uint8_t* to, ptrdiff_t count) const {
    std::array<uint32_t, kRun> sums = {};
    for (int32_t t = 0; t < kTaps; ++t) {
      const uint8_t* const row = from(t);
      const uint32_t tap = taps_[static_cast<size_t>(t)];
      for (ptrdiff_t i = 0; i < count; ++i) sums[static_cast<size_t>(i)] += tap * row[i];
    }
    for (ptrdiff_t i = 0; i < count; ++i) {
      to[i] = static_cast<uint8_t>(std::min(sums[static_cast<size_t>(i)] >> 16, 255u));
    }
  }

 private:
  std::array<uint32_t, kTaps> taps_;
};

// Two masks of the picture's size, one made from the other.
class Masks {
 public:
  explicit Masks(const Size& size)
      : size_(size),
        pitch_(static_cast<ptrdiff_t>((int64_t{size.width} * 8 + 31) / 32 * 4)),
        bytes_(blockBytes(size.height, 2 * int64_t{pitch_})),
        block_(bytes_) {
    if (block_) std::memset(block_.get(), 0, bytes_);
  }
  explicit operator bool() const { return bool(block_); }

  uint8_t* first(int32_t y) const { return block_.get() + pitch_ * y; }
  uint8_t* second(int32_t y) const { return first(size_.height) + pitch_ * y; }
  MaskRows result() const { return {second(0), pitch_}; }

  void paint(const Stroke& stroke, const Area& area, int32_t radius) const;
  void closeHoles(const Area& area) const;
  void soften(const Area& area) const;

 private:
  bool isHole(int32_t x, int32_t y) const;
  void smoothRow(const Gaussian& gaussian, const Area& area, int32_t y) const;

  Size size_;
  ptrdiff_t pitch_;
  size_t bytes_;
  Scratch block_;
};

// Lines across the stroke, a pixel apart, into the first mask.
void Masks::paint(const Stroke& stroke, const Area& area, int32_t radius) const {
  const double radians = radiansOf(stroke.degrees);
  const auto cos = static_cast<int32_t>(0.5 + std::fabs(std::cos(radians)) * 256.0);
  const auto sin = static_cast<int32_t>(0.5 + std::fabs(std::sin(radians)) * 256.0);
  const int64_t side = stroke.degrees < 90 ? 1 : -1;
  const auto put = [&](int64_t x, int64_t y) {
    if (x < area.left || x > area.right || y < area.top || y > area.bottom) return;
    first(static_cast<int32_t>(y))[x] = 255;
  };
  const Direction direction = {sin, static_cast<int32_t>(side * cos)};
  const StrokeRange range = rangeOver(area, stroke.first, direction);
  const int64_t steps = static_cast<int64_t>(stroke.length + 0.5);
  const int64_t last = std::min<int64_t>(radius, range.farthest);
  for (int64_t k = std::max<int64_t>(0, range.firstStep); k < steps && k <= range.lastStep; ++k) {
    const int64_t x = stroke.first.x - side * roundedWay(k, cos);
    const int64_t y = stroke.first.y + roundedWay(k, sin);
    for (int64_t j = std::max<int64_t>(0, range.nearest); j <= last; ++j) {
      const int64_t a = side * roundedWay(j, sin), b = roundedWay(j, cos);
      put(x - a, y - b);
      put(x + a, y + b);
    }
  }
}

bool Masks::isHole(int32_t x, int32_t y) const {
  int32_t neighbours = 0;
  for (int32_t dy = -1; dy <= 1; ++dy) {
    const uint8_t* const row = first(y + dy) + x;
    neighbours += (row[-1] != 0) + (row[0] != 0) + (row[1] != 0);
  }
  return neighbours > 3;
}

// The first mask without the pixels that rounding left out between its lines, into the second.
void Masks::closeHoles(const Area& area) const {
  for (int32_t y = area.top; y <= area.bottom; ++y) {
    const uint8_t* const from = first(y);
    uint8_t* const to = second(y);
    std::copy(from + area.left, from + area.right + 1, to + area.left);
    if (y == 0 || y == size_.height - 1) continue;
    const int32_t right = std::min(area.right, size_.width - 2);
    for (int32_t x = std::max(area.left, 1); x <= right; ++x) {
      if (from[x] == 0 && isHole(x, y)) to[x] = 255;
    }
  }
}

// A row of the second mask into the first; what lies beyond the picture is its edge.
void Masks::smoothRow(const Gaussian& gaussian, const Area& area, int32_t y) const {
  constexpr int32_t kReach = Gaussian::kReach;
  std::array<uint8_t, kRun + 2 * kReach> line;
  const uint8_t* const row = second(y);
  for (int32_t start = area.left; start <= area.right; start += kRun) {
    const int32_t count = std::min(area.right - start, kRun - 1) + 1;
    for (int32_t i = 0; i < count + 2 * kReach; ++i) {
      line[static_cast<size_t>(i)] =
          row[std::clamp<int64_t>(int64_t{start} + i - kReach, 0, size_.width - 1)];
    }
    gaussian.smooth([&](int32_t t) { return line.data() + t; }, first(y) + start, count);
    if (area.right - start < kRun) break;
  }
}

// The second mask, softened along rows into the first and along columns back.
void Masks::soften(const Area& area) const {
  const Gaussian gaussian;
  for (int32_t y = area.top; y <= area.bottom; ++y) smoothRow(gaussian, area, y);
  for (int32_t y = area.top; y <= area.bottom; ++y) {
    for (int32_t start = area.left; start <= area.right; start += kRun) {
      const int32_t count = std::min(area.right - start, kRun - 1) + 1;
      const auto rowAt = [&](int32_t t) {
        const int64_t row = int64_t{y} + t - Gaussian::kReach;
        return first(static_cast<int32_t>(std::clamp<int64_t>(row, 0, size_.height - 1))) + start;
      };
      gaussian.smooth(rowAt, second(y) + start, count);
      if (area.right - start < kRun) break;
    }
  }
}

class Smear {
 public:
  Smear(const MBitmap& src, const MBitmap& dst, const MaskRows& mask, const Stroke& stroke,
        int32_t blurLength)
      : src_(src),
        dst_(dst),
        mask_(mask),
        bytes_(packedRgbBytes(src.format)),
        reciprocals_(halfLength(src, blurLength), 0.0),
        lines_(src, mask, lineAt(static_cast<int32_t>(stroke.degrees)),
               halfLength(src, blurLength)) {}

  bool ready() const { return reciprocals_ && lines_; }

  void run(const Area& area) {
    for (int32_t left = area.left; left <= area.right; left += kRun) {
      const int32_t right = std::min(area.right - left, kRun - 1) + 1 + left;
      lines_.startTile(left, right, area.top);
      for (int32_t y = area.top; y <= area.bottom; ++y) tileRow(y, left, right);
      if (area.right - left < kRun) break;
    }
  }

 private:
  void tileRow(int32_t y, int32_t left, int32_t right) {
    const uint8_t* const mask = mask_.row(y);
    while (left < right && mask[left] == 0) ++left;
    while (left < right && mask[right - 1] == 0) --right;
    const simd::QuadSums sums = lines_.nextRow(left, right);
    std::array<uint8_t, kRun> means[3];
    for (size_t c = 0; c < 3; ++c) {
      simd::sumRows().scaleSums(sums.plane[c], sums.plane[3], reciprocals_.table(), 0,
                                means[c].data(), right - left);
    }
    const uint8_t* const from = rowOf(src_, y);
    uint8_t* const to = rowOf(dst_, y);
    for (int32_t x = left; x < right; ++x) {
      const int32_t m = mask[x];
      if (m == 0) continue;
      for (size_t c = 0; c < 3; ++c) {
        const size_t at = static_cast<size_t>(bytes_) * static_cast<size_t>(x) + c;
        const int32_t mean = means[c][static_cast<size_t>(x - left)];
        to[at] = static_cast<uint8_t>(((255 - m) * from[at] + m * mean) >> 8);
      }
    }
  }

  const MBitmap& src_;
  const MBitmap& dst_;
  MaskRows mask_;
  int32_t bytes_;
  Reciprocals reciprocals_;
  MaskedLines lines_;
};

int32_t check(const MBitmap& src, const MBitmap& dst) {
  const int32_t bytes = packedRgbBytes(src.format);
  if (bytes == 0 || packedRgbBytes(dst.format) == 0) return QPX_UNSUPPORTED;
  const bool fits = withoutOrder(src.format) == withoutOrder(dst.format) && hasRows(src, bytes) &&
                    hasRows(dst, bytes) && sameSize(src, dst);
  return fits ? QPX_OK : QPX_BAD_PARAM;
}

void copyRows(const MBitmap& src, const MBitmap& dst) {
  const size_t bytes =
      static_cast<size_t>(src.width) * static_cast<size_t>(packedRgbBytes(src.format));
  for (int32_t y = 0; y < src.height; ++y) std::memcpy(rowOf(dst, y), rowOf(src, y), bytes);
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPX_Waterfall(const MBitmap* src, MPoint* p0, MPoint* p1, int32_t radius,
                      int32_t blurLength, MBitmap* dst) {
  if (src == nullptr || p0 == nullptr || p1 == nullptr || dst == nullptr) return QPX_BAD_PARAM;
  if (radius <= 0 || blurLength <= 0) return QPX_BAD_PARAM;
  const int32_t checked = check(*src, *dst);
  if (checked != QPX_OK) return checked;
  const Stroke stroke = strokeBetween(*p0, *p1, kPi);
  const Masks masks({src->width, src->height});
  if (!masks) return QPX_NO_MEMORY;
  Smear smear(*src, *dst, masks.result(), stroke, blurLength);
  if (!smear.ready()) return QPX_NO_MEMORY;

  *p0 = stroke.first;
  *p1 = stroke.second;
  copyRows(*src, *dst);
  // Steps with 8 fractional bits lead a little astray over long ways.
  const int64_t reach = int64_t{radius} + 4 + static_cast<int64_t>(stroke.length / 256.0);
  const Area painted = areaAbout(stroke, reach, src->width, src->height);
  if (painted.empty()) return QPX_OK;
  const Area softened = areaAbout(stroke, reach + Gaussian::kReach, src->width, src->height);
  masks.paint(stroke, painted, radius);
  masks.closeHoles(painted);
  masks.soften(softened);
  smear.run(softened);
  return QPX_OK;
}
