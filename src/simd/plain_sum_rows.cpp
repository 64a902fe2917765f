#include <algorithm>

#include "simd/sum_rows.h"

namespace qpx::simd {
namespace plain {

void addQuads(const uint8_t* const* rows, ptrdiff_t rowCount, uint32_t weight, const QuadSums& sums,
              ptrdiff_t pixels) {
  for (ptrdiff_t k = 0; k < rowCount; ++k) {
    const uint8_t* row = rows[k];
    for (ptrdiff_t i = 0; i < pixels; ++i) {
      for (ptrdiff_t c = 0; c < 4; ++c) sums.plane[c][i] += weight * row[4 * i + c];
    }
  }
}

void scaleSums(const uint32_t* sums, const uint32_t* counts, const uint32_t* reciprocals,
               uint32_t bias, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const uint32_t mean = (reciprocals[counts[i]] * sums[i] + bias) >> 20;
    dst[i] = static_cast<uint8_t>(std::min(mean, 255u));
  }
}

void mixByWeights(const uint8_t* a, const uint8_t* b, const uint16_t* weights, uint8_t* dst,
                  ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const uint32_t w = weights[i];
    dst[i] = static_cast<uint8_t>((a[i] * w + b[i] * (1024 - w) + 512) >> 10);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(SumRows, QPX_SUM_ROWS)

}  // namespace qpx::simd
