// ETC1 blocks by the codec of the library, for the one texture that is stored so.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/canvas.h"

namespace qpx::drawing {

/// `canvas` in 4 x 4 blocks, raster order, 8 bytes each; its sides are multiples of 4.
std::vector<uint8_t> toEtc1(const Canvas& canvas);

}  // namespace qpx::drawing
