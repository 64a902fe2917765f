// Effects that know a pixel only by itself: tone tables, two-tone forms, and a second picture or a
// plain colour laid over the source.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

extern const EffectFamily kPointFamily;

}  // namespace qpx
