// One hue for highlights and one for shadows, at unchanged luma.
#include <qpx/kernels_adjust.h>

#include <algorithm>

#include "adjust/tone_effects.h"
#include "simd/blend_math.h"
#include "simd/hue_rows.h"
#include "simd/rows.h"
#include "toolkit/curve.h"
#include "toolkit/kernel_call.h"
#include "toolkit/pixel_run.h"
#include "toolkit/tint.h"

namespace qpx {
namespace {

// What setup leaves in the stage's block.
struct SplitTables {
  ToneTable shadows[3];  // every value toned as a shadow: red, green, blue
  ToneTable highlights[3];
  ToneTable weight;  // of the highlight, by luma
};

// A hue at full saturation. 139230 / 2^15 is 255/60.
Rgb pureColor(int32_t hue) {
  const int32_t sector = hue / 60;
  const uint8_t rise = static_cast<uint8_t>(((hue - 60 * sector) * 139230) >> 15);
  const uint8_t fall = static_cast<uint8_t>(255 - rise);
  switch (sector) {
    case 0:
      return {255, rise, 0};
    case 1:
      return {fall, 255, 0};
    case 2:
      return {0, 255, rise};
    case 3:
      return {0, fall, 255};
    case 4:
      return {rise, 0, 255};
    case 5:
      return {255, 0, fall};
    default:
      return {255, 0, 0};
  }
}

ToneTable tonedTable(uint8_t color, int32_t saturation) {
  return tabulate([=](int32_t c) {
    const int32_t sum = saturation * color + (100 - saturation) * c;
    return sum >= 25600 ? 255 : sum / 100;
  });
}

// Half of the highlight at the pivot, none at black, all at white.
ToneTable weightTable(int32_t balance) {
  const int32_t pivot = (100 - (balance / 2 + 50)) * 255 / 100;
  return tabulate([pivot](int32_t luma) {
    const double weight = luma <= pivot ? (pivot == 0 ? 0.0 : 128.0 / pivot * luma)
                                        : 128.0 + 127.0 / (255 - pivot) * (luma - pivot);
    return static_cast<int32_t>(weight);
  });
}

void fillTones(ToneTable (&tables)[3], int32_t hue, int32_t saturation) {
  const Rgb color = pureColor(hue);
  tables[0] = tonedTable(color.red, saturation);
  tables[1] = tonedTable(color.green, saturation);
  tables[2] = tonedTable(color.blue, saturation);
}

void tone(const Stage& stage, PixelRun& run) {
  // Those of kTintLuma with sixteen fractional bits, and a half.
  constexpr int32_t kLumaRow[4] = {kTintLuma.red << 8, kTintLuma.green << 8, kTintLuma.blue << 8,
                                   1 << 15};
  const auto& tables = *reinterpret_cast<const SplitTables*>(stage.lut);
  const simd::Rows& rows = simd::rows();
  const simd::HueRows& hues = simd::hueRows();
  alignas(kRunAlignment) uint8_t luma[kRunLength], weight[kRunLength], light[kRunLength];
  rows.weightedSum(run.r, run.g, run.b, luma, run.count, kLumaRow);
  rows.lookup(luma, weight, run.count, tables.weight.data());
  uint8_t* const channels[] = {run.r, run.g, run.b};
  for (size_t c = 0; c < 3; ++c) {
    rows.lookup(channels[c], light, run.count, tables.highlights[c].data());
    rows.lookup(channels[c], channels[c], run.count, tables.shadows[c].data());
    hues.mixWeighted(channels[c], light, weight, channels[c], run.count);
  }
  hues.tintGreys(run.r, run.g, run.b, run.count, luma);
}

}  // namespace

int32_t setUpSplitToning(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXSplitToningParam>(stage);
  param.highlightHue = std::clamp(param.highlightHue, 0, 360);
  param.shadowHue = std::clamp(param.shadowHue, 0, 360);
  param.highlightSaturation = std::clamp(param.highlightSaturation, 0, 100);
  param.shadowSaturation = std::clamp(param.shadowSaturation, 0, 100);
  param.balance = std::clamp(param.balance, -100, 100);
  auto* tables = static_cast<SplitTables*>(MMemAlloc(nullptr, sizeof(SplitTables)));
  if (tables == nullptr) return QPX_NO_MEMORY;
  fillTones(tables->shadows, param.shadowHue, param.shadowSaturation);
  fillTones(tables->highlights, param.highlightHue, param.highlightSaturation);
  tables->weight = weightTable(param.balance);
  stage.lut = reinterpret_cast<uint8_t*>(tables);
  stage.lutSize = sizeof(SplitTables);
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;
  return QPX_OK;
}

int32_t splitToning(const Frame& frame) { return runRecipe(frame, tone); }

}  // namespace qpx

using namespace qpx;

int32_t SeparateTone_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callOnFrameOf(kSplitToning, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? splitToning(frame) : int32_t{QPX_OK};
  });
}
