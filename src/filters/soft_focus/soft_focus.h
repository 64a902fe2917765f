// Colour looks by inline chains without textures, several with a soft focus.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kSoftFocusFamily;

}  // namespace qpx
