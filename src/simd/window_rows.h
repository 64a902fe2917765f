// Rows of neighbourhood filters, as a table of row functions beside Rows and under the same rules:
// no alignment needed, nothing outside [0, count) touched, plain form and vector form of the same
// bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// Bits below the point of the weights of weighRows.
inline constexpr int32_t kWindowWeightBits = 15;

struct WindowRows {
  // The weighted mean of 2 * radius + 1 rows, cut, where rows at the same distance from the middle
  // weigh the same:
  //   dst = (w[0] * rows[radius] + sum over k of w[k] * (rows[radius - k] + rows[radius + k])) >>
  //   15
  // radius is 1 or more; no weight is negative and those of the whole window add up to 2^15.
  // Neighbours within one row are rows that begin a sample later. Not in place.
  void (*weighRows)(const uint8_t* const* rows, const int16_t* weights, int32_t radius,
                    uint8_t* dst, ptrdiff_t count);

  // dst = |a - b|. In place on either.
  void (*distance)(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count);

  // Away from `from` by `step`: dst = clamp(src >= from ? src + step : src - step). In place on
  // any.
  void (*moveAway)(const uint8_t* src, const uint8_t* from, const uint8_t* step, uint8_t* dst,
                   ptrdiff_t count);

  // sums += in - out.
  void (*slideDown)(int32_t* sums, const uint8_t* in, const uint8_t* out, ptrdiff_t count);

  // Sums of windows of `size` neighbours: dst[i] = src[i] + ... + src[i + size - 1], for three rows
  // at once. Reads count + size - 1 of each source.
  void (*windowSums)(const int32_t* const (&src)[3], int32_t* const (&dst)[3], int32_t size,
                     ptrdiff_t count);

  // Towards the mean of a window (amount above 0) or away from it (below), amount / 256 of the way,
  // the product cut downwards:
  //   mean = (q * ((sum * q) >> 10)) >> 10
  //   amount >= 0: dst = clamp(src + ((amount * (mean - src)) >> 8))
  //   amount < 0: dst = clamp(src + ((-amount * (src - mean)) >> 8))
  // sum * q stays below 2^31. In place on src.
  void (*moveToMean)(const uint8_t* src, const int32_t* sums, uint8_t* dst, ptrdiff_t count,
                     int32_t q, int32_t amount);
};

#define QPX_WINDOW_ROWS(ROW, Table) \
  ROW(Table, weighRows)             \
  ROW(Table, distance)              \
  ROW(Table, moveAway)              \
  ROW(Table, slideDown)             \
  ROW(Table, windowSums)            \
  ROW(Table, moveToMean)
QPX_DECLARE_ROWS(WindowRows, QPX_WINDOW_ROWS)

inline const WindowRows& windowRows() { return chosenForm<WindowRows>(); }

}  // namespace qpx::simd
