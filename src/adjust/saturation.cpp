#include "adjust/saturation.h"

#include <qpx/kernels_adjust.h>

#include <algorithm>

#include "adjust/hue_effects.h"
#include "filters/curves/tone_runs.h"
#include "simd/hue_rows.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

void saturateByRecord(const Stage& stage, PixelRun& run) {
  saturateHsl(run, saturationAmount(record<QPXSaturationParam>(stage).saturation));
}

// In NV21 as the looks that exist natively there.
constexpr Look kLook = {.recipe = saturateByRecord};

int32_t callSaturation(uint32_t formats, QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                       QPXRowTable* inRows) {
  return callOnFrameOf(kSaturation, stage, rect, outRows, inRows, [=](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & formats) != 0 ? saturation(frame) : int32_t{QPX_OK};
  });
}

}  // namespace

int32_t saturationAmount(int32_t percent) {
  const int32_t limited = std::clamp(percent, -100, 100);
  return limited * 1024 / (limited < 0 ? 100 : 200);
}

void saturateHsl(PixelRun& run, int32_t amount) {
  simd::hueRows().saturate(run.r, run.g, run.b, run.count, amount);
}

int32_t setUpSaturation(Stage& stage, QPXBand&) {
  int32_t& percent = editRecord<QPXSaturationParam>(stage).saturation;
  percent = std::clamp(percent, -100, 100);
  return QPX_OK;
}

int32_t saturation(const Frame& frame) { return runLook(frame, kLook); }

}  // namespace qpx

using namespace qpx;

int32_t Saturation_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                       QPXRowTable* inRows) {
  return callSaturation(kTakesRgb, stage, rect, outRows, inRows);
}

int32_t Saturation_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                        QPXRowTable* inRows) {
  return callSaturation(QPX_TAKES_NV21, stage, rect, outRows, inRows);
}
