// Sums of pixels along a line through each pixel of a row. The line's lattice is the same for every
// pixel, so that its steps are shifts of whole rows.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

#include "simd/sum_rows.h"

namespace qpx {

// A line by its step with 8 fractional bits. Step t leads from a pixel to
//   x + ((t * stepX) >> 8), or minus that where mirrored, and y - ((t * stepY) >> 8),
// shifts rounding down. The longer of the two steps is at least half a pixel.
struct Line {
  int32_t stepX = 0;
  int32_t stepY = 0;
  bool mirrored = false;

  int64_t across(int64_t t) const {
    const int64_t way = (t * stepX) >> 8;
    return mirrored ? -way : way;
  }
  int64_t down(int64_t t) const { return -((t * stepY) >> 8); }
};

// The line at an angle of 0 to 179 degrees, anticlockwise from the row's direction.
Line lineAt(int32_t degrees);

// Steps each way of a line of this length, which a picture's diagonal bounds.
int64_t halfLength(const MBitmap& picture, int32_t length);

// Pixels of four bytes: three channels and a 1 for a pixel that counts, or four zeros. Rows lie in
// `slots` places, row y in place y % slots; what a walk meets must be there.
struct LineRows {
  const uint8_t* quads;  // column `left` of place 0
  ptrdiff_t pitch;       // bytes
  int32_t slots;
  int32_t left, right;  // columns that are there
  int32_t height;       // rows from here on, and above 0, do not count
};

// Adds what steps first ... last meet from the pixels left ... right - 1 of row y to their sums.
void addLine(const LineRows& rows, const Line& line, int64_t first, int64_t last, int32_t y,
             int32_t left, int32_t right, const simd::QuadSums& sums);

// Brings pixels of 3 or 4 bytes into the form of LineRows; those whose mask is 0 become zeros. A
// null mask takes all.
void packQuads(const uint8_t* pixels, int32_t bytesPerPixel, const uint8_t* mask, ptrdiff_t count,
               uint8_t* quads);

}  // namespace qpx
