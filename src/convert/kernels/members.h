// The named kernels, one line each: what a name takes.
//
//   KERNEL(name, source formats, destination formats, order, resampling, orientations, block,
//          dither)
//
// A frame tries the lines of its list from the top, so that the special stand before the general.
#pragma once

#include <cstdint>

#include "convert/kernels/convert.h"
#include "convert/kernels/formats.h"

namespace qpx::convert::fast {

// Of channels in RGB, of V and U in chroma pairs and planes.
enum class Order : uint8_t { any, same, other };

// Resampling that a kernel does, as sets. All but the first do with steps of exactly 1, too.
using SamplingSet = uint8_t;
inline constexpr SamplingSet kUnit = 1;
inline constexpr SamplingSet kNearest = 2 | kUnit;
inline constexpr SamplingSet kBilinear = 4 | kUnit;
inline constexpr SamplingSet kSampled = kNearest | kBilinear;

// Orientations as sets: bit n stands for the three bits of ConvParams::orient.
using OrientSet = uint8_t;
inline constexpr OrientSet kR0 = 1 << 0;
inline constexpr OrientSet kSwapXY = 1 << 1;
inline constexpr OrientSet kHFlip = 1 << 2;
inline constexpr OrientSet kR90 = 1 << 3;
inline constexpr OrientSet kVFlip = 1 << 4;
inline constexpr OrientSet kR270 = 1 << 5;
inline constexpr OrientSet kR180 = 1 << 6;
inline constexpr OrientSet kAnyWay = 0xFF;

struct Member {
  FormatSet from;
  FormatSet to;
  Order order;
  SamplingSet sampling;
  OrientSet orients;
  uint8_t block;  // rectangles are multiples of it: 1, 2, 4, or 8 whatever the block mode
  Dither dither;
};

// What a line matches on. All zero, so that no line matches, where the record is no conversion
// known here.
struct Work {
  FormatSet from = 0;
  FormatSet to = 0;
  Order order = Order::any;
  SamplingSet sampling = 0;
  OrientSet orient = 0;
};
Work workOf(const ConvRecord& record);

// Whether it is one of the member's.
constexpr bool takes(const Member& member, const Work& work) {
  return (member.from & work.from) != 0 && (member.to & work.to) != 0 &&
         (member.sampling & work.sampling) != 0 && (member.orients & work.orient) != 0 &&
         (member.order == Order::any || member.order == work.order);
}

// Whether a frame may hand the rectangle to the member: its block, and that neither the dither that
// the record asks for is dropped nor one that only this kernel does is taken up.
bool suits(const Member& member, const ConvRecord& record, const MRect& rect);

// A table reads best by its columns.
// clang-format off
// Frame of 24-bit RGB.
#define QPX_RGB24_KERNELS(KERNEL)                                                                                      \
  KERNEL(RGB2RGBFast_NORESAMPLE, kIn24, kIn24, Order::any, kUnit, kAnyWay, 1, Dither::none)                            \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R0, kIn24, kIn24, Order::same, kNearest, kR0, 4, Dither::none)                \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R270, kIn24, kIn24, Order::same, kNearest, kR270, 4, Dither::none)            \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_SwapXY, kIn24, kIn24, Order::same, kNearest, kSwapXY, 4, Dither::none)        \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_VERTICAL, kIn24, kIn24, Order::same, kNearest, kVFlip, 4, Dither::none)       \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4, kIn24, kIn24, Order::same, kNearest, kAnyWay, 4, Dither::none)               \
  KERNEL(BGR2RGBFast_RGB888_N_RESIZE_4x4, kIn24, kIn24, Order::other, kNearest, kAnyWay, 4, Dither::none)              \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_2x2, kIn24, kIn24, Order::same, kNearest, kAnyWay, 2, Dither::none)               \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE, kIn24, kIn24, Order::same, kNearest, kAnyWay, 1, Dither::none)                   \
  KERNEL(RGB2RGBFast_Nearest, kIn24, kIn24, Order::any, kNearest, kAnyWay, 1, Dither::none)                            \
  KERNEL(RGB2RGBFast, kIn24, kIn24, Order::any, kSampled, kAnyWay, 1, Dither::none)                                    \
  KERNEL(RGB2RGBFast_RGB32_TO_RGB24_NORESAMPLE, kIn32, kIn24, Order::any, kUnit, kAnyWay, 1, Dither::none)             \
  KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R8G8B8_4x4, kInBgr24, kInYuvButYuyv, Order::any, kUnit, kR0, 4, Dither::none) \
  KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R8G8B8_2x2, kInBgr24, kInYuvButYuyv, Order::any, kUnit, kR0, 2, Dither::none) \
  KERNEL(RGB2YUVFast_NORESAMPLE, kIn24, kInYuvButYuyv, Order::any, kUnit, kAnyWay, 1, Dither::none)                    \
  KERNEL(RGB2YUVFast, kIn24, kInYuvButYuyv, Order::any, kSampled, kAnyWay, 1, Dither::none)                            \
  KERNEL(NV21_To_RGB888_NoResample_1x1, kInNv420, kInBgr24, Order::any, kUnit, kAnyWay, 1, Dither::none)               \
  KERNEL(YUV2RGBFast_NORESAMPLE, kInYuv, kInBgr24, Order::any, kUnit, kAnyWay, 1, Dither::none)                        \
  KERNEL(YUV2RGBFast_NORESAMPLE_B8G8R8, kInYuv, kInRgb24, Order::any, kUnit, kAnyWay, 1, Dither::none)                 \
  KERNEL(YUV2RGBFast_R8G8B8_Nearest, kInYuv, kInBgr24, Order::any, kNearest, kAnyWay, 1, Dither::none)                 \
  KERNEL(YUV2RGBFast_B8G8R8_Nearest, kInYuv, kInRgb24, Order::any, kNearest, kAnyWay, 1, Dither::none)                 \
  KERNEL(YUV2RGBFast, kInYuv, kInBgr24, Order::any, kSampled, kAnyWay, 1, Dither::none)                                \
  KERNEL(YUV2RGBFast_B8G8R8, kInYuv, kInRgb24, Order::any, kSampled, kAnyWay, 1, Dither::none)

// Of the same family, but no frame picks them: the one for any orientation serves these, too.
#define QPX_RGB24_UNPICKED_KERNELS(KERNEL)                                                                         \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R90, kIn24, kIn24, Order::same, kNearest, kR90, 4, Dither::none)          \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R180, kIn24, kIn24, Order::same, kNearest, kR180, 4, Dither::none)        \
  KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_HORIZONTAL, kIn24, kIn24, Order::same, kNearest, kHFlip, 4, Dither::none)

// Frame of 16-bit RGB.
#define QPX_RGB16_KERNELS(KERNEL)                                                                                                  \
  KERNEL(NV21_To_RGB565_NoResample_2x2_R270_Dither, kInNv420, kInRgb565, Order::any, kUnit, kR270, 2, Dither::cells)               \
  KERNEL(NV21_To_RGB565_NoResample_2x2_Dither, kInNv420, kInRgb565, Order::any, kUnit, kR0, 2, Dither::cells)                      \
  KERNEL(NV21_To_RGB565_NoResample_4x4_R270, kInNv420, kInRgb565, Order::any, kUnit, kR270, 4, Dither::none)                       \
  KERNEL(NV21_To_RGB565_NoResample_2x2_R270, kInNv420, kInRgb565, Order::any, kUnit, kR270, 2, Dither::none)                       \
  KERNEL(NV21_To_RGB565_NoResample_4x4, kInNv420, kInRgb565, Order::any, kUnit, kR0, 4, Dither::none)                              \
  KERNEL(NV21_To_RGB565_NoResample_2x2, kInNv420, kInRgb565, Order::any, kUnit, kR0, 2, Dither::none)                              \
  KERNEL(NV21_To_RGB565_NoResample_1x1, kInNv420, kInRgb565, Order::any, kUnit, kR0, 1, Dither::byRecord)                          \
  KERNEL(NV21_To_RGB565_NoResample_1x1_R90AndVertical, kInNv420, kInRgb565, Order::any, kUnit, kR90 | kVFlip, 1, Dither::byRecord) \
  KERNEL(NV21_TO_RGBFast_R5G6B5_NoResample_2x2, kInNv420, kInRgb565, Order::any, kUnit, kAnyWay, 2, Dither::none)                  \
  KERNEL(NV21_TO_RGBFast_R5G6B5_NoResample, kInNv420, kInRgb565, Order::any, kUnit, kAnyWay, 1, Dither::byRecord)                  \
  KERNEL(NV21_TO_RGBFast_R5G6B5_Nearest_2x2, kInNv420, kInRgb565, Order::any, kNearest, kAnyWay, 2, Dither::none)                  \
  KERNEL(NV21_TO_RGBFast_R5G6B5_Nearest, kInNv420, kInRgb565, Order::any, kNearest, kAnyWay, 1, Dither::byRecord)                  \
  KERNEL(YUV2RGBFast_NORESAMPLE_R5G6B5_4x4, kInYuv, kInRgb565, Order::any, kUnit, kAnyWay, 4, Dither::none)                        \
  KERNEL(YUV2RGBFast_NORESAMPLE_R5G6B5_4x4_Dither, kInYuv, kInRgb565, Order::any, kUnit, kAnyWay, 4, Dither::byRecord)             \
  KERNEL(YUV2RGBFast_NORESAMPLE_B5G6R5_4x4, kInYuv, kInBgr565, Order::any, kUnit, kAnyWay, 4, Dither::none)                        \
  KERNEL(YUV2RGBFast_NORESAMPLE_R5G6B5, kInYuv, kInRgb565, Order::any, kUnit, kAnyWay, 1, Dither::byRecord)                        \
  KERNEL(YUV2RGBFast_NORESAMPLE_B5G6R5, kInYuv, kInBgr565, Order::any, kUnit, kAnyWay, 1, Dither::byRecord)                        \
  KERNEL(YUV2RGBFast_R5G6B5_Nearest_2x2, kInYuv, kInRgb565, Order::any, kNearest, kAnyWay, 2, Dither::none)                        \
  KERNEL(YUV2RGBFast_R5G6B5_Nearest, kInYuv, kInRgb565, Order::any, kNearest, kAnyWay, 1, Dither::byRecord)                        \
  KERNEL(YUV2RGBFast_B5G6R5_Nearest, kInYuv, kInBgr565, Order::any, kNearest, kAnyWay, 1, Dither::byRecord)                        \
  KERNEL(YUV2RGBFast_R5G6B5_NODither_2x2, kInYuv, kInRgb565, Order::any, kSampled, kAnyWay, 2, Dither::none)                       \
  KERNEL(YUV2RGBFast_R5G6B5_NODither, kInYuv, kInRgb565, Order::any, kSampled, kAnyWay, 1, Dither::none)                           \
  KERNEL(YUV2RGBFast_R5G6B5, kInYuv, kInRgb565, Order::any, kSampled, kAnyWay, 1, Dither::byRecord)                                \
  KERNEL(YUV2RGBFast_B5G6R5, kInYuv, kInBgr565, Order::any, kSampled, kAnyWay, 1, Dither::byRecord)                                \
  KERNEL(RGB888Fast_NORESAMPLE_R5G6B5_Dither, kIn24, kIn16, Order::any, kUnit, kAnyWay, 1, Dither::pixels)                         \
  KERNEL(RGB888Fast_NORESAMPLE_R5G6B5, kIn24 | kIn32, kIn16, Order::any, kUnit, kAnyWay, 1, Dither::byRecord)                      \
  KERNEL(RGB888Fast_R5G6B5_Resample_4x4, kIn24, kIn16, Order::same, kNearest, kAnyWay, 4, Dither::byRecord)                        \
  KERNEL(BGR888Fast_R5G6B5_Resample_4x4, kIn24, kIn16, Order::other, kNearest, kAnyWay, 4, Dither::byRecord)                       \
  KERNEL(RGB888Fast_R5G6B5_Resample, kIn24 | kIn32, kIn16, Order::any, kNearest, kAnyWay, 1, Dither::byRecord)                     \
  KERNEL(RGB888Fast_R5G6B5_Resample_BILINEAR_2x2, kIn24, kIn16, Order::any, kBilinear, kR0, 2, Dither::byRecord)                   \
  KERNEL(RGB888Fast_R5G6B5_Resample_BILINEAR_1x1, kIn24, kIn16, Order::any, kBilinear, kR0, 1, Dither::byRecord)                   \
  KERNEL(RGB888Fast_R5G6B5, kIn24 | kIn32, kIn16, Order::any, kSampled, kAnyWay, 1, Dither::byRecord)                              \
  KERNEL(RGB2RGBFast_NORESAMPLE_R5G6B5_2x2_R90, kIn16, kIn16, Order::any, kUnit, kR90, 2, Dither::byRecord)                        \
  KERNEL(RGB2RGBFast_NORESAMPLE_R5G6B5, kIn16, kInRgb, Order::any, kUnit, kAnyWay, 1, Dither::byRecord)                            \
  KERNEL(RGB2RGBFast_R5G6B5_N_RESIZE_4x4, kIn16, kIn16, Order::same, kNearest, kAnyWay, 4, Dither::byRecord)                       \
  KERNEL(RGB2RGBFast_R5G6B5_N_Resize, kIn16, kIn16, Order::same, kNearest, kAnyWay, 1, Dither::byRecord)                           \
  KERNEL(RGB2RGBFast_R5G6B5_Nearest, kIn16, kInRgb, Order::any, kNearest, kAnyWay, 1, Dither::byRecord)                            \
  KERNEL(RGB2RGBFast_R5G6B5_BILINAR_RESIZE_2x2, kIn16, kIn16, Order::any, kBilinear, kAnyWay, 2, Dither::byRecord)                 \
  KERNEL(RGB2RGBFast_R5G6B5, kIn16, kInRgb, Order::any, kSampled, kAnyWay, 1, Dither::byRecord)                                    \
  KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R5G6B5_4x4, kInRgb565, kInPlanar, Order::any, kUnit, kR0, 4, Dither::none)                \
  KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R5G6B5_2x2, kInRgb565, kInPlanar, Order::any, kUnit, kR0, 2, Dither::none)                \
  KERNEL(RGB2NV12Fast_NORESAMPLE_NOROTATE_R5G6B5_4x4, kIn16, kInNv12, Order::any, kUnit, kR0, 4, Dither::none)                     \
  KERNEL(RGB2NV12Fast_NORESAMPLE_R5G6B5, kIn16, kInNv12, Order::any, kUnit, kAnyWay, 1, Dither::none)                              \
  KERNEL(RGB2YUYVFast_NORESAMPLE_NOROTATE_R5G6B5_4x4, kInRgb565, kInYuyv, Order::any, kUnit, kR0, 4, Dither::none)                 \
  KERNEL(RGB2YUYVFast_NORESAMPLE_R5G6B5, kInRgb565, kInYuyv, Order::any, kUnit, kAnyWay, 1, Dither::none)                          \
  KERNEL(BGR2YUYVFast_NORESAMPLE_NOROTATE_B5G6R5_4x4, kInBgr565, kInYuyv, Order::any, kUnit, kR0, 4, Dither::none)                 \
  KERNEL(BGR2YUYVFast_NORESAMPLE_B5G6R5, kInBgr565, kInYuyv, Order::any, kUnit, kAnyWay, 1, Dither::none)                          \
  KERNEL(RGB2YUVFast_NORESAMPLE_R5G6B5, kIn16, kInYuv, Order::any, kUnit, kAnyWay, 1, Dither::none)                                \
  KERNEL(RGB2YUVFast_R5G6B5, kIn16, kInYuv, Order::any, kSampled, kAnyWay, 1, Dither::none)

// Frame of planar YUV.
#define QPX_PLANAR_KERNELS(KERNEL)                                                                                                               \
  KERNEL(I420_To_I422_Fast_NORESAMPLE_90, kIn420, kIn422Planar, Order::any, kUnit, kR90, 1, Dither::none)                                        \
  KERNEL(I420_To_I422_Fast_90, kIn420, kIn422Planar, Order::any, kSampled, kR90, 1, Dither::none)                                                \
  KERNEL(YUV_To_YUV_NOREAMPLE_ROTATE_Fast_4x4, kInPlanar, kInPlanar, Order::any, kUnit, kAnyWay, 4, Dither::none)                                \
  KERNEL(YUV_To_YUV_NOREAMPLE_ROTATE_Fast, kInPlanar, kInPlanar, Order::any, kUnit, kAnyWay, 1, Dither::none)                                    \
  KERNEL(I420_To_I420_REAMPLE_NOROTATE_BILINEAR_Fast_4x4, kInI420, kInI420, Order::any, kBilinear, kR0, 4, Dither::none)                         \
  KERNEL(I420_To_I420_REAMPLE_NOROTATE_BILINEAR_Fast_1x1, kInI420, kInI420, Order::any, kBilinear, kR0, 1, Dither::none)                         \
  KERNEL(I420_To_I420_REAMPLE_NOROTATE_BILINEAR_Fast, kIn420, kIn420, Order::any, kBilinear, kR0, 1, Dither::none)                               \
  KERNEL(I420_To_I420_REAMPLE_NOROTATE_Fast, kIn420, kIn420, Order::any, kNearest, kR0, 1, Dither::none)                                         \
  KERNEL(I422H_To_I422H_REAMPLE_NOROTATE_BILINEAR_Fast, kInI422H | kInYv422H, kInI422H | kInYv422H, Order::any, kBilinear, kR0, 1, Dither::none) \
  KERNEL(I422H_To_I422H_REAMPLE_NOROTATE_Fast, kInI422H | kInYv422H, kInI422H | kInYv422H, Order::any, kNearest, kR0, 1, Dither::none)           \
  KERNEL(I422V_To_I422V_REAMPLE_BILINEAR_NOROTATE_Fast, kInI422V | kInYv422V, kInI422V | kInYv422V, Order::any, kBilinear, kR0, 1, Dither::none) \
  KERNEL(I422V_To_I422V_REAMPLE_NOROTATE_Fast, kInI422V | kInYv422V, kInI422V | kInYv422V, Order::any, kNearest, kR0, 1, Dither::none)           \
  KERNEL(I444_To_I444_REAMPLE_BILINEAR_NOROTATE_Fast, kIn444, kIn444, Order::any, kBilinear, kR0, 1, Dither::none)                               \
  KERNEL(I444_To_I444_REAMPLE_NOROTATE_Fast, kIn444, kIn444, Order::any, kNearest, kR0, 1, Dither::none)

// Frame of YUYV, and of what YUV2YUV_Fast leaves of NV21 and NV12.
#define QPX_YUYV_KERNELS(KERNEL)                                                                                \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2, kInPlanar, kInYuyv, Order::any, kUnit, kR0, 2, Dither::none)         \
  KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2, kIn24, kInYuyv, Order::any, kUnit, kR0, 2, Dither::none)            \
  KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2, kInGrey, kInYuyv, Order::any, kUnit, kR0, 2, Dither::none)           \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_SXY, kInPlanar, kInYuyv, Order::any, kUnit, kSwapXY, 2, Dither::none) \
  KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_SXY, kIn24, kInYuyv, Order::any, kUnit, kSwapXY, 2, Dither::none)    \
  KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_SXY, kInGrey, kInYuyv, Order::any, kUnit, kSwapXY, 2, Dither::none)   \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_R180, kInPlanar, kInYuyv, Order::any, kUnit, kR180, 2, Dither::none)  \
  KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_R180, kIn24, kInYuyv, Order::any, kUnit, kR180, 2, Dither::none)     \
  KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_R180, kInGrey, kInYuyv, Order::any, kUnit, kR180, 2, Dither::none)    \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_MLR, kInPlanar, kInYuyv, Order::any, kUnit, kHFlip, 2, Dither::none)  \
  KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_MLR, kIn24, kInYuyv, Order::any, kUnit, kHFlip, 2, Dither::none)     \
  KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_MLR, kInGrey, kInYuyv, Order::any, kUnit, kHFlip, 2, Dither::none)    \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_R90, kInPlanar, kInYuyv, Order::any, kUnit, kR90, 2, Dither::none)    \
  KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_R90, kIn24, kInYuyv, Order::any, kUnit, kR90, 2, Dither::none)       \
  KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_R90, kInGrey, kInYuyv, Order::any, kUnit, kR90, 2, Dither::none)      \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_R270, kInPlanar, kInYuyv, Order::any, kUnit, kR270, 2, Dither::none)  \
  KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_R270, kIn24, kInYuyv, Order::any, kUnit, kR270, 2, Dither::none)     \
  KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_R270, kInGrey, kInYuyv, Order::any, kUnit, kR270, 2, Dither::none)    \
  KERNEL(I420_To_YUYV_Fast_2x2, kInPlanar, kInYuyv, Order::any, kSampled, kR0, 2, Dither::none)                 \
  KERNEL(RGB24_To_YUYV_Fast_2x2, kIn24, kInYuyv, Order::any, kSampled, kR0, 2, Dither::none)                    \
  KERNEL(Gray_To_YUYV_Fast_2x2, kInGrey, kInYuyv, Order::any, kSampled, kR0, 2, Dither::none)                   \
  KERNEL(I420_To_YUYV_Fast_2x2_SXY, kInPlanar, kInYuyv, Order::any, kSampled, kSwapXY, 2, Dither::none)         \
  KERNEL(RGB24_To_YUYV_Fast_2x2_SXY, kIn24, kInYuyv, Order::any, kSampled, kSwapXY, 2, Dither::none)            \
  KERNEL(Gray_To_YUYV_Fast_2x2_SXY, kInGrey, kInYuyv, Order::any, kSampled, kSwapXY, 2, Dither::none)           \
  KERNEL(I420_To_YUYV_Fast_2x2_R180, kInPlanar, kInYuyv, Order::any, kSampled, kR180, 2, Dither::none)          \
  KERNEL(RGB24_To_YUYV_Fast_2x2_R180, kIn24, kInYuyv, Order::any, kSampled, kR180, 2, Dither::none)             \
  KERNEL(Gray_To_YUYV_Fast_2x2_R180, kInGrey, kInYuyv, Order::any, kSampled, kR180, 2, Dither::none)            \
  KERNEL(I420_To_YUYV_Fast_2x2_MLR, kInPlanar, kInYuyv, Order::any, kSampled, kHFlip, 2, Dither::none)          \
  KERNEL(RGB24_To_YUYV_Fast_2x2_MLR, kIn24, kInYuyv, Order::any, kSampled, kHFlip, 2, Dither::none)             \
  KERNEL(Gray_To_YUYV_Fast_2x2_MLR, kInGrey, kInYuyv, Order::any, kSampled, kHFlip, 2, Dither::none)            \
  KERNEL(I420_To_YUYV_Fast_2x2_R90, kInPlanar, kInYuyv, Order::any, kSampled, kR90, 2, Dither::none)            \
  KERNEL(RGB24_To_YUYV_Fast_2x2_R90, kIn24, kInYuyv, Order::any, kSampled, kR90, 2, Dither::none)               \
  KERNEL(Gray_To_YUYV_Fast_2x2_R90, kInGrey, kInYuyv, Order::any, kSampled, kR90, 2, Dither::none)              \
  KERNEL(I420_To_YUYV_Fast_2x2_R270, kInPlanar, kInYuyv, Order::any, kSampled, kR270, 2, Dither::none)          \
  KERNEL(RGB24_To_YUYV_Fast_2x2_R270, kIn24, kInYuyv, Order::any, kSampled, kR270, 2, Dither::none)             \
  KERNEL(Gray_To_YUYV_Fast_2x2_R270, kInGrey, kInYuyv, Order::any, kSampled, kR270, 2, Dither::none)            \
  KERNEL(I420toYUYVFast_NORESAMPLE, kInI420, kInYuyv, Order::any, kUnit, kR0, 1, Dither::none)                  \
  KERNEL(RGB24toYUYVFast_NORESAMPLE, kIn24, kInYuyv, Order::any, kUnit, kR0, 1, Dither::none)                   \
  KERNEL(GraytoYUYVFast_NORESAMPLE, kInGrey, kInYuyv, Order::any, kUnit, kR0, 1, Dither::none)                  \
  KERNEL(I420toYUYVFast_NORESAMPLE_90, kInI420, kInYuyv, Order::any, kUnit, kR90, 1, Dither::none)              \
  KERNEL(RGB24toYUYVFast_NORESAMPLE_90, kIn24, kInYuyv, Order::any, kUnit, kR90, 1, Dither::none)               \
  KERNEL(GraytoYUYVFast_NORESAMPLE_90, kInGrey, kInYuyv, Order::any, kUnit, kR90, 1, Dither::none)              \
  KERNEL(I420_To_YUYV_Fast_NORESAMPLE_90, kInPlanar, kInYuyv, Order::any, kUnit, kR90, 1, Dither::none)         \
  KERNEL(I420_To_YUYV_NOREAMPLE_ROTATE_Fast, kInPlanar, kInYuyv, Order::any, kUnit, kAnyWay, 1, Dither::none)   \
  KERNEL(RGB24_To_YUYV_NOREAMPLE_ROTATE_Fast, kIn24, kInYuyv, Order::any, kUnit, kAnyWay, 1, Dither::none)      \
  KERNEL(Gray_To_YUYV_NOREAMPLE_ROTATE_Fast, kInGrey, kInYuyv, Order::any, kUnit, kAnyWay, 1, Dither::none)     \
  KERNEL(I420toYUYVFast_RESAMPLE, kInI420, kInYuyv, Order::any, kNearest, kR0, 1, Dither::none)                 \
  KERNEL(RGB24toYUYVFast_RESAMPLE, kIn24, kInYuyv, Order::any, kNearest, kR0, 1, Dither::none)                  \
  KERNEL(GraytoYUYVFast_RESAMPLE, kInGrey, kInYuyv, Order::any, kNearest, kR0, 1, Dither::none)                 \
  KERNEL(I420toYUYVFast_RESAMPLE_90, kInI420, kInYuyv, Order::any, kNearest, kR90, 1, Dither::none)             \
  KERNEL(I420_To_YUYV_Fast_90, kInPlanar, kInYuyv, Order::any, kSampled, kR90, 1, Dither::none)                 \
  KERNEL(I420toYUYVFast, kInI420, kInYuyv, Order::any, kSampled, kR0, 1, Dither::none)                          \
  KERNEL(I420_To_YUYV_Fast, kInPlanar, kInYuyv, Order::any, kSampled, kAnyWay, 1, Dither::none)                 \
  KERNEL(RGB24_To_YUYV_Fast, kIn24, kInYuyv, Order::any, kSampled, kAnyWay, 1, Dither::none)                    \
  KERNEL(Gray_To_YUYV_Fast, kInGrey, kInYuyv, Order::any, kSampled, kAnyWay, 1, Dither::none)                   \
  KERNEL(YUYVtoYUYVFast_NORESAMPLE, kInYuyv, kInYuyv, Order::any, kUnit, kR0, 1, Dither::none)                  \
  KERNEL(YUYVtoYUYVFast_NORESAMPLE_90, kInYuyv, kInYuyv, Order::any, kUnit, kR90, 1, Dither::none)              \
  KERNEL(YUYVtoYUYVFast_NORESAMPLE_180, kInYuyv, kInYuyv, Order::any, kUnit, kR180, 1, Dither::none)            \
  KERNEL(YUYVtoYUYVFast_NORESAMPLE_270, kInYuyv, kInYuyv, Order::any, kUnit, kR270, 1, Dither::none)

// Of the same frame, through the colour table.
#define QPX_NV_LUT_KERNELS(KERNEL)                                                                                   \
  KERNEL(YUV2NV21_LookupTable_R0_4x4, kInYuv, kInNv420, Order::any, kUnit, kR0, 4, Dither::none)                     \
  KERNEL(YUV2NV21_LookupTable_R0, kInYuv, kInNv420, Order::any, kUnit, kR0, 1, Dither::none)                         \
  KERNEL(YUV2NV21_LookupTable_Nearest_RESAMPLE_R0_1x1, kInYuv, kInNv420, Order::any, kNearest, kR0, 1, Dither::none) \
  KERNEL(YUV2NV21_LookupTable_BILINEAR_NOROTATE_Fast, kInYuv, kInNv420, Order::any, kBilinear, kR0, 1, Dither::none)

// Of the same frame.
#define QPX_NV_KERNELS(KERNEL)                                                                   \
  KERNEL(I420_To_NV21_Fast, kInPlanar, kInNv420, Order::any, kSampled, kAnyWay, 1, Dither::none)

// Frame from YUV to 32-bit RGB.
#define QPX_YUV_RGB32_KERNELS(KERNEL)                                                                        \
  KERNEL(I420toRGB32_Fast_NORESAMPLE, kInI420, kInBgr32, Order::any, kUnit, kR0, 8, Dither::none)            \
  KERNEL(I420toRGB32_Fast_NORESAMPLE_90, kInI420, kInBgr32, Order::any, kUnit, kR90, 1, Dither::none)        \
  KERNEL(I420toRGB32_Fast_NORESAMPLE_1x1, kInI420, kInBgr32, Order::any, kUnit, kR0, 1, Dither::none)        \
  KERNEL(YV12toRGB32_Fast_NORESAMPLE_4x4, kInYv12, kInBgr32, Order::any, kUnit, kR0, 4, Dither::none)        \
  KERNEL(YV12toRGB32_Fast_NORESAMPLE_1x1, kInYv12, kInBgr32, Order::any, kUnit, kR0, 1, Dither::none)        \
  KERNEL(I420toBGR32_Fast_NORESAMPLE, kInI420, kInRgb32, Order::any, kUnit, kR0, 1, Dither::none)            \
  KERNEL(NV21toBGR32_Fast_NoResize_R90_2x2, kInNv420, kInRgb32, Order::any, kUnit, kR90, 2, Dither::none)    \
  KERNEL(I420toRGB32_R0_Fast_BilNear_4x4, kInI420, kInBgr32, Order::any, kBilinear, kR0, 4, Dither::none)    \
  KERNEL(I420toRGB32_Fast_BilNear, kInI420, kInBgr32, Order::any, kBilinear, kR0, 1, Dither::none)           \
  KERNEL(I420toBGR32_Fast_4x4, kInI420, kInRgb32, Order::any, kSampled, kR0, 4, Dither::none)                \
  KERNEL(I420toBGR32_Fast_BilNear, kInI420, kInRgb32, Order::any, kBilinear, kR0, 1, Dither::none)           \
  KERNEL(I420toRGB32_Fast_90, kInI420, kInBgr32, Order::any, kSampled, kR90, 4, Dither::none)                \
  KERNEL(I420toRGB32_Fast_90_1x1, kInI420, kInBgr32, Order::any, kSampled, kR90, 1, Dither::none)            \
  KERNEL(I420toRGB32_Fast, kInI420, kInBgr32, Order::any, kSampled, kR0, 4, Dither::none)                    \
  KERNEL(I420toRGB32_Fast_1x1, kInI420, kInBgr32, Order::any, kSampled, kR0, 1, Dither::none)                \
  KERNEL(I420toRGB32_Any_Fast_1x1, kIn420, kInBgr32, Order::any, kSampled, kAnyWay, 1, Dither::none)         \
  KERNEL(I420toBGR32_Any_Fast_1x1, kIn420, kInRgb32, Order::any, kSampled, kAnyWay, 1, Dither::none)         \
  KERNEL(I444toRGB32_Any_Fast_1x1, kIn444, kInBgr32, Order::any, kSampled, kAnyWay, 1, Dither::none)         \
  KERNEL(I422HtoBGR32_Fast_4x4, kInI422H | kInYv422H, kInRgb32, Order::any, kSampled, kR0, 4, Dither::none)  \
  KERNEL(NV21toBGR32_Fast_BilNear, kInNv420, kInRgb32, Order::any, kBilinear, kR0, 1, Dither::none)          \
  KERNEL(NV21toBGR32_Fast_BilNear_R90, kInNv420, kInRgb32, Order::any, kBilinear, kR90, 1, Dither::none)     \
  KERNEL(GreytoBGR32_Fast_BilNear, kInGrey, kInRgb32, Order::any, kBilinear, kAnyWay, 1, Dither::none)       \
  KERNEL(RGB2RGBFast_RGBA_N_RESIZE_4x4, kInBgr32, kInBgr32, Order::any, kNearest, kR0, 4, Dither::none)      \
  KERNEL(RGB32toRGB32_Fast_Resample_4x4, kInBgr32, kInBgr32, Order::any, kNearest, kAnyWay, 4, Dither::none)

// Frame between 32-bit RGB and packed or paired YUV.
#define QPX_YUYV_RGB32_KERNELS(KERNEL)                                                                     \
  KERNEL(RGB32toYUYV_Fast_NORESAMPLE, kInBgr32, kInYuyv, Order::any, kUnit, kR0, 1, Dither::none)          \
  KERNEL(RGB32toYUYV_Fast_NORESAMPLE_90, kInBgr32, kInYuyv, Order::any, kUnit, kR90, 1, Dither::none)      \
  KERNEL(RGB32toYUYV_Fast_NORESAMPLE_180, kInBgr32, kInYuyv, Order::any, kUnit, kR180, 1, Dither::none)    \
  KERNEL(RGB32toYUYV_Fast_NORESAMPLE_270, kInBgr32, kInYuyv, Order::any, kUnit, kR270, 1, Dither::none)    \
  KERNEL(BGR32toYUYV_Fast_NORESAMPLE, kInRgb32, kInYuyv, Order::any, kUnit, kR0, 1, Dither::none)          \
  KERNEL(BGR32toYUYV_Fast_NORESAMPLE_HFlip, kInRgb32, kInYuyv, Order::any, kUnit, kHFlip, 1, Dither::none) \
  KERNEL(RGB32toNV12_Fast_NORESAMPLE_4x4, kIn32, kInNv12, Order::any, kUnit, kR0, 4, Dither::none)         \
  KERNEL(RGB32toNV12_Fast_NORESAMPLE, kIn32, kInNv12, Order::any, kUnit, kAnyWay, 1, Dither::none)         \
  KERNEL(RGB32toNV21_Fast_NORESAMPLE_4x4, kIn32, kInNv21, Order::any, kUnit, kR0, 4, Dither::none)         \
  KERNEL(RGB32toNV21_Fast_NORESAMPLE, kIn32, kInNv21, Order::any, kUnit, kAnyWay, 1, Dither::none)         \
  KERNEL(YUYVtoRGB32_Fast_NORESAMPLE, kInYuyv, kInBgr32, Order::any, kUnit, kAnyWay, 1, Dither::none)      \
  KERNEL(YUYVtoBGR32_Fast_NORESAMPLE, kInYuyv, kInRgb32, Order::any, kUnit, kAnyWay, 1, Dither::none)

// Frame of 32-bit RGB.
#define QPX_RGB32_KERNELS(KERNEL)                                                                                         \
  KERNEL(RGB2RGBFast_BGR32_N_RESIZE_4x4_R0, kInRgb32, kInRgb32, Order::any, kNearest, kR0, 4, Dither::none)               \
  KERNEL(RGB2RGBFast_BGR32_N_RESIZE_4x4, kInRgb32, kInRgb32, Order::any, kNearest, kAnyWay, 4, Dither::none)              \
  KERNEL(RGB2RGBFast_BGR32_N_RESIZE_1x1, kInRgb32, kInRgb32, Order::any, kNearest, kAnyWay, 1, Dither::none)              \
  KERNEL(RGB2RGBFast_RGB32_N_RESIZE, kIn32, kIn32, Order::any, kNearest, kAnyWay, 1, Dither::none)                        \
  KERNEL(RGB2RGBFast_RGB32_TO_RGB32__BILINEARN_RESIZE_4x4, kIn32, kIn32, Order::any, kBilinear, kAnyWay, 4, Dither::none) \
  KERNEL(RGB2RGBFast_RGB32_TO_RGB32__BILINEARN_RESIZE_1x1, kIn32, kIn32, Order::any, kBilinear, kAnyWay, 1, Dither::none) \
  KERNEL(RGB2RGBFast_BGR32_TO_BGR24_N_RESIZE_4x4, kIn32, kIn24, Order::same, kNearest, kAnyWay, 4, Dither::none)          \
  KERNEL(RGB2RGBFast_RGB32_TO_RGB24_N_RESIZE_2x2, kIn32, kIn24, Order::any, kNearest, kAnyWay, 2, Dither::none)           \
  KERNEL(RGB2RGBFast_RGB32_TO_RGB24_N_RESIZE_1x1, kIn32, kIn24, Order::any, kNearest, kAnyWay, 1, Dither::none)           \
  KERNEL(RGB2RGBFast_RGB24_To_RGB32_NO_NO_AlphaSpecial, kIn24, kIn32, Order::any, kUnit, kR0, 1, Dither::none)            \
  KERNEL(RGB2RGBFast_RGB24_TO_RGB32__NoResample, kIn24, kIn32, Order::any, kUnit, kAnyWay, 1, Dither::none)               \
  KERNEL(RGB2RGBFast_BGR24_TO_BGR32_N_RESIZE_4x4, kIn24, kIn32, Order::same, kNearest, kAnyWay, 4, Dither::none)          \
  KERNEL(RGB2RGBFast_RGB24_TO_RGB32__Nearest_RESIZE_1x1, kIn24, kIn32, Order::any, kNearest, kAnyWay, 1, Dither::none)    \
  KERNEL(RGB2RGBFast_RGB24_TO_RGB32__BILINEARN_RESIZE_2x2, kIn24, kIn32, Order::any, kBilinear, kAnyWay, 2, Dither::none) \
  KERNEL(RGB2RGBFast_RGB24_TO_RGB32__BILINEARN_RESIZE_1x1, kIn24, kIn32, Order::any, kBilinear, kAnyWay, 1, Dither::none) \
  KERNEL(NV12_TO_RGB32Fast_NORESAMPLE_4x4, kInNv12, kIn32, Order::any, kUnit, kAnyWay, 4, Dither::none)                   \
  KERNEL(NV12_TO_RGB32Fast_NORESAMPLE, kInNv12, kIn32, Order::any, kUnit, kAnyWay, 1, Dither::none)                       \
  KERNEL(NV21_TO_RGB32Fast_NORESAMPLE_4x4, kInNv21, kIn32, Order::any, kUnit, kAnyWay, 4, Dither::none)                   \
  KERNEL(NV21_TO_RGB32Fast_NORESAMPLE, kInNv21, kIn32, Order::any, kUnit, kAnyWay, 1, Dither::none)                       \
  KERNEL(NV21toRGB32_Fast_BilNear, kInNv420, kIn32, Order::any, kBilinear, kAnyWay, 1, Dither::none)                      \
  KERNEL(I444_TO_RGB32Fast_NORESAMPLE, kIn444, kIn32, Order::any, kUnit, kAnyWay, 1, Dither::none)                        \
  KERNEL(I444toBGR32_Fast_BilNear, kIn444, kInRgb32, Order::any, kBilinear, kAnyWay, 1, Dither::none)

// Frame of grey.
#define QPX_GREY_KERNELS(KERNEL)                                                                                         \
  KERNEL(Gray2Gray_C_NORESAMPLE_FAST_4x4, kInGrey, kInGrey, Order::any, kUnit, kAnyWay, 4, Dither::none)                 \
  KERNEL(Gray2Gray_C_NORESAMPLE_FAST, kInGrey, kInGrey, Order::any, kUnit, kAnyWay, 1, Dither::none)                     \
  KERNEL(Gray2Gray_C_RESAMPLE_BILINEAR_NOROTATE_4X4_FAST, kInGrey, kInGrey, Order::any, kBilinear, kR0, 4, Dither::none) \
  KERNEL(Gray2Gray_C_RESAMPLE_BILINEAR_NOROTATE_FAST, kInGrey, kInGrey, Order::any, kBilinear, kR0, 1, Dither::none)     \
  KERNEL(Gray2Gray_C_RESAMPLE_NOROTATE_FAST, kInGrey, kInGrey, Order::any, kNearest, kR0, 1, Dither::none)               \
  KERNEL(Gray_To_Gray_BILINEAR_Fast, kInGrey, kInGrey, Order::any, kBilinear, kAnyWay, 1, Dither::none)                  \
  KERNEL(Gray_To_Gray_Nearest_Fast, kInGrey, kInGrey, Order::any, kNearest, kAnyWay, 1, Dither::none)

// Frame from YUV to YUV: kernels that check all by themselves. To planes and packed formats.
#define QPX_SUBSAMPLED_KERNELS(KERNEL)                                                                                       \
  KERNEL(I422_TO_I420_NORESAMPLE_4x4, kIn422Planar, kIn420, Order::any, kUnit, kR0, 4, Dither::none)                         \
  KERNEL(I422_TO_I420_NORESAMPLE, kIn422Planar, kIn420, Order::any, kUnit, kR0, 1, Dither::none)                             \
  KERNEL(I420_Bewteen_YV12_NORESAMPLE_4x4, kIn420, kIn420, Order::other, kUnit, kR0, 4, Dither::none)                        \
  KERNEL(I420_NORESAMPLE_4x4_R90, kIn420, kIn420, Order::any, kUnit, kR90, 4, Dither::none)                                  \
  KERNEL(YUV_TO_YUV_NORESAMPLE_NO_4x4, kInPlanar, kInPlanar, Order::any, kUnit, kR0, 4, Dither::none)                        \
  KERNEL(YUV_TO_YUV_NORESAMPLE_NO_1x1, kInPlanar, kInPlanar, Order::any, kUnit, kR0, 1, Dither::none)                        \
  KERNEL(NV21VtoI420Fast_NORESAMPLE_R270_4x4, kInNv420, kIn420, Order::any, kUnit, kR270, 4, Dither::none)                   \
  KERNEL(NV21VtoI420Fast_NORESAMPLE_R270_2x2, kInNv420, kIn420, Order::any, kUnit, kR270, 2, Dither::none)                   \
  KERNEL(NV21toI420Fast_NORESAMPLE_R0_4x4, kInNv420, kIn420, Order::any, kUnit, kR0, 4, Dither::none)                        \
  KERNEL(NV21toI420Fast_Nearest_RESAMPLE_R0_4x4, kInNv420, kIn420, Order::any, kNearest, kR0, 4, Dither::none)               \
  KERNEL(NV21toI420Fast_Nearest_RESAMPLE_R0_1x1, kInNv420, kIn420, Order::any, kNearest, kR0, 1, Dither::none)               \
  KERNEL(YUYVtoI420Fast_NORESAMPLE_R0_4x4, kInYuyv, kIn420, Order::any, kUnit, kR0, 4, Dither::none)                         \
  KERNEL(YUV422toI420Fast_NORESAMPLE_R0_4x4, kInPacked, kIn420, Order::any, kUnit, kR0, 4, Dither::none)                     \
  KERNEL(NVXYtoI444_Fast_NORESAMPLE_R0_4x4, kInNv, kIn444, Order::any, kUnit, kR0, 4, Dither::none)                          \
  KERNEL(NVXYtoYUV_Fast_NORESAMPLE_R0_4x4, kInNv, kInPlanar, Order::any, kUnit, kR0, 4, Dither::none)                        \
  KERNEL(YUYVtoYUYVFast_N_RESAMPLE_R0_4x4, kInYuyv, kInYuyv, Order::any, kNearest, kR0, 4, Dither::none)                     \
  KERNEL(YUV422toYUV422Fast_N_RESAMPLE_R0_4x4, kInPacked, kInPacked, Order::any, kNearest, kR0, 4, Dither::none)             \
  KERNEL(YUV422toYUV422Fast_NORESAMPLE_R90_4x4, kInPacked, kInPacked, Order::any, kUnit, kR90, 4, Dither::none)              \
  KERNEL(YUV422toYUV422Fast_NORESAMPLE_R180_4x4, kInPacked, kInPacked, Order::any, kUnit, kR180, 4, Dither::none)            \
  KERNEL(YUV422toYUV422Fast_NORESAMPLE_R270_4x4, kInPacked, kInPacked, Order::any, kUnit, kR270, 4, Dither::none)            \
  KERNEL(YUV422toYUV422Fast_NORESAMPLE_H_Flip_4x4, kInPacked, kInPacked, Order::any, kUnit, kHFlip, 4, Dither::none)         \
  KERNEL(YUV422toYUV422Fast_NORESAMPLE_V_Flip_4x4, kInPacked, kInPacked, Order::any, kUnit, kVFlip, 4, Dither::none)         \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_R0_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kR0, 4, Dither::none)         \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_R90_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kR90, 4, Dither::none)       \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_R180_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kR180, 4, Dither::none)     \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_R270_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kR270, 4, Dither::none)     \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_SwapXY_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kSwapXY, 4, Dither::none) \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_H_Flip_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kHFlip, 4, Dither::none)  \
  KERNEL(YUVtoYUV422Fast_NORESAMPLE_V_Flip_4x4, kInPlanar | kInGrey, kInPacked, Order::any, kUnit, kVFlip, 4, Dither::none)

// The same, to chroma pairs.
#define QPX_PAIRED_KERNELS(KERNEL)                                                                                         \
  KERNEL(NV12_TO_NV21_NORESAMPLE_4x4, kInNv420, kInNv420, Order::other, kUnit, kR0, 4, Dither::none)                       \
  KERNEL(NV12_TO_NV21_NORESAMPLE, kInNv420, kInNv420, Order::other, kUnit, kR0, 1, Dither::none)                           \
  KERNEL(NV12_TO_NV21_NORESAMPLE_R180_4x4, kInNv420, kInNv420, Order::other, kUnit, kR180, 4, Dither::none)                \
  KERNEL(NV12_TO_NV21_NORESAMPLE_R180, kInNv420, kInNv420, Order::other, kUnit, kR180, 1, Dither::none)                    \
  KERNEL(NV12_TO_NV21_NORESAMPLE_Rotate, kInNv420, kInNv420, Order::other, kUnit, kR90 | kR270, 1, Dither::none)           \
  KERNEL(YUV422SP_TO_NV21_NORESAMPLE_4x4, kInNv422, kInNv420, Order::any, kUnit, kR0, 4, Dither::none)                     \
  KERNEL(NV21toNV21Fast_NORESAMPLE_R0_1x1, kInNv420, kInNv420, Order::any, kUnit, kR0, 1, Dither::none)                    \
  KERNEL(NV21toNV21Fast_NORESAMPLE_R90_4x4, kInNv420, kInNv420, Order::any, kUnit, kR90, 4, Dither::none)                  \
  KERNEL(NV21toNV21Fast_NORESAMPLE_R180_4x4, kInNv420, kInNv420, Order::any, kUnit, kR180, 4, Dither::none)                \
  KERNEL(NV21toNV21Fast_NORESAMPLE_R270_4x4, kInNv420, kInNv420, Order::any, kUnit, kR270, 4, Dither::none)                \
  KERNEL(NV21toNV21Fast_NORESAMPLE_H_Flip_4x4, kInNv420, kInNv420, Order::any, kUnit, kHFlip, 4, Dither::none)             \
  KERNEL(NV21toNV21Fast_NORESAMPLE_V_Flip_4x4, kInNv420, kInNv420, Order::any, kUnit, kVFlip, 4, Dither::none)             \
  KERNEL(NV21toNV21Fast_NORESAMPLE_H_Flip_2x2, kInNv420, kInNv420, Order::any, kUnit, kHFlip, 2, Dither::none)             \
  KERNEL(NV12_TO_NV12_NORESAMPLE_Rotate, kInNv420, kInNv420, Order::same, kUnit, kR90 | kR270, 1, Dither::none)            \
  KERNEL(NV12_TO_NV12_NORESAMPLE_Rotate180, kInNv420, kInNv420, Order::same, kUnit, kR180, 1, Dither::none)                \
  KERNEL(NV21toNV21Fast_N_RESAMPLE_R0_4x4, kInNv420, kInNv420, Order::any, kNearest, kR0, 4, Dither::none)                 \
  KERNEL(NV21_To_NV21_REAMPLE_NOROTATE_BILINEAR_Fast_2x2, kInNv420, kInNv420, Order::any, kBilinear, kR0, 2, Dither::none) \
  KERNEL(NV21_To_NV21_REAMPLE_NOROTATE_BILINEAR_Fast, kInNv420, kInNv420, Order::any, kBilinear, kR0, 1, Dither::none)     \
  KERNEL(NV12_To_NV12_Fast_R90_2x2, kInNv420, kInNv420, Order::any, kNearest, kR90, 2, Dither::none)                       \
  KERNEL(NV12_To_NV12_Fast_Bilinear_R90_2x2, kInNv420, kInNv420, Order::any, kBilinear, kR90, 2, Dither::none)             \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_R0_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kR0, 4, Dither::none)             \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_R90_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kR90, 4, Dither::none)           \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_R180_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kR180, 4, Dither::none)         \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_R270_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kR270, 4, Dither::none)         \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_SwapXY_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kSwapXY, 4, Dither::none)     \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_H_Flip_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kHFlip, 4, Dither::none)      \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_V_Flip_4x4, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kVFlip, 4, Dither::none)      \
  KERNEL(YUVtoNV21Fast_NORESAMPLE_R0_1x1, kIn420 | kInGrey, kInNv420, Order::any, kUnit, kR0, 1, Dither::none)             \
  KERNEL(YUVtoNVXY_Fast_NORESAMPLE_R0_4x4, kInPlanar, kInNv, Order::any, kUnit, kR0, 4, Dither::none)

// clang-format on

}  // namespace qpx::convert::fast
