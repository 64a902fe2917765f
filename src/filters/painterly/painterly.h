// Effects that turn a photograph into a drawing or a painting.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kPainterlyFamily;

}  // namespace qpx
