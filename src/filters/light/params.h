// The parameter records of light and lens effects, described for hosts and tools.
#pragma once

#include "engine/param_info.h"

namespace qpx::light {

static_assert(sizeof(QPXFringeRemovalParam) == 12);
inline constexpr QPXParamInfo kFringeRemovalParams[] = {
    intParam("radius", "Distance over which an edge is looked for.", "pixels",
             offsetof(QPXFringeRemovalParam, radius), 0, 64, 2),
    intParam("strength", "How far the channel that stands out is pulled back.", "percent",
             offsetof(QPXFringeRemovalParam, strength), 0, 100, 100)};

static_assert(sizeof(QPXLightLeakParam) == 12);
inline constexpr QPXParamInfo kLightLeakParams[] = {
    intParam("style", "Colours of the leak.", "", offsetof(QPXLightLeakParam, style), 0, 4, 1),
    intParam("angle", "Turns the leak.", "degrees", offsetof(QPXLightLeakParam, angle), -360, 360,
             0)};

}  // namespace qpx::light
