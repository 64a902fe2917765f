#include "segment/watershed_gradient.h"

#include <bit>
#include <cstring>
#include <utility>

#include "engine/stage.h"
#include "segment/rgb24.h"
#include "simd/rows.h"

namespace qpx {
namespace {

constexpr int32_t kLumaWeights[4] = {306 << 6, 601 << 6, 117 << 6, 0};

uint8_t thirdOf(int32_t sum) { return static_cast<uint8_t>((sum * 85) >> 8); }

// sqrt(squares) by the bit pattern of a first guess at the inverse root and one step of Newton's
// iteration; up to 0.2 percent too little.
uint8_t magnitude(int32_t across, int32_t down) {
  const auto squares = static_cast<float>(across * across + down * down);
  const float guess = std::bit_cast<float>(1597463174 - (std::bit_cast<int32_t>(squares) >> 1));
  const float inverse = guess * (1.5f - 0.5f * squares * guess * guess);
  return static_cast<uint8_t>(static_cast<int32_t>(squares * inverse));
}

// Three rows of luma, of which the oldest makes room for the next, and their means of three.
class GradientRows {
 public:
  GradientRows(const MBitmap& image, uint8_t* scratch) : image_(image), width_(image.width) {
    for (uint8_t*& row : colors_) row = std::exchange(scratch, scratch + width_);
    for (uint8_t*& row : luma_) row = std::exchange(scratch, scratch + width_);
    for (uint8_t*& row : across_) row = std::exchange(scratch, scratch + width_);
    down_ = scratch;
  }

  static constexpr int32_t kScratchRows = 10;

  void load(int32_t y) {
    const simd::Rows& rows = simd::rows();
    std::swap(luma_[0], luma_[1]);
    std::swap(luma_[1], luma_[2]);
    std::swap(across_[0], across_[1]);
    std::swap(across_[1], across_[2]);
    uint8_t* const luma = luma_[2];
    rows.deinterleave3(rowOf(image_, y), width_, colors_[0], colors_[1], colors_[2]);
    rows.weightedSum(colors_[0], colors_[1], colors_[2], luma, width_, kLumaWeights);
    uint8_t* const means = across_[2];
    for (int32_t x = 1; x < width_ - 1; ++x) {
      means[x] = thirdOf(luma[x - 1] + luma[x] + luma[x + 1]);
    }
  }

  // Of the row before the one that was loaded last.
  void levels(uint8_t* out) {
    const uint8_t *above = luma_[0], *at = luma_[1], *below = luma_[2];
    for (int32_t x = 0; x < width_; ++x) down_[x] = thirdOf(above[x] + at[x] + below[x]);
    const uint8_t *top = across_[0], *bottom = across_[2], *columns = down_;
    for (int32_t x = 1; x < width_ - 1; ++x) {
      out[x] = magnitude(columns[x + 1] - columns[x - 1], top[x] - bottom[x]);
    }
    out[0] = out[1];
    out[width_ - 1] = out[width_ - 2];
  }

 private:
  const MBitmap& image_;
  const int32_t width_;
  uint8_t* colors_[3];
  uint8_t* luma_[3];
  uint8_t* across_[3];  // means of three pixels side by side
  uint8_t* down_;       // and of three on top of each other
};

}  // namespace

int32_t gradientLevels(const MBitmap& image, uint8_t* levels) {
  const auto width = static_cast<size_t>(image.width);
  const auto height = static_cast<size_t>(image.height);
  if (width < 3 || height < 3) {
    std::memset(levels, 0, width * height);
    return QPX_OK;
  }
  const Scratch scratch(blockBytes(image.width, GradientRows::kScratchRows));
  if (!scratch) return QPX_NO_MEMORY;
  GradientRows rows(image, scratch.get());
  rows.load(0);
  rows.load(1);
  for (int32_t y = 1; y < image.height - 1; ++y) {
    rows.load(y + 1);
    rows.levels(levels + width * static_cast<size_t>(y));
  }
  std::memcpy(levels, levels + width, width);
  std::memcpy(levels + width * (height - 1), levels + width * (height - 2), width);
  return QPX_OK;
}

}  // namespace qpx
