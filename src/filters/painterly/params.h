// The parameter records of drawings and paintings, described for hosts and tools.
#pragma once

#include "engine/param_info.h"

namespace qpx::painterly {

static_assert(sizeof(QPXCrayonParam) == 4);
inline constexpr QPXParamInfo kCrayonParams[] = {
    intParam("strokeSize", "Width of the strokes.", "pixels", offsetof(QPXCrayonParam, strokeSize),
             1, 64, 2)};

static_assert(sizeof(QPXOilPaintingParam) == 4);
inline constexpr QPXParamInfo kOilPaintingParams[] = {
    intParam("amount", "How thick the paint is.", "percent", offsetof(QPXOilPaintingParam, amount),
             0, 150, 100)};

}  // namespace qpx::painterly
