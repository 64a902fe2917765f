#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_sum_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/sum-inl.h"
#include "simd/sum_rows.h"

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
const SumRows& bestSumRows() { return plainSumRows(); }
#else
const SumRows& bestSumRows() {
  static constexpr SumRows kRows = {
      .addQuads = addQuads, .scaleSums = scaleSums, .mixByWeights = mixByWeights};
  return kRows;
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(bestSumRows);

const SumRows& vectorSumRows() { return HWY_DYNAMIC_DISPATCH(bestSumRows)(); }

}  // namespace qpx::simd
#endif  // HWY_ONCE
