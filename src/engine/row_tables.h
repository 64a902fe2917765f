// Tables of row pointers: what kernels see of a picture.
#pragma once

#include "engine/engine_handle.h"

namespace qpx {

// Points the head's input tables, and those of second input and mask, at the planes of this call.
// Rows outside the picture repeat its edge rows. Tables that still fit are left alone, so that a
// picture fed in many small bands is not walked once for each of them.
void buildInputTables(Stage& head);

// Points the output table rows of `out` so that its first pixel lands on the first of the caller's
// output buffer, at the column of the band.
void buildOutputTables(Stage& head, const MRect& out);

}  // namespace qpx
