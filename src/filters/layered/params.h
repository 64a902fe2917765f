// The parameter records of the layered looks, described for hosts and tools.
#pragma once

#include "engine/param_info.h"

namespace qpx::layered {

static_assert(sizeof(QPXMapLookParam) == 4);
inline constexpr QPXParamInfo kMapLookParams[] = {
    intParam("intensity", "How much of the look replaces the source; beyond 100 it is overdone.",
             "percent", offsetof(QPXMapLookParam, intensity), 0, 150, 100)};

}  // namespace qpx::layered
