// Colour fringes along edges, faded to grey by their hue.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

inline constexpr uint32_t kRemoveEdge = 0x9B00;

int32_t setUpRemoveEdge(Stage& stage, QPXBand& band);
int32_t removeEdge(const Frame& frame);

}  // namespace qpx
