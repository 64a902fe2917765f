// The kernel of the rotated effects: bilinear sampling at the places of the stage's tables,
// in every format that the engine sets up for the oldest effects.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

// What lies outside the source.
struct WarpOutside {
  uint32_t color;  // 0xRRGGBB
  bool repeat;     // the border, in place of the colour
};

// Fills the frame's rectangle. Planes of YUV are sampled one by one, chroma of a block at the
// block's top-left pixel. Sums are rounded to nearest. Returns 0, or 3 for packed 4:2:2.
int32_t warpFrame(const Frame& frame, const WarpOutside& outside);

}  // namespace qpx
