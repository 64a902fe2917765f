#include <string.h>

#include <algorithm>

#include "simd/convert_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

struct Rgb {
  uint32_t red;
  uint32_t green;
  uint32_t blue;
};

uint32_t channel(uint32_t sum, int32_t bias) {
  const auto value = static_cast<int32_t>(sum - (static_cast<uint32_t>(bias) << 20)) >> 20;
  return static_cast<uint32_t>(std::clamp(value, 0, 255));
}

Rgb rgbAt(const YuvRow& row, ptrdiff_t line, ptrdiff_t i, const YuvToRgb& tables) {
  const ptrdiff_t chroma = (row.halved ? i / 2 : i) * row.chromaStep;
  const uint32_t y = tables.luma[row.luma[line][i * row.lumaStep]];
  const uint32_t u = tables.blue[row.u[chroma]];
  const uint32_t v = tables.red[row.v[chroma]];
  return {channel(y + v, 512), channel(y + ((u + v) << 16), tables.greenBias), channel(y + u, 512)};
}

// store(rgb, pixel of the destination)
template <int kBytes, typename Store>
void eachPixel(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
               const Store& store) {
  for (const YuvRow* row = rows; row < rows + count; ++row) {
    for (ptrdiff_t line = 0; line < row->lines(); ++line) {
      for (ptrdiff_t i = 0; i < pixels; ++i) {
        store(rgbAt(*row, line, i, tables), row->dst[line] + i * kBytes);
      }
    }
  }
}

template <int kBytes>
void yuvToRgb(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
              bool redFirst, uint8_t alpha) {
  const ptrdiff_t red = redFirst ? 0 : 2;
  eachPixel<kBytes>(rows, count, pixels, tables, [=](const Rgb& rgb, uint8_t* dst) {
    dst[red] = static_cast<uint8_t>(rgb.red);
    dst[1] = static_cast<uint8_t>(rgb.green);
    dst[2 - red] = static_cast<uint8_t>(rgb.blue);
    if constexpr (kBytes == 4) dst[3] = alpha;
  });
}

void storeWord(uint8_t* dst, uint32_t word) {
  dst[0] = static_cast<uint8_t>(word);
  dst[1] = static_cast<uint8_t>(word >> 8);
}

template <int kBytes>
void rgbTo16(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const ptrdiff_t low = swap ? 2 : 0;
  for (ptrdiff_t i = 0; i < pixels; ++i, src += kBytes, dst += 2) {
    storeWord(dst, static_cast<uint32_t>(src[2 - low] >> 3) << 11 |
                       static_cast<uint32_t>(src[1] >> 2) << 5 |
                       static_cast<uint32_t>(src[low] >> 3));
  }
}

uint8_t weighed(const uint8_t* pixel, const int32_t* w) {
  return static_cast<uint8_t>((w[0] * pixel[0] + w[1] * pixel[1] + w[2] * pixel[2] + w[3]) >> 16);
}

template <int kBytes>
void rgbToLuma(const uint8_t* src, ptrdiff_t pixels, const int32_t* w, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < pixels; ++i) dst[i] = weighed(src + i * kBytes, w);
}

template <int kBytes>
void rgbToChroma(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& w,
                 const ChromaTarget& dst) {
  const ptrdiff_t samples = halved ? (pixels + 1) / 2 : pixels;
  for (ptrdiff_t i = 0; i < samples; ++i) {
    const ptrdiff_t pixel = halved ? std::min(2 * i + 1, pixels - 1) : i;
    dst.u[i * dst.step] = weighed(src + pixel * kBytes, w.u);
    dst.v[i * dst.step] = weighed(src + pixel * kBytes, w.v);
  }
}

template <int kBytes>
void swapEnds(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += kBytes, dst += kBytes) {
    const uint8_t first = src[0];
    dst[0] = src[2];
    dst[1] = src[1];
    dst[2] = first;
    if constexpr (kBytes == 4) dst[3] = src[3];
  }
}

template <int kBytes>
void reverse(const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    memcpy(dst + i * kBytes, src + (count - 1 - i) * kBytes, kBytes);
  }
}

template <int kBytes>
void transpose(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
               uint8_t* dst, ptrdiff_t dstPitch) {
  for (ptrdiff_t x = 0; x < columns; ++x) {
    for (ptrdiff_t y = 0; y < rows; ++y) {
      memcpy(dst + x * dstPitch + y * kBytes, src + y * srcPitch + x * kBytes, kBytes);
    }
  }
}

}  // namespace

void yuvToRgb24(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                bool redFirst) {
  yuvToRgb<3>(rows, count, pixels, tables, redFirst, 0);
}

void yuvToRgb32(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                bool redFirst, uint8_t alpha) {
  yuvToRgb<4>(rows, count, pixels, tables, redFirst, alpha);
}

void yuvToRgb16(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                bool redFirst) {
  eachPixel<2>(rows, count, pixels, tables, [=](const Rgb& rgb, uint8_t* dst) {
    const uint32_t high = redFirst ? rgb.blue : rgb.red, low = redFirst ? rgb.red : rgb.blue;
    storeWord(dst, high >> 3 << 11 | rgb.green >> 2 << 5 | low >> 3);
  });
}

void swapEnds3(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst) {
  swapEnds<3>(src, pixels, dst);
}

void swapEnds4(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst) {
  swapEnds<4>(src, pixels, dst);
}

void rgb24To32(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const ptrdiff_t first = swap ? 2 : 0;
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 3, dst += 4) {
    dst[0] = src[first];
    dst[1] = src[1];
    dst[2] = src[2 - first];
  }
}

void rgb32To24(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const ptrdiff_t first = swap ? 2 : 0;
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 4, dst += 3) {
    dst[0] = src[first];
    dst[1] = src[1];
    dst[2] = src[2 - first];
  }
}

void rgb24ToLuma(const uint8_t* src, ptrdiff_t pixels, const int32_t* w, uint8_t* dst) {
  rgbToLuma<3>(src, pixels, w, dst);
}

void rgb32ToLuma(const uint8_t* src, ptrdiff_t pixels, const int32_t* w, uint8_t* dst) {
  rgbToLuma<4>(src, pixels, w, dst);
}

void rgb24ToChroma(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& w,
                   const ChromaTarget& dst) {
  rgbToChroma<3>(src, pixels, halved, w, dst);
}

void rgb32ToChroma(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& w,
                   const ChromaTarget& dst) {
  rgbToChroma<4>(src, pixels, halved, w, dst);
}

void rgb24To16(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  rgbTo16<3>(src, pixels, swap, dst);
}

void rgb32To16(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  rgbTo16<4>(src, pixels, swap, dst);
}

void rgb16To24(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const ptrdiff_t low = swap ? 2 : 0;
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 2, dst += 3) {
    const uint32_t word = src[0] | static_cast<uint32_t>(src[1]) << 8;
    dst[low] = static_cast<uint8_t>((word & 31) << 3);
    dst[1] = static_cast<uint8_t>((word >> 5 & 63) << 2);
    dst[2 - low] = static_cast<uint8_t>(word >> 11 << 3);
  }
}

void swapPairs(const uint8_t* src, ptrdiff_t pairs, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < pairs; ++i) {
    const uint8_t first = src[2 * i];
    dst[2 * i] = src[2 * i + 1];
    dst[2 * i + 1] = first;
  }
}

void reverse1(const uint8_t* src, ptrdiff_t count, uint8_t* dst) { reverse<1>(src, count, dst); }
void reverse2(const uint8_t* src, ptrdiff_t count, uint8_t* dst) { reverse<2>(src, count, dst); }
void reverse3(const uint8_t* src, ptrdiff_t count, uint8_t* dst) { reverse<3>(src, count, dst); }
void reverse4(const uint8_t* src, ptrdiff_t count, uint8_t* dst) { reverse<4>(src, count, dst); }

void transpose1(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  transpose<1>(src, srcPitch, columns, rows, dst, dstPitch);
}

void transpose2(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  transpose<2>(src, srcPitch, columns, rows, dst, dstPitch);
}

void transpose3(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  transpose<3>(src, srcPitch, columns, rows, dst, dstPitch);
}

void transpose4(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  transpose<4>(src, srcPitch, columns, rows, dst, dstPitch);
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(ConvertRows, QPX_CONVERT_ROWS)

}  // namespace qpx::simd
