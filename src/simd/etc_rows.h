// What an ETC1 codec does most, as a table of functions beside Rows: the search for a half block's
// table and indices, and a row of blocks into pixels. Plain form and vector form give the same
// bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// Offsets of a table to either side of the base colour.
struct EtcOffsets {
  int32_t small, large;
};

inline constexpr EtcOffsets kEtcTables[8] = {{2, 8},   {5, 17},  {9, 29},   {13, 42},
                                             {18, 60}, {24, 80}, {33, 106}, {47, 183}};

struct EtcWeights {
  int32_t red, green, blue;
};

// Shares of the squared channels in an error; together they are 64.
inline constexpr EtcWeights kEtcWeights = {19, 38, 7};

// Worse than any half block can be.
inline constexpr int32_t kEtcWorstError = 3121200;

// Half blocks side by side, one in each place of the arrays. A multiple of the 32-bit numbers in
// any vector, so that a search may run over whole vectors.
inline constexpr ptrdiff_t kEtcBatch = 32;

// Samples of eight pixels: four in a word, the first in the lowest bits.
struct EtcSamples {
  uint32_t words[3][2][kEtcBatch];
};

struct EtcChoices {
  uint32_t table[kEtcBatch];
  uint32_t bits[kEtcBatch];   // of pixel k: low bit of its index at k, high bit at 16 + k
  uint32_t error[kEtcBatch];  // sum of the pixels' errors, each divided by 64
  uint32_t exact[kEtcBatch];  // sum of the pixels' errors
};

struct EtcRows {
  // The best table and indices of `count` half blocks for the base colours r | g << 8 | b << 16.
  // All places of the arrays must be readable and writable; those behind `count` may be written.
  void (*searchEtc)(const EtcSamples& samples, const uint32_t* bases, EtcChoices& choices,
                    ptrdiff_t count);

  // `count` blocks of 8 bytes into four rows of count * 4 pixels of 3 bytes.
  void (*decodeEtc)(const uint8_t* blocks, uint8_t* rgb, ptrdiff_t pitch, ptrdiff_t count);
};

#define QPX_ETC_ROWS(ROW, Table) \
  ROW(Table, searchEtc)          \
  ROW(Table, decodeEtc)
QPX_DECLARE_ROWS(EtcRows, QPX_ETC_ROWS)

inline const EtcRows& etcRows() { return chosenForm<EtcRows>(); }

}  // namespace qpx::simd
