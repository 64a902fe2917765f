// Effects that move pixels or show the picture twice: lenses, mirrors, panes and shards.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kMirrorFamily;

}  // namespace qpx
