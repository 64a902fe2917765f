// Vectors out of rows of YUV, by the shape of the row. Included once per target.
#if defined(QPX_SIMD_YUV_LOAD_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_LOAD_INL_H_
#undef QPX_SIMD_YUV_LOAD_INL_H_
#else
#define QPX_SIMD_YUV_LOAD_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

enum class RowShape {
  planes,      // all steps 1
  uvPairs,     // luma by 1, U before V
  vuPairs,     // luma by 1, V before U
  everyOther,  // planes of which every other sample of chroma counts
  yuyv,        // packed, luma first, U before V
  yvyu,
  uyvy,  // packed, U first
  vyuy,
  triplets,  // Y, U, V of each pixel, of which chroma counts every other time
  other
};

template <class Byte>
HWY_INLINE RowShape packedShape(const YuvSamples<Byte>& row) {
  if (row.u == row.y + 1 && row.v == row.y + 3) return RowShape::yuyv;
  if (row.v == row.y + 1 && row.u == row.y + 3) return RowShape::yvyu;
  if (row.y == row.u + 1 && row.v == row.y + 1) return RowShape::uyvy;
  if (row.y == row.v + 1 && row.u == row.y + 1) return RowShape::vyuy;
  return RowShape::other;
}

template <class Byte>
HWY_INLINE RowShape shapeOf(const YuvSamples<Byte>& row) {
  if (row.lumaStep == 2 && row.chromaStep == 4) return packedShape(row);
  if (row.lumaStep == 3 && row.chromaStep == 6 && row.u == row.y + 1 && row.v == row.y + 2) {
    return RowShape::triplets;
  }
  if (row.lumaStep != 1) return RowShape::other;
  if (row.chromaStep == 1) return RowShape::planes;
  if (row.chromaStep != 2) return RowShape::other;
  if (row.v == row.u + 1) return RowShape::uvPairs;
  return row.u == row.v + 1 ? RowShape::vuPairs : RowShape::everyOther;
}

// A vector of pixels: luma of the even and the odd ones, chroma of each two.
struct YuvWords {
  Halves luma;
  V16 u, v;
};

// Bytes of half a vector as words.
HWY_INLINE V16 loadWords(const uint8_t* from) {
  return hn::PromoteTo(D16(), hn::LoadU(DHalf8(), from));
}

HWY_INLINE V16 evenBytes(V8 v) { return widen(v).even; }
HWY_INLINE V16 oddBytes(V8 v) { return widen(v).odd; }

// `order` brings groups of four pixels into the places from which they are stored; for words of
// chroma, pairs of them.

struct LoadPlanes {
  template <class Order>
  static HWY_INLINE YuvWords at(const YuvSource& src, ptrdiff_t i, const Order& order) {
    return {widen(order.placed(loadBytes(src.y + 2 * i))), order.placed(loadWords(src.u + i)),
            order.placed(loadWords(src.v + i))};
  }
};

template <bool kUFirst>
struct LoadPairs {
  template <class Order>
  static HWY_INLINE YuvWords at(const YuvSource& src, ptrdiff_t i, const Order& order) {
    const Halves pairs = widen(order.placed(loadBytes((kUFirst ? src.u : src.v) + 2 * i)));
    return {widen(order.placed(loadBytes(src.y + 2 * i))), kUFirst ? pairs.even : pairs.odd,
            kUFirst ? pairs.odd : pairs.even};
  }
};

struct LoadYuyv {
  template <class Order>
  static HWY_INLINE YuvWords at(const YuvSource& src, ptrdiff_t i, const Order& order) {
    const V8 first = loadBytes(src.y + 4 * i), second = loadBytes(src.y + 4 * i + byteLanes());
    const Halves pairs = widen(order.placed(hn::ConcatOdd(D8(), second, first)));
    return {widen(order.placed(hn::ConcatEven(D8(), second, first))), pairs.even, pairs.odd};
  }
};

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
