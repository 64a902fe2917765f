// Adjustments by numbers from the caller rather than by a fixed look.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kHueFamily;        // hue, saturation, lightness
extern const EffectFamily kSelectiveFamily;  // selective colour
extern const EffectFamily kToneFamily;       // exposure, levels, curves, balance
extern const EffectFamily kSharpenFamily;    // sharpening, clarity, blur
extern const EffectFamily kSkinFamily;       // complexion

}  // namespace qpx
