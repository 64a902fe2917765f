// NV21 to RGBA8888 with red and blue clamped crosswise.
#include "convert/images/conversions.h"
#include "convert/images/image_layout.h"
#include "simd/clamp_byte.h"

namespace qpx {
namespace {

// Below by the sign of `other`, above by the value itself.
uint8_t clampCrossed(int32_t value, int32_t other) {
  if (other < 0) return 0;
  return static_cast<uint8_t>(value > 255 ? 255 : value);
}

void convertRow(const simd::YuvSource& src, uint8_t alpha, uint8_t* dst, int32_t pairs) {
  for (ptrdiff_t i = 0; i < ptrdiff_t{2} * pairs; ++i, dst += 4) {
    const int32_t y = src.y[i];
    const int32_t u = src.u[i / 2 * src.chromaStep] - 128;
    const int32_t v = src.v[i / 2 * src.chromaStep] - 128;
    const int32_t red = y + ((45 * v) >> 5);
    const int32_t blue = y + ((57 * u) >> 5);
    dst[0] = clampCrossed(red, blue);
    dst[1] = simd::clampByte(y - (((24 * v - v) >> 5) + ((11 * u) >> 5)));
    dst[2] = clampCrossed(blue, red);
    dst[3] = alpha;
  }
}

}  // namespace

int32_t nv21ToRgbaCrossed(const McvImage* src, const McvImage* dst, uint8_t alpha) {
  if (const int32_t answer = checkImages({MCV_NV21, MCV_RGBA8888}, src, dst); answer != kMcvDone) {
    return answer;
  }
  const YuvLayout& layout = *yuvLayout(MCV_NV21);
  for (int32_t row = 0; row < (dst->height & ~1); ++row) {
    convertRow(sourceRow(*src, layout, row), alpha, rowOf(*dst, 0, row), dst->width / 2);
  }
  return kMcvDone;
}

}  // namespace qpx
