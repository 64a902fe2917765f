// Crop and merge of compressed images, by whole blocks.
#include <qpx/etc.h>

#include <algorithm>
#include <cstring>

#include "etc/blend_block.h"
#include "etc/image.h"

using namespace qpx;
using namespace qpx::etc;

namespace {

bool areBlockMultiples(const MRect& rect, const MPoint& origin) {
  return isBlockMultiple(rect.left) && isBlockMultiple(rect.top) && isBlockMultiple(rect.right) &&
         isBlockMultiple(rect.bottom) && isBlockMultiple(origin.x) && isBlockMultiple(origin.y);
}

bool liesInside(const MRect& rect, const MBitmap& image) {
  return rect.left >= 0 && rect.left <= rect.right && rect.right <= image.width && rect.top >= 0 &&
         rect.top <= rect.bottom && rect.bottom <= image.height;
}

// A rectangle of one image and where its corner goes in another. Empty where a side is 0 or less.
struct Placed {
  int64_t fromX, fromY;
  int64_t toX, toY;
  int64_t width, height;
};

// What of it lies inside an image of this size.
Placed clipped(const MRect& rect, const MPoint& origin, const MBitmap& to) {
  const int64_t left = std::max(origin.x, 0), top = std::max(origin.y, 0);
  const int64_t right = std::min<int64_t>(int64_t{origin.x} + rect.right - rect.left, to.width);
  const int64_t bottom = std::min<int64_t>(int64_t{origin.y} + rect.bottom - rect.top, to.height);
  return {rect.left + left - origin.x,
          rect.top + top - origin.y,
          left,
          top,
          right - left,
          bottom - top};
}

void copyRows(const MBitmap& from, const MBitmap& to) {
  const size_t bytes = static_cast<size_t>(blockRowBytes(from.width));
  for (int32_t y = 0; y < from.height; y += kSide) {
    std::memmove(blockAt(to, 0, y), blockAt(from, 0, y), bytes);
  }
}

void blendRow(const uint8_t* overlay, uint8_t* out, int64_t blocks, BlendWeights weights) {
  for (int64_t i = 0; i < blocks; ++i, overlay += kBlockBytes, out += kBlockBytes) {
    const simd::EtcWords blended =
        blendBlocks(simd::readEtcWords(overlay), simd::readEtcWords(out), weights);
    storeBigEndian(blended.upper, out);
    storeBigEndian(blended.lower, out + 4);
  }
}

}  // namespace

int32_t TEXPK_Crop_ETC(const MBitmap* src, MBitmap* dst, const MRect* srcRect,
                       const MPoint* dstOrigin) {
  if (!isCompressed(src) || !isCompressed(dst) || srcRect == nullptr || dstOrigin == nullptr ||
      !areBlockMultiples(*srcRect, *dstOrigin) || !liesInside(*srcRect, *src)) {
    return QPX_BAD_PARAM;
  }
  const Placed placed = clipped(*srcRect, *dstOrigin, *dst);
  if (placed.width <= 0) return QPX_OK;
  const size_t bytes = static_cast<size_t>(placed.width) * 2;
  for (int64_t y = 0; y < placed.height; y += kSide) {
    std::memcpy(blockAt(*dst, placed.toX, placed.toY + y),
                blockAt(*src, placed.fromX, placed.fromY + y), bytes);
  }
  return QPX_OK;
}

int32_t TEXPK_Merge_ETC(MBitmap* dst, const MBitmap* overlay, const MBitmap* base,
                        const MRect* rect, const MPoint* origin, float alpha) {
  if (!isCompressed(dst) || !isCompressed(overlay) || !isCompressed(base) || rect == nullptr ||
      origin == nullptr || !areBlockMultiples(*rect, *origin) || !liesInside(*rect, *overlay) ||
      dst->width != base->width || dst->height != base->height || !(alpha >= 0 && alpha <= 1)) {
    return QPX_BAD_PARAM;
  }
  copyRows(*base, *dst);
  const BlendWeights weights = {static_cast<int32_t>(0.5 + alpha * 1024),
                                static_cast<int32_t>(0.5 + (1 - alpha) * 1024)};
  const Placed placed = clipped(*rect, *origin, *dst);
  for (int64_t y = 0; y < placed.height; y += kSide) {
    blendRow(blockAt(*overlay, placed.fromX, placed.fromY + y),
             blockAt(*dst, placed.toX, placed.toY + y), placed.width / kSide, weights);
  }
  return QPX_OK;
}
