// What the pipeline itself does to planes that an effect leaves alone.
#pragma once

#include "engine/stage.h"

namespace qpx {

// Copies or fills the planes of `out` as the band's planeFlags say.
void applyPlaneFlags(const Stage& head, const MRect& out);

}  // namespace qpx
