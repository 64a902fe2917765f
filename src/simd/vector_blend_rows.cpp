#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_blend_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/blend-inl.h"
#include "simd/blend_rows.h"
#include "simd/grey-inl.h"
#include "simd/plain_blend_rows.h"
#include "simd/radial-inl.h"

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
const BlendRows& bestBlendRows() { return plainBlendRows(); }
#else
const BlendRows& bestBlendRows() {
  static constexpr BlendRows kRows = {
      .layNormal = layNormal,
      .layScreen = layScreen,
      .layOverlay = layOverlay,
      .laySoft = laySoft,
      .layMultiply = layMultiply,
      .multiplyShift = multiplyShift,
      .lighten = lighten,
      .darken = darken,
      .lightness = lightness,
      .weighedLuma = weighedLuma,
      .hueGrey = hueGrey,
      .chalkBoardGrey = chalkBoardGrey,
      .moveApart = moveApart,
      .drawTogether = drawTogether,
      .falloffWeights = falloffWeights,
      .scaleByFalloff = scaleByFalloff,
      .cornerWeights = cornerWeights,
      .mixCorner = mixCorner,
  };
  return kRows;
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(bestBlendRows);

const BlendRows& vectorBlendRows() { return HWY_DYNAMIC_DISPATCH(bestBlendRows)(); }

}  // namespace qpx::simd
#endif  // HWY_ONCE
