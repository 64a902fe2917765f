// The run of qpx convert over one input.
#pragma once

#include "convert_plan.h"

namespace qpx::tool {

// Throws RunError. Where frames fail on the way, the whole ones before are written.
void runConversion(const ConvertArguments& arguments, const ConvertPlan& plan);

}  // namespace qpx::tool
