// Slide film: a curve, the cross-talk of its dyes, and an overlay of light by luma.
#include <algorithm>

#include "filters/curves/film.h"
#include "filters/curves/light_looks.h"
#include "simd/rows.h"

namespace qpx {
namespace {

struct FilmBlock {
  ToneTable tone;
  ChannelTables light;  // by luma: what the channel is overlaid with
  DyeMatrix dyes;
};

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
  FilmRun exposed;
  rows.lookup(run.r, exposed.r, run.count, block.tone.data());
  rows.lookup(run.g, exposed.g, run.count, block.tone.data());
  rows.lookup(run.b, exposed.b, run.count, block.tone.data());
  developFilm(exposed, block.dyes, block.light, run);
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
  block->dyes = dyeMatrix(param.greenGain, param.blueGain);
  int32_t result = drawTone(param, block->tone);
  if (result == QPX_OK) result = drawCurves(kLight, block->light);
  if (result == QPX_OK) warm(param.warmth, block->light);
  return result;
}

constinit const Look kReversalFilm = {reversalFilm, hasBlock<FilmBlock>};

}  // namespace qpx
