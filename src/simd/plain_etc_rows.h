// The definition of the search for one half block, and the plain decoder.
#pragma once

#include "simd/etc_rows.h"

namespace qpx::simd::plain {

struct EtcColor {
  int32_t r, g, b;
};

// Eight pixels in any order.
struct EtcHalf {
  EtcColor pixels[8];
};

// As a place in EtcChoices; bits count the pixels in the order of the half.
struct EtcChoice {
  int32_t table = 0;
  uint32_t bits = 0;
  int32_t error = kEtcWorstError;
  int32_t exact = 0;
};

EtcChoice searchWithTable(const EtcHalf& half, const EtcColor& base, int32_t table);
EtcChoice searchAllTables(const EtcHalf& half, const EtcColor& base);

}  // namespace qpx::simd::plain
