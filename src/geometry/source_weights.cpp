#include "geometry/source_weights.h"

#include <algorithm>

#include "geometry/packed_rgb.h"

namespace qpx {

void SourceWeights::startTile(int32_t left, int32_t right) {
  left_ = left;
  right_ = right;
  from_ = std::max(0, left - passes_);
  to_ = static_cast<int32_t>(std::min<int64_t>(int64_t{right} + passes_, mask_.width));
  counted_ = 0;
  outside_.fill(0);
}

void SourceWeights::row(int32_t y, uint16_t* weights) {
  const auto last =
      static_cast<int32_t>(std::min<int64_t>(int64_t{y} + passes_, int64_t{mask_.height} - 1));
  for (; counted_ <= last; ++counted_) count(counted_, 1);
  if (y > passes_) count(y - passes_ - 1, -1);
  const int32_t rows = last - std::max(0, y - passes_) + 1;
  if (allAre(0)) {
    std::fill_n(weights, right_ - left_, uint16_t{0});
  } else if (allAre(rows)) {
    std::fill_n(weights, right_ - left_, uint16_t{1024});
  } else {
    tabulate(rows);
    slide(rows, weights);
  }
}

void SourceWeights::count(int32_t y, int32_t sign) {
  const uint8_t* const mask = rowOf(mask_, y) + from_;
  uint16_t* const counts = outside_.data() + (from_ - left_ + passes_);
  for (int32_t i = 0; i < to_ - from_; ++i) {
    counts[i] = static_cast<uint16_t>(counts[i] + (mask[i] == 0 ? sign : 0));
  }
}

bool SourceWeights::allAre(int32_t value) const {
  const uint16_t* const counts = outside_.data() + (from_ - left_ + passes_);
  uint32_t differing = 0;
  for (int32_t i = 0; i < to_ - from_; ++i) differing |= counts[i] ^ static_cast<uint32_t>(value);
  return differing == 0;
}

// Only the picture's first and last rows have windows of fewer rows.
void SourceWeights::tabulate(int32_t rows) {
  if (rows == tabulated_) return;
  tabulated_ = rows;
  const int32_t area = rows * (2 * passes_ + 1);
  for (int32_t z = 0; z <= area; ++z) {
    table_[static_cast<size_t>(z)] = static_cast<uint16_t>((z << 10) / area);
  }
}

int32_t SourceWeights::columnsAt(int32_t x) const {
  return std::min(x, passes_) + 1 + std::min(mask_.width - 1 - x, passes_);
}

void SourceWeights::slide(int32_t rows, uint16_t* weights) const {
  const int32_t whole = 2 * passes_ + 1;
  int32_t zeros = 0;
  for (int32_t i = 0; i < whole - 1; ++i) zeros += outside_[static_cast<size_t>(i)];
  for (int32_t x = left_; x < right_; ++x) {
    const auto i = static_cast<size_t>(x - left_);
    zeros += outside_[i + static_cast<size_t>(whole) - 1];
    const bool cut = x < passes_ || x >= mask_.width - passes_;
    weights[i] = cut ? static_cast<uint16_t>((zeros << 10) / (columnsAt(x) * rows))
                     : table_[static_cast<size_t>(zeros)];
    zeros -= outside_[i];
  }
}

}  // namespace qpx
