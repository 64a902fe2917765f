// Light added to the picture, double exposures, shifted channels and lens faults.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kLightFamily;

}  // namespace qpx
