#include "convert/kernels/formats.h"

#include "convert/format_decoder.h"

namespace qpx::convert::fast {
namespace {

struct ClassFormat {
  uint32_t klass;
  FormatSet format;
};

constexpr ClassFormat kYuvFormats[] = {
    {kGrey, kInGrey},   {kI420, kInI420}, {kI422V, kInI422V},     {kI422H, kInI422H},
    {kI444, kInI444},   {kYv12, kInYv12}, {kYv12 + 1, kInYv422V}, {kYv12 + 2, kInYv422H},
    {kYv444, kInYv444}, {kNv21, kInNv21}, {kNv12, kInNv12},       {kNv61, kInNv61},
    {kNv16, kInNv16},   {kYuyv, kInYuyv}, {kYvyu, kInYvyu},       {kUyvy, kInUyvy},
    {kVyuy, kInVyuy},
};

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
  for (const ClassFormat& known : kYuvFormats) {
    if (known.klass == klass) return known.format;
  }
  return 0;
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
