// Looks made of layers: tone tables, textures and colours laid on by blends, adjustment passes,
// borders.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kLayeredFamily;

}  // namespace qpx
