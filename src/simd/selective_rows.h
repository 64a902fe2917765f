// Selective colour as a table of row functions beside Rows and under the same rules: no alignment
// needed, nothing outside [0, count) touched, plain form and vector form of the same bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

inline constexpr int kInks = 3;          // cyan, magenta, yellow: what red, green and blue lack
inline constexpr int kColorClasses = 9;  // reds, yellows, greens, cyans, blues, magentas, whites,
                                         // neutrals, blacks

// Percent of each ink for each class, -100 ... 300; black is in the other inks already.
struct Inks {
  int32_t amount[kInks][kColorClasses];
};

struct SelectiveRows {
  // By selective_math.h, in place. A channel's changes by all classes that a colour belongs to add
  // up before it is clamped:
  //   the class of the largest channel, red, green or blue, by its distance from the middle one
  //   the class of the smallest channel, cyan, magenta or yellow, likewise
  //   whites, where all channels are above 127, by 2 * smallest - 255
  //   neutrals, by neutralWeight
  //   blacks, where none is above 127, by 255 - 2 * largest
  void (*selectInks)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks);

  // By absoluteLoss of selective_math.h, in place; amounts are 256ths, -256 ... 256. The classes
  // are the same but for neutrals, whose weight is
  //   255 - (|smallest - 127| + |largest - 127|)
  void (*selectAbsoluteInks)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks);
};

#define QPX_SELECTIVE_ROWS(ROW, Table) \
  ROW(Table, selectInks)               \
  ROW(Table, selectAbsoluteInks)
QPX_DECLARE_ROWS(SelectiveRows, QPX_SELECTIVE_ROWS)

inline const SelectiveRows& selectiveRows() { return chosenForm<SelectiveRows>(); }

}  // namespace qpx::simd
