// What strokes tell about the colours of both sides.
#pragma once

#include <qpx/watershed.h>

#include <cstdint>

namespace qpx {

// A region whose colour record is marked in place of its count.
using MarkedRegion = QPXRegionColor;

// Marks of regions.
inline constexpr int32_t kNoMark = 0;
inline constexpr int32_t kForegroundMark = -1;
inline constexpr int32_t kBackgroundMark = -2;

// The colours of a side, three bytes each.
struct Palette {
  static constexpr int32_t kMost = 64;

  uint8_t* colors;
  int32_t count;
};

// The means of all regions of a mark, or as many colours as a palette holds for them. Returns
// QPX_OK or QPX_NO_MEMORY, with the palette as it was.
int32_t gatherPalette(const MarkedRegion* regions, int32_t regionCount, int32_t mark,
                      Palette& palette);

inline int32_t colorDistance(const QPXRegionColor& a, const QPXRegionColor& b) {
  int32_t sum = 0;
  for (int c = 0; c < 3; ++c) sum += (a.mean[c] - b.mean[c]) * (a.mean[c] - b.mean[c]);
  return sum;
}

// How much the colours of neighbouring regions lean to the background, 0 (foreground) to
// kFullLean, for up to kLeanRun regions from `regions`.
inline constexpr int32_t kLeanRun = 256;
inline constexpr int32_t kFullLean = 200;
void leanings(const MarkedRegion* regions, int32_t count, const Palette& foreground,
              const Palette& background, int32_t* leaning);

}  // namespace qpx
