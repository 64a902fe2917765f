// The parameter records of the lenses and kaleidoscopes, described for hosts and tools.
#pragma once

#include "engine/param_info.h"

namespace qpx::mirror {

static_assert(sizeof(QPXKaleidoscopeParam) == 20);
static_assert(offsetof(QPXKaleidoscopeParam, mode) == 8);
inline constexpr QPXParamInfo kKaleidoscopeParams[] = {
    intParam("angle", "Turns the mirrors; 120 degrees are a full turn.", "degrees",
             offsetof(QPXKaleidoscopeParam, angle), -360, 360, 0),
    intParam("size", "From the centre of the triangle to its corners.", "pixels",
             offsetof(QPXKaleidoscopeParam, size), 0, 65535, 150),
    intParam("mode", "1: a triangle too small to be seen keeps the tile before it.", "",
             offsetof(QPXKaleidoscopeParam, mode), 0, 1, 0),
    intParam("centerX", "Centre of the triangle, from the left.", "pixels",
             offsetof(QPXKaleidoscopeParam, centerX), 0, 65535, 200),
    intParam("centerY", "Centre of the triangle, from the top.", "pixels",
             offsetof(QPXKaleidoscopeParam, centerY), 0, 65535, 200)};

static_assert(sizeof(QPXFishEyeParam) == 4);
inline constexpr QPXParamInfo kFishEyeParams[] = {
    intParam("strength", "How far the picture bends.", "percent",
             offsetof(QPXFishEyeParam, strength), 0, 150, 60)};

static_assert(sizeof(QPXMagnifierParam) == 12);
inline constexpr QPXParamInfo kMagnifierParams[] = {
    intParam("centerX", "Centre of the lens, from the left.", "pixels",
             offsetof(QPXMagnifierParam, centerX), 0, 65535, 200),
    intParam("centerY", "Centre of the lens, from the top.", "pixels",
             offsetof(QPXMagnifierParam, centerY), 0, 65535, 200),
    intParam("radius", "Radius of the lens.", "pixels", offsetof(QPXMagnifierParam, radius), 0,
             65535, 150)};

}  // namespace qpx::mirror
