#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_tap_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/tap_rows.h"
#include "simd/taps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
const TapRows& bestTapRows() { return plainTapRows(); }
#else
const TapRows& bestTapRows() {
  static constexpr TapRows kRows = {
      .acrossFirst3 = mixRow<3, true>,
      .acrossFirst4 = mixRow<4, true>,
      .downFirst3 = mixRow<3, false>,
      .downFirst4 = mixRow<4, false>,
      .oneSum3 = sumRow<3, false>,
      .oneSum4 = sumRow<4, false>,
      .rounded3 = sumRow<3, true>,
      .rounded4 = sumRow<4, true>,
      .offsets = offsets,
  };
  return kRows;
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(bestTapRows);

const TapRows& vectorTapRows() { return HWY_DYNAMIC_DISPATCH(bestTapRows)(); }

}  // namespace qpx::simd
#endif  // HWY_ONCE
