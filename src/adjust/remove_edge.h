// Coloured fringes along edges, faded to grey.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

inline constexpr uint32_t kRemoveEdge = 0x9B00;

// Pixels from an edge within which fringes are looked for.
inline constexpr int32_t kFringeReach = 4;

int32_t setUpRemoveEdge(Stage& stage, QPXBand& band);
int32_t removeEdge(const Frame& frame);

}  // namespace qpx
