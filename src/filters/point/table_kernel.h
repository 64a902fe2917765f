// The kernels behind every effect that is a tone table.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

// Applies the stage's one table or three to red, green and blue, in every format. Alpha and other
// bits outside the colour fields are copied. A grey picture goes through the luma of the three
// tables.
int32_t applyStageTables(const Frame& frame);

// Notes in Stage.mergedTraits that setup leaves for applyStageTableToLuma.
enum PointTraits : uint32_t {
  kChangesHues = 1,  // an effect that is not the same on luma as on red, green and blue took part
  kComplements = 2   // an odd number of negatives took part
};

// For planar and semi-planar YUV: the table works on luma alone and chroma is copied, or mirrored
// where the stage makes a negative, whose colours are the complements. A stage that other effects
// share goes through RGB.
int32_t applyStageTableToLuma(const Frame& frame);

}  // namespace qpx
