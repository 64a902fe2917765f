// Pictures mixed to half their size: each pixel is the mean of four, which takes neither places nor
// fractions. Whole rows go from memory to memory.
#pragma once

#include "convert/kernels/call.h"
#include "convert/kernels/formats.h"
#include "convert/kernels/walk.h"

namespace qpx::convert::fast {

// Halves the rectangle, not turned: of pixels of 32 bits, grey or planes that keep their format, or
// from halved chroma to RGB. Returns false where it is more than that: then nothing was written.
bool halveRows(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells);

}  // namespace qpx::convert::fast
