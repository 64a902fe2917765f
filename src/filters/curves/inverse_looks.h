// Looks that undo another one, through tables that turn its own round. RGB and YUV alike.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

int32_t setUpUndoFleetingTime(Stage& stage, QPXBand& band);
int32_t setUpUndoSoftPink(Stage& stage, QPXBand& band);

// Kernels for all formats. They return 0, or 2 on a stage that lacks the look's texture.
int32_t undoNewReversal(const Frame& frame);
int32_t undoFleetingTime(const Frame& frame);
int32_t undoSoftPink(const Frame& frame);
int32_t undoRixi(const Frame& frame);

}  // namespace qpx
