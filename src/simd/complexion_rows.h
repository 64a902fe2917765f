// The bilateral mean of skin as a table of row functions beside Rows and under the same rules: no
// alignment needed, nothing outside [0, count) written, plain form and vector form of the same
// bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// Sums of absolute differences from which on a neighbour does not count.
inline constexpr int32_t kSkinContrast = 72;

// Windows of (2 * reach + 1) rows and columns around each pixel of a row.
struct SkinWindow {
  int32_t reach;               // 1 ... 31
  const uint8_t* const* rows;  // of each row of the window, plane 0 of the first pixel; columns
                               // -reach ... count - 1 + reach are read
  ptrdiff_t planeStep;         // from a plane to the next of three
  const uint8_t* inside;       // by column likewise: 255 for neighbours that count, 0 for others
  const uint16_t* near;        // weights of a row's neighbours, row by row; the middle's is 65535
};

// Two rows of luma and the row of V, U pairs that belongs to them, all of `count` bytes, and what
// goes with them.
struct WhitenedRows {
  uint8_t* luma[2];
  uint8_t* pairs;
  const uint8_t* aim[2];  // what each luma becomes where the mask is full
  const uint8_t* mask[2];
};

struct ComplexionRows {
  // The mean of the window's pixels, weighted by how near they are in place and in colour, for the
  // pixels with a `skin` of 255; the others, of 0, are copied.
  //   x = min(|dR| + |dG| + |dB|, 255), t = 2 * max(kSkinContrast^2 - x^2, 0)
  //   weight = (((t * t) >> 16) * near) >> 16
  //   dst = sum of weight * sample / sum of weights, cut
  void (*smoothSkin)(const SkinWindow& window, const uint8_t* skin, uint8_t* const (&dst)[3],
                     ptrdiff_t count);

  // Blocks of 2 x 2 pixels towards their aims, in place; count is even. Of a block's four masks'
  // sum s:
  //   t = s >> 2, luma = (luma * (256 - t) + aim * t) >> 8
  //   g = (strength * s) >> 10
  //   below 128, u += min(max((g * (((u - 128) * 51 >> 7) - (u - 128))) >> 8, 0), 9)
  //   above 128, v += min(max((g * ((332 * (v - 128) >> 8) - (v - 128))) >> 8, 0), 4), to 255
  void (*whitenBlocks)(const WhitenedRows& rows, ptrdiff_t count, int32_t strength);
};

#define QPX_COMPLEXION_ROWS(ROW, Table) \
  ROW(Table, smoothSkin)                \
  ROW(Table, whitenBlocks)
QPX_DECLARE_ROWS(ComplexionRows, QPX_COMPLEXION_ROWS)

inline const ComplexionRows& complexionRows() { return chosenForm<ComplexionRows>(); }

}  // namespace qpx::simd
