// Rows between YUV and RGB. Included once per target.
//
// Arithmetic is in 16 bits, on pixels of even and of odd places apart: chroma, of which there is
// one sample for two pixels, is worked out once and belongs to both without being spread.
#if defined(QPX_SIMD_YUV_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_INL_H_
#undef QPX_SIMD_YUV_INL_H_
#else
#define QPX_SIMD_YUV_INL_H_
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

template <int kFactor>
HWY_INLINE VS times(VS v) {
  return hn::Mul(v, signedWord(kFactor));
}

struct CutTerms {
  static HWY_INLINE ColorTerms of(VS u, VS v) {
    const VS green = hn::Add(hn::ShiftRight<5>(times<23>(v)), hn::ShiftRight<5>(times<11>(u)));
    return {hn::ShiftRight<5>(times<45>(v)), hn::Sub(hn::Zero(DS()), green),
            hn::ShiftRight<5>(times<57>(u))};
  }
};

// 32 times luma is whole, so that it need not be rounded with the rest.
struct RoundedTerms {
  static HWY_INLINE ColorTerms of(VS u, VS v) {
    const VS half = signedWord(16);
    const VS green = hn::Sub(half, hn::Add(times<23>(v), times<11>(u)));
    return {hn::ShiftRight<5>(hn::Add(times<45>(v), half)), hn::ShiftRight<5>(green),
            hn::ShiftRight<5>(hn::Add(times<57>(u), half))};
  }
};

HWY_INLINE V8 channel(const Halves& luma, VS term) {
  return packWords(hn::Add(hn::BitCast(DS(), luma.even), term),
                   hn::Add(hn::BitCast(DS(), luma.odd), term));
}

template <class Terms, class Load, PixelOrder kOrder>
HWY_INLINE void convertRow(const YuvSource& src, uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  const PixelStore<kOrder> store(alpha);
  const VS zero = signedWord(128);
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    const YuvWords words = Load::at(src, i, store);
    const ColorTerms terms = Terms::of(hn::Sub(hn::BitCast(DS(), words.u), zero),
                                       hn::Sub(hn::BitCast(DS(), words.v), zero));
    store(channel(words.luma, terms.red), channel(words.luma, terms.green),
          channel(words.luma, terms.blue), dst + 2 * i * bytesOf(kOrder));
  };
  const ptrdiff_t length = byteLanes() / 2;
  for (ptrdiff_t i = 0; i < pairs - length; i += length) step(i);
  step(pairs - length);
}

template <class Terms, class Load>
HWY_INLINE void convertRow(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                           ptrdiff_t pairs) {
  switch (order) {
    case PixelOrder::rgb24:
      return convertRow<Terms, Load, PixelOrder::rgb24>(src, alpha, dst, pairs);
    case PixelOrder::bgr24:
      return convertRow<Terms, Load, PixelOrder::bgr24>(src, alpha, dst, pairs);
    case PixelOrder::rgba32:
      return convertRow<Terms, Load, PixelOrder::rgba32>(src, alpha, dst, pairs);
    case PixelOrder::bgra32:
      return convertRow<Terms, Load, PixelOrder::bgra32>(src, alpha, dst, pairs);
  }
}

// False where the row is too short or its shape is one that nobody is in a hurry about.
template <class Terms>
HWY_INLINE bool convertRow(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                           ptrdiff_t pairs) {
  if (2 * pairs < byteLanes()) return false;
  switch (shapeOf(src)) {
    case RowShape::planes:
      convertRow<Terms, LoadPlanes>(src, order, alpha, dst, pairs);
      return true;
    case RowShape::uvPairs:
      convertRow<Terms, LoadPairs<true>>(src, order, alpha, dst, pairs);
      return true;
    case RowShape::vuPairs:
      convertRow<Terms, LoadPairs<false>>(src, order, alpha, dst, pairs);
      return true;
    case RowShape::yuyv:
      convertRow<Terms, LoadYuyv>(src, order, alpha, dst, pairs);
      return true;
    default:
      return false;
  }
}

void toPixels(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
              ptrdiff_t pairs) {
  if (!convertRow<CutTerms>(src, order, alpha, dst, pairs)) {
    plain::toPixels(src, order, alpha, dst, pairs);
  }
}

void toPixelsRounded(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                     ptrdiff_t pairs) {
  if (!convertRow<RoundedTerms>(src, order, alpha, dst, pairs)) {
    plain::toPixelsRounded(src, order, alpha, dst, pairs);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
