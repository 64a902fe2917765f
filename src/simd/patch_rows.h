// Comparing patches of a picture, as a table of row functions beside Rows and under the same rules:
// no alignment needed, nothing outside the count touched, plain form and vector form of the same
// answers.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// A sample that a patch should have at a place.
struct PatchTerm {
  ptrdiff_t offset;  // of the place, from where the patch is
  uint8_t value;
};

// No limit and no number of terms may let a sum reach this.
inline constexpr uint32_t kFarPatch = uint32_t{1} << 30;

struct PatchRows {
  // How far `count` neighbouring patches are from what they should be:
  //   distances[i] = sum over all terms of |places[term.offset + i] - term.value|
  // where that is at most `limit`, below kFarPatch; where it is more, any number above `limit`.
  // Returns whether a patch is within the limit.
  bool (*patchDistances)(const uint8_t* places, const PatchTerm* terms, ptrdiff_t termCount,
                         uint32_t limit, uint32_t* distances, ptrdiff_t count);
};

#define QPX_PATCH_ROWS(ROW, Table) ROW(Table, patchDistances)
QPX_DECLARE_ROWS(PatchRows, QPX_PATCH_ROWS)

inline const PatchRows& patchRows() { return chosenForm<PatchRows>(); }

}  // namespace qpx::simd
