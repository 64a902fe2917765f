// A picture made by code, for judging effects by.
#pragma once

#include <cstdint>

#include "picture.h"
#include "progress.h"

namespace qpx::tool {

// A landscape with sun, clouds and leaves, three people, and a panel with a colour chart, a grey
// ramp and fine lines. The same size and seed give the same bytes on every machine: only operations
// that are rounded exactly are used. Throws RunError for a size that cannot be held.
// `progress` advances by one step for each row.
Picture drawSampleScene(int32_t width, int32_t height, uint32_t seed, Progress& progress);

}  // namespace qpx::tool
