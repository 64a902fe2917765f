#include <algorithm>

#include "simd/color_rows.h"

namespace qpx::simd {
namespace plain {

void nearest(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, ptrdiff_t count,
             const uint8_t* palette, ptrdiff_t entries, int32_t* distance) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    for (ptrdiff_t k = 0; k < entries; ++k) {
      const int32_t d0 = c0[i] - palette[3 * k], d1 = c1[i] - palette[3 * k + 1],
                    d2 = c2[i] - palette[3 * k + 2];
      distance[i] = std::min(distance[i], d0 * d0 + d1 * d1 + d2 * d2);
    }
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(ColorRows, QPX_COLOR_ROWS)

}  // namespace qpx::simd
