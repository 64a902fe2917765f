// Slide film: a curve, the cross-talk of its dyes, and an overlay of light by luma.
#include <cmath>

#include "filters/curves/light_looks.h"
#include "filters/curves/look_block.h"
#include "simd/tone_rows.h"
#include "toolkit/steps.h"

namespace qpx {
namespace {

constexpr LumaWeights kLumaWeights = {64, 160, 32};
constexpr int32_t kUsualGain = 234;

struct FilmBlock {
  ToneTable tone;
  ChannelTables light;  // by luma: what the channel is overlaid with
  int32_t dyes[3][4];   // colour matrix in 8 fractional bits, laid out for simd::Rows
};

constexpr int32_t kToSixteenBits = 256;

// Rows are red, green and blue of the result, columns those of the source, then the offset. The
// gains of green and blue are the film's two strengths.
void mixDyes(const QPXReversalFilmParam& param, int32_t (&dyes)[3][4]) {
  const int32_t matrix[3][4] = {
      {311, -56, 10, 2550}, {45, param.greenGain, -71, 3825}, {-15, 10, param.blueGain, 2550}};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      dyes[row][column] = matrix[row][column] * kToSixteenBits;
    }
  }
}

constexpr CurvePoint kContrast[] = {{0, 0}, {64, 52}, {128, 130}, {192, 208}, {255, 255}};

// Green is given back what the dyes take from it; shadows turn cool, lights warm.
constexpr ChannelCurves kLight = {{{0, 100}, {64, 112}, {128, 126}, {192, 122}, {255, 104}},
                                  {{0, 84}, {64, 118}, {128, 138}, {192, 176}, {255, 254}},
                                  {{0, 156}, {64, 144}, {128, 138}, {192, 128}, {255, 96}}};

// More or less light as if multiplied in front of a shoulder: the odds of a tone are multiplied.
int32_t exposed(int32_t sample, int32_t exposure) {
  const int32_t rise = 100 + std::max(exposure, 0);
  const int32_t fall = 100 - std::min(exposure, 0);
  const int32_t lit = rise * sample;
  const int32_t sum = lit + fall * (255 - sample);
  return (2 * 255 * lit + sum) / (2 * sum);
}

int32_t drawTone(const QPXReversalFilmParam& param, ToneTable& tone) {
  ToneTable curve;
  const int32_t result = drawCurve(kContrast, curve);
  if (result != QPX_OK) return result;
  tone = tabulate([&](int32_t i) {
    const int32_t light = exposed(i, param.exposure);
    const int32_t lean = curve[static_cast<size_t>(light)] - light;
    return light + lean * (100 + param.contrast) / 100;
  });
  return QPX_OK;
}

void warm(int32_t warmth, ChannelTables& light) {
  const auto shifted = [](ToneTable& table, int32_t shift) {
    table = tabulate([&](int32_t i) { return table[static_cast<size_t>(i)] + shift; });
  };
  shifted(light.red, warmth * 24 / 100);
  shifted(light.blue, -warmth * 40 / 100);
}

void reversalFilm(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<FilmBlock>(stage);
  const simd::Rows& rows = simd::rows();
  const simd::ToneRows& toneRows = simd::toneRows();
  alignas(kRunAlignment) uint8_t r[kRunLength], g[kRunLength], b[kRunLength], luma[kRunLength],
      light[kRunLength];
  rows.lookup(run.r, r, run.count, block.tone.data());
  rows.lookup(run.g, g, run.count, block.tone.data());
  rows.lookup(run.b, b, run.count, block.tone.data());
  rows.weightedSum(r, g, b, run.r, run.count, block.dyes[0]);
  rows.weightedSum(r, g, b, run.g, run.count, block.dyes[1]);
  rows.weightedSum(r, g, b, run.b, run.count, block.dyes[2]);
  lumaGrey(run, kLumaWeights, luma);
  const auto layLight = [&](uint8_t* channel, const ToneTable& table) {
    rows.lookup(luma, light, run.count, table.data());
    toneRows.overlay(channel, light, channel, run.count);
  };
  layLight(run.r, block.light.red);
  layLight(run.g, block.light.green);
  layLight(run.b, block.light.blue);
}

int32_t clampGain(int32_t gain) { return gain == 0 ? kUsualGain : std::clamp(gain, 128, 384); }

}  // namespace

int32_t setUpReversalFilm(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXReversalFilmParam>(stage);
  param.greenGain = clampGain(param.greenGain);
  param.blueGain = clampGain(param.blueGain);
  param.exposure = std::clamp(param.exposure, -100, 100);
  param.contrast = std::clamp(param.contrast, -100, 100);
  param.warmth = std::clamp(param.warmth, -100, 100);
  auto* block = makeBlock<FilmBlock>(stage);
  if (block == nullptr) return QPX_NO_MEMORY;
  mixDyes(param, block->dyes);
  int32_t result = drawTone(param, block->tone);
  if (result == QPX_OK) result = drawCurves(kLight, block->light);
  if (result == QPX_OK) warm(param.warmth, block->light);
  return result;
}

constinit const Look kReversalFilm = {reversalFilm, hasBlock<FilmBlock>};

}  // namespace qpx
