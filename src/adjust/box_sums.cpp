// Sums of windows row by row, for hosts and stages that keep them themselves.
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstddef>

namespace qpx {
namespace {

struct Columns {
  int32_t width;
  int32_t first;
  int32_t end;
};

// The window's sum along one row, one of the bytes of a pixel, modulo 2^32.
class SlidingSum {
 public:
  SlidingSum(const uint8_t* samples, ptrdiff_t step, const Columns& columns, int32_t window)
      : samples_(samples), step_(step), columns_(columns), reach_(window >> 1) {
    const int64_t left = int64_t{columns.first} - reach_, end = left + window;
    const int64_t last = columns.width - 1;
    // The edge columns stand for all beyond them.
    addTimes(0, std::min<int64_t>(end, 0) - left);
    for (int64_t x = std::max<int64_t>(left, 0); x < std::min(end, last + 1); ++x) sum_ += at(x);
    addTimes(last, end - std::max(left, last + 1));
  }

  uint32_t sum() const { return sum_; }

  // To column x from the one before it.
  void moveTo(int32_t x) {
    sum_ -= at(x > reach_ ? int64_t{x} - reach_ - 1 : columns_.first);
    sum_ += at(int64_t{x} + reach_);
  }

 private:
  uint32_t at(int64_t column) const {
    return samples_[std::clamp<int64_t>(column, 0, columns_.width - 1) * step_];
  }

  void addTimes(int64_t column, int64_t times) {
    if (times > 0) sum_ += at(column) * static_cast<uint32_t>(times);
  }

  const uint8_t* samples_;
  ptrdiff_t step_;
  const Columns& columns_;
  int32_t reach_;
  uint32_t sum_ = 0;
};

void add(int32_t& sum, uint32_t change) {
  sum = static_cast<int32_t>(static_cast<uint32_t>(sum) + change);
}

int32_t updateBoxSums(ptrdiff_t pixelBytes, const Columns& columns, int32_t* sums, QPXRowTable rows,
                      int32_t line, int32_t window) {
  if (sums == nullptr || rows == nullptr || window < 1 || columns.width < 1) return QPX_BAD_PARAM;
  if (columns.first < 0 || columns.first > columns.end || columns.end > columns.width) {
    return QPX_BAD_PARAM;
  }
  if (columns.first == columns.end) return QPX_OK;
  const int64_t reach = window >> 1;
  const uint8_t* out = rows[static_cast<ptrdiff_t>(line - reach)];
  const uint8_t* in = rows[static_cast<ptrdiff_t>(line + reach + 1)];
  if (out == nullptr || in == nullptr) return QPX_BAD_PARAM;
  for (int p = 0; p < 3; ++p) {
    SlidingSum above(out + p, pixelBytes, columns, window);
    SlidingSum below(in + p, pixelBytes, columns, window);
    int32_t* plane = sums + ptrdiff_t{columns.width} * p;
    add(plane[columns.first], below.sum() - above.sum());
    for (int32_t x = columns.first + 1; x < columns.end; ++x) {
      above.moveTo(x);
      below.moveTo(x);
      add(plane[x], below.sum() - above.sum());
    }
  }
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t UpdateBoxSums24(int32_t width, int32_t firstColumn, int32_t endColumn, int32_t* sums,
                        QPXRowTable rows, int32_t line, int32_t windowSize) {
  return updateBoxSums(3, {width, firstColumn, endColumn}, sums, rows, line, windowSize);
}

int32_t UpdateBoxSums32(int32_t width, int32_t firstColumn, int32_t endColumn, int32_t* sums,
                        QPXRowTable rows, int32_t line, int32_t windowSize) {
  return updateBoxSums(4, {width, firstColumn, endColumn}, sums, rows, line, windowSize);
}
