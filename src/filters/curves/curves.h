// Tone curves with border and texture, the looks that camera previews have in YUV as well, and the
// kernels that undo some of them.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kCurvesFamily;

}  // namespace qpx
