// The smaller picture and mask that a retouch of a large picture is planned in.
#pragma once

#include <cstdint>

#include "picture.h"

namespace qpx::tool {

// By how much a picture is reduced when nobody says: as far as keeps a retouch quick.
double retouchScale(const Picture& picture);

// Each pixel is the mean of those that the library takes it for.
Picture retouchGuide(const Picture& picture, double scale);

// The mask (one channel) at the guide's size: 255 where any pixel is at least half light, else 0.
Picture retouchMask(const Picture& mask, double scale);

}  // namespace qpx::tool
