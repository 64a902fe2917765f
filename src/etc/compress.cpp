// Compression of whole images and of single blocks.
#include <qpx/etc.h>

#include <algorithm>
#include <new>

#include "engine/stage.h"
#include "etc/batch.h"
#include "etc/image.h"

using namespace qpx;
using namespace qpx::etc;

namespace {

// Calls compress(first pixel, blocks, words) for batches of neighbouring blocks.
template <typename Compress>
void forEachBatch(const MBitmap& src, MBitmap& dst, const Compress& compress) {
  const ptrdiff_t across = src.width / kSide;
  const ptrdiff_t pitch = src.pitch[0];
  uint8_t* out = dst.plane[0];
  simd::EtcWords words[kEtcBatch];
  for (int32_t y = 0; y < src.height; y += kSide) {
    for (ptrdiff_t x = 0; x < across; x += kEtcBatch) {
      const ptrdiff_t count = std::min(kEtcBatch, across - x);
      compress(src.plane[0] + pitch * y + x * (kSide * 3), count, words);
      for (ptrdiff_t i = 0; i < count; ++i, out += kBlockBytes) {
        storeBigEndian(words[i].upper, out);
        storeBigEndian(words[i].lower, out + 4);
      }
    }
  }
}

void compressAllFast(const MBitmap& src, MBitmap& dst) {
  BlockRows rows = {};
  Halved set = {};
  forEachBatch(src, dst, [&](const uint8_t* rgb, ptrdiff_t count, simd::EtcWords* words) {
    rows.take(rgb, src.pitch[0], count);
    compressFast(rows, set, count, words);
  });
}

// The working set is too large for the small stacks that a host's threads may have.
int32_t compressAllSlow(const MBitmap& src, MBitmap& dst) {
  const Scratch scratch(sizeof(SlowSet));
  if (!scratch) return QPX_NO_MEMORY;
  SlowSet& set = *new (scratch.get()) SlowSet();
  forEachBatch(src, dst, [&](const uint8_t* rgb, ptrdiff_t count, simd::EtcWords* words) {
    set.rows.take(rgb, src.pitch[0], count);
    compressSlow(set, count, words);
  });
  return QPX_OK;
}

// Calls compress(rows, words) for one block.
template <typename Compress>
int32_t compressBlock(const uint8_t* image, int32_t width, int32_t height, int32_t x, int32_t y,
                      uint32_t* word0, uint32_t* word1, const Compress& compress) {
  if (word0 == nullptr || word1 == nullptr || !isInside(image, width, height, x, y, 4, 4)) {
    return QPX_BAD_PARAM;
  }
  BlockRows rows = {};
  rows.take(pixelAt(image, width, x, y), tightPitch(width), 1);
  simd::EtcWords words;
  compress(rows, &words);
  *word0 = words.upper;
  *word1 = words.lower;
  return QPX_OK;
}

}  // namespace

int32_t TEXPK_Compress_ETC(const MBitmap* src, MBitmap* dst, int32_t quality) {
  if (!isRgb24(src) || dst == nullptr || dst->plane[0] == nullptr) return QPX_BAD_PARAM;
  const int64_t bytes = compressedBytes(src->width, src->height);
  if (bytes == 0 || src->pitch[0] < tightPitch(src->width)) return QPX_BAD_PARAM;
  if (quality != QPX_ETC_FAST && quality != QPX_ETC_SLOW) return QPX_UNSUPPORTED;
  if (quality == QPX_ETC_FAST) {
    compressAllFast(*src, *dst);
  } else if (const int32_t result = compressAllSlow(*src, *dst); result != QPX_OK) {
    return result;
  }
  dst->format = QPX_FORMAT_ETC1;
  dst->width = src->width;
  dst->height = src->height;
  dst->pitch[0] = static_cast<int32_t>(bytes);
  return QPX_OK;
}

int32_t TEXPKcompressBlockDiffAveragePerceptual(const uint8_t* image, int32_t width, int32_t height,
                                                int32_t x, int32_t y, uint32_t* word0,
                                                uint32_t* word1) {
  return compressBlock(image, width, height, x, y, word0, word1,
                       [](const BlockRows& rows, simd::EtcWords* words) {
                         Halved set = {};
                         compressFast(rows, set, 1, words);
                       });
}

int32_t TEXPKcompressBlockDiffFlipAveragePerceptual(const uint8_t* image, int32_t width,
                                                    int32_t height, int32_t x, int32_t y,
                                                    uint32_t* word0, uint32_t* word1) {
  return compressBlock(image, width, height, x, y, word0, word1,
                       [](const BlockRows& rows, simd::EtcWords* words) {
                         Halved sets[2] = {};
                         compressFlipping(rows, sets, Bases::mean, 1, words);
                       });
}

int32_t TEXPKcompressBlockDiffFlipCombinedPerceptual(const uint8_t* image, int32_t width,
                                                     int32_t height, int32_t x, int32_t y,
                                                     uint32_t* word0, uint32_t* word1) {
  return compressBlock(image, width, height, x, y, word0, word1,
                       [](const BlockRows& rows, simd::EtcWords* words) {
                         Halved sets[2] = {};
                         compressFlipping(rows, sets, Bases::nearest, 1, words);
                       });
}

int32_t TEXPKcompressBlockDiffFlipSlowPerceptual(const uint8_t* image, int32_t width,
                                                 int32_t height, int32_t x, int32_t y,
                                                 uint32_t* word0, uint32_t* word1) {
  return compressBlock(image, width, height, x, y, word0, word1,
                       [](const BlockRows& rows, simd::EtcWords* words) {
                         SlowSet set = {};
                         set.rows = rows;
                         compressSlow(set, 1, words);
                       });
}
