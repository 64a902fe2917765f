// Pictures and masks with plain access to their samples, for plain models.
#pragma once

#include <qpx/types.h>

#include <cstdint>
#include <vector>

#include "support/picture.h"

namespace qpx::testing {

// Channel c, 0 to 2 in memory order, of a 24 or 32-bit pixel.
uint8_t& sampleAt(const MBitmap& bitmap, int32_t x, int32_t y, int c);

int32_t bytesOf(const MBitmap& bitmap);

inline uint8_t maskAt(const MBitmap& mask, int32_t x, int32_t y) {
  return mask.plane[0][ptrdiff_t{mask.pitch[0]} * y + x];
}

// Shapes of masks: nothing, everything, noise, single pixels, a disc, and a disc with noise.
enum class MaskShape { none, all, noise, dots, disc, ragged };
inline constexpr MaskShape kMaskShapes[] = {MaskShape::none, MaskShape::all,  MaskShape::noise,
                                            MaskShape::dots, MaskShape::disc, MaskShape::ragged};

// Values inside are any but 0.
void paintMask(Picture& mask, MaskShape shape, Random& random);

}  // namespace qpx::testing
