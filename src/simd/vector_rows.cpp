#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/channels-inl.h"
#include "simd/lookup_neon-inl.h"
#include "simd/lookup_x86-inl.h"
#include "simd/mix-inl.h"
#include "simd/plain_rows.h"
#include "simd/rows.h"

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
const Rows& bestRows() { return plainRows(); }
#else

// Sixteen shuffles for sixteen bytes (SSE4), or eight look-ups for eight (32-bit ARM), are no
// faster than a load for each byte.
#if HWY_TARGET > HWY_AVX2 && !HWY_ARCH_ARM_A64
using plain::lookup;
using plain::lookup3;
using plain::lookup4;
#endif

const Rows& bestRows() {
  static constexpr Rows kRows = {
      .lookup = lookup,
      .lookup3 = lookup3,
      .lookup4 = lookup4,
      .deinterleave3 = deinterleave3,
      .interleave3 = interleave3,
      .deinterleave4 = deinterleave4,
      .interleave4 = interleave4,
      .luma = luma,
      .weightedSum = weightedSum,
      .mixOpaque = mixOpaque,
      .mixColor = mixColor,
      .mixMasked = mixMasked,
      .complement256 = complement256,
  };
  return kRows;
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(bestRows);

const Rows& vectorRows() { return HWY_DYNAMIC_DISPATCH(bestRows)(); }

}  // namespace qpx::simd
#endif  // HWY_ONCE
