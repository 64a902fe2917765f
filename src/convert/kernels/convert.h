// Any conversion between formats of formats.h, a run of a row at a time.
//
// The loop over a rectangle is the same for all of them: bands of rows, runs of columns, and in
// each row a fetch, a conversion and a store that know nothing of orientation. Turning and
// mirroring are a matter of how finished rows leave, which is lane.h.
#pragma once

#include "convert/kernels/call.h"
#include "convert/kernels/formats.h"

namespace qpx::convert::fast {

// The order in which 16-bit pixels pass on what their fields cut off.
enum class Dither {
  byRecord,  // if the record asks for it and the source is YUV: row by row
  none,
  cells,   // two rows at a time, the four pixels of each cell of 2x2 in turn; from YUV
  pixels,  // row by row, from RGB as well
};

// Converts the rectangle. False, with nothing done, if a plane is missing, or if the record's
// formats or tables do not make up a conversion that is known here.
bool convert(const Call& call, Dither dither = Dither::byRecord);

// Whether it would.
bool canConvert(const ConvRecord& record);

}  // namespace qpx::convert::fast
