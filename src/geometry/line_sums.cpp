#include "geometry/line_sums.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "geometry/turn_math.h"
#include "simd/rows.h"

namespace qpx {
namespace {

// Shifted rows of one weight, added many at a time.
class Batch {
 public:
  Batch(const simd::SumRows& rows, uint32_t weight, const simd::QuadSums& sums, int32_t pixels)
      : rows_(rows), weight_(weight), sums_(sums), pixels_(pixels) {}

  void add(const uint8_t* quads) {
    if (count_ == places_.size()) flush();
    places_[count_++] = quads;
  }

  void flush() {
    rows_.addQuads(places_.data(), static_cast<ptrdiff_t>(count_), weight_, sums_, pixels_);
    count_ = 0;
  }

 private:
  const simd::SumRows& rows_;
  uint32_t weight_;
  const simd::QuadSums& sums_;
  int32_t pixels_;
  size_t count_ = 0;
  std::array<const uint8_t*, 128> places_;
};

// Steps that meet the same pixel stand together, twice at most for most lines.
class LineWalk {
 public:
  LineWalk(const Line& line, int64_t first, int64_t last) : line_(line), next_(first), last_(last) {
    look();
  }

  bool done() const { return next_ > last_; }
  int64_t dx() const { return dx_; }
  int64_t dy() const { return dy_; }

  // How many steps meet the pixel at (dx, dy); the walk goes on behind them.
  uint32_t takeWeight() {
    const int64_t dx = dx_, dy = dy_;
    uint32_t weight = 0;
    do {
      ++weight;
      ++next_;
      look();
    } while (!done() && dx_ == dx && dy_ == dy);
    return weight;
  }

 private:
  void look() {
    dx_ = line_.across(next_);
    dy_ = line_.down(next_);
  }

  const Line& line_;
  int64_t next_, last_;
  int64_t dx_ = 0, dy_ = 0;
};

}  // namespace

Line lineAt(int32_t degrees) {
  const double radians = radiansOf(degrees);
  return {static_cast<int32_t>(0.5 + std::fabs(std::cos(radians)) * 256.0),
          static_cast<int32_t>(0.5 + std::fabs(std::sin(radians)) * 256.0), degrees > 90};
}

int64_t halfLength(const MBitmap& picture, int32_t length) {
  const double w = picture.width, h = picture.height;
  const auto diagonal = static_cast<int64_t>(std::sqrt(w * w + h * h) + 10.0) - 10;
  return std::min<int64_t>(diagonal, length) >> 1;
}

void addLine(const LineRows& rows, const Line& line, int64_t first, int64_t last, int32_t y,
             int32_t left, int32_t right, const simd::QuadSums& sums) {
  if (left >= right) return;
  const simd::SumRows& simd = simd::sumRows();
  Batch singles(simd, 1, sums, right - left);
  Batch doubles(simd, 2, sums, right - left);
  // Beyond this many steps either coordinate has left what is there.
  const int64_t most = 2 * std::max<int64_t>(int64_t{rows.right} - rows.left, rows.height) + 2;
  LineWalk walk(line, std::max(first, -most), std::min(last, most));
  while (!walk.done()) {
    const int64_t dx = walk.dx(), row = y + walk.dy();
    const uint32_t weight = walk.takeWeight();
    if (row < 0 || row >= rows.height) continue;
    const int64_t start = std::max<int64_t>(left, rows.left - dx);
    const int64_t end = std::min<int64_t>(right, rows.right - dx);
    if (start >= end) continue;
    const uint8_t* quads = rows.quads + rows.pitch * static_cast<ptrdiff_t>(row % rows.slots) +
                           4 * static_cast<ptrdiff_t>(start + dx - rows.left);
    if (start == left && end == right && weight <= 2) {
      (weight == 1 ? singles : doubles).add(quads);
    } else {
      simd.addQuads(&quads, 1, weight, sums.from(static_cast<ptrdiff_t>(start - left)),
                    static_cast<ptrdiff_t>(end - start));
    }
  }
  singles.flush();
  doubles.flush();
}

void packQuads(const uint8_t* pixels, int32_t bytesPerPixel, const uint8_t* mask, ptrdiff_t count,
               uint8_t* quads) {
  constexpr ptrdiff_t kRun = 256;
  const simd::Rows& rows = simd::rows();
  std::array<uint8_t, kRun> planes[4];
  for (ptrdiff_t start = 0; start < count; start += kRun) {
    const ptrdiff_t run = std::min(kRun, count - start);
    uint8_t* p0 = planes[0].data();
    uint8_t* p1 = planes[1].data();
    uint8_t* p2 = planes[2].data();
    uint8_t* counts = planes[3].data();
    if (bytesPerPixel == 4) {
      rows.deinterleave4(pixels + 4 * start, run, p0, p1, p2, counts);
    } else {
      rows.deinterleave3(pixels + 3 * start, run, p0, p1, p2);
    }
    for (ptrdiff_t i = 0; i < run; ++i) {
      const uint8_t keep = mask == nullptr || mask[start + i] != 0 ? 0xFF : 0;
      p0[i] &= keep;
      p1[i] &= keep;
      p2[i] &= keep;
      counts[i] = keep & 1;
    }
    rows.interleave4(p0, p1, p2, counts, run, quads + 4 * start);
  }
}

}  // namespace qpx
