#include "retouch_guide.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace qpx::tool {

namespace {

constexpr double kGuidePixels = 700000;
constexpr uint8_t kInside = 128;

int32_t reducedSide(int32_t side, double scale) {
  return static_cast<int32_t>(std::lround((side - 1) / scale)) + 1;
}

// The guide's pixel that each pixel of a side belongs to, as ReTouch has it.
std::vector<int32_t> cellsOf(int32_t side, int32_t reduced) {
  const double step = static_cast<double>(std::max(side - 1, 1)) / std::max(reduced - 1, 1);
  std::vector<int32_t> cells;
  cells.reserve(static_cast<size_t>(side));
  for (int32_t i = 0; i < side; ++i) {
    cells.push_back(std::min(static_cast<int32_t>(i / step + 0.5), reduced - 1));
  }
  return cells;
}

// Sums and counts of one row of the guide.
class MeanRow {
 public:
  MeanRow(const Picture& picture, int32_t width)
      : channels_(picture.channels()),
        cells_(cellsOf(picture.width(), width)),
        sums_(static_cast<size_t>(width) * static_cast<size_t>(channels_)),
        counts_(static_cast<size_t>(width)) {}

  void add(const uint8_t* row) {
    for (const int32_t cell : cells_) {
      ++counts_[static_cast<size_t>(cell)];
      uint64_t* const sums = sums_.data() + ptrdiff_t{cell} * channels_;
      for (int c = 0; c < channels_; ++c) sums[c] += *row++;
    }
  }

  void takeMeans(uint8_t* to) {
    for (size_t i = 0; i < sums_.size(); ++i) {
      const uint64_t count = counts_[i / static_cast<size_t>(channels_)];
      to[i] = static_cast<uint8_t>((sums_[i] + count / 2) / count);
    }
    std::fill(sums_.begin(), sums_.end(), 0);
    std::fill(counts_.begin(), counts_.end(), 0);
  }

 private:
  int channels_;
  std::vector<int32_t> cells_;
  std::vector<uint64_t> sums_;
  std::vector<uint64_t> counts_;
};

}  // namespace

double retouchScale(const Picture& picture) {
  const double pixels = static_cast<double>(picture.width()) * picture.height();
  return std::max(1.0, std::sqrt(pixels / kGuidePixels));
}

Picture retouchGuide(const Picture& picture, double scale) {
  const int32_t width = reducedSide(picture.width(), scale);
  const int32_t height = reducedSide(picture.height(), scale);
  Picture guide(width, height, picture.channels());
  const std::vector<int32_t> rows = cellsOf(picture.height(), height);
  MeanRow means(picture, width);
  for (int32_t y = 0; y < picture.height(); ++y) {
    means.add(picture.row(y));
    const int32_t row = rows[static_cast<size_t>(y)];
    const bool last = y + 1 == picture.height() || rows[static_cast<size_t>(y) + 1] != row;
    if (last) means.takeMeans(guide.row(row));
  }
  return guide;
}

Picture retouchMask(const Picture& mask, double scale) {
  Picture reduced(reducedSide(mask.width(), scale), reducedSide(mask.height(), scale), 1);
  for (int32_t y = 0; y < reduced.height(); ++y) {
    std::fill_n(reduced.row(y), reduced.width(), uint8_t{0});
  }
  const std::vector<int32_t> columns = cellsOf(mask.width(), reduced.width());
  const std::vector<int32_t> rows = cellsOf(mask.height(), reduced.height());
  for (int32_t y = 0; y < mask.height(); ++y) {
    const uint8_t* const from = mask.row(y);
    uint8_t* const to = reduced.row(rows[static_cast<size_t>(y)]);
    for (int32_t x = 0; x < mask.width(); ++x) {
      if (from[x] >= kInside) to[columns[static_cast<size_t>(x)]] = 255;
    }
  }
  return reduced;
}

}  // namespace qpx::tool
