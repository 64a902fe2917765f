// Bilinear sampling behind the loads: the four pixels around each place are there already, what is
// left is to blend them. A table of row functions beside Rows and under the same rules: no
// alignment needed beyond that of the types, nothing outside [0, count) touched, plain and vector
// forms of the same bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// What a block of places needs. Word k of `top` holds, as bytes in memory order, two neighbouring
// pixels of the upper row, a and b; `bottom` the two below them, c and d. Pixels are 3 or 4 bytes
// apart, as the name of the function says. The low bits of `u` and `v` say how far the place lies
// from a towards b and towards c.
struct Taps {
  const uint64_t* top;
  const uint64_t* bottom;
  const int32_t* u;
  const int32_t* v;
};

// Every function writes a word of four bytes for each place: three channels, and a fourth byte as
// each says.
struct TapRows {
  using Blend = void (*)(const Taps& taps, uint32_t* dst, ptrdiff_t count);

  // 16 fractional bits. Across first: with mix(p, q, f) = (p * (65536 - f) + q * f) >> 16,
  //   mix(mix(a, b, u), mix(c, d, u), v).
  // The fourth byte is that behind the three of a.
  Blend acrossFirst3;
  Blend acrossFirst4;

  // 16 fractional bits, down first: mix(mix(a, c, v), mix(b, d, v), u). Fourth byte as before.
  Blend downFirst3;
  Blend downFirst4;

  // 10 fractional bits, one sum:
  //   ((1024 - u)(1024 - v) a + u (1024 - v) b + (1024 - u) v c + u v d) >> 20.
  // The fourth byte is 255.
  Blend oneSum3;
  Blend oneSum4;

  // The same sum rounded to nearest, halves up, on all four bytes. Behind 3-byte pixels the fourth
  // byte has no meaning, but it is the same in all forms: that of the pixels that follow.
  Blend rounded3;
  Blend rounded4;

  // Where the pixels of places begin, in bytes: (v >> fraction) * pitch + (u >> fraction) * bytes,
  // which must fit 32 bits.
  void (*offsets)(const int32_t* u, const int32_t* v, int32_t* dst, ptrdiff_t count, int fraction,
                  int32_t pitch, int32_t bytes);
};

#define QPX_TAP_ROWS(ROW, Table) \
  ROW(Table, acrossFirst3)       \
  ROW(Table, acrossFirst4)       \
  ROW(Table, downFirst3)         \
  ROW(Table, downFirst4)         \
  ROW(Table, oneSum3)            \
  ROW(Table, oneSum4)            \
  ROW(Table, rounded3)           \
  ROW(Table, rounded4)           \
  ROW(Table, offsets)
QPX_DECLARE_ROWS(TapRows, QPX_TAP_ROWS)

inline const TapRows& tapRows() { return chosenForm<TapRows>(); }

}  // namespace qpx::simd
