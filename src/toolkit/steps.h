// What recipes are sequences of: each step changes the colours of a run, never its alpha.
//
//   void A11(const Stage& stage, PixelRun& run) {
//     const float o = opacityOf(stage);
//     screenLayer(run, layer(stage, 0, Placement::coverAnchored), kOpaque, o);
//     screenLayer(run, layer(stage, 1, Placement::coverBottom), kOpaque, o);
//     applyTables(run, tablesOf(stage).multiplied);
//     ...
//   }
//
// Formulas are in simd/blend_math.h under the names given here; what depends on one sample alone
// belongs in a table (solid_tables.h).
#pragma once

#include "simd/blend_math.h"
#include "toolkit/pixel_run.h"
#include "toolkit/solid_tables.h"
#include "toolkit/texture_layer.h"

namespace qpx {

// What a layer covers: all, or as much as its own alpha says.
enum class Coverage { all, alpha };
inline constexpr Coverage kOpaque = Coverage::all;
inline constexpr Coverage kByAlpha = Coverage::alpha;

// The intensity of the shared filter record as an opacity, 0..1.
float opacityOf(const Stage& stage);

// Layer i of the stage's textures, mirrored as its record says.
TextureLayer layer(const Stage& stage, size_t i, Placement placement);

// Texels laid over the run. Loading a layer once serves several steps.
void layTexels(PixelRun& run, Blend blend, const TextureRun& texels, Coverage coverage,
               float opacity);

// Load and lay: mixNormal, laidScreen, laidOverlay, laidSoft, laidMultiply.
void normalLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity);
void screenLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity);
void overlayLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity);
void softLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity);
void multiplyLayer(PixelRun& run, const TextureLayer& layer, Coverage coverage, float opacity);

// blendMultiplyShift, the larger and the smaller of layer and run.
void multiplyShiftLayer(PixelRun& run, const TextureLayer& layer);
void lightenLayer(PixelRun& run, const TextureLayer& layer);
void darkenLayer(PixelRun& run, const TextureLayer& layer);

// Greys of the run's colours, into `grey` (kRunLength bytes).
void lightnessGrey(const PixelRun& run, uint8_t* grey);
void lumaGrey(const PixelRun& run, const LumaWeights& weights, uint8_t* grey);
void hueGrey(const PixelRun& run, const HueWeights<double>& weights, uint8_t* grey);
void chalkBoardGrey(const PixelRun& run, uint8_t* grey);

// The run becomes what tables make of its greys: grey itself, a duotone, a tint.
void setGrey(PixelRun& run, const uint8_t* grey);
void colorizeGrey(PixelRun& run, const uint8_t* grey, const ColorTables& tables);

// ApplyBlackAndWhiteWithTint and ApplyLumaTint of every pixel, through the tables that
// keptTintTables and clampedTintTables make of a tint.
void tintByHues(PixelRun& run, const HueWeights<double>& weights, const ColorTables& tint);
void tintByLuma(PixelRun& run, const ColorTables& tint);

// Channels moved away from the pixel's lightness, or towards it, by amount / 1024 of their
// distance. See moveApart and drawTogether for where they cut; a negative amount turns the way.
void saturate(PixelRun& run, int32_t amount);
void desaturate(PixelRun& run, int32_t amount);

// Terms for each row and column of a picture, whose sum grows towards the corners.
struct FalloffTerms {
  const int32_t* rows;
  const int32_t* columns;
};

// Corners darkened by falloffWeight.
void radialFalloff(PixelRun& run, const FalloffTerms& terms);

}  // namespace qpx
