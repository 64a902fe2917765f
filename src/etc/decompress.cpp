// Decompression, and the measure of what compression lost.
#include <qpx/etc.h>

#include "etc/image.h"
#include "simd/etc_block.h"
#include "simd/etc_rows.h"

using namespace qpx;
using namespace qpx::etc;

namespace {

// A record may leave its size open, for the call to fill in.
bool hasRoom(const MBitmap& image, int32_t width, int32_t height) {
  if (image.width <= 0 || image.height <= 0) return true;
  const int64_t pitch = image.pitch[0] > 0 ? image.pitch[0] : int64_t{image.width} * 3;
  return pitch * image.height >= int64_t{width} * 3 * height;
}

}  // namespace

int32_t TEXPK_Uncompress_ETC(const MBitmap* src, MBitmap* dst) {
  if (!isCompressed(src) || !isRgb24(dst) || !hasRoom(*dst, src->width, src->height)) {
    return QPX_BAD_PARAM;
  }
  const simd::EtcRows& rows = simd::etcRows();
  const ptrdiff_t pitch = tightPitch(src->width);
  for (int32_t y = 0; y < src->height; y += kSide) {
    rows.decodeEtc(blockAt(*src, 0, y), dst->plane[0] + pitch * y, pitch, src->width / kSide);
  }
  dst->width = src->width;
  dst->height = src->height;
  dst->pitch[0] = static_cast<int32_t>(pitch);
  return QPX_OK;
}

int32_t TEXPKdecompressBlockDiffFlip(uint32_t word0, uint32_t word1, uint8_t* image, int32_t width,
                                     int32_t height, int32_t x, int32_t y) {
  if (!isInside(image, width, height, x, y, 4, 4)) return QPX_BAD_PARAM;
  uint8_t block[kBlockBytes];
  storeBigEndian(word0, block);
  storeBigEndian(word1, block + 4);
  const ptrdiff_t pitch = tightPitch(width);
  simd::etcRows().decodeEtc(block, image + pitch * y + ptrdiff_t{x} * 3, pitch, 1);
  return QPX_OK;
}

int32_t TEXPKcalcBlockPerceptualErrorRGB(const uint8_t* a, const uint8_t* b, int32_t width,
                                         int32_t height, int32_t x, int32_t y) {
  if (b == nullptr || !isInside(a, width, height, x, y, 4, 4)) return -1;
  int32_t sum = 0;
  for (int32_t row = 0; row < 4; ++row) {
    const uint8_t* left = pixelAt(a, width, x, y + row);
    const uint8_t* right = pixelAt(b, width, x, y + row);
    for (int32_t k = 0; k < 12; k += 3) {
      const int32_t dr = left[k] - right[k], dg = left[k + 1] - right[k + 1];
      const int32_t db = left[k + 2] - right[k + 2];
      sum += simd::kEtcWeights.red * dr * dr + simd::kEtcWeights.green * dg * dg +
             simd::kEtcWeights.blue * db * db;
    }
  }
  return sum;
}
