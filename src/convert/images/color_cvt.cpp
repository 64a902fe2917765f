// The dispatcher: a pair of formats to its member.
#include <iterator>

#include "convert/images/conversions.h"

namespace qpx {
namespace {

using Conversion = int32_t (*)(const McvImage*, const McvImage*);
using AlphaConversion = int32_t (*)(const McvImage*, const McvImage*, uint8_t);

struct Converter {
  constexpr Converter(FormatPair formatPair, Conversion member)
      : formats(formatPair), opaque(member) {}
  constexpr Converter(FormatPair formatPair, AlphaConversion member)
      : formats(formatPair), withAlpha(member) {}

  int32_t operator()(const McvImage* src, const McvImage* dst, uint8_t alpha) const {
    return withAlpha != nullptr ? withAlpha(src, dst, alpha) : opaque(src, dst);
  }

  FormatPair formats;
  Conversion opaque = nullptr;
  AlphaConversion withAlpha = nullptr;  // of those that write an alpha channel
};

constexpr Converter kConverters[] = {
    {{MCV_BGR888, MCV_BGR565}, mcvColorBGR888toBGR565u8},
    {{MCV_BGR888, MCV_RGB565}, mcvColorBGR888toRGB565u8},
    {{MCV_BGR888, MCV_ARGB8888}, mcvColorBGR888toARGB8888u8},
    {{MCV_BGR888, MCV_YUYV}, mcvColorBGR888toYUYVu8},
    {{MCV_BGR888, MCV_YVYU}, mcvColorBGR888toYVYUu8},
    {{MCV_BGR888, MCV_UYVY}, mcvColorBGR888toUYVYu8},
    {{MCV_BGR888, MCV_VYUY}, mcvColorBGR888toVYUYu8},
    {{MCV_BGR888, MCV_I420}, mcvColorBGR888toI420u8},
    {{MCV_BGR888, MCV_I422H}, mcvColorBGR888toI422Hu8},
    {{MCV_BGR888, MCV_NV12}, mcvColorBGR888toNV12u8},
    {{MCV_BGR888, MCV_NV21}, mcvColorBGR888toNV21u8},
    {{MCV_RGB888, MCV_BGR565}, mcvColorRGB888toBGR565u8},
    {{MCV_RGB888, MCV_RGB565}, mcvColorRGB888toRGB565u8},
    {{MCV_RGB888, MCV_BGR888}, mcvColorRGB888toBGR888u8_2},
    {{MCV_RGB888, MCV_ARGB8888}, mcvColorRGB888toARGB8888u8},
    {{MCV_RGB888, MCV_YUYV}, mcvColorRGB888toYUYVu8},
    {{MCV_RGB888, MCV_YVYU}, mcvColorRGB888toYVYUu8},
    {{MCV_RGB888, MCV_UYVY}, mcvColorRGB888toUYVYu8},
    {{MCV_RGB888, MCV_VYUY}, mcvColorRGB888toVYUYu8},
    {{MCV_RGB888, MCV_I420}, mcvColorRGB888toI420u8},
    {{MCV_RGB888, MCV_I422H}, mcvColorRGB888toI422Hu8},
    {{MCV_RGB888, MCV_YV24}, mcvColorRGB888toYV24u8},
    {{MCV_RGB888, MCV_NV12}, mcvColorRGB888toNV12u8},
    {{MCV_RGB888, MCV_NV21}, mcvColorRGB888toNV21u8},
    {{MCV_BGRA8888, MCV_I420}, mcvColorBGRA8888toI420u8},
    {{MCV_BGRA8888, MCV_NV12}, mcvColorBGRA8888toNV12u8},
    {{MCV_BGRA8888, MCV_NV21}, mcvColorBGRA8888toNV21u8},
    {{MCV_BGRA8888, MCV_LPI422H}, mcvColorBGRA8888toLPI422Hu8},
    {{MCV_RGBA8888, MCV_BGR888}, mcvColorRGBA8888toBGR888u8},
    {{MCV_RGBA8888, MCV_YUYV}, mcvColorRGBA8888toYUYVu8},
    {{MCV_RGBA8888, MCV_I420}, mcvColorRGBA8888toI420u8},
    {{MCV_RGBA8888, MCV_NV12}, mcvColorRGBA8888toNV12u8},
    {{MCV_RGBA8888, MCV_NV21}, mcvColorRGBA8888toNV21u8},
    {{MCV_RGBA8888, MCV_LPI422H}, mcvColorRGBA8888toLPI422Hu8},
    {{MCV_YUV, MCV_NV21}, mcvColorYUVtoNV21u8},
    {{MCV_YUYV, MCV_BGR888}, mcvColorYUYVtoBGR888u8},
    {{MCV_YUYV, MCV_RGB888}, mcvColorYUYVtoRGB888u8},
    {{MCV_YUYV, MCV_RGBA8888}, mcvColorYUYVtoRGBA8888u8},
    {{MCV_YUYV, MCV_I420}, mcvColorYUYVtoI420u8_2},
    {{MCV_YUYV, MCV_NV12}, mcvColorYUYVtoNV12u8_v2},
    {{MCV_YUYV, MCV_NV21}, mcvColorYUYVtoNV21u8_v2},
    {{MCV_I420, MCV_BGR888}, mcvColorI420toBGR888u8},
    {{MCV_I420, MCV_RGB888}, mcvColorI420toRGB888u8},
    {{MCV_I420, MCV_BGRA8888}, mcvColorI420toBGRA8888u8},
    {{MCV_I420, MCV_RGBA8888}, mcvColorI420toRGBA8888u8},
    {{MCV_I420, MCV_YUYV}, mcvColorI420toYUYVu8},
    {{MCV_I420, MCV_NV21}, mcvColorI420toNV21u8},
    {{MCV_I422V, MCV_YUYV}, mcvColorI422VtoYUYVu8},
    {{MCV_I422V, MCV_I420}, mcvColorI422VtoI420u8},
    {{MCV_I422V, MCV_NV12}, mcvColorI422VtoNV12u8},
    {{MCV_I422V, MCV_NV21}, mcvColorI422VtoNV21u8},
    {{MCV_I422V, MCV_LPI422H}, mcvColorI422VtoLPI422Hu8},
    {{MCV_I422H, MCV_YUYV}, mcvColorI422HtoYUYVu8},
    {{MCV_I422H, MCV_I420}, mcvColorI422HtoI420u8},
    {{MCV_I422H, MCV_NV12}, mcvColorI422HtoNV12u8},
    {{MCV_I422H, MCV_NV21}, mcvColorI422HtoNV21u8},
    {{MCV_I422H, MCV_LPI422H}, mcvColorI422HtoLPI422Hu8},
    {{MCV_I444, MCV_YUYV}, mcvColorI444toYUYVu8},
    {{MCV_I444, MCV_I420}, mcvColorI444toI420u8},
    {{MCV_I444, MCV_NV12}, mcvColorI444toNV12u8},
    {{MCV_I444, MCV_NV21}, mcvColorI444toNV21u8},
    {{MCV_I444, MCV_LPI422H}, mcvColorI444toLPI422Hu8},
    {{MCV_YV12, MCV_BGR888}, mcvColorYV12toBGR888u8},
    {{MCV_YV12, MCV_RGB888}, mcvColorYV12toRGB888u8},
    {{MCV_YV12, MCV_NV21}, mcvColorYV12toNV21u8_2},
    {{MCV_NV12, MCV_BGRA8888}, mcvColorNV12toBGRA8888u8},
    {{MCV_NV12, MCV_RGBA8888}, mcvColorNV12toRGBA8888u8},
    {{MCV_NV12, MCV_YUYV}, mcvColorNV12toYUYVu8},
    {{MCV_NV12, MCV_I420}, mcvColorNV12toI420u8},
    {{MCV_NV12, MCV_NV21}, mcvColorNV12toNV21u8},
    {{MCV_NV21, MCV_BGR888}, mcvColorNV21toBGR888u8},
    {{MCV_NV21, MCV_RGB888}, mcvColorNV21toRGB888u8},
    {{MCV_NV21, MCV_BGRA8888}, mcvColorNV21toBGRA8888u8},
    {{MCV_NV21, MCV_RGBA8888}, mcvColorNV21toRGBA8888u8},
    {{MCV_NV21, MCV_YUV}, mcvColorNV21toYUVu8},
    {{MCV_NV21, MCV_YUYV}, mcvColorNV21toYUYVu8},
    {{MCV_NV21, MCV_I420}, mcvColorNV21toI420u8},
    {{MCV_NV21, MCV_NV41}, mcvColorNV21toNV41_2},
    {{MCV_LPI422H, MCV_BGRA8888}, mcvColorLPI422HtoBGRA8888u8},
    {{MCV_LPI422H, MCV_RGBA8888}, mcvColorLPI422HtoRGBA8888u8},
    {{MCV_NV41, MCV_NV21}, mcvColorNV41toNV21_2},
};
static_assert(std::size(kConverters) == 81);

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t mcvColorCvt(const McvImage* src, const McvImage* dst, uint8_t alpha) {
  if (src == nullptr || dst == nullptr) return kMcvNull;
  for (const Converter& converter : kConverters) {
    if (converter.formats.src == src->format && converter.formats.dst == dst->format) {
      return converter(src, dst, alpha);
    }
  }
  return kMcvRefused;
}
