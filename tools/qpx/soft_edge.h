// Transparency from a hard mask.
#pragma once

#include <cstdint>

#include "picture.h"

namespace qpx::tool {

// How far an edge is softened to each side in a picture of this size.
int32_t defaultReach(int32_t width, int32_t height);

// The picture as RGBA, where `mask` (one channel of 0 and 255, of the same size) is 0 transparent.
// Along the mask's edge, `reach` pixels to each side and more, pixels are taken for mixes of the
// colours on both sides: how much of the object is in them is their alpha, and their colour is that
// of the object alone, so that nothing of the old background shows on a new one. A reach of 0 keeps
// the mask as it is. An alpha that the picture has already stays in.
Picture cutOut(const Picture& picture, const Picture& mask, int32_t reach);

}  // namespace qpx::tool
