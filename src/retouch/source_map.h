// Where patches may come from.
#pragma once

#include "retouch/level.h"

namespace qpx::retouch {

// Marks with kSource the pixel `anchor` of every patch of this size that lies in the picture and
// has no pixel but known ones. `clear` is a row of scratch. Returns whether there is one.
bool markSources(const Level& level, int32_t patchWidth, int32_t patchHeight, MPoint anchor,
                 int32_t* clear);

}  // namespace qpx::retouch
