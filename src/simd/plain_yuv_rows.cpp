#include <algorithm>

#include "simd/plain_pixels.h"
#include "simd/yuv_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

Rgb loadPixel(const uint8_t* src, PixelOrder order) {
  return blueFirst(order) ? Rgb{src[2], src[1], src[0]} : Rgb{src[0], src[1], src[2]};
}

Rgb cutRgb(int32_t y, int32_t u, int32_t v) {
  return {y + ((45 * v) >> 5), y - (((23 * v) >> 5) + ((11 * u) >> 5)), y + ((57 * u) >> 5)};
}

Rgb roundedRgb(int32_t y, int32_t u, int32_t v) {
  return {(32 * y + 45 * v + 16) >> 5, (32 * y - 11 * u - 23 * v + 16) >> 5,
          (32 * y + 57 * u + 16) >> 5};
}

template <Rgb (*toRgb)(int32_t, int32_t, int32_t)>
void convertRow(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < 2 * pairs; ++i) {
    const ptrdiff_t chroma = i / 2 * src.chromaStep;
    const Rgb pixel = toRgb(src.y[i * src.lumaStep], src.u[chroma] - 128, src.v[chroma] - 128);
    storePixel(pixel, order, alpha, dst + i * bytesOf(order));
  }
}

int32_t lumaOf(const Rgb& p) { return (19 * p.r + 38 * p.g + 7 * p.b) >> 6; }

uint8_t chromaOf(int32_t difference, int32_t weight) {
  return clampByte(((difference * weight) >> 7) + 128);
}

int32_t fineSum(const Rgb& p) { return 9798 * p.r + 19235 * p.g + 3736 * p.b; }

uint8_t fineLuma(int32_t sum) { return static_cast<uint8_t>(std::min(sum >> 15, 255)); }

uint8_t fineChroma(int32_t channel, int32_t sum, int32_t weight) {
  return clampByte(((((channel << 7) - (sum >> 8)) * weight) >> 22) + 128);
}

}  // namespace

void toPixels(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
              ptrdiff_t pairs) {
  convertRow<cutRgb>(src, order, alpha, dst, pairs);
}

void toPixelsRounded(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                     ptrdiff_t pairs) {
  convertRow<roundedRgb>(src, order, alpha, dst, pairs);
}

void fromPixels(const uint8_t* src, PixelOrder order, ChromaWeights weights, const YuvTarget& dst,
                ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < 2 * pairs; ++i) {
    const Rgb pixel = loadPixel(src + i * bytesOf(order), order);
    const int32_t y = lumaOf(pixel);
    dst.y[i * dst.lumaStep] = static_cast<uint8_t>(y);
    if (i % 2 != 0) continue;
    dst.u[i / 2 * dst.chromaStep] = chromaOf(pixel.b - y, weights.u);
    dst.v[i / 2 * dst.chromaStep] = chromaOf(pixel.r - y, weights.v);
  }
}

void lumaOfPixels(const uint8_t* src, PixelOrder order, uint8_t* dst, ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i) {
    dst[i] = static_cast<uint8_t>(lumaOf(loadPixel(src + i * bytesOf(order), order)));
  }
}

void planesOfPixels(const uint8_t* src, PixelOrder order, ChromaWeights weights,
                    uint8_t* const* planes, ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i) {
    const Rgb pixel = loadPixel(src + i * bytesOf(order), order);
    const int32_t y = lumaOf(pixel);
    planes[0][i] = static_cast<uint8_t>(y);
    planes[1][i] = chromaOf(pixel.b - y, weights.u);
    planes[2][i] = chromaOf(pixel.r - y, weights.v);
  }
}

void fromPixelsFine(const uint8_t* src, const YuvTarget& dst, ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < 2 * pairs; ++i) {
    const Rgb pixel = loadPixel(src + i * 4, PixelOrder::rgba32);
    const int32_t sum = fineSum(pixel);
    dst.y[i * dst.lumaStep] = fineLuma(sum);
    if (i % 2 != 0) continue;
    dst.u[i / 2 * dst.chromaStep] = fineChroma(pixel.b, sum, 18492);
    dst.v[i / 2 * dst.chromaStep] = fineChroma(pixel.r, sum, 23372);
  }
}

void fineLumaOfPixels(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i) {
    dst[i] = fineLuma(fineSum(loadPixel(src + i * 4, PixelOrder::rgba32)));
  }
}

void moveLuma(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
              ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i) dst[i * dstStep] = src[i * srcStep];
}

void moveChroma(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < pairs; ++i) {
    const uint8_t u = src.u[i * src.chromaStep], v = src.v[i * src.chromaStep];
    dst.u[i * dst.chromaStep] = u;
    dst.v[i * dst.chromaStep] = v;
  }
}

void moveRow(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  moveLuma(src.y, src.lumaStep, dst.y, dst.lumaStep, 2 * pairs);
  moveChroma(src, dst, pairs);
}

void packPairs(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  moveRow(src, dst, pairs);
}

void packPixels(const YuvSource& src, uint8_t* dst, ptrdiff_t pairs) {
  for (ptrdiff_t i = 0; i < 2 * pairs; ++i) {
    dst[3 * i] = src.y[i * src.lumaStep];
    dst[3 * i + 1] = src.u[i / 2 * src.chromaStep];
    dst[3 * i + 2] = src.v[i / 2 * src.chromaStep];
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(YuvRows, QPX_YUV_ROWS)

}  // namespace qpx::simd
