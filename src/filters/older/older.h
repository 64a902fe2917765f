// The first generation of effects, which hosts know by id only.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kOlderFamily;

}  // namespace qpx
