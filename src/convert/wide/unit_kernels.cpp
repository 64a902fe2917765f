// Wide kernels at steps of exactly 1: row by row, nothing but colour.

#include <algorithm>

#include "convert/wide/kernel_shape.h"
#include "convert/wide/weights.h"
#include "simd/pixel_rows.h"
#include "simd/rows.h"

namespace qpx::convert::wide {
namespace {

// Pixels worked on at a time where a row needs room of its own.
constexpr int32_t kRun = 512;

// convert(source row, destination row), for each row.
template <typename Convert>
void eachRow(const WideCall& call, const Convert& convert) {
  const ConvRecord& record = *call.record;
  const int32_t x = call.rect->left + record.srcOrgX - record.dstOrgX;
  const int32_t y = call.rect->top + record.srcOrgY - record.dstOrgY;
  for (int32_t row = 0; row < call.height(); ++row) {
    convert(call.sourceRow(x, y + row), call.target(0, row));
  }
}

template <simd::PixelOrder kOrder, const simd::FoldedWeights& kWeights>
void toPixels(const WideCall& call) {
  const auto& rows = simd::wideRows();
  const auto alpha = static_cast<uint8_t>(call.record->alpha);
  eachRow(call, [&](const simd::YuvSource& src, uint8_t* dst) {
    rows.toPixelsFolded(src, kWeights, kOrder, alpha, dst, call.width() / 2);
  });
}

// Bytes of the order, low to high, become the fields of a word, lowest to highest.
template <simd::PixelOrder kOrder>
void toWords(const WideCall& call) {
  const auto& rows = simd::wideRows();
  const auto& pixelRows = simd::pixelRows();
  eachRow(call, [&](const simd::YuvSource& src, uint8_t* dst) {
    uint8_t pixels[3 * kRun];
    for (int32_t x = 0; x < call.width(); x += kRun) {
      const int32_t count = std::min(kRun, call.width() - x);
      rows.toPixelsFolded(src.from(x / 2), kSixBits, kOrder, 0, pixels, count / 2);
      pixelRows.pack565(pixels, false, dst + ptrdiff_t{2} * x, count);
    }
  });
}

void toPixelsFine(const WideCall& call) {
  const auto& rows = simd::wideRows();
  const auto alpha = static_cast<uint8_t>(call.record->alpha);
  eachRow(call, [&](const simd::YuvSource& src, uint8_t* dst) {
    rows.toPixelsFine(src, alpha, dst, call.width() / 2);
  });
}

void fullChromaToPixels(const WideCall& call) {
  const auto& rows = simd::wideRows();
  const auto alpha = static_cast<uint8_t>(call.record->alpha);
  eachRow(call, [&](const simd::YuvSource& src, uint8_t* dst) {
    rows.toPixelsFullChroma(src, kSixBits, alpha, dst, call.width());
  });
}

void packedToPixels(const WideCall& call) {
  const auto& rows = simd::wideRows();
  const auto alpha = static_cast<uint8_t>(call.record->alpha);
  const auto* const offset = call.record->srcPlane.offset;
  eachRow(call, [&](const simd::YuvSource& src, uint8_t* dst) {
    uint8_t part[3][kRun];
    for (int32_t x = 0; x < call.width(); x += kRun) {
      const int32_t count = std::min(kRun, call.width() - x);
      simd::rows().deinterleave3(src.y - offset[0] + ptrdiff_t{3} * x, count, part[0], part[1],
                                 part[2]);
      const simd::YuvSource planes = {part[offset[0]], part[offset[1]], part[offset[2]], 1, 1};
      rows.toPixelsFullChroma(planes, kSevenBits, alpha, dst + ptrdiff_t{4} * x, count);
    }
  });
}

constexpr auto nvToBgr24 = toPixels<simd::PixelOrder::bgr24, kSixBits>;
constexpr auto toBgra32 = toPixels<simd::PixelOrder::bgra32, kSixBits>;
constexpr auto toBgra32Rounded = toPixels<simd::PixelOrder::bgra32, kSixBitsRounded>;
constexpr auto nvToRgb16 = toWords<simd::PixelOrder::bgr24>;
constexpr auto nvToBgr16 = toWords<simd::PixelOrder::rgb24>;

}  // namespace
}  // namespace qpx::convert::wide

QPX_WIDE_KERNEL(PUZUMPE_NV21YCbCr601toBGR32_NoResize, qpx::convert::wide::toBgra32)
QPX_WIDE_KERNEL(PUZUMPE_NV21toRGB24_NoResize, qpx::convert::wide::nvToBgr24)
QPX_WIDE_KERNEL(PUZUMPE_NV12toRGB24_NoResize, qpx::convert::wide::nvToBgr24)
QPX_WIDE_KERNEL(PUZUMPE_NVtoRGB16_NoResize, qpx::convert::wide::nvToRgb16)
QPX_WIDE_KERNEL(PUZUMPE_NVtoBGR16_NoResize, qpx::convert::wide::nvToBgr16)
QPX_WIDE_KERNEL(PUZUMPE_I420toBGR32_NoResize, qpx::convert::wide::toBgra32)
QPX_WIDE_KERNEL(PUZUMPE_I422HtoBGR32_NoResize, qpx::convert::wide::toPixelsFine)
QPX_WIDE_KERNEL(PUZUMPE_I422HtoBGR32_NoResize_Shift6, qpx::convert::wide::toBgra32Rounded)
QPX_WIDE_KERNEL(PUZUMPE_I422VtoBGR32_NoResize, qpx::convert::wide::fullChromaToPixels)
QPX_WIDE_KERNEL(PUZUMPE_I444toBGR32_NoResize, qpx::convert::wide::fullChromaToPixels)
QPX_WIDE_KERNEL(PUZUMPE_YUVtoBGR32_NoResize, qpx::convert::wide::packedToPixels)
QPX_WIDE_KERNEL(PUZUMPE_YUYVtoBGR32_NoResize, qpx::convert::wide::toPixelsFine)

void PUZUMPE_DebugWin32(void) {}
