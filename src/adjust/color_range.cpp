// Hue, saturation and lightness of one range of hues, in HSV.
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "adjust/hue_effects.h"
#include "filters/curves/look_block.h"
#include "simd/hue_rows.h"
#include "toolkit/kernel_call.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

struct HueSpan {
  int32_t start;
  int32_t count;  // degrees; past 359 they go on at 0
  bool lightIsDark;
};

constexpr HueSpan kSpans[] = {
    {315, 80, false},   // red
    {331, 108, false},  // orange
    {25, 80, false},    // yellow
    {45, 120, false},   // green
    {120, 100, true},   // aqua
    {160, 140, true},   // blue
    {200, 140, true},   // purple
    {270, 90, false},   // magenta
};

int32_t rounded(double value) { return static_cast<int32_t>(std::floor(value + 0.5)); }

// A bell whose steepest slope leaves a turned range in the order it had: hues neither cross nor
// leave the range.
int32_t turnedPosition(const HueSpan& span, int32_t position, int32_t hue) {
  constexpr double kReach = 0.25;
  const double last = span.count - 1;
  const double wave = std::sin(std::numbers::pi * position / last);
  return rounded(position + kReach * last * hue / 100.0 * wave * wave);
}

// Full in the middle third of the range, none at its ends, smooth between.
int32_t weightAt(const HueSpan& span, int32_t position) {
  const double last = span.count - 1;
  const double t = std::min(std::min(position, span.count - 1 - position) / (last / 3), 1.0);
  return rounded(1024 * t * t * (3 - 2 * t));
}

// Full and no saturation stay where more is wanted, so that nothing clips and greys get no colour.
int32_t targetSaturation(int32_t saturation, int32_t percent) {
  const double s = saturation, share = percent / 100.0;
  return rounded(percent < 0 ? s + s * share : s + s * (255 - s) / 255 * share);
}

// A turned hue has a luma of its own already and takes less.
int32_t lightOf(const QPXColorRangeParam& param, const HueSpan& span) {
  const int32_t light = param.lightness * 1024 / 400;
  const int32_t held = std::abs(param.hue) * 1024 / 500;
  const int32_t rest = light * (1024 - held) / 1024;
  return span.lightIsDark ? -rest : rest;
}

void fillChanges(const QPXColorRangeParam& param, const HueSpan& span,
                 simd::RangeChanges& changes) {
  for (int32_t degree = 0; degree < simd::kDegrees; ++degree) changes.leave(degree);
  for (int32_t position = 0; position < span.count; ++position) {
    const int32_t turned = turnedPosition(span, position, param.hue);
    const int32_t hue = span.start + turned;
    changes.set((span.start + position) % 360, hue > 360 ? hue - 360 : hue, weightAt(span, turned));
  }
  for (int32_t s = 0; s < 256; ++s) {
    changes.saturation[s] = static_cast<uint8_t>(targetSaturation(s, param.saturation));
  }
  changes.light = lightOf(param, span);
}

void change(const Stage& stage, PixelRun& run) {
  if (stage.lut == nullptr) return;
  simd::hueRows().changeRange(run.r, run.g, run.b, run.count, blockOf<simd::RangeChanges>(stage));
}

}  // namespace

// An index of no range leaves no block.
int32_t setUpColorRange(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXColorRangeParam>(stage);
  for (int32_t* amount : {&param.hue, &param.saturation, &param.lightness}) {
    *amount = std::clamp(*amount, -100, 100);
  }
  if (param.colorIndex < 0 || param.colorIndex >= static_cast<int32_t>(std::size(kSpans))) {
    return QPX_OK;
  }
  auto* changes = makeBlock<simd::RangeChanges>(stage);
  if (changes == nullptr) return QPX_NO_MEMORY;
  fillChanges(param, kSpans[param.colorIndex], *changes);
  return QPX_OK;
}

int32_t colorRange(const Frame& frame) { return runRecipe(frame, change); }

}  // namespace qpx

using namespace qpx;

int32_t HSLColor_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callOnFrameOf(kColorRange, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? colorRange(frame) : int32_t{QPX_OK};
  });
}
