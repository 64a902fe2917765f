#include "filters/point/two_tone.h"

#include <algorithm>
#include <cstring>

#include "toolkit/curve.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

constexpr uint8_t kNoColor = 128;  // chroma of greys

void fillChroma(QPXBand& band, uint32_t planeFlags) {
  band.fill[1] = band.fill[2] = kNoColor;
  band.planeFlags = planeFlags;
}

void replaceByLuma(const Stage&, PixelRun& run) {
  simd::rows().luma(run.r, run.g, run.b, run.r, run.count);
  std::memcpy(run.g, run.r, static_cast<size_t>(run.count));
  std::memcpy(run.b, run.r, static_cast<size_t>(run.count));
}

// Lit pixels turn white or stay as they are, all others turn black.
void darkenUnlit(const Stage& stage, PixelRun& run) {
  const auto& param = record<QPXThresholdParam>(stage);
  const uint8_t whiten = param.twoTone != 0 ? 255 : 0;
  uint8_t luma[kRunLength];
  simd::rows().luma(run.r, run.g, run.b, luma, run.count);
  for (int32_t i = 0; i < run.count; ++i) {
    const uint8_t lit = luma[i] >= param.level ? 255 : 0;
    run.r[i] = (run.r[i] | whiten) & lit;
    run.g[i] = (run.g[i] | whiten) & lit;
    run.b[i] = (run.b[i] | whiten) & lit;
  }
}

// The same on Y, U and V, for the form that keeps colours.
void darkenUnlitYuv(const Stage& stage, PixelRun& run) {
  const int32_t level = record<QPXThresholdParam>(stage).level;
  for (int32_t i = 0; i < run.count; ++i) {
    const bool lit = run.r[i] >= level;
    run.r[i] = lit ? run.r[i] : 0;
    run.g[i] = lit ? run.g[i] : kNoColor;
    run.b[i] = lit ? run.b[i] : kNoColor;
  }
}

int32_t makeTwoToneLuma(const Frame& frame) {
  const int32_t level = record<QPXThresholdParam>(frame.stage).level;
  const ToneTable table = tabulate([&](int32_t i) { return i >= level ? 255 : 0; });
  const MRect& rect = frame.rect;
  const simd::Rows& rows = simd::rows();
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    rows.lookup(frame.in[0][y] + rect.left, frame.out[0][y] + rect.left,
                ptrdiff_t{rect.right} - rect.left, table.data());
  }
  return QPX_OK;
}

}  // namespace

int32_t setUpGrey(Stage& stage, QPXBand& band) {
  if (!isYuv(stage.pix)) return QPX_OK;
  fillChroma(band, isSemiPlanar(stage.pix) ? QPX_FILL_PLANE2 | QPX_COPY_PLANE0
                                           : QPX_FILL_PLANE1 | QPX_FILL_PLANE2 | QPX_COPY_PLANE0);
  return QPX_OK;
}

int32_t makeGrey(const Frame& frame) {
  return isYuv(frame.stage.pix) ? int32_t{QPX_OK} : overRuns<replaceByLuma>(frame);
}

int32_t setUpThreshold(Stage& stage, QPXBand& band) {
  auto& param = editRecord<QPXThresholdParam>(stage);
  param.level = std::clamp(param.level, 1, 255);
  if (isYuv(stage.pix) && param.twoTone != 0) {
    fillChroma(band, stage.pix.family == kFamilyNv21 ? QPX_FILL_PLANE2
                                                     : QPX_FILL_PLANE1 | QPX_FILL_PLANE2);
  }
  return QPX_OK;
}

int32_t makeThreshold(const Frame& frame) {
  if (!isYuv(frame.stage.pix)) return overRuns<darkenUnlit>(frame);
  const bool twoTone = record<QPXThresholdParam>(frame.stage).twoTone != 0;
  return twoTone ? makeTwoToneLuma(frame) : overComponents<darkenUnlitYuv>(frame);
}

}  // namespace qpx
