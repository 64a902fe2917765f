// Exposure in stops. Less light is a table. More light goes through hue, saturation and value, so
// that what turns light keeps its hue instead of clipping channel by channel.
#include <qpx/kernels_adjust.h>

#include <cmath>

#include "adjust/tone_effects.h"
#include "adjust/tone_tables.h"
#include "filters/point/table_kernel.h"
#include "simd/hue_rows.h"
#include "toolkit/kernel_call.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

// 256 a stop.
int32_t exposureUnits(double stops) {
  if (stops < -5.0) return -1280;
  if (stops > 5.0) return 1280;
  return static_cast<int32_t>(stops * 1024.0 * 0.25);
}

void brighten(const Stage& stage, PixelRun& run) {
  const int32_t units = exposureUnits(record<QPXExposureStopsParam>(stage).exposure);
  simd::hueRows().brighten(run.r, run.g, run.b, run.count, stage.lut, units);
}

}  // namespace

int32_t setUpExposureStops(Stage& stage, QPXBand&) {
  double& stops = editRecord<QPXExposureStopsParam>(stage).exposure;
  stops = std::isnan(stops) ? 0.0 : std::clamp(stops, -5.0, 5.0);
  return composeTable(stage, exposureTable(exposureUnits(stops) / 256.0));
}

int32_t exposure(const Frame& frame) {
  const double stops = record<QPXExposureStopsParam>(frame.stage).exposure;
  return exposureUnits(stops) < 0 ? applyStageTables(frame) : runRecipe(frame, brighten);
}

}  // namespace qpx

using namespace qpx;

int32_t exposure_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callOnFrameOf(kExposure, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? exposure(frame) : int32_t{QPX_OK};
  });
}
