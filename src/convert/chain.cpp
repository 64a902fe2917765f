#include <qpx/convert.h>
#include <qpx/convert_kernels.h>
#include <qpx/convert_wide.h>

#include "convert/kernels/frames.h"

namespace {

// Tried in this order. The last one never declines.
constexpr ConvFrameFunction kFrames[] = {
    PUZUMPE_ALL,
    ANY_ANY_C_FAST_R8G8B8,
    YUV2YUV_Fast,
    ANY_ANY_C_FAST_R5G6B5,
    I420_To_I422_Fast,
    YUV_YUV_C_FAST,
    YUV_RGB32_C_FAST,
    YUYV_RGB32_FAST,
    ANY_ANY_C_FAST_RGB32,
    Gray2Gray_C_FAST,
    qpx::convert::convertByRows,
    ANY_ANY_C_SLOW,
};

}  // namespace

int32_t ANY_ANY_Bilinear_No_Table(const MRect* rect, const int32_t* dstPitch,
                                  const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                  const uint8_t* const* srcPlanes, const ConvRecord* record) {
  int32_t result = QPX_UNSUPPORTED;
  for (const ConvFrameFunction frame : kFrames) {
    result = frame(rect, dstPitch, srcPitch, dstPlanes, srcPlanes, record);
    if (result != QPX_UNSUPPORTED) break;
  }
  return result;
}
