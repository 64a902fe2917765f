// Saturation in HSL: a step for recipes too.
#pragma once

#include "toolkit/pixel_run.h"

namespace qpx {

// `percent` -100 ... 100, beyond which it counts as its limit; above 0 it counts half.
int32_t saturationAmount(int32_t percent);

// In place, by an amount as above.
void saturateHsl(PixelRun& run, int32_t amount);

}  // namespace qpx
