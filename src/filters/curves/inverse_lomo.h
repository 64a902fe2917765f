// Warm lomo undone. The look has no formula that turns it round, so that every value of a channel
// is a candidate: it is filtered under the pixel's two texels, and what comes nearest to the
// observed sample was there before. All a candidate's fate depends on are the channel and the two
// texels, so that setup answers the question once for each observed value under each pair of
// texels that the textures hold, and a pixel is a look at a table.
#pragma once

#include <cstdint>

#include "engine/effect_row.h"

namespace qpx {

// What the look is made of; the layout is that of reversal_data, fleet_data3 and lomo_mask2.
struct LomoTables {
  const uint8_t* curves;
  const uint8_t* softLight;
  const uint8_t* mask;
};

int32_t setUpUndoWarmLomo(Stage& stage, QPXBand& band);

// Behind the loading of the two textures: replaces the stage's working block by the answers under
// them. Returns 0, 4, or 2 for textures that are not RGB24 of 256 x 256.
int32_t prepareUndoLomo(Stage& stage, const LomoTables& tables);

// For all formats. Returns 0, or 2 on a stage without the answers.
int32_t undoWarmLomo(const Frame& frame);

}  // namespace qpx
