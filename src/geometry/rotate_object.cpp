// The QPXRotate* object: a picture turned rectangle by rectangle, with 16 fractional bits.
#include <kesbase.h>
#include <qpx/rotate.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/stage.h"
#include "geometry/packed_rgb.h"
#include "geometry/sampling.h"
#include "geometry/turn_math.h"

struct QPXRotateHandle {
  int32_t dstW;
  int32_t dstH;
  int32_t srcW;
  int32_t srcH;
  int32_t angle;  // negated
  uint8_t fill[4];
};

namespace qpx {
namespace {

constexpr int kFraction = 16;
constexpr int64_t kUnit = int64_t{1} << kFraction;
constexpr int64_t kHalf = kUnit / 2;

bool quarterTurn(int32_t degrees) { return degrees % 90 == 0; }

// A place in the source for every place in the destination, both 16.16. 64 bits hold it for
// pictures of any size.
class Turn {
 public:
  explicit Turn(const QPXRotateHandle& handle)
      : sine_(static_cast<int32_t>(std::sin(radiansOf(handle.angle)) * 65536.0)),
        cosine_(static_cast<int32_t>(std::cos(radiansOf(handle.angle)) * 65536.0)),
        halfWidth_(handle.dstW / 2),
        halfHeight_(handle.dstH / 2),
        shiftX_((halfWidth_ - marginOf(handle.dstW, handle.srcW)) * kUnit - kHalf),
        shiftY_((halfHeight_ - marginOf(handle.dstH, handle.srcH)) * kUnit - kHalf) {}

  int32_t sine() const { return sine_; }
  int32_t cosine() const { return cosine_; }
  int64_t u(int64_t x, int64_t y) const {
    return (x - halfWidth_) * cosine_ + (halfHeight_ - y) * sine_ + shiftX_;
  }
  int64_t v(int64_t x, int64_t y) const {
    return (x - halfWidth_) * sine_ + (y - halfHeight_) * cosine_ + shiftY_;
  }

 private:
  static int64_t marginOf(int32_t dst, int32_t src) { return (int64_t{dst} - src) / 2; }

  int32_t sine_;
  int32_t cosine_;
  int64_t halfWidth_;
  int64_t halfHeight_;
  int64_t shiftX_;
  int64_t shiftY_;
};

// Columns are numbers of 16 bits.
int64_t shortColumn(int64_t column) { return static_cast<int16_t>(static_cast<uint64_t>(column)); }

// Places a block at (u, v), whose pixels are one straight line.
void placeLine(const Turn& turn, int64_t u, int64_t v, SampleBlock& block) {
  block.column = u >> kFraction;
  block.row = v >> kFraction;
  const int32_t fromColumn = static_cast<int32_t>(u & (kUnit - 1));
  const int32_t fromRow = static_cast<int32_t>(v & (kUnit - 1));
  for (int32_t k = 0; k < block.count; ++k) {
    block.u[k] = fromColumn + k * turn.cosine();
    block.v[k] = fromRow + k * turn.sine();
  }
}

// Whether the columns of a block from u on are what they are in 16 bits.
bool columnsAreShort(const Turn& turn, int64_t u, int32_t count) {
  const int64_t first = u >> kFraction;
  const int64_t last = (u + int64_t{count - 1} * turn.cosine()) >> kFraction;
  return shortColumn(first) == first && shortColumn(last) == last;
}

template <int kBytes>
void turnBlended(const SampleSource<PitchedRows>& source, const Turn& turn, uint32_t fill,
                 const MBitmap& dst, const MRect& rect) {
  const simd::TapRows& rows = simd::tapRows();
  const simd::TapRows::Blend blend = kBytes == 3 ? rows.acrossFirst3 : rows.acrossFirst4;
  SampleBlock block;
  fetchAlong(turn.sine() / 65536.0, turn.cosine() / 65536.0, block);
  const auto make = [&](int32_t x, int32_t y) {
    sampleFilled<kBytes, kFraction>(source, fill, blend, block);
    storeBlock<kBytes>(block, pixelAt(dst, x, y, kBytes));
  };
  const auto makeBlock = [&](int32_t x, int32_t y, int32_t count) {
    block.count = count;
    if (columnsAreShort(turn, turn.u(x, y), count)) {
      placeLine(turn, turn.u(x, y), turn.v(x, y), block);
      make(x, y);
      return;
    }
    // Columns that wrap make no line: pixel by pixel.
    block.count = 1;
    for (int32_t k = x; k < x + count; ++k) {
      placeLine(turn, turn.u(k, y), turn.v(k, y), block);
      block.column = shortColumn(block.column);
      make(k, y);
    }
  };
  forEachBlock(rect.left, rect.top, rect.right, rect.bottom, makeBlock);
}

// Every place lies half way between pixels across and down. Of the two, the one is nearest that
// lies where half a step along the destination's row and column leads: so whole turns and quarter
// turns move each pixel to where it belongs.
template <int kBytes>
void turnWhole(const SampleSource<PitchedRows>& source, const Turn& turn, const MBitmap& dst,
               const MRect& rect) {
  const int64_t leanX = kHalf + (turn.cosine() - turn.sine()) / 2;
  const int64_t leanY = kHalf + (turn.cosine() + turn.sine()) / 2;
  SampleBlock block;
  fetchAlong(turn.sine() / 65536.0, turn.cosine() / 65536.0, block);
  const auto copyBlock = [&](int32_t x, int32_t y, int32_t count) {
    block.count = count;
    placeLine(turn, turn.u(x, y) + leanX, turn.v(x, y) + leanY, block);
    sampleNearest<kBytes, kFraction>(source, block);
    storeBlock<kBytes>(block, pixelAt(dst, x, y, kBytes));
  };
  forEachBlock(rect.left, rect.top, rect.right, rect.bottom, copyBlock);
}

template <int kBytes>
void turnRect(const QPXRotateHandle& handle, const MBitmap& src, const MBitmap& dst,
              const MRect& rect) {
  const SampleSource<PitchedRows> source = {{src.plane[0], src.pitch[0]}, handle.srcW, handle.srcH};
  const Turn turn(handle);
  if (quarterTurn(handle.angle)) {
    turnWhole<kBytes>(source, turn, dst, rect);
  } else {
    turnBlended<kBytes>(source, turn, loadPixel<4>(handle.fill), dst, rect);
  }
}

bool holds(const MBitmap& image, int32_t width, int32_t height) {
  return hasRows(image, packedRgbBytes(image.format)) && image.width >= width &&
         image.height >= height;
}

int32_t process(const QPXRotateHandle& handle, const MBitmap& src, const MBitmap& dst,
                const MRect* asked) {
  if (src.format != dst.format || !isBgr(src.format)) return QPX_UNSUPPORTED;
  if (!holds(src, handle.srcW, handle.srcH) || !holds(dst, handle.dstW, handle.dstH)) {
    return QPX_BAD_PARAM;
  }
  MRect rect = {0, 0, handle.dstW, handle.dstH};
  if (asked != nullptr) {
    if (asked->left >= asked->right || asked->top >= asked->bottom) return QPX_BAD_PARAM;
    rect = {std::max(asked->left, 0), std::max(asked->top, 0), std::min(asked->right, handle.dstW),
            std::min(asked->bottom, handle.dstH)};
    if (rect.left >= rect.right || rect.top >= rect.bottom) return QPX_OK;
  }
  packedRgbBytes(src.format) == 3 ? turnRect<3>(handle, src, dst, rect)
                                  : turnRect<4>(handle, src, dst, rect);
  return QPX_OK;
}

// The truncated box of a rectangle's corners under x, y -> place(x, y).
template <typename Place>
MRect boxOf(const MRect& rect, const Place& place) {
  MRect box = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  for (const int32_t x : {rect.left, rect.right}) {
    for (const int32_t y : {rect.top, rect.bottom}) {
      double toX = 0, toY = 0;
      place(x, y, &toX, &toY);
      box.left = std::min(box.left, truncated(toX));
      box.top = std::min(box.top, truncated(toY));
      box.right = std::max(box.right, truncated(toX));
      box.bottom = std::max(box.bottom, truncated(toY));
    }
  }
  return box;
}

MRect grownInside(const MRect& box, int32_t by, int32_t width, int32_t height) {
  const auto cut = [](int64_t value, int32_t side) {
    return static_cast<int32_t>(std::clamp<int64_t>(value, 0, side));
  };
  return {cut(int64_t{box.left} - by, width), cut(int64_t{box.top} - by, height),
          cut(int64_t{box.right} + by, width), cut(int64_t{box.bottom} + by, height)};
}

void calcRect(const QPXRotateHandle& handle, MRect* dstRect, MRect* srcRect) {
  const double cosine = std::cos(radiansOf(handle.angle));
  const double sine = std::sin(radiansOf(handle.angle));
  // Halves are cut to whole pixels.
  const int32_t centreX = handle.dstW / 2;
  const int32_t centreY = handle.dstH / 2;
  const int64_t marginX = (int64_t{handle.dstW} - handle.srcW) / 2;
  const int64_t marginY = (int64_t{handle.dstH} - handle.srcH) / 2;
  const double cx = centreX;
  const double cy = centreY;
  const auto mx = static_cast<double>(marginX);
  const auto my = static_cast<double>(marginY);
  const bool forwards =
      dstRect->left == 0 && dstRect->top == 0 && dstRect->right == 0 && dstRect->bottom == 0;
  if (forwards) {
    const auto toDst = [&](double x, double y, double* toX, double* toY) {
      *toX = (x - cx) * cosine + (y - cy) * sine + cx - mx;
      *toY = (cx - x) * sine + (y - cy) * cosine + cy - my;
    };
    *dstRect = grownInside(boxOf(*srcRect, toDst), 0, handle.dstW, handle.dstH);
    return;
  }
  constexpr int32_t kReach = 2;  // of the filter, and of cutting to whole pixels
  const auto toSrc = [&](double x, double y, double* toX, double* toY) {
    *toX = (x - cx) * cosine - (y - cy) * sine + cx - mx;
    *toY = (x - cx) * sine + (y - cy) * cosine + cy - my;
  };
  *srcRect = grownInside(boxOf(*dstRect, toSrc), kReach, handle.srcW, handle.srcH);
}

bool positive(const QPXRotateFormat& format) { return format.width > 0 && format.height > 0; }

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPXRotateCreate(QPXRotateHandle** handle, const QPXRotateFormat* srcFormat,
                        const QPXRotateFormat* dstFormat, const QPXRotateParams* params) {
  if (handle == nullptr) return QPX_BAD_PARAM;
  *handle = nullptr;
  if (srcFormat == nullptr || dstFormat == nullptr || params == nullptr ||
      params->fill == nullptr) {
    return QPX_BAD_PARAM;
  }
  if (!isBgr(srcFormat->format) || srcFormat->format != dstFormat->format) return QPX_UNSUPPORTED;
  if (!positive(*srcFormat) || !positive(*dstFormat)) return QPX_BAD_PARAM;
  auto* made = static_cast<QPXRotateHandle*>(MMemAlloc(nullptr, sizeof(QPXRotateHandle)));
  if (made == nullptr) return QPX_NO_MEMORY;
  // The least angle has no opposite; it stays itself.
  const auto negated = static_cast<int32_t>(0u - static_cast<uint32_t>(params->angle));
  *made = {dstFormat->width, dstFormat->height, srcFormat->width, srcFormat->height, negated, {}};
  std::memcpy(made->fill, params->fill, sizeof made->fill);
  *handle = made;
  return QPX_OK;
}

int32_t QPXRotateCalcRect(const QPXRotateHandle* handle, MRect* dstRect, MRect* srcRect) {
  if (handle == nullptr || dstRect == nullptr || srcRect == nullptr) return QPX_BAD_PARAM;
  calcRect(*handle, dstRect, srcRect);
  return QPX_OK;
}

int32_t QPXRotateProcess(const QPXRotateHandle* handle, const MBitmap* src, MBitmap* dst,
                         const MRect* dstRect) {
  if (handle == nullptr || src == nullptr || dst == nullptr) return QPX_BAD_PARAM;
  return process(*handle, *src, *dst, dstRect);
}

int32_t QPXRotateDestroy(QPXRotateHandle* handle) {
  if (handle == nullptr) return QPX_BAD_PARAM;
  MMemFree(nullptr, handle);
  return QPX_OK;
}
