#include "filters/curves/corner_terms.h"

#include <algorithm>
#include <cmath>

namespace qpx {

Falloff::Falloff(int32_t excess, int32_t corners, int32_t reach) {
  const double clear = 0.25 - 0.0025 * reach;  // 0 ... 0.5
  slope_ = excess * (100.0 + corners) / 100.0 / (1.0 - clear);
  start_ = kClear - slope_ * clear;
}

void Falloff::fill(std::span<int32_t> terms, int32_t first, int32_t last, int32_t shift) const {
  const int32_t length = last - first;
  for (size_t i = 0; i < terms.size(); ++i) {
    const double entry = static_cast<double>(i) - first;
    const double place = (2.0 * entry + 1.0) / length - 1.0 - shift / 100.0;
    terms[i] = static_cast<int32_t>(std::floor((slope_ * place * place + start_) / 2.0 + 0.5));
  }
}

// Terms are least somewhere and grow to both sides of it, so that the ends of a run tell whether
// any of it is beyond the clear middle.
void darkenCorners(const FalloffTerms& terms, PixelRun& run) {
  const int32_t* columns = terms.columns + run.x;
  const int32_t most = std::max(columns[0], columns[run.count - 1]);
  if (terms.rows[run.y] + most > kClear) radialFalloff(run, terms);
}

}  // namespace qpx
