#include "adjust/hsb_adjust.h"

#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cmath>

#include "adjust/hue_effects.h"
#include "adjust/tone_tables.h"
#include "filters/curves/look_block.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

// Degrees from one angle on to another.
int32_t degreesOn(int32_t from, int32_t to) {
  const int64_t distance = (int64_t{to} - from) % 360;
  return static_cast<int32_t>(distance < 0 ? distance + 360 : distance);
}

// Without a kink at its ends; what falls is one less what rises.
double smoothStep(double t) { return t * t * (3 - 2 * t); }

// How much a range takes of a hue, 0 ... 1. Angles out of order are drawn up to those before them.
double weightOf(const QPXHueRange& range, int32_t hue) {
  const int32_t fullFrom = degreesOn(range.from, range.fullFrom);
  const int32_t fullTo = std::max(degreesOn(range.from, range.fullTo), fullFrom);
  const int32_t to = std::max(degreesOn(range.from, range.to), fullTo);
  const int32_t at = degreesOn(range.from, hue);
  if (at < fullFrom) return smoothStep(static_cast<double>(at) / fullFrom);
  if (at <= fullTo) return 1.0;
  return at < to ? smoothStep(static_cast<double>(to - at) / (to - fullTo)) : 0.0;
}

// Fully for 30 degrees about its colour, fading within 30 to both sides.
QPXHueRange placed(QPXHueRange range, int32_t center) {
  if (range.from != 0 || range.fullFrom != 0 || range.fullTo != 0 || range.to != 0) return range;
  range.from = center - 45;
  range.fullFrom = center - 15;
  range.fullTo = center + 15;
  range.to = center + 45;
  return range;
}

int32_t rounded(double value) { return static_cast<int32_t>(std::floor(value + 0.5)); }

// The largest channel is where light goes up to, so that brightness takes the other sign there.
void fillChanges(const QPXHsbAdjustParam& param, simd::HueChanges& changes) {
  const QPXHueRange ranges[] = {placed(param.red, 0),     placed(param.yellow, 60),
                                placed(param.green, 120), placed(param.cyan, 180),
                                placed(param.blue, 240),  placed(param.magenta, 300)};
  constexpr double kPercent = 1024.0 / 100.0;
  constexpr double kRichest = 0.6;  // two and a half times the chroma; beyond, greys catch fire
  for (int32_t degree = 0; degree < simd::kDegrees; ++degree) {
    double hue = param.hue, saturation = param.saturation, brightness = param.brightness;
    for (const QPXHueRange& range : ranges) {
      const double weight = weightOf(range, degree);
      hue += weight * range.hue;
      saturation += weight * range.saturation;
      brightness += weight * range.brightness;
    }
    const double spread = saturation > 0 ? kRichest * saturation : saturation;
    changes.set(degree, rounded(-brightness * kPercent), rounded(spread * kPercent), rounded(hue));
  }
}

void clampChange(int32_t& hue, int32_t& saturation, int32_t& brightness) {
  hue = std::clamp(hue, -180, 180);
  saturation = std::clamp(saturation, -100, 100);
  brightness = std::clamp(brightness, -100, 100);
}

void adjust(const Stage& stage, PixelRun& run) { adjustHsb(run, blockOf<HsbTables>(stage)); }

}  // namespace

HsbTables hsbTables(const QPXHsbAdjustParam& param) {
  HsbTables tables;
  tables.input = contrastTable(param.inputBrightness, param.inputContrast);
  tables.keepsInput = param.inputBrightness == 0 && param.inputContrast == 0;
  fillChanges(param, tables.changes);
  return tables;
}

void adjustHsb(PixelRun& run, const HsbTables& tables) {
  if (!tables.keepsInput) {
    const simd::Rows& rows = simd::rows();
    for (uint8_t* row : {run.r, run.g, run.b}) {
      rows.lookup(row, row, run.count, tables.input.data());
    }
  }
  simd::hueRows().changeHues(run.r, run.g, run.b, run.count, tables.changes);
}

int32_t setUpHsbAdjust(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXHsbAdjustParam>(stage);
  clampChange(param.hue, param.saturation, param.brightness);
  for (QPXHueRange* range :
       {&param.red, &param.yellow, &param.green, &param.cyan, &param.blue, &param.magenta}) {
    clampChange(range->hue, range->saturation, range->brightness);
  }
  param.inputBrightness = std::clamp(param.inputBrightness, -100, 100);
  param.inputContrast = std::clamp(param.inputContrast, -100, 100);
  auto* tables = makeBlock<HsbTables>(stage);
  if (tables == nullptr) return QPX_NO_MEMORY;
  *tables = hsbTables(param);
  return QPX_OK;
}

int32_t hsbAdjust(const Frame& frame) { return runRecipe(frame, adjust); }

}  // namespace qpx

using namespace qpx;

int32_t HSBAdjust_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callOnFrameOf(kHsbAdjust, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? hsbAdjust(frame) : int32_t{QPX_OK};
  });
}
