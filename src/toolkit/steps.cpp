#include "toolkit/steps.h"

#include <algorithm>
#include <cstring>

#include "simd/blend_rows.h"
#include "toolkit/textures.h"

namespace qpx {
namespace {

simd::BlendRows::Lay rowOf(const simd::BlendRows& rows, Blend blend) {
  switch (blend) {
    case Blend::screen:
      return rows.layScreen;
    case Blend::overlay:
      return rows.layOverlay;
    case Blend::soft:
      return rows.laySoft;
    case Blend::multiply:
      return rows.layMultiply;
    default:
      return rows.layNormal;
  }
}

void loadAndLay(PixelRun& run, Blend blend, const TextureLayer& layer, Coverage coverage,
                float opacity) {
  TextureRun texels;
  layer.load(run.x, run.y, run.count, texels);
  layTexels(run, blend, texels, coverage, opacity);
}

void loadAndPair(PixelRun& run, const TextureLayer& layer, simd::BlendRows::Pair pair) {
  TextureRun texels;
  layer.load(run.x, run.y, run.count, texels);
  pair(texels.r, run.r, run.r, run.count);
  pair(texels.g, run.g, run.g, run.count);
  pair(texels.b, run.b, run.b, run.count);
}

void moveAboutLightness(PixelRun& run, int32_t amount, simd::BlendRows::Move move) {
  alignas(kRunAlignment) uint8_t centre[kRunLength];
  lightnessGrey(run, centre);
  for (uint8_t* channel : {run.r, run.g, run.b}) move(channel, centre, channel, run.count, amount);
}

}  // namespace

float opacityOf(const Stage& stage) {
  return static_cast<float>(std::clamp(record<QPXFilterRecord>(stage).intensity, 0, 100)) / 100.0f;
}

TextureLayer layer(const Stage& stage, size_t i, Placement placement) {
  return TextureLayer(texture(stage, i), stage, placement, mirrorOf(stage));
}

void layTexels(PixelRun& run, Blend blend, const TextureRun& texels, Coverage coverage,
               float opacity) {
  const simd::BlendRows::Lay layRow = rowOf(simd::blendRows(), blend);
  const uint8_t* mask = coverage == Coverage::alpha ? texels.a : nullptr;
  layRow(run.r, texels.r, mask, run.r, run.count, opacity);
  layRow(run.g, texels.g, mask, run.g, run.count, opacity);
  layRow(run.b, texels.b, mask, run.b, run.count, opacity);
}

void normalLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity) {
  loadAndLay(run, Blend::normal, layer, coverage, opacity);
}

void screenLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity) {
  loadAndLay(run, Blend::screen, layer, coverage, opacity);
}

void overlayLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity) {
  loadAndLay(run, Blend::overlay, layer, coverage, opacity);
}

void softLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity) {
  loadAndLay(run, Blend::soft, layer, coverage, opacity);
}

void multiplyLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity) {
  loadAndLay(run, Blend::multiply, layer, coverage, opacity);
}

void multiplyShiftLayer(PixelRun& run, const TextureLayer& layer) {
  loadAndPair(run, layer, simd::blendRows().multiplyShift);
}

void lightenLayer(PixelRun& run, const TextureLayer& layer) {
  loadAndPair(run, layer, simd::blendRows().lighten);
}

void darkenLayer(PixelRun& run, const TextureLayer& layer) {
  loadAndPair(run, layer, simd::blendRows().darken);
}

void lightnessGrey(const PixelRun& run, uint8_t* grey) {
  simd::blendRows().lightness(run.r, run.g, run.b, grey, run.count);
}

void lumaGrey(const PixelRun& run, const LumaWeights& weights, uint8_t* grey) {
  simd::blendRows().weighedLuma(run.r, run.g, run.b, grey, run.count, weights);
}

void hueGrey(const PixelRun& run, const HueWeights<double>& weights, uint8_t* grey) {
  simd::blendRows().hueGrey(run.r, run.g, run.b, grey, run.count, weights);
}

void chalkBoardGrey(const PixelRun& run, uint8_t* grey) {
  simd::blendRows().chalkBoardGrey(run.r, run.g, run.b, grey, run.count);
}

void setGrey(PixelRun& run, const uint8_t* grey) {
  for (uint8_t* channel : {run.r, run.g, run.b}) {
    std::memcpy(channel, grey, static_cast<size_t>(run.count));
  }
}

void colorizeGrey(PixelRun& run, const uint8_t* grey, const ColorTables& tables) {
  const simd::Rows& rows = simd::rows();
  rows.lookup(grey, run.r, run.count, tables.red.data());
  rows.lookup(grey, run.g, run.count, tables.green.data());
  rows.lookup(grey, run.b, run.count, tables.blue.data());
}

void tintByHues(PixelRun& run, const HueWeights<double>& weights, const ColorTables& tint) {
  alignas(kRunAlignment) uint8_t grey[kRunLength];
  hueGrey(run, weights, grey);
  colorizeGrey(run, grey, tint);
}

void tintByLuma(PixelRun& run, const ColorTables& tint) {
  alignas(kRunAlignment) uint8_t grey[kRunLength];
  lumaGrey(run, kTintLuma, grey);
  colorizeGrey(run, grey, tint);
}

void saturate(PixelRun& run, int32_t amount) {
  moveAboutLightness(run, amount, simd::blendRows().moveApart);
}

void desaturate(PixelRun& run, int32_t amount) {
  moveAboutLightness(run, amount, simd::blendRows().drawTogether);
}

void radialFalloff(PixelRun& run, const FalloffTerms& terms) {
  const simd::BlendRows& rows = simd::blendRows();
  alignas(kRunAlignment) uint16_t weights[kRunLength];
  rows.falloffWeights(terms.rows[run.y], terms.columns + run.x, weights, run.count);
  for (uint8_t* channel : {run.r, run.g, run.b}) {
    rows.scaleByFalloff(channel, weights, channel, run.count);
  }
}

}  // namespace qpx
