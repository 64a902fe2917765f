// Whatever depends on one sample and constants, as tables of 256 entries that setup builds once: a
// plain colour laid on by any blend, a curve mixed with what it came from, and chains of these.
//
//   ColorTables toned = chain(solidTables(Blend::multiply, {255, 240, 179}, 0.3f), curves);
//   ... in the recipe: applyTables(run, toned);
#pragma once

#include "toolkit/curve.h"
#include "toolkit/pixel_run.h"
#include "toolkit/tint.h"

namespace qpx {

// How a layer acts on the samples below. At full mask and opacity normal is the layer itself.
enum class Blend { normal, screen, overlay, soft, multiply };

// blend(top, base) through a mask at an opacity: normalPixel, screenPixel4, overlayPixel4,
// softPixel4, multiplyPixel.
uint8_t lay(Blend blend, uint8_t top, uint8_t base, uint8_t mask, float opacity);

// A colour laid over every sample.
ToneTable solidTable(Blend blend, uint8_t top, float opacity);
ColorTables solidTables(Blend blend, const Rgb& top, float opacity);

// What a curve makes of a sample, laid over that sample; `mixTable` by normal.
ToneTable selfTable(Blend blend, const ToneTable& curve, float opacity);
ToneTable mixTable(const ToneTable& curve, float opacity);

// The second after the first.
ToneTable chain(const ToneTable& first, const ToneTable& second);
ColorTables chain(const ColorTables& first, const ColorTables& second);

// The same table for all three channels.
ColorTables forAll(const ToneTable& table);

void applyTable(PixelRun& run, const ToneTable& table);
void applyTables(PixelRun& run, const ColorTables& tables);

}  // namespace qpx
