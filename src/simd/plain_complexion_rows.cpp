#include <algorithm>
#include <cstdlib>

#include "simd/complexion_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

class SkinMean {
 public:
  SkinMean(const SkinWindow& window, ptrdiff_t x) : window_(window), x_(x) {
    const uint8_t* middle = window.rows[window.reach] + x;
    for (int p = 0; p < 3; ++p) middle_[p] = middle[p * window.planeStep];
    const int32_t side = 2 * window.reach + 1;
    for (int32_t v = 0; v < side; ++v) {
      for (int32_t u = 0; u < side; ++u) add(window.rows[v], u - window.reach, v * side + u);
    }
  }

  uint8_t operator[](int plane) const { return static_cast<uint8_t>(sum_[plane] / total_); }

 private:
  void add(const uint8_t* row, int32_t across, int32_t place) {
    const ptrdiff_t column = x_ + across;
    if (window_.inside[column] == 0) return;
    int32_t sample[3], distance = 0;
    for (int p = 0; p < 3; ++p) {
      sample[p] = row[column + p * window_.planeStep];
      distance += std::abs(sample[p] - middle_[p]);
    }
    const int32_t x = std::min(distance, 255);
    const auto t = static_cast<uint32_t>(2 * std::max(kSkinContrast * kSkinContrast - x * x, 0));
    const uint32_t weight = (((t * t) >> 16) * window_.near[place]) >> 16;
    total_ += weight;
    for (int p = 0; p < 3; ++p) sum_[p] += weight * static_cast<uint32_t>(sample[p]);
  }

  const SkinWindow& window_;
  ptrdiff_t x_;
  int32_t middle_[3];
  uint32_t sum_[3] = {};
  uint32_t total_ = 0;
};

}  // namespace

void smoothSkin(const SkinWindow& window, const uint8_t* skin, uint8_t* const (&dst)[3],
                ptrdiff_t count) {
  for (int p = 0; p < 3; ++p) {
    std::copy_n(window.rows[window.reach] + p * window.planeStep, count, dst[p]);
  }
  for (ptrdiff_t i = 0; i < count; ++i) {
    if (skin[i] == 0) continue;
    const SkinMean mean(window, i);
    for (int p = 0; p < 3; ++p) dst[p][i] = mean[p];
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(ComplexionRows, QPX_COMPLEXION_ROWS)

}  // namespace qpx::simd
