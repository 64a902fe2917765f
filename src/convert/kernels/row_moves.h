// Conversions in which samples only change their places: from YUV to YUV, neither turned nor
// resampled nor sent through a table. Whole rows go from memory to memory.
#pragma once

#include "convert/kernels/call.h"
#include "convert/kernels/formats.h"
#include "convert/kernels/walk.h"

namespace qpx::convert::fast {

// Moves the rectangle, or returns false where it takes more than that: then nothing was written.
bool moveRows(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells);

}  // namespace qpx::convert::fast
