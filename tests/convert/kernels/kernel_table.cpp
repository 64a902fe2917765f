#include "convert/kernels/kernel_run.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kYv12 = 0x50000A11, kYv422 = 0x50000A10, kYv440 = 0x50000A01,
                   kYv444 = 0x50000A00, kNv61 = 0x70000004, kNv16 = 0x70000005;

using Formats = std::vector<uint32_t>;

Formats joined(Formats a, const Formats& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

const Formats kAny24 = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24};
const Formats kAny32 = {QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32};
const Formats kAny16 = {QPX_FORMAT_RGB565, QPX_FORMAT_BGR565};
const Formats kAny24Or32 = joined(kAny24, kAny32);
const Formats kAnyRgb = joined(kAny24Or32, kAny16);
const Formats kAnyNv = {QPX_FORMAT_NV21, QPX_FORMAT_NV12};
const Formats kAnyNv422 = {kNv61, kNv16};
const Formats kAnyPairs = joined(kAnyNv, kAnyNv422);
const Formats kAny420 = {QPX_FORMAT_I420, kYv12};
const Formats kAny422H = {QPX_FORMAT_I422, kYv422};
const Formats kAny422V = {QPX_FORMAT_I440, kYv440};
const Formats kAnyPlanar422 = joined(kAny422H, kAny422V);
const Formats kAny444 = {QPX_FORMAT_I444, kYv444};
const Formats kAnyPlanar = joined(joined(kAny420, kAnyPlanar422), kAny444);
const Formats kAnyPlanarOrGrey = joined(kAnyPlanar, {QPX_FORMAT_GREY8});
const Formats kAny420OrGrey = joined(kAny420, {QPX_FORMAT_GREY8});
const Formats kAnyPacked = {QPX_FORMAT_YUYV, QPX_FORMAT_YVYU, QPX_FORMAT_UYVY, QPX_FORMAT_VYUY};
const Formats kAnyYuvButYuyv = joined(joined(kAnyPlanarOrGrey, kAnyPairs),
                                      {QPX_FORMAT_YVYU, QPX_FORMAT_UYVY, QPX_FORMAT_VYUY});
const Formats kAnyYuv = joined(kAnyYuvButYuyv, {QPX_FORMAT_YUYV});

enum class Order { any, same, other };

// Red before blue, V before U.
bool isReversed(uint32_t format) {
  for (const uint32_t reversed :
       {uint32_t{QPX_FORMAT_RGB24}, uint32_t{QPX_FORMAT_RGBA32}, uint32_t{QPX_FORMAT_BGR565},
        uint32_t{QPX_FORMAT_NV21}, kYv12, kYv422, kYv440, kYv444, kNv61}) {
    if (format == reversed) return true;
  }
  return false;
}

bool isInOrder(Order order, uint32_t from, uint32_t to) {
  return order == Order::any || (isReversed(from) == isReversed(to)) == (order == Order::same);
}

struct TableRow {
  const char* name;
  AnyKernel kernel;
  Formats from;
  Formats to;
  Order order;
  char sampling;  // 'a' for all three
  int32_t orient;
  int32_t block;
  bool dithersByItself = false;
};

#define QPX_KERNEL(name) #name, name

const std::vector<TableRow>& table() {
  // clang-format off
  static const std::vector<TableRow> kTable = {
    {QPX_KERNEL(RGB2RGBFast_NORESAMPLE), kAny24, kAny24, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R0), kAny24, kAny24, Order::same, 'n', 0, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R270), kAny24, kAny24, Order::same, 'n', 5, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_SwapXY), kAny24, kAny24, Order::same, 'n', 1, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_VERTICAL), kAny24, kAny24, Order::same, 'n', 4, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4), kAny24, kAny24, Order::same, 'n', -1, 4},
    {QPX_KERNEL(BGR2RGBFast_RGB888_N_RESIZE_4x4), kAny24, kAny24, Order::other, 'n', -1, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_2x2), kAny24, kAny24, Order::same, 'n', -1, 2},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE), kAny24, kAny24, Order::same, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_Nearest), kAny24, kAny24, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast), kAny24, kAny24, Order::any, 'a', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB32_TO_RGB24_NORESAMPLE), kAny32, kAny24, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R8G8B8_4x4), {QPX_FORMAT_BGR24}, kAnyYuvButYuyv, Order::any, 'u', 0, 4},
    {QPX_KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R8G8B8_2x2), {QPX_FORMAT_BGR24}, kAnyYuvButYuyv, Order::any, 'u', 0, 2},
    {QPX_KERNEL(RGB2YUVFast_NORESAMPLE), kAny24, kAnyYuvButYuyv, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2YUVFast), kAny24, kAnyYuvButYuyv, Order::any, 'a', -1, 1},
    {QPX_KERNEL(NV21_To_RGB888_NoResample_1x1), kAnyNv, {QPX_FORMAT_BGR24}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE), kAnyYuv, {QPX_FORMAT_BGR24}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE_B8G8R8), kAnyYuv, {QPX_FORMAT_RGB24}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_R8G8B8_Nearest), kAnyYuv, {QPX_FORMAT_BGR24}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_B8G8R8_Nearest), kAnyYuv, {QPX_FORMAT_RGB24}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(YUV2RGBFast), kAnyYuv, {QPX_FORMAT_BGR24}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_B8G8R8), kAnyYuv, {QPX_FORMAT_RGB24}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R90), kAny24, kAny24, Order::same, 'n', 3, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_R180), kAny24, kAny24, Order::same, 'n', 6, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB888_N_RESIZE_4x4_HORIZONTAL), kAny24, kAny24, Order::same, 'n', 2, 4},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_2x2_R270_Dither), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 5, 2, true},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_2x2_Dither), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 0, 2, true},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_4x4_R270), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 5, 4},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_2x2_R270), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 5, 2},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_4x4), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_2x2), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 0, 2},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_1x1), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(NV21_To_RGB565_NoResample_1x1_R90AndVertical), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(NV21_TO_RGBFast_R5G6B5_NoResample_2x2), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', -1, 2},
    {QPX_KERNEL(NV21_TO_RGBFast_R5G6B5_NoResample), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(NV21_TO_RGBFast_R5G6B5_Nearest_2x2), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'n', -1, 2},
    {QPX_KERNEL(NV21_TO_RGBFast_R5G6B5_Nearest), kAnyNv, {QPX_FORMAT_RGB565}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE_R5G6B5_4x4), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'u', -1, 4},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE_R5G6B5_4x4_Dither), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'u', -1, 4},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE_B5G6R5_4x4), kAnyYuv, {QPX_FORMAT_BGR565}, Order::any, 'u', -1, 4},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE_R5G6B5), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_NORESAMPLE_B5G6R5), kAnyYuv, {QPX_FORMAT_BGR565}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_R5G6B5_Nearest_2x2), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'n', -1, 2},
    {QPX_KERNEL(YUV2RGBFast_R5G6B5_Nearest), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_B5G6R5_Nearest), kAnyYuv, {QPX_FORMAT_BGR565}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_R5G6B5_NODither_2x2), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'a', -1, 2},
    {QPX_KERNEL(YUV2RGBFast_R5G6B5_NODither), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_R5G6B5), kAnyYuv, {QPX_FORMAT_RGB565}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(YUV2RGBFast_B5G6R5), kAnyYuv, {QPX_FORMAT_BGR565}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(RGB888Fast_NORESAMPLE_R5G6B5_Dither), kAny24, kAny16, Order::any, 'u', -1, 1, true},
    {QPX_KERNEL(RGB888Fast_NORESAMPLE_R5G6B5), kAny24Or32, kAny16, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB888Fast_R5G6B5_Resample_4x4), kAny24, kAny16, Order::same, 'n', -1, 4},
    {QPX_KERNEL(BGR888Fast_R5G6B5_Resample_4x4), kAny24, kAny16, Order::other, 'n', -1, 4},
    {QPX_KERNEL(RGB888Fast_R5G6B5_Resample), kAny24Or32, kAny16, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB888Fast_R5G6B5_Resample_BILINEAR_2x2), kAny24, kAny16, Order::any, 'b', 0, 2},
    {QPX_KERNEL(RGB888Fast_R5G6B5_Resample_BILINEAR_1x1), kAny24, kAny16, Order::any, 'b', 0, 1},
    {QPX_KERNEL(RGB888Fast_R5G6B5), kAny24Or32, kAny16, Order::any, 'a', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_NORESAMPLE_R5G6B5_2x2_R90), kAny16, kAny16, Order::any, 'u', 3, 2},
    {QPX_KERNEL(RGB2RGBFast_NORESAMPLE_R5G6B5), kAny16, kAnyRgb, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_R5G6B5_N_RESIZE_4x4), kAny16, kAny16, Order::same, 'n', -1, 4},
    {QPX_KERNEL(RGB2RGBFast_R5G6B5_N_Resize), kAny16, kAny16, Order::same, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_R5G6B5_Nearest), kAny16, kAnyRgb, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_R5G6B5_BILINAR_RESIZE_2x2), kAny16, kAny16, Order::any, 'b', -1, 2},
    {QPX_KERNEL(RGB2RGBFast_R5G6B5), kAny16, kAnyRgb, Order::any, 'a', -1, 1},
    {QPX_KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R5G6B5_4x4), {QPX_FORMAT_RGB565}, kAnyPlanar, Order::any, 'u', 0, 4},
    {QPX_KERNEL(RGB2YUVFast_NORESAMPLE_NOROTATE_R5G6B5_2x2), {QPX_FORMAT_RGB565}, kAnyPlanar, Order::any, 'u', 0, 2},
    {QPX_KERNEL(RGB2NV12Fast_NORESAMPLE_NOROTATE_R5G6B5_4x4), kAny16, {QPX_FORMAT_NV12}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(RGB2NV12Fast_NORESAMPLE_R5G6B5), kAny16, {QPX_FORMAT_NV12}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2YUYVFast_NORESAMPLE_NOROTATE_R5G6B5_4x4), {QPX_FORMAT_RGB565}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(RGB2YUYVFast_NORESAMPLE_R5G6B5), {QPX_FORMAT_RGB565}, {QPX_FORMAT_YUYV}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(BGR2YUYVFast_NORESAMPLE_NOROTATE_B5G6R5_4x4), {QPX_FORMAT_BGR565}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(BGR2YUYVFast_NORESAMPLE_B5G6R5), {QPX_FORMAT_BGR565}, {QPX_FORMAT_YUYV}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2YUVFast_NORESAMPLE_R5G6B5), kAny16, kAnyYuv, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2YUVFast_R5G6B5), kAny16, kAnyYuv, Order::any, 'a', -1, 1},
    {QPX_KERNEL(I420_To_I422_Fast_NORESAMPLE_90), kAny420, kAnyPlanar422, Order::any, 'u', 3, 1},
    {QPX_KERNEL(I420_To_I422_Fast_90), kAny420, kAnyPlanar422, Order::any, 'a', 3, 1},
    {QPX_KERNEL(YUV_To_YUV_NOREAMPLE_ROTATE_Fast_4x4), kAnyPlanar, kAnyPlanar, Order::any, 'u', -1, 4},
    {QPX_KERNEL(YUV_To_YUV_NOREAMPLE_ROTATE_Fast), kAnyPlanar, kAnyPlanar, Order::any, 'u', -1, 1},
    {QPX_KERNEL(I420_To_I420_REAMPLE_NOROTATE_BILINEAR_Fast_4x4), {QPX_FORMAT_I420}, {QPX_FORMAT_I420}, Order::any, 'b', 0, 4},
    {QPX_KERNEL(I420_To_I420_REAMPLE_NOROTATE_BILINEAR_Fast_1x1), {QPX_FORMAT_I420}, {QPX_FORMAT_I420}, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I420_To_I420_REAMPLE_NOROTATE_BILINEAR_Fast), kAny420, kAny420, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I420_To_I420_REAMPLE_NOROTATE_Fast), kAny420, kAny420, Order::any, 'n', 0, 1},
    {QPX_KERNEL(I422H_To_I422H_REAMPLE_NOROTATE_BILINEAR_Fast), kAny422H, kAny422H, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I422H_To_I422H_REAMPLE_NOROTATE_Fast), kAny422H, kAny422H, Order::any, 'n', 0, 1},
    {QPX_KERNEL(I422V_To_I422V_REAMPLE_BILINEAR_NOROTATE_Fast), kAny422V, kAny422V, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I422V_To_I422V_REAMPLE_NOROTATE_Fast), kAny422V, kAny422V, Order::any, 'n', 0, 1},
    {QPX_KERNEL(I444_To_I444_REAMPLE_BILINEAR_NOROTATE_Fast), kAny444, kAny444, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I444_To_I444_REAMPLE_NOROTATE_Fast), kAny444, kAny444, Order::any, 'n', 0, 1},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_SXY), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 1, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_SXY), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 1, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_SXY), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 1, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_R180), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 6, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_R180), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 6, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_R180), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 6, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_MLR), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 2, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_MLR), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 2, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_MLR), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 2, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_R90), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_R90), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_R90), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_2x2_R270), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 5, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_NORESAMPLE_2x2_R270), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 5, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_NORESAMPLE_2x2_R270), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 5, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_2x2), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 0, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_2x2), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', 0, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_2x2), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', 0, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_2x2_SXY), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 1, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_2x2_SXY), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', 1, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_2x2_SXY), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', 1, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_2x2_R180), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 6, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_2x2_R180), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', 6, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_2x2_R180), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', 6, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_2x2_MLR), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 2, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_2x2_MLR), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', 2, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_2x2_MLR), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', 2, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_2x2_R90), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 3, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_2x2_R90), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', 3, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_2x2_R90), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', 3, 2},
    {QPX_KERNEL(I420_To_YUYV_Fast_2x2_R270), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 5, 2},
    {QPX_KERNEL(RGB24_To_YUYV_Fast_2x2_R270), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', 5, 2},
    {QPX_KERNEL(Gray_To_YUYV_Fast_2x2_R270), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', 5, 2},
    {QPX_KERNEL(I420toYUYVFast_NORESAMPLE), {QPX_FORMAT_I420}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(RGB24toYUYVFast_NORESAMPLE), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(GraytoYUYVFast_NORESAMPLE), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(I420toYUYVFast_NORESAMPLE_90), {QPX_FORMAT_I420}, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(RGB24toYUYVFast_NORESAMPLE_90), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(GraytoYUYVFast_NORESAMPLE_90), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(I420_To_YUYV_Fast_NORESAMPLE_90), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(I420_To_YUYV_NOREAMPLE_ROTATE_Fast), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB24_To_YUYV_NOREAMPLE_ROTATE_Fast), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(Gray_To_YUYV_NOREAMPLE_ROTATE_Fast), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(I420toYUYVFast_RESAMPLE), {QPX_FORMAT_I420}, {QPX_FORMAT_YUYV}, Order::any, 'n', 0, 1},
    {QPX_KERNEL(RGB24toYUYVFast_RESAMPLE), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'n', 0, 1},
    {QPX_KERNEL(GraytoYUYVFast_RESAMPLE), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'n', 0, 1},
    {QPX_KERNEL(I420toYUYVFast_RESAMPLE_90), {QPX_FORMAT_I420}, {QPX_FORMAT_YUYV}, Order::any, 'n', 3, 1},
    {QPX_KERNEL(I420_To_YUYV_Fast_90), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', 3, 1},
    {QPX_KERNEL(I420toYUYVFast), {QPX_FORMAT_I420}, {QPX_FORMAT_YUYV}, Order::any, 'a', 0, 1},
    {QPX_KERNEL(I420_To_YUYV_Fast), kAnyPlanar, {QPX_FORMAT_YUYV}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(RGB24_To_YUYV_Fast), kAny24, {QPX_FORMAT_YUYV}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(Gray_To_YUYV_Fast), {QPX_FORMAT_GREY8}, {QPX_FORMAT_YUYV}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(YUYVtoYUYVFast_NORESAMPLE), {QPX_FORMAT_YUYV}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(YUYVtoYUYVFast_NORESAMPLE_90), {QPX_FORMAT_YUYV}, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(YUYVtoYUYVFast_NORESAMPLE_180), {QPX_FORMAT_YUYV}, {QPX_FORMAT_YUYV}, Order::any, 'u', 6, 1},
    {QPX_KERNEL(YUYVtoYUYVFast_NORESAMPLE_270), {QPX_FORMAT_YUYV}, {QPX_FORMAT_YUYV}, Order::any, 'u', 5, 1},
    {QPX_KERNEL(YUV2NV21_LookupTable_R0_4x4), kAnyYuv, kAnyNv, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YUV2NV21_LookupTable_R0), kAnyYuv, kAnyNv, Order::any, 'u', 0, 1},
    {QPX_KERNEL(YUV2NV21_LookupTable_Nearest_RESAMPLE_R0_1x1), kAnyYuv, kAnyNv, Order::any, 'n', 0, 1},
    {QPX_KERNEL(YUV2NV21_LookupTable_BILINEAR_NOROTATE_Fast), kAnyYuv, kAnyNv, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I420_To_NV21_Fast), kAnyPlanar, kAnyNv, Order::any, 'a', -1, 1},
    {QPX_KERNEL(I420toRGB32_Fast_NORESAMPLE), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(I420toRGB32_Fast_NORESAMPLE_90), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(I420toRGB32_Fast_NORESAMPLE_1x1), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(YV12toRGB32_Fast_NORESAMPLE_4x4), {kYv12}, {QPX_FORMAT_BGRA32}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YV12toRGB32_Fast_NORESAMPLE_1x1), {kYv12}, {QPX_FORMAT_BGRA32}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(I420toBGR32_Fast_NORESAMPLE), {QPX_FORMAT_I420}, {QPX_FORMAT_RGBA32}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(NV21toBGR32_Fast_NoResize_R90_2x2), kAnyNv, {QPX_FORMAT_RGBA32}, Order::any, 'u', 3, 2},
    {QPX_KERNEL(I420toRGB32_R0_Fast_BilNear_4x4), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'b', 0, 4},
    {QPX_KERNEL(I420toRGB32_Fast_BilNear), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I420toBGR32_Fast_4x4), {QPX_FORMAT_I420}, {QPX_FORMAT_RGBA32}, Order::any, 'a', 0, 4},
    {QPX_KERNEL(I420toBGR32_Fast_BilNear), {QPX_FORMAT_I420}, {QPX_FORMAT_RGBA32}, Order::any, 'b', 0, 1},
    {QPX_KERNEL(I420toRGB32_Fast_90), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'a', 3, 4},
    {QPX_KERNEL(I420toRGB32_Fast_90_1x1), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'a', 3, 1},
    {QPX_KERNEL(I420toRGB32_Fast), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'a', 0, 4},
    {QPX_KERNEL(I420toRGB32_Fast_1x1), {QPX_FORMAT_I420}, {QPX_FORMAT_BGRA32}, Order::any, 'a', 0, 1},
    {QPX_KERNEL(I420toRGB32_Any_Fast_1x1), kAny420, {QPX_FORMAT_BGRA32}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(I420toBGR32_Any_Fast_1x1), kAny420, {QPX_FORMAT_RGBA32}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(I444toRGB32_Any_Fast_1x1), kAny444, {QPX_FORMAT_BGRA32}, Order::any, 'a', -1, 1},
    {QPX_KERNEL(I422HtoBGR32_Fast_4x4), kAny422H, {QPX_FORMAT_RGBA32}, Order::any, 'a', 0, 4},
    {QPX_KERNEL(NV21toBGR32_Fast_BilNear), kAnyNv, {QPX_FORMAT_RGBA32}, Order::any, 'b', 0, 1},
    {QPX_KERNEL(NV21toBGR32_Fast_BilNear_R90), kAnyNv, {QPX_FORMAT_RGBA32}, Order::any, 'b', 3, 1},
    {QPX_KERNEL(GreytoBGR32_Fast_BilNear), {QPX_FORMAT_GREY8}, {QPX_FORMAT_RGBA32}, Order::any, 'b', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGBA_N_RESIZE_4x4), {QPX_FORMAT_BGRA32}, {QPX_FORMAT_BGRA32}, Order::any, 'n', 0, 4},
    {QPX_KERNEL(RGB32toRGB32_Fast_Resample_4x4), {QPX_FORMAT_BGRA32}, {QPX_FORMAT_BGRA32}, Order::any, 'n', -1, 4},
    {QPX_KERNEL(RGB32toYUYV_Fast_NORESAMPLE), {QPX_FORMAT_BGRA32}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(RGB32toYUYV_Fast_NORESAMPLE_90), {QPX_FORMAT_BGRA32}, {QPX_FORMAT_YUYV}, Order::any, 'u', 3, 1},
    {QPX_KERNEL(RGB32toYUYV_Fast_NORESAMPLE_180), {QPX_FORMAT_BGRA32}, {QPX_FORMAT_YUYV}, Order::any, 'u', 6, 1},
    {QPX_KERNEL(RGB32toYUYV_Fast_NORESAMPLE_270), {QPX_FORMAT_BGRA32}, {QPX_FORMAT_YUYV}, Order::any, 'u', 5, 1},
    {QPX_KERNEL(BGR32toYUYV_Fast_NORESAMPLE), {QPX_FORMAT_RGBA32}, {QPX_FORMAT_YUYV}, Order::any, 'u', 0, 1},
    {QPX_KERNEL(BGR32toYUYV_Fast_NORESAMPLE_HFlip), {QPX_FORMAT_RGBA32}, {QPX_FORMAT_YUYV}, Order::any, 'u', 2, 1},
    {QPX_KERNEL(RGB32toNV12_Fast_NORESAMPLE_4x4), kAny32, {QPX_FORMAT_NV12}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(RGB32toNV12_Fast_NORESAMPLE), kAny32, {QPX_FORMAT_NV12}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB32toNV21_Fast_NORESAMPLE_4x4), kAny32, {QPX_FORMAT_NV21}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(RGB32toNV21_Fast_NORESAMPLE), kAny32, {QPX_FORMAT_NV21}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUYVtoRGB32_Fast_NORESAMPLE), {QPX_FORMAT_YUYV}, {QPX_FORMAT_BGRA32}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(YUYVtoBGR32_Fast_NORESAMPLE), {QPX_FORMAT_YUYV}, {QPX_FORMAT_RGBA32}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_BGR32_N_RESIZE_4x4_R0), {QPX_FORMAT_RGBA32}, {QPX_FORMAT_RGBA32}, Order::any, 'n', 0, 4},
    {QPX_KERNEL(RGB2RGBFast_BGR32_N_RESIZE_4x4), {QPX_FORMAT_RGBA32}, {QPX_FORMAT_RGBA32}, Order::any, 'n', -1, 4},
    {QPX_KERNEL(RGB2RGBFast_BGR32_N_RESIZE_1x1), {QPX_FORMAT_RGBA32}, {QPX_FORMAT_RGBA32}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB32_N_RESIZE), kAny32, kAny32, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB32_TO_RGB32__BILINEARN_RESIZE_4x4), kAny32, kAny32, Order::any, 'b', -1, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB32_TO_RGB32__BILINEARN_RESIZE_1x1), kAny32, kAny32, Order::any, 'b', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_BGR32_TO_BGR24_N_RESIZE_4x4), kAny32, kAny24, Order::same, 'n', -1, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB32_TO_RGB24_N_RESIZE_2x2), kAny32, kAny24, Order::any, 'n', -1, 2},
    {QPX_KERNEL(RGB2RGBFast_RGB32_TO_RGB24_N_RESIZE_1x1), kAny32, kAny24, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB24_To_RGB32_NO_NO_AlphaSpecial), kAny24, kAny32, Order::any, 'u', 0, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB24_TO_RGB32__NoResample), kAny24, kAny32, Order::any, 'u', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_BGR24_TO_BGR32_N_RESIZE_4x4), kAny24, kAny32, Order::same, 'n', -1, 4},
    {QPX_KERNEL(RGB2RGBFast_RGB24_TO_RGB32__Nearest_RESIZE_1x1), kAny24, kAny32, Order::any, 'n', -1, 1},
    {QPX_KERNEL(RGB2RGBFast_RGB24_TO_RGB32__BILINEARN_RESIZE_2x2), kAny24, kAny32, Order::any, 'b', -1, 2},
    {QPX_KERNEL(RGB2RGBFast_RGB24_TO_RGB32__BILINEARN_RESIZE_1x1), kAny24, kAny32, Order::any, 'b', -1, 1},
    {QPX_KERNEL(NV12_TO_RGB32Fast_NORESAMPLE_4x4), {QPX_FORMAT_NV12}, kAny32, Order::any, 'u', -1, 4},
    {QPX_KERNEL(NV12_TO_RGB32Fast_NORESAMPLE), {QPX_FORMAT_NV12}, kAny32, Order::any, 'u', -1, 1},
    {QPX_KERNEL(NV21_TO_RGB32Fast_NORESAMPLE_4x4), {QPX_FORMAT_NV21}, kAny32, Order::any, 'u', -1, 4},
    {QPX_KERNEL(NV21_TO_RGB32Fast_NORESAMPLE), {QPX_FORMAT_NV21}, kAny32, Order::any, 'u', -1, 1},
    {QPX_KERNEL(NV21toRGB32_Fast_BilNear), kAnyNv, kAny32, Order::any, 'b', -1, 1},
    {QPX_KERNEL(I444_TO_RGB32Fast_NORESAMPLE), kAny444, kAny32, Order::any, 'u', -1, 1},
    {QPX_KERNEL(I444toBGR32_Fast_BilNear), kAny444, {QPX_FORMAT_RGBA32}, Order::any, 'b', -1, 1},
    {QPX_KERNEL(Gray2Gray_C_NORESAMPLE_FAST_4x4), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'u', -1, 4},
    {QPX_KERNEL(Gray2Gray_C_NORESAMPLE_FAST), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'u', -1, 1},
    {QPX_KERNEL(Gray2Gray_C_RESAMPLE_BILINEAR_NOROTATE_4X4_FAST), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'b', 0, 4},
    {QPX_KERNEL(Gray2Gray_C_RESAMPLE_BILINEAR_NOROTATE_FAST), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'b', 0, 1},
    {QPX_KERNEL(Gray2Gray_C_RESAMPLE_NOROTATE_FAST), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'n', 0, 1},
    {QPX_KERNEL(Gray_To_Gray_BILINEAR_Fast), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'b', -1, 1},
    {QPX_KERNEL(Gray_To_Gray_Nearest_Fast), {QPX_FORMAT_GREY8}, {QPX_FORMAT_GREY8}, Order::any, 'n', -1, 1},
    {QPX_KERNEL(I422_TO_I420_NORESAMPLE_4x4), kAnyPlanar422, kAny420, Order::any, 'u', 0, 4},
    {QPX_KERNEL(I422_TO_I420_NORESAMPLE), kAnyPlanar422, kAny420, Order::any, 'u', 0, 1},
    {QPX_KERNEL(I420_Bewteen_YV12_NORESAMPLE_4x4), kAny420, kAny420, Order::other, 'u', 0, 4},
    {QPX_KERNEL(I420_NORESAMPLE_4x4_R90), kAny420, kAny420, Order::any, 'u', 3, 4},
    {QPX_KERNEL(YUV_TO_YUV_NORESAMPLE_NO_4x4), kAnyPlanar, kAnyPlanar, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YUV_TO_YUV_NORESAMPLE_NO_1x1), kAnyPlanar, kAnyPlanar, Order::any, 'u', 0, 1},
    {QPX_KERNEL(NV21VtoI420Fast_NORESAMPLE_R270_4x4), kAnyNv, kAny420, Order::any, 'u', 5, 4},
    {QPX_KERNEL(NV21VtoI420Fast_NORESAMPLE_R270_2x2), kAnyNv, kAny420, Order::any, 'u', 5, 2},
    {QPX_KERNEL(NV21toI420Fast_NORESAMPLE_R0_4x4), kAnyNv, kAny420, Order::any, 'u', 0, 4},
    {QPX_KERNEL(NV21toI420Fast_Nearest_RESAMPLE_R0_4x4), kAnyNv, kAny420, Order::any, 'n', 0, 4},
    {QPX_KERNEL(NV21toI420Fast_Nearest_RESAMPLE_R0_1x1), kAnyNv, kAny420, Order::any, 'n', 0, 1},
    {QPX_KERNEL(YUYVtoI420Fast_NORESAMPLE_R0_4x4), {QPX_FORMAT_YUYV}, kAny420, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YUV422toI420Fast_NORESAMPLE_R0_4x4), kAnyPacked, kAny420, Order::any, 'u', 0, 4},
    {QPX_KERNEL(NVXYtoI444_Fast_NORESAMPLE_R0_4x4), kAnyPairs, kAny444, Order::any, 'u', 0, 4},
    {QPX_KERNEL(NVXYtoYUV_Fast_NORESAMPLE_R0_4x4), kAnyPairs, kAnyPlanar, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YUYVtoYUYVFast_N_RESAMPLE_R0_4x4), {QPX_FORMAT_YUYV}, {QPX_FORMAT_YUYV}, Order::any, 'n', 0, 4},
    {QPX_KERNEL(YUV422toYUV422Fast_N_RESAMPLE_R0_4x4), kAnyPacked, kAnyPacked, Order::any, 'n', 0, 4},
    {QPX_KERNEL(YUV422toYUV422Fast_NORESAMPLE_R90_4x4), kAnyPacked, kAnyPacked, Order::any, 'u', 3, 4},
    {QPX_KERNEL(YUV422toYUV422Fast_NORESAMPLE_R180_4x4), kAnyPacked, kAnyPacked, Order::any, 'u', 6, 4},
    {QPX_KERNEL(YUV422toYUV422Fast_NORESAMPLE_R270_4x4), kAnyPacked, kAnyPacked, Order::any, 'u', 5, 4},
    {QPX_KERNEL(YUV422toYUV422Fast_NORESAMPLE_H_Flip_4x4), kAnyPacked, kAnyPacked, Order::any, 'u', 2, 4},
    {QPX_KERNEL(YUV422toYUV422Fast_NORESAMPLE_V_Flip_4x4), kAnyPacked, kAnyPacked, Order::any, 'u', 4, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_R0_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_R90_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 3, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_R180_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 6, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_R270_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 5, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_SwapXY_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 1, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_H_Flip_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 2, 4},
    {QPX_KERNEL(YUVtoYUV422Fast_NORESAMPLE_V_Flip_4x4), kAnyPlanarOrGrey, kAnyPacked, Order::any, 'u', 4, 4},
    {QPX_KERNEL(NV12_TO_NV21_NORESAMPLE_4x4), kAnyNv, kAnyNv, Order::other, 'u', 0, 4},
    {QPX_KERNEL(NV12_TO_NV21_NORESAMPLE), kAnyNv, kAnyNv, Order::other, 'u', 0, 1},
    {QPX_KERNEL(NV12_TO_NV21_NORESAMPLE_R180_4x4), kAnyNv, kAnyNv, Order::other, 'u', 6, 4},
    {QPX_KERNEL(NV12_TO_NV21_NORESAMPLE_R180), kAnyNv, kAnyNv, Order::other, 'u', 6, 1},
    {QPX_KERNEL(NV12_TO_NV21_NORESAMPLE_Rotate), kAnyNv, kAnyNv, Order::other, 'u', 5, 1},
    {QPX_KERNEL(YUV422SP_TO_NV21_NORESAMPLE_4x4), kAnyNv422, kAnyNv, Order::any, 'u', 0, 4},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_R0_1x1), kAnyNv, kAnyNv, Order::any, 'u', 0, 1},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_R90_4x4), kAnyNv, kAnyNv, Order::any, 'u', 3, 4},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_R180_4x4), kAnyNv, kAnyNv, Order::any, 'u', 6, 4},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_R270_4x4), kAnyNv, kAnyNv, Order::any, 'u', 5, 4},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_H_Flip_4x4), kAnyNv, kAnyNv, Order::any, 'u', 2, 4},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_V_Flip_4x4), kAnyNv, kAnyNv, Order::any, 'u', 4, 4},
    {QPX_KERNEL(NV21toNV21Fast_NORESAMPLE_H_Flip_2x2), kAnyNv, kAnyNv, Order::any, 'u', 2, 2},
    {QPX_KERNEL(NV12_TO_NV12_NORESAMPLE_Rotate), kAnyNv, kAnyNv, Order::same, 'u', 5, 1},
    {QPX_KERNEL(NV12_TO_NV12_NORESAMPLE_Rotate180), kAnyNv, kAnyNv, Order::same, 'u', 6, 1},
    {QPX_KERNEL(NV21toNV21Fast_N_RESAMPLE_R0_4x4), kAnyNv, kAnyNv, Order::any, 'n', 0, 4},
    {QPX_KERNEL(NV21_To_NV21_REAMPLE_NOROTATE_BILINEAR_Fast_2x2), kAnyNv, kAnyNv, Order::any, 'b', 0, 2},
    {QPX_KERNEL(NV21_To_NV21_REAMPLE_NOROTATE_BILINEAR_Fast), kAnyNv, kAnyNv, Order::any, 'b', 0, 1},
    {QPX_KERNEL(NV12_To_NV12_Fast_R90_2x2), kAnyNv, kAnyNv, Order::any, 'n', 3, 2},
    {QPX_KERNEL(NV12_To_NV12_Fast_Bilinear_R90_2x2), kAnyNv, kAnyNv, Order::any, 'b', 3, 2},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_R0_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 0, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_R90_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 3, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_R180_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 6, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_R270_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 5, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_SwapXY_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 1, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_H_Flip_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 2, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_V_Flip_4x4), kAny420OrGrey, kAnyNv, Order::any, 'u', 4, 4},
    {QPX_KERNEL(YUVtoNV21Fast_NORESAMPLE_R0_1x1), kAny420OrGrey, kAnyNv, Order::any, 'u', 0, 1},
    {QPX_KERNEL(YUVtoNVXY_Fast_NORESAMPLE_R0_4x4), kAnyPlanar, kAnyPairs, Order::any, 'u', 0, 4},
    {QPX_KERNEL(MCC_I420_Bilinear), {QPX_FORMAT_I420}, {QPX_FORMAT_I420}, Order::any, 'b', 0, 4},
    {QPX_KERNEL(MCC_I420_Bilinear_90), {QPX_FORMAT_I420}, {QPX_FORMAT_I420}, Order::any, 'b', 3, 4},
    {QPX_KERNEL(MCC_I420_Bilinear_270), {QPX_FORMAT_I420}, {QPX_FORMAT_I420}, Order::any, 'b', 5, 4},
    {QPX_KERNEL(MCC_I420_NV12_Resample), {QPX_FORMAT_I420}, {QPX_FORMAT_NV12}, Order::any, 'n', 0, 4},
    {QPX_KERNEL(MCC_I420_NV12_Resample_90), {QPX_FORMAT_I420}, {QPX_FORMAT_NV12}, Order::any, 'n', 3, 4},
    {QPX_KERNEL(MCC_I420_NV12_Resample_270), {QPX_FORMAT_I420}, {QPX_FORMAT_NV12}, Order::any, 'n', 5, 4},
    {QPX_KERNEL(MCC_I420_NV12_NoResample), {QPX_FORMAT_I420}, {QPX_FORMAT_NV12}, Order::any, 'u', 0, 4},
    {QPX_KERNEL(MCC_I420_NV21_NoResampleRotate), {QPX_FORMAT_I420}, {QPX_FORMAT_NV21}, Order::any, 'u', 5, 4},
  };
  // clang-format on
  return kTable;
}

std::vector<KernelRow> expandedTable() {
  std::vector<KernelRow> rows;
  for (const TableRow& row : table()) {
    for (const uint32_t from : row.from) {
      for (const uint32_t to : row.to) {
        if (!isInOrder(row.order, from, to)) continue;
        for (const char sampling :
             row.sampling == 'a' ? std::string("unb") : std::string(1, row.sampling)) {
          rows.push_back({row.name, row.kernel, from, to, sampling, row.orient, row.block,
                          row.sampling == 'u', !row.dithersByItself});
        }
      }
    }
  }
  return rows;
}

}  // namespace

const std::vector<KernelRow>& kernelRows() {
  static const std::vector<KernelRow> kRows = expandedTable();
  return kRows;
}

}  // namespace qpx::testing
