// The vector primitives that everything hot is made of, as a table of row functions.
//
// Resolve the table once per call, outside the row loop:
//
//   const simd::Rows& rows = simd::rows();
//   for (int32_t y = 0; y < height; ++y) rows.lookup(src + y * pitch, dst + y * pitch, width,
//   table);
//
// Every entry has a plain form, which is its definition, and vector forms that give the same bytes.
// What all entries share: rows need no alignment; nothing outside [0, count) is read or written; a
// count of 0 or less does nothing; an output may be the very same row as an input where the entry
// says "in place", otherwise outputs overlap neither inputs nor each other.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

struct Rows {
  // dst[i] = table[src[i]] for `count` bytes; `table` has 256 entries. In place.
  void (*lookup)(const uint8_t* src, uint8_t* dst, ptrdiff_t count, const uint8_t* table);

  // Pixels of 3 bytes: byte k of each, in memory order, goes through table tk. In place. The same
  // pointer given three times is served as fast as `lookup`.
  void (*lookup3)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
                  const uint8_t* t1, const uint8_t* t2);

  // Pixels of 4 bytes: as lookup3, and the fourth byte is copied. In place.
  void (*lookup4)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
                  const uint8_t* t1, const uint8_t* t2);

  // pk[i] = src[2 * i + k], and back.
  void (*deinterleave2)(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1);
  void (*interleave2)(const uint8_t* p0, const uint8_t* p1, ptrdiff_t pixels, uint8_t* dst);

  // pk[i] = src[3 * i + k], and back.
  void (*deinterleave3)(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1,
                        uint8_t* p2);
  void (*interleave3)(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, ptrdiff_t pixels,
                      uint8_t* dst);

  // pk[i] = src[4 * i + k], and back.
  void (*deinterleave4)(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2,
                        uint8_t* p3);
  void (*interleave4)(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, const uint8_t* p3,
                      ptrdiff_t pixels, uint8_t* dst);

  // Pixels of 4 bytes by their places, each 0 ... texels - 1, in any order: pixel i is src's pixel
  // places[i]. Fastest where neighbours lie close together, as in a picture that is enlarged.
  void (*gather4)(const uint8_t* src, ptrdiff_t texels, const int32_t* places, ptrdiff_t count,
                  uint8_t* dst);

  // Full-range luma of planar rows, 0..255, in place on any of the three:
  //   dst = 0.299 * r + 0.587 * g + 0.114 * b, as (9798 * r + 19235 * g + 3735 * b) >> 15.
  // The weights add to 32768, so a grey keeps its value; the shift cuts, it does not round.
  void (*luma)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count);

  // A row of a colour matrix with 16 fractional bits on planar rows, clamped, in place on any of
  // the three:
  //   dst = clamp((w[0] * a + w[1] * b + w[2] * c + w[3]) >> 16, 0, 255), the shift rounding down.
  // Neither the sum nor any part of it leaves 32 bits.
  void (*weightedSum)(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* dst,
                      ptrdiff_t count, const int32_t* w);

  // `top` laid over `base` with an opacity in percent, 0..100, rounded to nearest, halves up:
  //   dst = (base * (100 - opacity) + top * opacity + 50) / 100. In place on either.
  void (*mixOpaque)(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
                    int32_t opacity);

  // mixOpaque with the same top, 0..255, for every sample. In place.
  void (*mixColor)(const uint8_t* base, uint8_t top, uint8_t* dst, ptrdiff_t count,
                   int32_t opacity);

  // mixOpaque with a coverage of 0..255 per sample on top of the opacity, rounded likewise:
  //   dst = (base * (25500 - opacity * mask) + top * opacity * mask + 12750) / 25500.
  // In place on any of the three.
  void (*mixMasked)(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                    ptrdiff_t count, int32_t opacity);

  // Chroma mirrored about 128: dst = min(255, 256 - src), so 0 and 1 both give 255. In place.
  void (*complement256)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
};

#define QPX_ROWS(ROW, Table) \
  ROW(Table, lookup)         \
  ROW(Table, lookup3)        \
  ROW(Table, lookup4)        \
  ROW(Table, deinterleave2)  \
  ROW(Table, interleave2)    \
  ROW(Table, deinterleave3)  \
  ROW(Table, interleave3)    \
  ROW(Table, deinterleave4)  \
  ROW(Table, interleave4)    \
  ROW(Table, gather4)        \
  ROW(Table, luma)           \
  ROW(Table, weightedSum)    \
  ROW(Table, mixOpaque)      \
  ROW(Table, mixColor)       \
  ROW(Table, mixMasked)      \
  ROW(Table, complement256)
QPX_DECLARE_ROWS(Rows, QPX_ROWS)

inline const Rows& rows() { return chosenForm<Rows>(); }

}  // namespace qpx::simd
