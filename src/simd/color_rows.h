// Rows of colours held against palettes, as a table of row functions beside Rows and under the same
// rules: no alignment needed, nothing outside [0, count) touched, plain form and vector form of the
// same bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

struct ColorRows {
  // Lowers each distance to the smallest squared distance of a colour, given by channels, to the
  // `entries` colours of a palette of three bytes each:
  //   distance = min(distance, (c0 - palette[0])^2 + (c1 - palette[1])^2 + (c2 - palette[2])^2,
  //   ...)
  void (*nearest)(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, ptrdiff_t count,
                  const uint8_t* palette, ptrdiff_t entries, int32_t* distance);
};

#define QPX_COLOR_ROWS(ROW, Table) ROW(Table, nearest)
QPX_DECLARE_ROWS(ColorRows, QPX_COLOR_ROWS)

inline const ColorRows& colorRows() { return chosenForm<ColorRows>(); }

}  // namespace qpx::simd
