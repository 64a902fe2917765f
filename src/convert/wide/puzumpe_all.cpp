#include "convert/wide/puzumpe_all.h"

#include <qpx/convert_wide.h>

#include "convert/format_decoder.h"
#include "convert/record.h"
#include "convert/strip_walk.h"
#include "convert/wide/wide_call.h"

namespace qpx::convert::wide {
namespace {

using Kernel = void (*)(const MRect*, const int32_t*, const int32_t*, uint8_t* const*,
                        const uint8_t* const*, const ConvRecord*);

constexpr uint32_t kTurned90 = 3;

bool isNv(uint32_t klass) { return klass == kNv21 || klass == kNv12; }
bool isPlanar(uint32_t klass) { return klass >= kI420 && klass <= kI444; }

bool isFullRange(const ConvFormat& format) {
  return format.klass == kRgb || format.colour == kBt601Full;
}

// The kernels know nothing of what tables could do besides.
bool isPlain(const ConvRecord& record) {
  const ConvParams& params = record.params;
  return params.brightness == 0 && params.contrast == 0 && params.saturation == 0 &&
         record.useLut == 0 && record.dither == 0 && record.src.palette == nullptr &&
         isFullRange(record.src) && isFullRange(record.dst);
}

constexpr bool isWhole(int32_t value) { return value % 4 == 0; }

bool hasWholeBlocks(const MRect& rect) {
  return isWhole(rect.left) && isWhole(rect.top) && isWhole(rect.right) && isWhole(rect.bottom);
}

// At steps of 1 no position is held to the source's limits one by one.
bool liesInSource(const MRect& rect, const ConvRecord& record) {
  const int32_t x = record.srcOrgX - record.dstOrgX, y = record.srcOrgY - record.dstOrgY;
  return x % 2 == 0 && y % 2 == 0 && rect.left + x >= record.clipL &&
         rect.right + x <= record.clipR && rect.top + y >= record.clipT &&
         rect.bottom + y <= record.clipB;
}

// 5-6-5, with the red or the blue field lowest.
bool isWord(const ConvRecord& record) {
  return record.dst.colour == 16 && record.dstBitsR == 5 && record.dstBitsG == 6 &&
         record.dstBitsB == 5 && record.dstPosG == 5;
}

bool areBytes(int32_t red, int32_t green, int32_t blue, int32_t bits) {
  return red == 16 && green == 8 && blue == 0 && bits == 8;
}

bool isBgr(const ConvRecord& record) {
  return areBytes(record.dstPosR, record.dstPosG, record.dstPosB, record.dstBitsG);
}

Kernel nvToPixels(const ConvRecord& record) {
  if (isWord(record)) {
    return record.dstPosR > record.dstPosB ? PUZUMPE_NVtoRGB16_NoResize
                                           : PUZUMPE_NVtoBGR16_NoResize;
  }
  if (!isBgr(record)) return nullptr;
  const bool nv21 = record.src.klass == kNv21;
  if (record.dst.colour == 24) {
    return nv21 ? PUZUMPE_NV21toRGB24_NoResize : PUZUMPE_NV12toRGB24_NoResize;
  }
  return nv21 ? PUZUMPE_NV21YCbCr601toBGR32_NoResize : nullptr;
}

Kernel toPixels(const ConvRecord& record) {
  const uint32_t klass = record.src.klass;
  if (isNv(klass)) return nvToPixels(record);
  if (record.dst.colour != 32 || !isBgr(record)) return nullptr;
  switch (klass) {
    case kI420:
      return PUZUMPE_I420toBGR32_NoResize;
    case kI422H:
      return PUZUMPE_I422HtoBGR32_NoResize;
    case kI422V:
      return PUZUMPE_I422VtoBGR32_NoResize;
    case kI444:
      return PUZUMPE_I444toBGR32_NoResize;
    case kPacked444:
      return PUZUMPE_YUVtoBGR32_NoResize;
    case kYuyv:
      return PUZUMPE_YUYVtoBGR32_NoResize;
    default:
      return nullptr;
  }
}

Kernel resampled(const ConvRecord& record) {
  const uint32_t from = record.src.klass, to = record.dst.klass;
  if (from == kNv21 && to == kI420) return PUZUMPE_NV21toI420_Fast_BilNear;
  if (isPlanar(from) && to == kNv21) return PUZUMPE_I4XXtoNV21_Fast_BilNear;
  if (from != kRgb || record.src.colour != 32 ||
      !areBytes(record.srcPosR, record.srcPosG, record.srcPosB, record.srcBitsG)) {
    return nullptr;
  }
  if (to == kI420) return PUZUMPE_BGR32toI420_BilNear;
  return to == kNv21 ? PUZUMPE_BGR32toNV21_Fast_BilNear : nullptr;
}

bool turnsNv21(const ConvRecord& record) {
  return record.params.orient == kTurned90 && record.bilinearY != 0 && record.src.klass == kNv21 &&
         record.dst.klass == kRgb && record.dst.colour == 32 && isBgr(record);
}

// For rectangles that it takes.
Kernel kernelFor(const ConvRecord& record) {
  if (record.blockMode != kBlocksOf4 || !isPlain(record)) return nullptr;
  if (turnsNv21(record)) return PUZUMPE_NV21toBGR32_Fast_BilNear_R90;
  if (record.params.orient != 0) return nullptr;
  if (record.bilinearY != 0) return resampled(record);
  return record.isUnit != 0 && record.convKind == kYuvToRgb ? toPixels(record) : nullptr;
}

bool takesRect(const MRect& rect, const ConvRecord& record) {
  return hasWholeBlocks(rect) && isInDestination(rect, record) &&
         (record.bilinearY != 0 || liesInSource(rect, record));
}

}  // namespace

bool mayBeWide(const ConvRecord& record) { return kernelFor(record) != nullptr; }

}  // namespace qpx::convert::wide

int32_t PUZUMPE_ALL(const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch,
                    uint8_t* const* dstPlanes, const uint8_t* const* srcPlanes,
                    const ConvRecord* record) {
  using namespace qpx::convert::wide;
  const WideCall call = {rect, dstPitch, srcPitch, dstPlanes, srcPlanes, record};
  if (!call.isComplete()) return QPX_BAD_PARAM;
  const Kernel kernel = kernelFor(*record);
  if (kernel == nullptr || !takesRect(*rect, *record)) return QPX_UNSUPPORTED;
  kernel(rect, dstPitch, srcPitch, dstPlanes, srcPlanes, record);
  return QPX_OK;
}
