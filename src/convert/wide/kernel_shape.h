// Wide kernels all take the same arguments: the exported name, and the function that does it.
#pragma once

#include <qpx/convert_wide.h>

#include "convert/wide/wide_call.h"

// NOLINTBEGIN(bugprone-macro-parentheses)
#define QPX_WIDE_KERNEL(name, work)                                              \
  void name(const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch, \
            uint8_t* const* dstPlanes, const uint8_t* const* srcPlanes,          \
            const ConvRecord* record) {                                          \
    const qpx::convert::wide::WideCall call = {rect,      dstPitch,  srcPitch,   \
                                               dstPlanes, srcPlanes, record};    \
    if (call.isComplete()) work(call);                                           \
  }
// NOLINTEND(bugprone-macro-parentheses)
