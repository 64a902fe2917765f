// The last specialised frame of the chain.
#pragma once

#include <qpx/convert_record.h>
#include <qpx/types.h>

namespace qpx::convert {

// Everything that the row functions do and no named kernel is for, such as RGBA32 to I420. Answers
// as the frames do, and gives the bytes of the general path.
int32_t convertByRows(const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch,
                      uint8_t* const* dstPlanes, const uint8_t* const* srcPlanes,
                      const ConvRecord* record);

}  // namespace qpx::convert
