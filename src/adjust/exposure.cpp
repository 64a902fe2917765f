// Exposure in stops. Less light is a table. More light goes through hue, saturation and value, so
// that what turns light keeps its hue instead of clipping channel by channel.
#include <qpx/kernels_adjust.h>

#include <cmath>

#include "adjust/tone_effects.h"
#include "adjust/tone_tables.h"
#include "filters/point/table_kernel.h"
#include "simd/hsv_math.h"
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

// Colours fade towards both ends of the tones, the more the more light there is.
int32_t fadeOf(int32_t value, int32_t units) {
  return ((value < 129 ? value : 255 - value) * units) >> 10;
}

HsvColor brightened(Hsv hsv, const uint8_t* tones, int32_t units) {
  const int32_t saturation = hsv.saturation - fadeOf(hsv.value, units);
  const uint8_t value = tones[hsv.value];
  if (saturation < 0) return {value, value, value};
  return rgbOf({hsv.hue, std::min(saturation, 255), value});
}

void brighten(const Stage& stage, PixelRun& run) {
  const int32_t units = exposureUnits(record<QPXExposureStopsParam>(stage).exposure);
  for (int32_t i = 0; i < run.count; ++i) {
    if ((run.r[i] | run.g[i] | run.b[i]) == 0) continue;
    const HsvColor color = brightened(hsvOf(run.r[i], run.g[i], run.b[i]), stage.lut, units);
    run.r[i] = color.r;
    run.g[i] = color.g;
    run.b[i] = color.b;
  }
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
