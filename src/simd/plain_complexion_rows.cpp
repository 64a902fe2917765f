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

// What a block's mask says: a share of 256 for luma, and for chroma that share times the strength.
struct BlockShare {
  int32_t luma;
  int64_t chroma;
};

BlockShare shareOf(const uint8_t* upper, const uint8_t* lower, int32_t strength) {
  const int32_t sum = upper[0] + upper[1] + lower[0] + lower[1];
  return {sum >> 2, (int64_t{strength} * sum) >> 10};
}

void mixLuma(uint8_t* luma, const uint8_t* aim, int32_t share) {
  for (int i = 0; i < 2; ++i) {
    luma[i] = static_cast<uint8_t>((luma[i] * (256 - share) + aim[i] * share) >> 8);
  }
}

// Towards the aim by a share, upwards only, by `most` at most and not beyond a byte.
uint8_t liftedBy(int32_t chroma, int32_t aim, int64_t share, int64_t most) {
  const int64_t way = std::max<int64_t>((share * (aim - chroma + 128)) >> 8, 0);
  return static_cast<uint8_t>(std::min(chroma + std::min(way, most), int64_t{255}));
}

// Blue below the middle comes nearer to it.
uint8_t liftedU(int32_t u, int64_t share) {
  return u < 128 ? liftedBy(u, (u - 128) * 51 >> 7, share, 9) : static_cast<uint8_t>(u);
}

// Red above the middle grows.
uint8_t liftedV(int32_t v, int64_t share) {
  return v >= 129 ? liftedBy(v, (332 * (v - 128)) >> 8, share, 4) : static_cast<uint8_t>(v);
}

}  // namespace

void whitenBlocks(const WhitenedRows& rows, ptrdiff_t count, int32_t strength) {
  for (ptrdiff_t i = 0; i < count; i += 2) {
    const BlockShare share = shareOf(rows.mask[0] + i, rows.mask[1] + i, strength);
    for (int row = 0; row < 2; ++row) mixLuma(rows.luma[row] + i, rows.aim[row] + i, share.luma);
    rows.pairs[i] = liftedV(rows.pairs[i], share.chroma);
    rows.pairs[i + 1] = liftedU(rows.pairs[i + 1], share.chroma);
  }
}

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
