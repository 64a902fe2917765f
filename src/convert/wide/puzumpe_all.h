// Which wide kernel a record gets, if any.
#pragma once

#include <qpx/convert_record.h>

namespace qpx::convert::wide {

// Whether there are rectangles that a wide kernel would convert, by its own arithmetic.
bool mayBeWide(const ConvRecord& record);

}  // namespace qpx::convert::wide
