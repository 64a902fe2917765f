#include "adjust/channel_mixer.h"

#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstring>

#include "adjust/tone_effects.h"
#include "simd/hue_rows.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

enum Mode : int32_t { kColor = 0, kGrey = 1 };

// Four terms of 3200 percent of 255, with sixteen fractional bits, are as much as 32 bits hold.
constexpr int32_t kMostPercent = 3200;

void clampRow(QPXMixerRow& row) {
  for (int32_t* percent : {&row.red, &row.green, &row.blue, &row.constant}) {
    *percent = std::clamp(*percent, -kMostPercent, kMostPercent);
  }
}

void mixToGrey(const Stage& stage, PixelRun& run) {
  mixGrey(run, MixerWeights(record<QPXChannelMixerParam>(stage).red));
}

void mixToColor(const Stage& stage, PixelRun& run) {
  const auto& param = record<QPXChannelMixerParam>(stage);
  mixChannels(run, {MixerWeights(param.red), MixerWeights(param.green), MixerWeights(param.blue)});
}

}  // namespace

// A sum with eight fractional bits through a row with sixteen.
MixerWeights::MixerWeights(const QPXMixerRow& percent) {
  const auto scaled = [](int32_t share) { return share * 255 / 100 * 256; };
  weights[0] = scaled(percent.red);
  weights[1] = scaled(percent.green);
  weights[2] = scaled(percent.blue);
  weights[3] = scaled(percent.constant) * 255;
}

void mixGrey(PixelRun& run, const MixerWeights& grey) {
  const size_t count = static_cast<size_t>(run.count);
  simd::rows().weightedSum(run.r, run.g, run.b, run.r, run.count, grey.weights);
  std::memcpy(run.g, run.r, count);
  std::memcpy(run.b, run.r, count);
}

void mixChannels(PixelRun& run, const MixerWeights (&rows)[3]) {
  int32_t sums[3][4];
  for (int row = 0; row < 3; ++row) {
    for (int i = 0; i < 4; ++i) sums[row][i] = rows[row].weights[i] / 256;
  }
  simd::hueRows().mixColors(run.r, run.g, run.b, run.count, sums);
}

int32_t setUpChannelMixer(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXChannelMixerParam>(stage);
  for (QPXMixerRow* row : {&param.red, &param.green, &param.blue}) clampRow(*row);
  return QPX_OK;
}

int32_t channelMixer(const Frame& frame) {
  switch (record<QPXChannelMixerParam>(frame.stage).mode) {
    case kColor:
      return runRecipe(frame, mixToColor);
    case kGrey:
      return runRecipe(frame, mixToGrey);
    default:
      return QPX_BAD_PARAM;
  }
}

}  // namespace qpx

using namespace qpx;

int32_t ChannelMixer_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callOnFrameOf(kChannelMixer, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? channelMixer(frame) : int32_t{QPX_OK};
  });
}
