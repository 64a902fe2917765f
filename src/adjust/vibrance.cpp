// Vibrance and saturation in CIELAB: a* and b* each through one map.
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "adjust/hue_effects.h"
#include "adjust/lab_tables.h"
#include "filters/curves/look_block.h"
#include "toolkit/kernel_call.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

struct VibranceTables {
  simd::LabTables lab;
  ToneTable gamma;
};

// What a coordinate meant before it was cut towards below. Where shadows are steep the cut white
// point takes up to three steps more off; they are given back to what is nearly grey, or shadows
// would turn green.
double trueChroma(int32_t index) {
  constexpr double kLost = 3, kFade = 4;
  if (index < 0) {
    const int32_t cut = index + 1;
    return std::min(0.0, cut + std::max(0.0, kLost * (1 - (std::abs(cut) - kLost) / kFade)));
  }
  return index < 2 ? 0.0 : index + 0.5 * std::min(1.0, (index - 2) / 2.0);
}

// Weak colours gain most; from kStrong on none is left to gain. Skin lies where both coordinates
// are above 0, and takes part by half.
double vibrant(double chroma, double amount) {
  constexpr double kStrong = 110, kMost = 0.75;
  const double weak = std::max(0.0, 1.0 - std::abs(chroma) / kStrong);
  if (amount < 0) return chroma * (1 + amount * (0.5 + 0.5 * weak));
  return chroma * (1 + amount * kMost * weak * weak * (chroma > 0 ? 0.5 : 1.0));
}

double saturated(double chroma, double amount) {
  return chroma * (1 + (amount > 0 ? 0.6 : 1.0) * amount);
}

void fillChroma(int32_t (&map)[401], int32_t vibrance, int32_t saturation) {
  for (int32_t index = -200; index <= 200; ++index) {
    const double chroma =
        saturated(vibrant(trueChroma(index), vibrance / 100.0), saturation / 100.0);
    map[index + 200] = std::clamp(static_cast<int32_t>(std::round(chroma)), -200, 200);
  }
}

int32_t setUpChroma(Stage& stage, int32_t vibrance, int32_t saturation) {
  if (vibrance == 0 && saturation == 0) return QPX_OK;
  auto* tables = makeBlock<VibranceTables>(stage);
  if (tables == nullptr) return QPX_NO_MEMORY;
  fillLabTables(tables->lab);
  fillChroma(tables->lab.chroma, vibrance, saturation);
  tables->gamma = gammaTable();
  return QPX_OK;
}

void mapChroma(const Stage& stage, PixelRun& run) {
  if (stage.lut == nullptr) return;
  const auto& tables = blockOf<VibranceTables>(stage);
  const simd::Rows& rows = simd::rows();
  simd::hueRows().changeChroma(run.r, run.g, run.b, run.count, tables.lab);
  for (uint8_t* row : {run.r, run.g, run.b}) rows.lookup(row, row, run.count, tables.gamma.data());
}

int32_t callChroma(uint32_t effectId, QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                   QPXRowTable* inRows) {
  return callOnFrameOf(effectId, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? chromaMapped(frame) : int32_t{QPX_OK};
  });
}

}  // namespace

int32_t setUpVibrance(Stage& stage, QPXBand&) {
  int32_t& vibrance = editRecord<QPXVibranceParam>(stage).vibrance;
  vibrance = std::clamp(vibrance, -100, 100);
  return setUpChroma(stage, vibrance, 0);
}

int32_t setUpVibranceSaturation(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXVibranceSaturationParam>(stage);
  param.vibrance = std::clamp(param.vibrance, -100, 100);
  param.saturation = std::clamp(param.saturation, -100, 100);
  return setUpChroma(stage, param.vibrance, param.saturation);
}

int32_t chromaMapped(const Frame& frame) { return runRecipe(frame, mapChroma); }

}  // namespace qpx

using namespace qpx;

int32_t NaturalSaturation_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows) {
  return callChroma(kVibrance, stage, rect, outRows, inRows);
}

int32_t NewNaturalSaturation_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows) {
  return callChroma(kVibranceSaturation, stage, rect, outRows, inRows);
}
