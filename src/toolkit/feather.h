// Gaussian feathering of a mask of 8 bits.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

// Feathers the frame's rectangle by itself: what lies outside it does not count. A radius of 0
// copies. Keeps its float plane in the stage's second working block for the next call. Returns 0, 2
// for another format than grey, or 4 with nothing written.
int32_t featherMask(const Frame& frame, int32_t radius);

}  // namespace qpx
