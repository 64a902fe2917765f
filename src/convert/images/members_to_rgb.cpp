// Conversions to RGB by their exported names.
#include "convert/images/conversions.h"

using namespace qpx;

#define QPX_YUV_TO_RGB24(from, to, name)                   \
  int32_t name(const McvImage* src, const McvImage* dst) { \
    return yuvToPixels({MCV_##from, MCV_##to}, src, dst);  \
  }
QPX_YUV_TO_RGB24(YUYV, BGR888, mcvColorYUYVtoBGR888u8)
QPX_YUV_TO_RGB24(YUYV, RGB888, mcvColorYUYVtoRGB888u8)
QPX_YUV_TO_RGB24(I420, BGR888, mcvColorI420toBGR888u8)
QPX_YUV_TO_RGB24(I420, RGB888, mcvColorI420toRGB888u8)
QPX_YUV_TO_RGB24(YV12, BGR888, mcvColorYV12toBGR888u8)
QPX_YUV_TO_RGB24(YV12, RGB888, mcvColorYV12toRGB888u8)
QPX_YUV_TO_RGB24(NV21, RGB888, mcvColorNV21toRGB888u8)
#undef QPX_YUV_TO_RGB24

#define QPX_YUV_TO_RGB32(from, to, name)                                  \
  int32_t name(const McvImage* src, const McvImage* dst, uint8_t alpha) { \
    return yuvToPixels({MCV_##from, MCV_##to}, src, dst, alpha);          \
  }
QPX_YUV_TO_RGB32(YUYV, RGBA8888, mcvColorYUYVtoRGBA8888u8)
QPX_YUV_TO_RGB32(I420, BGRA8888, mcvColorI420toBGRA8888u8)
QPX_YUV_TO_RGB32(I420, RGBA8888, mcvColorI420toRGBA8888u8)
QPX_YUV_TO_RGB32(NV12, BGRA8888, mcvColorNV12toBGRA8888u8)
QPX_YUV_TO_RGB32(NV12, RGBA8888, mcvColorNV12toRGBA8888u8)
QPX_YUV_TO_RGB32(NV21, BGRA8888, mcvColorNV21toBGRA8888u8)
QPX_YUV_TO_RGB32(LPI422H, BGRA8888, mcvColorLPI422HtoBGRA8888u8)
QPX_YUV_TO_RGB32(LPI422H, RGBA8888, mcvColorLPI422HtoRGBA8888u8)
#undef QPX_YUV_TO_RGB32

int32_t mcvColorNV21toBGR888u8(const McvImage* src, const McvImage* dst) {
  return yuvToPixels({MCV_NV21, MCV_BGR888}, src, dst, 0, Arithmetic::fine);
}

int32_t mcvColorNV21toRGBA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha) {
  return yuvToPixels({MCV_NV21, MCV_RGBA8888}, src, dst, alpha, Arithmetic::fine);
}

int32_t mcvColorNV21ToRGBA8888u8_ARMv7a(const McvImage* src, const McvImage* dst, uint8_t alpha) {
  return nv21ToRgbaCrossed(src, dst, alpha);
}

#define QPX_PIXELS_TO_565(from, to, name)                  \
  int32_t name(const McvImage* src, const McvImage* dst) { \
    return pixelsTo565({MCV_##from, MCV_##to}, src, dst);  \
  }
QPX_PIXELS_TO_565(BGR888, BGR565, mcvColorBGR888toBGR565u8)
QPX_PIXELS_TO_565(BGR888, RGB565, mcvColorBGR888toRGB565u8)
QPX_PIXELS_TO_565(RGB888, BGR565, mcvColorRGB888toBGR565u8)
QPX_PIXELS_TO_565(RGB888, RGB565, mcvColorRGB888toRGB565u8)
#undef QPX_PIXELS_TO_565

#define QPX_MOVE_PIXELS(from, to, move, name)                                    \
  int32_t name(const McvImage* src, const McvImage* dst) {                       \
    return movePixels({MCV_##from, MCV_##to}, &simd::PixelRows::move, src, dst); \
  }
QPX_MOVE_PIXELS(BGR888, ARGB8888, argb32OfBgr24, mcvColorBGR888toARGB8888u8)
QPX_MOVE_PIXELS(RGB888, ARGB8888, argb32OfRgb24, mcvColorRGB888toARGB8888u8)
QPX_MOVE_PIXELS(RGB888, BGR888, swapRgb24, mcvColorRGB888toBGR888u8)
QPX_MOVE_PIXELS(RGB888, BGR888, swapRgb24, mcvColorRGB888toBGR888u8_2)
QPX_MOVE_PIXELS(RGBA8888, BGR888, bgr24OfRgba32, mcvColorRGBA8888toBGR888u8)
#undef QPX_MOVE_PIXELS
