#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_etc_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/etc_decode-inl.h"
#include "simd/etc_rows.h"
#include "simd/etc_search-inl.h"

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
const EtcRows& bestEtcRows() { return plainEtcRows(); }
#else
const EtcRows& bestEtcRows() {
  static constexpr EtcRows kRows = {.search = etc::search, .decode = etc::decode};
  return kRows;
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(bestEtcRows);

const EtcRows& vectorEtcRows() { return HWY_DYNAMIC_DISPATCH(bestEtcRows)(); }

}  // namespace qpx::simd
#endif  // HWY_ONCE
