// Two tools of the layered looks that hosts also know as effects: dark corner and feather.
#pragma once

#include <cstddef>

#include "engine/effect_row.h"

namespace qpx {

int32_t setUpDarkCorner(Stage& stage, QPXBand& band);
int32_t setUpFeather(Stage& stage, QPXBand& band);
int32_t feather(const Frame& frame);

inline constexpr QPXParamInfo kDarkCornerParams[] = {
    {"centerX", "Centre across the picture; below 0 the middle.", "pixels", QPX_PARAM_INT32,
     static_cast<int32_t>(offsetof(QPXDarkCornerParam, centerX)), -1, 65535, -1},
    {"centerY", "Centre down the picture; below 0 the middle.", "pixels", QPX_PARAM_INT32,
     static_cast<int32_t>(offsetof(QPXDarkCornerParam, centerY)), -1, 65535, -1},
    {"radius", "How far from the centre pictures stay clear.", "percent", QPX_PARAM_INT32,
     static_cast<int32_t>(offsetof(QPXDarkCornerParam, radius)), 0, 100, 25},
    {"intensity", "Below 0 corners darken, above 0 they lighten.", "percent", QPX_PARAM_INT32,
     static_cast<int32_t>(offsetof(QPXDarkCornerParam, intensity)), -100, 100, -80}};

inline constexpr QPXParamInfo kFeatherParams[] = {
    {"radius", "How far the border spreads.", "pixels", QPX_PARAM_INT32,
     static_cast<int32_t>(offsetof(QPXFeatherParam, radius)), 0, 100, 8}};

}  // namespace qpx
