#include <qpx/convert_kernels.h>

#include "convert/kernels/kernel_call.h"

namespace fast = qpx::convert::fast;
using namespace qpx::convert::fast;  // the sets that the lists are written in

// One function for each line of the lists.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define QPX_DEFINE_KERNEL(name, ...)                                           \
  void name(QPX_CONVERT_KERNEL_ARGUMENTS) {                                    \
    static constexpr fast::Member kMember = {__VA_ARGS__};                     \
    static_cast<void>(chromaShiftX);                                           \
    static_cast<void>(chromaShiftY);                                           \
    fast::runKernel(kMember, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch}, \
                    {firstSy, stepX, stepY}, record);                          \
  }

#define QPX_DEFINE_SUBSAMPLED_KERNEL(name, ...)                                           \
  int32_t name(QPX_CONVERT_SUBSAMPLED_ARGUMENTS) {                                        \
    static constexpr fast::Member kMember = {__VA_ARGS__};                                \
    return fast::runSubsampled(kMember, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch}, \
                               {srcSubX, srcSubY, dstSubX, dstSubY}, record);             \
  }

#define QPX_DEFINE_PAIRED_KERNEL(name, ...)                                                   \
  int32_t name(QPX_CONVERT_PAIRED_ARGUMENTS) {                                                \
    static constexpr fast::Member kMember = {__VA_ARGS__};                                    \
    return fast::runPaired(kMember, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch}, isNV21, \
                           record);                                                           \
  }
// NOLINTEND(bugprone-macro-parentheses)

QPX_RGB24_KERNELS(QPX_DEFINE_KERNEL)
QPX_RGB24_UNPICKED_KERNELS(QPX_DEFINE_KERNEL)
QPX_RGB16_KERNELS(QPX_DEFINE_KERNEL)
QPX_PLANAR_KERNELS(QPX_DEFINE_KERNEL)
QPX_YUYV_KERNELS(QPX_DEFINE_KERNEL)
QPX_NV_LUT_KERNELS(QPX_DEFINE_KERNEL)
QPX_NV_KERNELS(QPX_DEFINE_KERNEL)
QPX_YUV_RGB32_KERNELS(QPX_DEFINE_KERNEL)
QPX_YUYV_RGB32_KERNELS(QPX_DEFINE_KERNEL)
QPX_RGB32_KERNELS(QPX_DEFINE_KERNEL)
QPX_GREY_KERNELS(QPX_DEFINE_KERNEL)
QPX_SUBSAMPLED_KERNELS(QPX_DEFINE_SUBSAMPLED_KERNEL)
QPX_PAIRED_KERNELS(QPX_DEFINE_PAIRED_KERNEL)
