#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_tone_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/chroma-inl.h"
#include "simd/tone-inl.h"
#include "simd/tone_rows.h"

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
const ToneRows& bestToneRows() { return plainToneRows(); }
#else
const ToneRows& bestToneRows() {
  static constexpr ToneRows kRows = {
      .halvesToRgb = halvesToRgb,
      .pairsToRgb = pairsToRgb,
      .rgbToLuma = rgbToLuma,
      .rgbToHalves = rgbToHalves,
      .rgbToPairs = rgbToPairs,
      .extremesMean = extremesMean,
      .weightedGrey = weightedGrey,
      .sortToSepia = sortToSepia,
      .saturate = saturate,
      .lean = lean,
      .overlay = overlay,
      .layTexels = layTexels,
      .mixPercent = mixPercent,
      .enrich = enrich,
      .falloff = falloff,
  };
  return kRows;
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(bestToneRows);

const ToneRows& vectorToneRows() { return HWY_DYNAMIC_DISPATCH(bestToneRows)(); }

}  // namespace qpx::simd
#endif  // HWY_ONCE
