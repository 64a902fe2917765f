// Colours of a tint's hue and chroma at a given luma.
#pragma once

#include <cstdint>

#include "simd/tint_math.h"
#include "toolkit/curve.h"

namespace qpx {

// What a tint makes of every grey. ApplyLumaTint clamps its results, ApplyBlackAndWhiteWithTint
// keeps their low eight bits.
struct ColorTables {
  ToneTable red;
  ToneTable green;
  ToneTable blue;
};

ColorTables clampedTintTables(const Rgb& tint);
ColorTables keptTintTables(const Rgb& tint);

}  // namespace qpx
