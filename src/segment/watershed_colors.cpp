// Mean colours of regions.
#include <kesbase.h>
#include <qpx/watershed.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "engine/stage.h"
#include "segment/rgb24.h"

namespace qpx {
namespace {

// 255 times as many pixels fit into 32 bits.
constexpr size_t kNarrowPixels = UINT32_MAX / 255;

bool isRegion(int32_t label, int32_t regionCount) {
  return static_cast<uint32_t>(label) < static_cast<uint32_t>(regionCount);
}

// A record holds sums until it holds means; they may use its sign.
void add(QPXRegionColor& sum, const uint8_t* pixel) {
  for (const int k : {0, 1, 2}) {
    sum.mean[k] = static_cast<int32_t>(static_cast<uint32_t>(sum.mean[k]) + pixel[k]);
  }
  ++sum.count;
}

uint64_t total(const QPXRegionColor& sum, int channel) {
  return static_cast<uint32_t>(sum.mean[channel]);
}

struct WideSum {
  uint64_t totals[3];
  int32_t count;
};

void add(WideSum& sum, const uint8_t* pixel) {
  for (const int k : {0, 1, 2}) sum.totals[k] += pixel[k];
  ++sum.count;
}

uint64_t total(const WideSum& sum, int channel) { return sum.totals[channel]; }

template <typename Sum>
void addColors(const MBitmap& image, const int32_t* labels, int32_t regionCount, Sum* sums) {
  std::fill_n(sums, regionCount, Sum{});
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* pixel = rowOf(image, y);
    for (int32_t x = 0; x < image.width; ++x, pixel += kRgb24Bytes) {
      const int32_t label = *labels++;
      if (isRegion(label, regionCount)) add(sums[label], pixel);
    }
  }
}

template <typename Sum>
void divide(const Sum* sums, int32_t regionCount, QPXRegionColor* colors) {
  for (int32_t i = 0; i < regionCount; ++i) {
    const Sum sum = sums[i];
    const auto count = static_cast<uint64_t>(std::max(sum.count, 1));
    for (const int k : {0, 1, 2}) colors[i].mean[k] = static_cast<int32_t>(total(sum, k) / count);
    colors[i].count = sum.count;
  }
}

int32_t averageColors(const MBitmap& image, const int32_t* labels, int32_t regionCount,
                      QPXRegionColor* colors) {
  if (pixelsOf(image) <= kNarrowPixels) {
    addColors(image, labels, regionCount, colors);
    divide(colors, regionCount, colors);
    return QPX_OK;
  }
  const Scratch block(blockBytes(std::max(regionCount, 1), sizeof(WideSum)));
  if (!block) return QPX_NO_MEMORY;
  auto* const sums = reinterpret_cast<WideSum*>(block.get());
  addColors(image, labels, regionCount, sums);
  divide(sums, regionCount, colors);
  return QPX_OK;
}

// Regions that have a pixel are numbered below this.
int32_t regionsIn(const MBitmap& image, const int32_t* labels, int32_t regionCount) {
  int32_t largest = -1;
  for (size_t i = 0; i < pixelsOf(image); ++i) {
    if (isRegion(labels[i], regionCount)) largest = std::max(largest, labels[i]);
  }
  return largest + 1;
}

int32_t paint(const MBitmap& image, const int32_t* labels, int32_t regionCount,
              const MBitmap& output) {
  const int32_t regions = regionsIn(image, labels, regionCount);
  const Scratch block(blockBytes(std::max(regions, 1), sizeof(QPXRegionColor)));
  if (!block) return QPX_NO_MEMORY;
  auto* const colors = reinterpret_cast<QPXRegionColor*>(block.get());
  const int32_t code = averageColors(image, labels, regions, colors);
  if (code != QPX_OK) return code;
  for (int32_t y = 0; y < output.height; ++y) {
    uint8_t* pixel = rowOf(output, y);
    std::memset(pixel, 0, static_cast<size_t>(output.width) * kRgb24Bytes);
    for (int32_t x = 0; x < output.width; ++x, pixel += kRgb24Bytes) {
      const int32_t label = *labels++;
      if (!isRegion(label, regions)) continue;
      for (const int k : {0, 1, 2}) pixel[k] = static_cast<uint8_t>(colors[label].mean[k]);
    }
  }
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t Watershed_GetRegionColor(const MBitmap* image, const int32_t* labels, int32_t regionCount,
                                 QPXRegionColor* colours) {
  if (labels == nullptr || colours == nullptr || regionCount < 0) return QPX_BAD_PARAM;
  const int32_t code = checkRgb24(image);
  return code != QPX_OK ? code : averageColors(*image, labels, regionCount, colours);
}

int32_t Watershed_GetSegmentationBmp(const MBitmap* image, const int32_t* labels,
                                     int32_t regionCount, MBitmap* output) {
  if (labels == nullptr || regionCount < 0) return QPX_BAD_PARAM;
  for (const MBitmap* picture : {image, static_cast<const MBitmap*>(output)}) {
    if (const int32_t code = checkRgb24(picture); code != QPX_OK) return code;
  }
  if (!sameSize(*image, *output) || image->format != output->format) return QPX_BAD_PARAM;
  // A picture that could not be made is no error here: what is shown stays.
  paint(*image, labels, regionCount, *output);
  return QPX_OK;
}
