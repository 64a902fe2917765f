// Instant film: tone curves, the cross-talk of its dyes and an overlay of light by luma, with
// darkened corners and a paper frame if wanted.
#pragma once

#include "engine/param_info.h"
#include "filters/curves/tone_runs.h"

namespace qpx {

int32_t setUpPolaroid(Stage& stage, QPXBand& band);  // QPXPolaroidParam

extern const Look kPolaroid;

static_assert(sizeof(QPXPolaroidParam) == 24);

inline constexpr QPXParamInfo kPolaroidParams[] = {
    intParam("frameMode", "0: the picture alone; 1: in the film's paper frame.", "",
             offsetof(QPXPolaroidParam, frameMode), 0, 1, 1),
    intParam("vignetteMode", "1: corners of the picture darken.", "",
             offsetof(QPXPolaroidParam, vignetteMode), 0, 1, 1),
    intParam("corners", "How much more than usual the corners darken.", "percent",
             offsetof(QPXPolaroidParam, corners), -100, 100, 0),
    intParam("reach", "How far the darkening reaches towards the centre.", "percent",
             offsetof(QPXPolaroidParam, reach), -100, 100, 0),
    intParam("centerX", "Moves the clear middle right.", "percent of half the width",
             offsetof(QPXPolaroidParam, centerX), -100, 100, 0),
    intParam("centerY", "Moves the clear middle down.", "percent of half the height",
             offsetof(QPXPolaroidParam, centerY), -100, 100, 0)};

}  // namespace qpx
