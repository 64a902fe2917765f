// The few shapes that all conversions of whole images have. Each takes the two formats that it is
// for and refuses images of others.
#pragma once

#include <qpx/image_convert.h>

#include "simd/pixel_rows.h"
#include "simd/yuv_rows.h"

namespace qpx {

inline constexpr int32_t kMcvDone = 0;
inline constexpr int32_t kMcvNull = -1;
inline constexpr int32_t kMcvRefused = -2;

struct FormatPair {
  int32_t src, dst;
};

// 0 if a conversion between these formats may run on the images, else its answer.
int32_t checkImages(FormatPair formats, const McvImage* src, const McvImage* dst);

enum class Arithmetic { usual, fine };
inline constexpr simd::ChromaWeights kUsualChroma = {72, 91};

// Any YUV but NV41 to RGB888, BGR888, RGBA8888 or BGRA8888. `fine` is the rounded form.
int32_t yuvToPixels(FormatPair formats, const McvImage* src, const McvImage* dst, uint8_t alpha = 0,
                    Arithmetic arithmetic = Arithmetic::usual);

// Back. `fine` is for RGBA8888 to planes.
int32_t pixelsToYuv(FormatPair formats, const McvImage* src, const McvImage* dst,
                    simd::ChromaWeights weights = kUsualChroma,
                    Arithmetic arithmetic = Arithmetic::usual);

// Any YUV but NV41 to one whose columns share chroma.
int32_t yuvToYuv(FormatPair formats, const McvImage* src, const McvImage* dst);

int32_t nv21ToYuv(const McvImage* src, const McvImage* dst);
int32_t rgbToYv24(const McvImage* src, const McvImage* dst);
int32_t nv21ToRgbaCrossed(const McvImage* src, const McvImage* dst, uint8_t alpha);

// RGB to RGB by a row function.
using PixelRow = decltype(simd::PixelRows::swapRgb24);
int32_t movePixels(FormatPair formats, PixelRow simd::PixelRows::*move, const McvImage* src,
                   const McvImage* dst);
int32_t pixelsTo565(FormatPair formats, const McvImage* src, const McvImage* dst);

int32_t nv21ToNv41(const McvImage* src, const McvImage* dst);
int32_t nv41ToNv21(const McvImage* src, const McvImage* dst);

}  // namespace qpx
