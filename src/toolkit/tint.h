// Colours of a tint's hue and chroma at a given luma.
#pragma once

#include <cstdint>

#include "toolkit/curve.h"

namespace qpx {

struct Rgb {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};

// Results before they are made bytes: they can leave 0..255 by a little.
struct TintedColor {
  int32_t red;
  int32_t green;
  int32_t blue;
};

// The tint's colour of luma `grey`, by kTintLuma.
TintedColor tintedGrey(int32_t grey, const Rgb& tint);

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
