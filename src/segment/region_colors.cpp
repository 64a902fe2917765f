#include "segment/region_colors.h"

#include <qpx/contours.h>

#include <algorithm>
#include <cstring>

#include "engine/stage.h"
#include "simd/color_rows.h"

namespace qpx {
namespace {

constexpr int32_t kFarthest = 3 * 255 * 255;

void putColor(const QPXRegionColor& region, uint8_t* color) {
  for (int c = 0; c < 3; ++c) color[c] = static_cast<uint8_t>(region.mean[c]);
}

void copyMarked(const MarkedRegion* regions, int32_t regionCount, int32_t mark, uint8_t* colors) {
  for (int32_t i = 0; i < regionCount; ++i) {
    if (regions[i].count != mark) continue;
    putColor(regions[i], colors);
    colors += 3;
  }
}

}  // namespace

int32_t gatherPalette(const MarkedRegion* regions, int32_t regionCount, int32_t mark,
                      Palette& palette) {
  const auto marked = static_cast<int32_t>(
      std::count_if(regions, regions + regionCount,
                    [=](const MarkedRegion& region) { return region.count == mark; }));
  if (marked <= Palette::kMost) {
    copyMarked(regions, regionCount, mark, palette.colors);
    palette.count = marked;
    return QPX_OK;
  }
  const Scratch colors(blockBytes(marked, 3));
  if (!colors) return QPX_NO_MEMORY;
  copyMarked(regions, regionCount, mark, colors.get());
  const int32_t result = KmeansSegColor(colors.get(), marked, Palette::kMost, palette.colors);
  if (result == QPX_OK) palette.count = Palette::kMost;
  return result;
}

void leanings(const MarkedRegion* regions, int32_t count, const Palette& foreground,
              const Palette& background, int32_t* leaning) {
  uint8_t channels[3][kLeanRun];
  int32_t toForeground[kLeanRun], toBackground[kLeanRun];
  for (int32_t i = 0; i < count; ++i) {
    for (int c = 0; c < 3; ++c) channels[c][i] = static_cast<uint8_t>(regions[i].mean[c]);
    toForeground[i] = toBackground[i] = kFarthest;
  }
  const simd::ColorRows& rows = simd::colorRows();
  rows.nearest(channels[0], channels[1], channels[2], count, foreground.colors, foreground.count,
               toForeground);
  rows.nearest(channels[0], channels[1], channels[2], count, background.colors, background.count,
               toBackground);
  for (int32_t i = 0; i < count; ++i) {
    leaning[i] = toForeground[i] * kFullLean / (toForeground[i] + toBackground[i] + 1);
  }
}

}  // namespace qpx
