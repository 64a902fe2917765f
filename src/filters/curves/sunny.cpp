// Sunlight: warm curves, then highlights that glow and shadows that cool, each channel by luma.

#include "filters/curves/light_looks.h"
#include "filters/curves/look_block.h"
#include "simd/tone_rows.h"
#include "toolkit/steps.h"

namespace qpx {
namespace {

constexpr LumaWeights kLumaWeights = {64, 160, 32};

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
  alignas(kRunAlignment) uint8_t luma[kRunLength], light[kRunLength], up[kRunLength],
      down[kRunLength];
  applyTables(run, block.tone);
  lumaGrey(run, kLumaWeights, luma);
  const auto layLight = [&](uint8_t* channel, const ToneTable& table) {
    rows.lookup(luma, light, run.count, table.data());
    rows.lookup(channel, up, run.count, block.up.data());
    rows.lookup(channel, down, run.count, block.down.data());
    simd::toneRows().lean(channel, light, up, down, channel, run.count);
  };
  layLight(run.r, block.light.red);
  layLight(run.g, block.light.green);
  layLight(run.b, block.light.blue);
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
