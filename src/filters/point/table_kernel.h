// The kernels behind every effect that is a tone table.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

// Applies the stage's one table or three to red, green and blue, in every format. Alpha and other
// bits outside the colour fields are copied. A grey picture goes through the luma of the three
// tables.
int32_t applyStageTables(const Frame& frame);

// For planar and semi-planar YUV: a single table works on luma alone and chroma is copied. A table
// that runs downwards makes a negative, whose colours are the complements. Three tables go through
// RGB.
int32_t applyStageTableToLuma(const Frame& frame);

}  // namespace qpx
