// Looks whose heart is a grey: black and white with grain, sepia, tinted and textured monochromes.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kMonochromeFamily;

}  // namespace qpx
