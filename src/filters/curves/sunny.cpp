// Sunlight: warm curves, then highlights that glow and shadows that cool, each channel by luma.
#include <cmath>

#include "filters/curves/light_looks.h"
#include "filters/curves/look_block.h"
#include "simd/tone_rows.h"

namespace qpx {
namespace {

constexpr simd::GreyWeights kLumaWeights = {64, 160, 32};

struct SunnyBlock {
  ChannelTables tone;
  ChannelTables light;  // by luma: above 128 a channel is lifted, below it is lowered
  ToneTable up;         // by sample: the most that lifting adds and lowering takes away
  ToneTable down;
};

constexpr ChannelCurves kTone = {{{0, 4}, {64, 74}, {128, 145}, {192, 210}, {255, 255}},
                                 {{0, 2}, {64, 68}, {128, 136}, {192, 203}, {255, 253}},
                                 {{0, 0}, {64, 57}, {128, 119}, {192, 188}, {255, 246}}};

constexpr ChannelCurves kLight = {{{0, 110}, {64, 120}, {128, 140}, {192, 160}, {255, 166}},
                                  {{0, 110}, {64, 119}, {128, 134}, {192, 150}, {255, 156}},
                                  {{0, 118}, {64, 119}, {128, 124}, {192, 132}, {255, 138}}};

// Room to both ends, at most half way up or down: black and white stay, and tones keep their order.
constexpr int32_t roomOf(int32_t sample) { return std::min(sample * (255 - sample) / 128, 127); }

void sunny(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<SunnyBlock>(stage);
  const simd::Rows& rows = simd::rows();
  const simd::ToneRows& toneRows = simd::toneRows();
  const struct {
    uint8_t* samples;
    const ToneTable& tone;
    const ToneTable& light;
  } channels[3] = {{run.r, block.tone.red, block.light.red},
                   {run.g, block.tone.green, block.light.green},
                   {run.b, block.tone.blue, block.light.blue}};
  for (const auto& channel : channels) {
    rows.lookup(channel.samples, channel.samples, run.count, channel.tone.data());
  }
  alignas(kRunAlignment) uint8_t luma[kRunLength], light[kRunLength], up[kRunLength],
      down[kRunLength];
  toneRows.weightedGrey(run.r, run.g, run.b, luma, run.count, kLumaWeights);
  for (const auto& channel : channels) {
    rows.lookup(luma, light, run.count, channel.light.data());
    rows.lookup(channel.samples, up, run.count, block.up.data());
    rows.lookup(channel.samples, down, run.count, block.down.data());
    toneRows.lean(channel.samples, light, up, down, channel.samples, run.count);
  }
}

}  // namespace

int32_t setUpSunny(Stage& stage, QPXBand&) {
  auto* block = makeBlock<SunnyBlock>(stage);
  if (block == nullptr) return QPX_NO_MEMORY;
  block->up = tabulate(roomOf);
  block->down = block->up;
  const int32_t result = drawCurves(kTone, block->tone);
  return result == QPX_OK ? drawCurves(kLight, block->light) : result;
}

constinit const Look kSunny = {sunny, hasBlock<SunnyBlock>};

}  // namespace qpx
