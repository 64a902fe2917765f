#include <qpx/motion_blur.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "geometry/line_sums.h"
#include "geometry/masked_lines.h"
#include "geometry/packed_rgb.h"
#include "geometry/reciprocals.h"
#include "geometry/source_weights.h"
#include "simd/rows.h"
#include "simd/sum_rows.h"

namespace qpx {
namespace {

constexpr int32_t kTile = MaskedLines::kTileWidth;
static_assert(kTile == SourceWeights::kTileWidth);

int32_t normalised(int32_t angle) { return ((angle % 180) + 180) % 180; }

int64_t halfLengthAt(const MBitmap& picture, int32_t angle, int32_t length) {
  if (angle == 0) return std::min(length, picture.width) >> 1;
  if (angle == 90) return std::min(length, picture.height) >> 1;
  return halfLength(picture, length);
}

// How far the transition reaches to each side: the more, the longer the line.
int32_t passesFor(int64_t half) {
  int32_t passes = 1;
  for (; half > 15; half >>= 1) ++passes;
  return passes;
}

using Plane = std::array<uint8_t, kTile>;

struct Planes {
  Plane channel[3];
  Plane rest;  // fourth bytes

  void load(const uint8_t* pixels, int32_t bytesPerPixel, ptrdiff_t count) {
    const simd::Rows& rows = simd::rows();
    uint8_t *p0 = channel[0].data(), *p1 = channel[1].data(), *p2 = channel[2].data();
    if (bytesPerPixel == 3) {
      rows.deinterleave3(pixels, count, p0, p1, p2);
    } else {
      rows.deinterleave4(pixels, count, p0, p1, p2, rest.data());
    }
  }
};

class MotionBlur {
 public:
  MotionBlur(const MBitmap& src, const MBitmap& mask, const MBitmap& dst, int32_t angle,
             int32_t length)
      : src_(src),
        mask_(mask),
        dst_(dst),
        bytes_(packedRgbBytes(src.format)),
        half_(halfLengthAt(src, angle, length)),
        reciprocals_(half_, 0.5),
        lines_(src, {mask.plane[0], mask.pitch[0]}, lineAt(angle), half_),
        weights_(mask, passesFor(half_)) {}

  bool ready() const { return reciprocals_ && lines_; }

  void run() {
    for (int32_t left = 0; left < src_.width; left += kTile) {
      left_ = left;
      right_ = std::min(src_.width - left, kTile) + left;
      lines_.startTile(left_, right_, 0);
      weights_.startTile(left_, right_);
      for (int32_t y = 0; y < src_.height; ++y) tileRow(y);
      if (right_ == src_.width) break;
    }
  }

 private:
  uint8_t* at(const MBitmap& bitmap, int32_t x, int32_t y) const {
    return rowOf(bitmap, y) + ptrdiff_t{bytes_} * x;
  }

  // Pixels whose window has none under the mask are the source's.
  void tileRow(int32_t y) {
    weights_.row(y, weightRow_.data());
    const uint16_t* const begin = weightRow_.data();
    const uint16_t* const end = begin + (right_ - left_);
    const auto isMixed = [](uint16_t weight) { return weight < 1024; };
    const uint16_t* const first = std::find_if(begin, end, isMixed);
    const uint16_t* last = end;
    while (last > first && !isMixed(last[-1])) --last;
    const int32_t from = left_ + static_cast<int32_t>(first - begin);
    const int32_t to = left_ + static_cast<int32_t>(last - begin);
    copy(y, left_, from);
    blur(y, from, to);
    copy(y, to, right_);
  }

  void copy(int32_t y, int32_t left, int32_t right) const {
    if (left >= right) return;
    const uint8_t* from = at(src_, left, y);
    uint8_t* to = at(dst_, left, y);
    if (bytes_ == 3) {
      std::memcpy(to, from, 3 * static_cast<size_t>(right - left));
      return;
    }
    for (ptrdiff_t i = 0; i < right - left; ++i) std::memcpy(to + 4 * i, from + 4 * i, 3);
  }

  void blur(int32_t y, int32_t left, int32_t right) {
    const simd::SumRows& simd = simd::sumRows();
    const simd::QuadSums sums = lines_.nextRow(left, right);
    const ptrdiff_t count = right - left;
    if (count == 0) return;
    source_.load(at(src_, left, y), bytes_, count);
    for (size_t c = 0; c < 3; ++c) {
      simd.scaleSums(sums.plane[c], sums.plane[3], reciprocals_.table(), 0x80000,
                     blurred_.channel[c].data(), count);
    }
    fillOutside(y, left, right);
    for (size_t c = 0; c < 3; ++c) {
      uint8_t* const result = blurred_.channel[c].data();
      simd.mixByWeights(source_.channel[c].data(), result, weightRow_.data() + (left - left_),
                        result, count);
    }
    store(at(dst_, left, y), count);
  }

  // Outside the mask stands the source; along its edge the mean of the pixels around, which takes
  // away the hard seam.
  void fillOutside(int32_t y, int32_t left, int32_t right) {
    const uint8_t* const mask = rowOf(mask_, y);
    if (std::memchr(mask + left, 0, static_cast<size_t>(right - left)) == nullptr) return;
    const bool innerRow = y > 0 && y < src_.height - 1;
    for (int32_t x = left; x < right; ++x) {
      if (mask[x] != 0) continue;
      const auto i = static_cast<size_t>(x - left);
      const bool inner = innerRow && x > 0 && x < src_.width - 1;
      if (inner && touchesMask(mask + x)) {
        putMean(x, y, i);
      } else {
        for (size_t c = 0; c < 3; ++c) blurred_.channel[c][i] = source_.channel[c][i];
      }
    }
  }

  bool touchesMask(const uint8_t* here) const {
    const ptrdiff_t pitch = mask_.pitch[0];
    const uint8_t* const above = here - pitch;
    const uint8_t* const below = here + pitch;
    return (above[-1] | above[0] | above[1] | here[-1] | here[1] | below[-1] | below[0] |
            below[1]) != 0;
  }

  // 455 / 4096 is a ninth.
  void putMean(int32_t x, int32_t y, size_t i) {
    const uint8_t* const here = at(src_, x, y);
    for (int32_t c = 0; c < 3; ++c) {
      int32_t sum = 0;
      for (ptrdiff_t dy = -1; dy <= 1; ++dy) {
        const uint8_t* const row = here + ptrdiff_t{src_.pitch[0]} * dy + c;
        sum += row[-bytes_] + row[0] + row[bytes_];
      }
      blurred_.channel[c][i] = static_cast<uint8_t>((455 * sum + 2048) >> 12);
    }
  }

  void store(uint8_t* pixels, ptrdiff_t count) {
    const simd::Rows& rows = simd::rows();
    const uint8_t *p0 = blurred_.channel[0].data(), *p1 = blurred_.channel[1].data(),
                  *p2 = blurred_.channel[2].data();
    if (bytes_ == 3) {
      rows.interleave3(p0, p1, p2, count, pixels);
      return;
    }
    source_.load(pixels, bytes_, count);  // for its fourth bytes, which stay
    rows.interleave4(p0, p1, p2, source_.rest.data(), count, pixels);
  }

  const MBitmap& src_;
  const MBitmap& mask_;
  const MBitmap& dst_;
  int32_t bytes_;
  int64_t half_;
  Reciprocals reciprocals_;
  MaskedLines lines_;
  SourceWeights weights_;
  int32_t left_ = 0, right_ = 0;  // of the tile
  std::array<uint16_t, kTile> weightRow_;
  Planes source_, blurred_;
};

bool fits(const MBitmap& src, const MBitmap& mask, const MBitmap& dst) {
  const int32_t bytes = packedRgbBytes(src.format);
  return bytes != 0 && withoutOrder(src.format) == withoutOrder(dst.format) &&
         mask.format == QPX_FORMAT_GREY8 && hasRows(src, bytes) && hasRows(dst, bytes) &&
         hasRows(mask, 1) && sameSize(src, dst) && sameSize(src, mask);
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPX_MotionBlur(const MBitmap* src, const MBitmap* mask, int32_t angle, int32_t length,
                       MBitmap* dst) {
  if (src == nullptr || mask == nullptr || dst == nullptr || length < 0) return QPX_BAD_PARAM;
  if (!fits(*src, *mask, *dst)) return QPX_BAD_PARAM;
  MotionBlur blur(*src, *mask, *dst, normalised(angle), length);
  if (!blur.ready()) return QPX_NO_MEMORY;
  blur.run();
  return QPX_OK;
}
