#include "filters/curves/toned_looks.h"

#include <cmath>

#include "filters/curves/look_block.h"
#include "simd/tone_rows.h"
#include "toolkit/steps.h"

namespace qpx {
namespace {

void sepia(const Stage&, PixelRun& run) {
  simd::toneRows().sortToSepia(run.r, run.g, run.b, run.count);
}

void singleColor(const Stage& stage, PixelRun& run) {
  alignas(kRunAlignment) uint8_t grey[kRunLength];
  lumaGrey(run, kLooksLuma, grey);
  colorizeGrey(run, grey, blockOf<ChannelTables>(stage));
}

void blackWhite2(const Stage& stage, PixelRun& run) {
  alignas(kRunAlignment) uint8_t grey[kRunLength];
  lumaGrey(run, kLooksLuma, grey);
  simd::rows().lookup(grey, grey, run.count, blockOf<ToneTable>(stage).data());
  setGrey(run, grey);
}

void throughTables(const Stage& stage, PixelRun& run) {
  applyTables(run, blockOf<ChannelTables>(stage));
}

void fineFood(const Stage& stage, PixelRun& run) {
  throughTables(stage, run);
  simd::toneRows().enrich(run.r, run.g, run.b, run.count);
}

// Prussian blue, what a record that chooses no colour gets.
constexpr uint8_t kHouseColor[3] = {48, 98, 144};

// How much of the colour a grey takes, 0..1: all of it in the middle, at the ends the shares that
// the record gives, in one smooth curve.
double colorShare(double grey, const QPXSingleColorParam& param) {
  const double distance = 2.0 * grey - 1.0;
  const double end = (grey < 0.5 ? param.shadows : param.highlights) / 100.0;
  return 1.0 - (1.0 - end) * distance * distance;
}

// An S about mid grey: at full contrast tones of a quarter fall by a quarter of the way to black.
double contrasted(double grey, double contrast) {
  return grey + contrast * 2.0 * grey * (1.0 - grey) * (grey - 0.5) / 1.5;
}

// Channels keep their distances from the colour's own luma, so that luma stays that of the grey as
// long as no channel leaves its range.
ToneTable toningTable(int32_t channel, double luma, const QPXSingleColorParam& param) {
  const double strength = (100 - param.fade) / 100.0;
  return tabulate([&](int32_t i) {
    const double grey = contrasted(i / 255.0, param.contrast / 100.0);
    const double lean = (channel - luma) * colorShare(grey, param) * strength;
    return static_cast<int32_t>(std::floor(255.0 * grey + lean + 0.5));
  });
}

// Tone curve that keeps black and white: the odds of a tone, x / (255 - x), are multiplied by
// rise / fall. One over the other at -100 is what they are at 100.
ToneTable oddsTable(int32_t rise, int32_t fall) {
  return tabulate([&](int32_t i) {
    const int64_t lit = int64_t{rise} * i;
    const int64_t sum = lit + int64_t{fall} * (255 - i);
    return (2 * 255 * lit + sum) / (2 * sum);
  });
}

constexpr CurvePoint kBlackWhiteCurve[] = {{0, 3}, {56, 38}, {128, 134}, {204, 221}, {255, 253}};

// Lit from the window: midtones lifted, lights warm, greens of herbs kept.
constexpr ChannelCurves kFineFoodCurves = {{{0, 0}, {64, 77}, {128, 153}, {192, 218}, {255, 255}},
                                           {{0, 0}, {64, 71}, {128, 144}, {192, 211}, {255, 254}},
                                           {{0, 0}, {64, 61}, {128, 129}, {192, 200}, {255, 248}}};

}  // namespace

int32_t setUpSingleColor(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXSingleColorParam>(stage);
  param.fade = std::min<uint8_t>(param.fade, 100);
  param.shadows = std::min<uint8_t>(param.shadows, 100);
  param.highlights = std::min<uint8_t>(param.highlights, 100);
  param.contrast = std::min<uint8_t>(param.contrast, 100);
  const bool chosen = (param.red | param.green | param.blue) != 0;
  const uint8_t own[3] = {param.red, param.green, param.blue};
  const uint8_t* color = chosen ? own : kHouseColor;
  auto* tone = makeBlock<ChannelTables>(stage);
  if (tone == nullptr) return QPX_NO_MEMORY;
  const double luma =
      (kLooksLuma.red * color[0] + kLooksLuma.green * color[1] + kLooksLuma.blue * color[2]) /
      256.0;
  tone->red = toningTable(color[0], luma, param);
  tone->green = toningTable(color[1], luma, param);
  tone->blue = toningTable(color[2], luma, param);
  return QPX_OK;
}

int32_t setUpCurveBrightness(Stage& stage, QPXBand&) {
  int32_t& brightness = editRecord<QPXCurveBrightnessParam>(stage).brightness;
  brightness = std::clamp(brightness, -100, 100);
  auto* tone = makeBlock<ChannelTables>(stage);
  if (tone == nullptr) return QPX_NO_MEMORY;
  tone->red = oddsTable(100 + 2 * std::max(brightness, 0), 100 - 2 * std::min(brightness, 0));
  tone->green = tone->blue = tone->red;
  return QPX_OK;
}

int32_t setUpBlackWhite2(Stage& stage, QPXBand&) {
  auto* tone = makeBlock<ToneTable>(stage);
  return tone == nullptr ? int32_t{QPX_NO_MEMORY} : drawCurve(kBlackWhiteCurve, *tone);
}

int32_t setUpFineFood(Stage& stage, QPXBand&) {
  auto* tone = makeBlock<ChannelTables>(stage);
  return tone == nullptr ? int32_t{QPX_NO_MEMORY} : drawCurves(kFineFoodCurves, *tone);
}

constinit const Look kSepia = {sepia};
constinit const Look kSingleColor = {singleColor, hasBlock<ChannelTables>};
constinit const Look kCurveBrightness = {throughTables, hasBlock<ChannelTables>};
constinit const Look kBlackWhite2 = {blackWhite2, hasBlock<ToneTable>};
constinit const Look kFineFood = {fineFood, hasBlock<ChannelTables>};

}  // namespace qpx
