// Effects that analyse the picture or take the results of an analysis.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kFixFamily;

}  // namespace qpx
