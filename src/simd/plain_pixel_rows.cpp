#include "simd/pixel_rows.h"

namespace qpx::simd {
namespace plain {

namespace {

template <PixelMove kMove>
void movePixels(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += kMove.srcBytes, dst += kMove.dstBytes) {
    for (int k = 0; k < kMove.dstBytes; ++k) {
      dst[k] = kMove.place[k] == PixelMove::kOpaque ? 255 : src[kMove.place[k]];
    }
  }
}

}  // namespace

void swapRgb24(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kSwapRgb24>(src, dst, pixels);
}

void bgr24OfRgba32(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kBgr24OfRgba32>(src, dst, pixels);
}

void argb32OfRgb24(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kArgb32OfRgb24>(src, dst, pixels);
}

void argb32OfBgr24(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kArgb32OfBgr24>(src, dst, pixels);
}

void pack565(const uint8_t* src, bool swapped, uint8_t* dst, ptrdiff_t pixels) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 3, dst += 2) {
    const int32_t low = src[swapped ? 2 : 0], middle = src[1], high = src[swapped ? 0 : 2];
    const int32_t word = low >> 3 | (middle >> 2) << 5 | (high >> 3) << 11;
    dst[0] = static_cast<uint8_t>(word);
    dst[1] = static_cast<uint8_t>(word >> 8);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(PixelRows, QPX_PIXEL_ROWS)

}  // namespace qpx::simd
