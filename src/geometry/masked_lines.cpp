#include "geometry/masked_lines.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "geometry/packed_rgb.h"

namespace qpx {
namespace {

constexpr uint32_t kTakeAway = 0xFFFFFFFFu;

// How far steps from -half to half lead, at most to the other edge.
int32_t reach(int64_t there, int64_t back, int32_t side) {
  return static_cast<int32_t>(
      std::min<int64_t>(std::max(std::abs(there), std::abs(back)), int64_t{side} - 1));
}

bool isLevel(const Line& line) { return line.stepY == 0 && line.stepX == 256; }
bool isUpright(const Line& line) { return line.stepX == 0 && line.stepY == 256; }

// Of a tile and what lines reach to both sides of it.
int64_t rowBytes(int32_t width, int32_t reachAcross) {
  return 4 * (std::min(MaskedLines::kTileWidth, width) + 2 * int64_t{reachAcross});
}

}  // namespace

// A running sum down the columns takes away the row behind the last one it needs.
MaskedLines::MaskedLines(const MBitmap& picture, const MaskRows& mask, const Line& line,
                         int64_t half)
    : picture_(picture),
      mask_(mask),
      line_(line),
      half_(isLevel(line)     ? std::min<int64_t>(half, picture.width - 1)
            : isUpright(line) ? std::min<int64_t>(half, picture.height - 1)
                              : half),
      bytesPerPixel_(packedRgbBytes(picture.format)),
      reachAcross_(reach(line.across(half_), line.across(-half_), picture.width)),
      reachDown_(reach(line.down(half_), line.down(-half_), picture.height)),
      slots_(static_cast<int32_t>(std::min<int64_t>(2 * int64_t{reachDown_} + 2, picture.height))),
      pitch_(static_cast<ptrdiff_t>(rowBytes(picture.width, reachAcross_))),
      rows_(blockBytes(slots_, rowBytes(picture.width, reachAcross_))) {}

void MaskedLines::startTile(int32_t left, int32_t right, int32_t top) {
  left_ = left;
  right_ = right;
  top_ = next_ = top;
  loaded_ = std::max(0, top - reachDown_);
}

// Columns outside the picture are there as zeros.
LineRows MaskedLines::lineRows() const {
  return {rows_.get(),           pitch_,         slots_, left_ - reachAcross_,
          right_ + reachAcross_, picture_.height};
}

const uint8_t* MaskedLines::quadsAt(int32_t x, int32_t y) const {
  return rows_.get() + pitch_ * (y % slots_) + 4 * (ptrdiff_t{x} - left_ + reachAcross_);
}

void MaskedLines::loadRow(int32_t y) {
  const int32_t from = left_ - reachAcross_, to = right_ + reachAcross_;
  const int32_t left = std::max(0, from), right = std::min(picture_.width, to);
  uint8_t* const quads = rows_.get() + pitch_ * (y % slots_);
  uint8_t* const inside = quads + 4 * (ptrdiff_t{left} - from);
  std::memset(quads, 0, static_cast<size_t>(inside - quads));
  packQuads(rowOf(picture_, y) + ptrdiff_t{bytesPerPixel_} * left, bytesPerPixel_,
            mask_.row(y) + left, right - left, inside);
  std::memset(inside + 4 * (ptrdiff_t{right} - left), 0, 4 * static_cast<size_t>(to - right));
}

simd::QuadSums MaskedLines::nextRow(int32_t left, int32_t right) {
  const int32_t y = next_++;
  const int64_t last = std::min<int64_t>(int64_t{y} + reachDown_, int64_t{picture_.height} - 1);
  for (; loaded_ <= last; ++loaded_) loadRow(loaded_);
  const simd::QuadSums sums = {{sums_[0], sums_[1], sums_[2], sums_[3]}};
  if (isUpright(line_)) {
    slideDown(y);
    return sums.from(left - left_);
  }
  if (isLevel(line_)) {
    slideAcross(y, left, right, sums);
  } else if (left < right) {
    for (auto& plane : sums_) std::fill_n(plane, right - left, 0u);
    addLine(lineRows(), line_, -half_, half_, y, left, right, sums);
  }
  return sums;
}

void MaskedLines::slideAcross(int32_t y, int32_t left, int32_t right,
                              const simd::QuadSums& sums) const {
  if (left >= right) return;
  const auto half = static_cast<int32_t>(half_);
  uint32_t running[4] = {};
  const uint8_t* behind = quadsAt(left - half, y);
  const uint8_t* ahead = quadsAt(left + half, y);
  for (const uint8_t* quad = behind; quad < ahead; quad += 4) {
    for (int c = 0; c < 4; ++c) running[c] += quad[c];
  }
  for (ptrdiff_t i = 0; i < right - left; ++i) {
    for (int c = 0; c < 4; ++c) {
      running[c] += ahead[4 * i + c];
      sums.plane[c][i] = running[c];
      running[c] -= behind[4 * i + c];
    }
  }
}

void MaskedLines::addRow(int64_t y, uint32_t weight) {
  if (y < 0 || y >= picture_.height) return;
  const uint8_t* const quads = quadsAt(left_, static_cast<int32_t>(y));
  simd::sumRows().addQuads(&quads, 1, weight, {{sums_[0], sums_[1], sums_[2], sums_[3]}},
                           right_ - left_);
}

void MaskedLines::slideDown(int32_t y) {
  if (y != top_) {
    addRow(y + half_, 1);
    addRow(y - half_ - 1, kTakeAway);
    return;
  }
  for (auto& plane : sums_) std::fill_n(plane, kTileWidth, 0u);
  for (int64_t row = y - half_; row <= y + half_; ++row) addRow(row, 1);
}

}  // namespace qpx
