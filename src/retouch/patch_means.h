// How light patches are.
#pragma once

#include "retouch/level.h"

namespace qpx::retouch {

// means[place(x, y)] is the mean of all samples in the square around each pixel that has a whole
// one in the picture; other entries are not written. `columns` is a row of scratch.
void patchMeans(const Level& level, int32_t radius, int32_t* columns, uint8_t* means);

}  // namespace qpx::retouch
