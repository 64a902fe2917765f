// Pixels out of rows of YUV, where chroma adds a term to luma. Included once per target.
//
// Arithmetic is in 16 bits, on pixels of even and of odd places apart: chroma, of which there is
// one sample for two pixels, is worked out once and belongs to both without being spread.
#if defined(QPX_SIMD_YUV_PIXELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_PIXELS_INL_H_
#undef QPX_SIMD_YUV_PIXELS_INL_H_
#else
#define QPX_SIMD_YUV_PIXELS_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/pixel_store-inl.h"
#include "simd/yuv_load-inl.h"
#include "simd/yuv_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// What chroma adds to luma.
struct ColorTerms {
  VS red, green, blue;
};

HWY_INLINE V8 channel(const Halves& luma, VS term) {
  return packWords(hn::Add(hn::BitCast(DS(), luma.even), term),
                   hn::Add(hn::BitCast(DS(), luma.odd), term));
}

template <class Load, PixelOrder kOrder, class Terms>
HWY_INLINE bool convertRow(const Terms& terms, const YuvSource& src, uint8_t alpha, uint8_t* dst,
                           ptrdiff_t pairs) {
  const PixelStore<kOrder> store(alpha);
  return overlappingSteps(
      byteLanes() / 2, pairs, [&](ptrdiff_t i) HWY_ATTR __attribute__((always_inline)) {
        const YuvWords words = Load::at(src, i, store);
        const ColorTerms t = terms(hn::BitCast(DS(), words.u), hn::BitCast(DS(), words.v));
        store(channel(words.luma, t.red), channel(words.luma, t.green), channel(words.luma, t.blue),
              dst + 2 * i * bytesOf(kOrder));
      });
}

template <class Load, class Terms>
HWY_INLINE bool convertRow(const Terms& terms, const YuvSource& src, PixelOrder order,
                           uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  switch (order) {
    case PixelOrder::rgb24:
      return convertRow<Load, PixelOrder::rgb24>(terms, src, alpha, dst, pairs);
    case PixelOrder::bgr24:
      return convertRow<Load, PixelOrder::bgr24>(terms, src, alpha, dst, pairs);
    case PixelOrder::rgba32:
      return convertRow<Load, PixelOrder::rgba32>(terms, src, alpha, dst, pairs);
    case PixelOrder::bgra32:
      return convertRow<Load, PixelOrder::bgra32>(terms, src, alpha, dst, pairs);
  }
  return false;
}

// terms(u, v) takes chroma as it is stored. False where the row is too short or its shape has no
// vector form.
template <class Terms>
HWY_INLINE bool convertRow(const Terms& terms, const YuvSource& src, PixelOrder order,
                           uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  switch (shapeOf(src)) {
    case RowShape::planes:
      return convertRow<LoadPlanes>(terms, src, order, alpha, dst, pairs);
    case RowShape::uvPairs:
      return convertRow<LoadPairs<true>>(terms, src, order, alpha, dst, pairs);
    case RowShape::vuPairs:
      return convertRow<LoadPairs<false>>(terms, src, order, alpha, dst, pairs);
    case RowShape::yuyv:
      return convertRow<LoadYuyv>(terms, src, order, alpha, dst, pairs);
    default:
      return false;
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
