// The finished look mixed with its untouched source.
#pragma once

#include "engine/effect_row.h"
#include "toolkit/pixel_run.h"

namespace qpx {

// Percent of the look that shows, from the shared filter record: 100 at most, and without a lower
// bound.
int32_t intensityOf(const Stage& stage);

// As a step: the run takes on k percent of itself and the rest of the source.
void mixWithSource(PixelRun& run, const PixelRun& source, int32_t k);

// As a pass over a finished frame, in place in its output. Formats other than 24 and 32-bit RGB are
// left alone, and so is alpha.
void mixFrameWithSource(const Frame& frame, int32_t k);

// A recipe, and behind it the mix by the stage's intensity: one walk over the picture for both.
int32_t runRecipeAtIntensity(const Frame& frame, Recipe recipe);

template <Recipe recipe>
int32_t overRunsAtIntensity(const Frame& frame) {
  return runRecipeAtIntensity(frame, recipe);
}

}  // namespace qpx
