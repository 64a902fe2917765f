// Conversions to YUV by their exported names.
#include "convert/images/conversions.h"

using namespace qpx;

#define QPX_PIXELS_TO_YUV(from, to, name)                  \
  int32_t name(const McvImage* src, const McvImage* dst) { \
    return pixelsToYuv({MCV_##from, MCV_##to}, src, dst);  \
  }
QPX_PIXELS_TO_YUV(BGR888, YUYV, mcvColorBGR888toYUYVu8)
QPX_PIXELS_TO_YUV(BGR888, YVYU, mcvColorBGR888toYVYUu8)
QPX_PIXELS_TO_YUV(BGR888, UYVY, mcvColorBGR888toUYVYu8)
QPX_PIXELS_TO_YUV(BGR888, VYUY, mcvColorBGR888toVYUYu8)
QPX_PIXELS_TO_YUV(BGR888, I420, mcvColorBGR888toI420u8)
QPX_PIXELS_TO_YUV(BGR888, I422H, mcvColorBGR888toI422Hu8)
QPX_PIXELS_TO_YUV(BGR888, NV12, mcvColorBGR888toNV12u8)
QPX_PIXELS_TO_YUV(BGR888, NV21, mcvColorBGR888toNV21u8)
QPX_PIXELS_TO_YUV(RGB888, YUYV, mcvColorRGB888toYUYVu8)
QPX_PIXELS_TO_YUV(RGB888, YVYU, mcvColorRGB888toYVYUu8)
QPX_PIXELS_TO_YUV(RGB888, UYVY, mcvColorRGB888toUYVYu8)
QPX_PIXELS_TO_YUV(RGB888, VYUY, mcvColorRGB888toVYUYu8)
QPX_PIXELS_TO_YUV(RGB888, I420, mcvColorRGB888toI420u8)
QPX_PIXELS_TO_YUV(RGB888, I422H, mcvColorRGB888toI422Hu8)
QPX_PIXELS_TO_YUV(RGB888, NV12, mcvColorRGB888toNV12u8)
QPX_PIXELS_TO_YUV(RGB888, NV21, mcvColorRGB888toNV21u8)
QPX_PIXELS_TO_YUV(BGRA8888, I420, mcvColorBGRA8888toI420u8)
QPX_PIXELS_TO_YUV(BGRA8888, NV12, mcvColorBGRA8888toNV12u8)
QPX_PIXELS_TO_YUV(BGRA8888, NV21, mcvColorBGRA8888toNV21u8)
QPX_PIXELS_TO_YUV(RGBA8888, YUYV, mcvColorRGBA8888toYUYVu8)
QPX_PIXELS_TO_YUV(RGBA8888, I420, mcvColorRGBA8888toI420u8)
QPX_PIXELS_TO_YUV(RGBA8888, NV12, mcvColorRGBA8888toNV12u8)
#undef QPX_PIXELS_TO_YUV

int32_t mcvColorRGBA8888toNV21u8(const McvImage* src, const McvImage* dst) {
  return pixelsToYuv({MCV_RGBA8888, MCV_NV21}, src, dst, kUsualChroma, Arithmetic::fine);
}

int32_t mcvColorBGRA8888toLPI422Hu8(const McvImage* src, const McvImage* dst) {
  return pixelsToYuv({MCV_BGRA8888, MCV_LPI422H}, src, dst, {128 / 2, 128 * 7 / 8});
}

int32_t mcvColorRGBA8888toLPI422Hu8(const McvImage* src, const McvImage* dst) {
  return pixelsToYuv({MCV_RGBA8888, MCV_LPI422H}, src, dst, {128 * 18 / 32, 128 * 23 / 32});
}

int32_t mcvColorRGB888toYV24u8(const McvImage* src, const McvImage* dst) {
  return rgbToYv24(src, dst);
}

#define QPX_YUV_TO_YUV(from, to, name)                     \
  int32_t name(const McvImage* src, const McvImage* dst) { \
    return yuvToYuv({MCV_##from, MCV_##to}, src, dst);     \
  }
QPX_YUV_TO_YUV(I420, YUYV, mcvColorI420toYUYVu8)
QPX_YUV_TO_YUV(I422V, YUYV, mcvColorI422VtoYUYVu8)
QPX_YUV_TO_YUV(I422H, YUYV, mcvColorI422HtoYUYVu8)
QPX_YUV_TO_YUV(I444, YUYV, mcvColorI444toYUYVu8)
QPX_YUV_TO_YUV(NV12, YUYV, mcvColorNV12toYUYVu8)
QPX_YUV_TO_YUV(NV21, YUYV, mcvColorNV21toYUYVu8)
QPX_YUV_TO_YUV(YUYV, I420, mcvColorYUYVtoI420u8)
QPX_YUV_TO_YUV(YUYV, I420, mcvColorYUYVtoI420u8_2)
QPX_YUV_TO_YUV(YUYV, NV12, mcvColorYUYVtoNV12u8)
QPX_YUV_TO_YUV(YUYV, NV12, mcvColorYUYVtoNV12u8_v2)
QPX_YUV_TO_YUV(YUYV, NV21, mcvColorYUYVtoNV21u8)
QPX_YUV_TO_YUV(YUYV, NV21, mcvColorYUYVtoNV21u8_v2)
QPX_YUV_TO_YUV(I422V, I420, mcvColorI422VtoI420u8)
QPX_YUV_TO_YUV(I422H, I420, mcvColorI422HtoI420u8)
QPX_YUV_TO_YUV(I444, I420, mcvColorI444toI420u8)
QPX_YUV_TO_YUV(NV12, I420, mcvColorNV12toI420u8)
QPX_YUV_TO_YUV(NV21, I420, mcvColorNV21toI420u8)
QPX_YUV_TO_YUV(I422V, NV12, mcvColorI422VtoNV12u8)
QPX_YUV_TO_YUV(I422H, NV12, mcvColorI422HtoNV12u8)
QPX_YUV_TO_YUV(I444, NV12, mcvColorI444toNV12u8)
QPX_YUV_TO_YUV(YUV, NV21, mcvColorYUVtoNV21u8)
QPX_YUV_TO_YUV(I420, NV21, mcvColorI420toNV21u8)
QPX_YUV_TO_YUV(I422V, NV21, mcvColorI422VtoNV21u8)
QPX_YUV_TO_YUV(I422H, NV21, mcvColorI422HtoNV21u8)
QPX_YUV_TO_YUV(I444, NV21, mcvColorI444toNV21u8)
QPX_YUV_TO_YUV(NV12, NV21, mcvColorNV12toNV21u8)
QPX_YUV_TO_YUV(YV12, NV21, mcvColorYV12toNV21u8)
QPX_YUV_TO_YUV(YV12, NV21, mcvColorYV12toNV21u8_2)
QPX_YUV_TO_YUV(I422V, LPI422H, mcvColorI422VtoLPI422Hu8)
QPX_YUV_TO_YUV(I422H, LPI422H, mcvColorI422HtoLPI422Hu8)
QPX_YUV_TO_YUV(I444, LPI422H, mcvColorI444toLPI422Hu8)
#undef QPX_YUV_TO_YUV

int32_t mcvColorNV21toYUVu8(const McvImage* src, const McvImage* dst) {
  return nv21ToYuv(src, dst);
}

int32_t mcvColorNV21toNV41(const McvImage* src, const McvImage* dst) {
  return nv21ToNv41(src, dst);
}
int32_t mcvColorNV21toNV41_2(const McvImage* src, const McvImage* dst) {
  return nv21ToNv41(src, dst);
}

int32_t mcvColorNV41toNV21(const McvImage* src, const McvImage* dst) {
  return nv41ToNv21(src, dst);
}
int32_t mcvColorNV41toNV21_2(const McvImage* src, const McvImage* dst) {
  return nv41ToNv21(src, dst);
}
