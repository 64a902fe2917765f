// Sums of many rows of pixels, as a table of row functions beside Rows and under the same rules: no
// alignment needed, nothing outside the count touched, plain form and vector form of the same
// values.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// A row of sums for each of the four bytes of a pixel.
struct QuadSums {
  uint32_t* plane[4];

  QuadSums from(ptrdiff_t pixel) const {
    return {{plane[0] + pixel, plane[1] + pixel, plane[2] + pixel, plane[3] + pixel}};
  }
};

struct SumRows {
  // Byte c of pixel i, of four bytes, over all rows: plane[c][i] += weight * sum of
  // rows[k][4 * i + c], modulo 2^32. A weight of 2^32 - 1 takes away. Rows may be the same.
  void (*addQuads)(const uint8_t* const* rows, ptrdiff_t rowCount, uint32_t weight,
                   const QuadSums& sums, ptrdiff_t pixels);

  // Means of sums that go by a table of reciprocals with 20 fractional bits:
  //   dst = min((reciprocals[counts] * sums + bias) >> 20, 255), modulo 2^32 before the shift.
  // Counts are places of the table.
  void (*scaleSums)(const uint32_t* sums, const uint32_t* counts, const uint32_t* reciprocals,
                    uint32_t bias, uint8_t* dst, ptrdiff_t count);

  // A mix with 10 fractional bits, rounded to nearest:
  //   dst = (a * weights + b * (1024 - weights) + 512) >> 10, weights 0 ... 1024. In place on
  // either.
  void (*mixByWeights)(const uint8_t* a, const uint8_t* b, const uint16_t* weights, uint8_t* dst,
                       ptrdiff_t count);
};

#define QPX_SUM_ROWS(ROW, Table) \
  ROW(Table, addQuads)           \
  ROW(Table, scaleSums)          \
  ROW(Table, mixByWeights)
QPX_DECLARE_ROWS(SumRows, QPX_SUM_ROWS)

inline const SumRows& sumRows() { return chosenForm<SumRows>(); }

}  // namespace qpx::simd
