#include "convert/kernels/formats.h"

#include "convert/format_decoder.h"

namespace qpx::convert::fast {
namespace {

struct Fields {
  int32_t bits, position;
  bool operator==(const Fields&) const = default;
};

FormatSet rgbFormat(uint32_t bits, const Fields& red, const Fields& green, const Fields& blue) {
  if (bits == 16) {
    if (green != Fields{6, 5}) return 0;
    if (red == Fields{5, 11} && blue == Fields{5, 0}) return kInRgb565;
    return red == Fields{5, 0} && blue == Fields{5, 11} ? kInBgr565 : 0;
  }
  if ((bits != 24 && bits != 32) || green != Fields{8, 8}) return 0;
  const bool wide = bits == 32;
  if (red == Fields{8, 16} && blue == Fields{8, 0}) return wide ? kInBgr32 : kInBgr24;
  if (red == Fields{8, 0} && blue == Fields{8, 16}) return wide ? kInRgb32 : kInRgb24;
  return 0;
}

FormatSet yuvFormat(uint32_t klass) {
  switch (klass) {
    case kGrey:
      return kInGrey;
    case kI420:
      return kInI420;
    case kI422V:
      return kInI422V;
    case kI422H:
      return kInI422H;
    case kI444:
      return kInI444;
    case kYv12:
      return kInYv12;
    case kYv422V:
      return kInYv422V;
    case kYv422H:
      return kInYv422H;
    case kYv444:
      return kInYv444;
    case kNv21:
      return kInNv21;
    case kNv12:
      return kInNv12;
    case kNv61:
      return kInNv61;
    case kNv16:
      return kInNv16;
    case kYuyv:
      return kInYuyv;
    case kYvyu:
      return kInYvyu;
    case kUyvy:
      return kInUyvy;
    case kVyuy:
      return kInVyuy;
    default:
      return 0;
  }
}

}  // namespace

FormatSet sourceFormat(const ConvRecord& record) {
  if (record.src.klass != kRgb) return yuvFormat(record.src.klass);
  if (record.src.palette != nullptr) return 0;
  return rgbFormat(record.srcPlane.bitsPerPixel, {record.srcBitsR, record.srcPosR},
                   {record.srcBitsG, record.srcPosG}, {record.srcBitsB, record.srcPosB});
}

FormatSet destinationFormat(const ConvRecord& record) {
  if (record.dst.klass != kRgb) return yuvFormat(record.dst.klass);
  return rgbFormat(record.dstPlane.bitsPerPixel, {record.dstBitsR, record.dstPosR},
                   {record.dstBitsG, record.dstPosG}, {record.dstBitsB, record.dstPosB});
}

}  // namespace qpx::convert::fast
