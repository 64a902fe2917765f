// Fills a hole without patches, for pictures that have none to give.
#pragma once

#include "retouch/level.h"

namespace qpx::retouch {

// Pixels take the mean of what is known around them, nearest to the known ones first. `queue` holds
// the pixels of the hole. Without any known pixel the hole stays.
void fillFromSurroundings(const Level& level, MPoint* queue);

}  // namespace qpx::retouch
