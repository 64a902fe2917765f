// Effects whose output is turned against the input.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kRotatedFamily;

}  // namespace qpx
