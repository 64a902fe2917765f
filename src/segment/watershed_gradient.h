// How steep a picture's luma is at every pixel, as a level of 8 bits.
#pragma once

#include <qpx/types.h>

#include <cstdint>

namespace qpx {

// Writes width * height levels of a 24-bit picture, row after row. Pictures with a side below 3
// pixels are flat. Returns 0 or 4.
int32_t gradientLevels(const MBitmap& image, uint8_t* levels);

}  // namespace qpx
