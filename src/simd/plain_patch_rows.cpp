#include <cstdlib>

#include "simd/patch_rows.h"

namespace qpx::simd {
namespace plain {

bool patchDistances(const uint8_t* places, const PatchTerm* terms, ptrdiff_t termCount,
                    uint32_t limit, uint32_t* distances, ptrdiff_t count) {
  bool near = false;
  for (ptrdiff_t i = 0; i < count; ++i) {
    uint32_t sum = 0;
    for (ptrdiff_t k = 0; k < termCount && sum <= limit; ++k) {
      sum += static_cast<uint32_t>(std::abs(places[terms[k].offset + i] - terms[k].value));
    }
    distances[i] = sum;
    near |= sum <= limit;
  }
  return near;
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(PatchRows, QPX_PATCH_ROWS)

}  // namespace qpx::simd
