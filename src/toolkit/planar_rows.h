// Rows of 24 and 32-bit RGB as three planes of samples, for filters that read neighbours along a
// row. Byte k of a pixel goes to plane k, whatever colour it is.
#pragma once

#include "engine/stage.h"
#include "simd/rows.h"

namespace qpx {

inline constexpr int kPlanes = 3;

struct PlanarRow {
  uint8_t* plane[kPlanes];

  // The same planes, `count` samples further on.
  PlanarRow from(ptrdiff_t count) const {
    return {{plane[0] + count, plane[1] + count, plane[2] + count}};
  }
};

class PlanarFormat {
 public:
  // `alpha` has room for the columns that are stored.
  PlanarFormat(const Stage& stage, uint8_t* alpha)
      : rows_(simd::rows()),
        alpha_(alpha),
        pixelBytes_(columnStep(stage.pix, 0)),
        width_(stage.inWidth) {}

  // Columns left - margin ... right + margin - 1, those outside the picture repeating its edge.
  void load(const uint8_t* row, int32_t left, int32_t right, int32_t margin,
            const PlanarRow& to) const;

  // Columns left ... right - 1; their alpha is that of `source`.
  void store(const PlanarRow& from, const uint8_t* source, uint8_t* row, int32_t left,
             int32_t right) const;

 private:
  void split(const uint8_t* pixels, ptrdiff_t count, const PlanarRow& to) const;

  const simd::Rows& rows_;
  uint8_t* alpha_;
  ptrdiff_t pixelBytes_;
  int32_t width_;
};

}  // namespace qpx
