// How pictures darken towards their corners: by s, the sum of a term of the row and one of the
// column.
#pragma once

#include <span>

#include "toolkit/steps.h"

namespace qpx {

// Where s exceeds kClear the picture darkens with the square of the excess; half of the light is
// left at an excess of 512, none from 724 on.
inline constexpr int32_t kClear = 128;

// How dark corners are in looks of the name "as designed": about this much excess.
inline constexpr int32_t kSoftCorners = 380;
inline constexpr int32_t kDeepCorners = 500;
inline constexpr int32_t kHeavyCorners = 590;

// s = slope * q + start, with q the square of the distance from the centre, 0 there and 1 in the
// corners of a picture about it: kClear at the clear share of q, kClear + excess in the corners. A
// row and a column give half of it each.
class Falloff {
 public:
  // `corners` and `reach` in percent, -100 ... 100: more or less than `excess`, and how far towards
  // the centre.
  Falloff(int32_t excess, int32_t corners, int32_t reach);

  // A term for each entry of a side that the picture takes from `first` to `last`, its centre
  // shifted by a percentage of the half of that.
  void fill(std::span<int32_t> terms, int32_t first, int32_t last, int32_t shift) const;

 private:
  double slope_;
  double start_;
};

// radialFalloff of a run by terms that are least in the middle of the picture.
void darkenCorners(const FalloffTerms& terms, PixelRun& run);

}  // namespace qpx
