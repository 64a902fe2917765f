// Rows from RGB to YUV. Included once per target.
#if defined(QPX_SIMD_YUV_PACK_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_PACK_INL_H_
#undef QPX_SIMD_YUV_PACK_INL_H_
#else
#define QPX_SIMD_YUV_PACK_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_load-inl.h"
#include "simd/yuv_quads_x86-inl.h"
#include "simd/yuv_rows.h"
#include "simd/yuv_store-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Red, green and blue of pixels as bytes.
template <PixelOrder kOrder>
HWY_INLINE Bytes3 loadPixels(const uint8_t* src) {
  const Bytes3 c = loadChannels<bytesOf(kOrder)>(src);
  return blueFirst(kOrder) ? Bytes3{c.c, c.b, c.a} : c;
}

// Red, green and blue as words.
struct RgbWords {
  V16 r, g, b;
};

HWY_INLINE RgbWords evenPixels(const Bytes3& c) {
  return {widen(c.a).even, widen(c.b).even, widen(c.c).even};
}
HWY_INLINE RgbWords oddPixels(const Bytes3& c) {
  return {widen(c.a).odd, widen(c.b).odd, widen(c.c).odd};
}

HWY_INLINE V16 weighted(const RgbWords& p, int32_t r, int32_t g, int32_t b) {
  return hn::Add(hn::Add(hn::Mul(p.r, word(r)), hn::Mul(p.g, word(g))), hn::Mul(p.b, word(b)));
}

// Differences times weights stay within 16 bits, and so does their sum with half the range.
struct UsualMath {
  ChromaWeights weights;
  VS weightU, weightV;

  explicit HWY_INLINE UsualMath(ChromaWeights chroma)
      : weights(chroma), weightU(signedWord(chroma.u)), weightV(signedWord(chroma.v)) {}

  struct Sum {
    V16 luma;
  };
  static HWY_INLINE Sum sumOf(const RgbWords& p) {
    return {hn::ShiftRight<6>(weighted(p, 19, 38, 7))};
  }
  static HWY_INLINE V16 luma(const Sum& sum) { return sum.luma; }
  static HWY_INLINE V16 chroma(V16 channel, const Sum& sum, VS weight) {
    const VS moved = hn::ShiftRight<7>(hn::Mul(difference(channel, sum.luma), weight));
    return clampWord(hn::Add(moved, signedWord(128)));
  }
  HWY_INLINE V16 u(const RgbWords& p, const Sum& sum) const { return chroma(p.b, sum, weightU); }
  HWY_INLINE V16 v(const RgbWords& p, const Sum& sum) const { return chroma(p.r, sum, weightV); }
};

// A sum of 24 bits is kept without its low eight, which matter by their carry alone: the weights'
// high bytes make up to 32385 and their low bytes up to 65535.
struct FineMath {
  struct Sum {
    V16 shifted;
  };
  static HWY_INLINE Sum sumOf(const RgbWords& p) {
    const V16 low = weighted(p, 9798 & 255, 19235 & 255, 3736 & 255);
    return {hn::Add(weighted(p, 9798 >> 8, 19235 >> 8, 3736 >> 8), hn::ShiftRight<8>(low))};
  }
  static HWY_INLINE V16 luma(const Sum& sum) { return hn::ShiftRight<7>(sum.shifted); }
  static HWY_INLINE V16 chroma(V16 channel, const Sum& sum, int32_t weight) {
    const VS difference7 = difference(hn::ShiftLeft<7>(channel), sum.shifted);
    const VS moved = hn::ShiftRight<6>(hn::MulHigh(difference7, signedWord(weight)));
    return clampWord(hn::Add(moved, signedWord(128)));
  }
  HWY_INLINE V16 u(const RgbWords& p, const Sum& sum) const { return chroma(p.b, sum, 18492); }
  HWY_INLINE V16 v(const RgbWords& p, const Sum& sum) const { return chroma(p.r, sum, 23372); }
};

#if HWY_TARGET == HWY_AVX3_DL

template <PixelOrder kOrder>
HWY_INLINE auto quadsOf(const UsualMath& math) {
  return UsualQuads<blueFirst(kOrder)>(math.weights);
}
template <PixelOrder kOrder>
HWY_INLINE auto quadsOf(const FineMath&) {
  static_assert(!blueFirst(kOrder));
  return FineQuads();
}

template <PixelOrder kOrder, class Store, class Math>
HWY_INLINE bool packRow(const uint8_t* src, const Math& math, const YuvTarget& dst,
                        ptrdiff_t pairs) {
  return packQuads<bytesOf(kOrder), Store>(src, quadsOf<kOrder>(math), blueFirst(kOrder), dst,
                                           pairs);
}

template <PixelOrder kOrder, class Math>
HWY_INLINE bool lumaRow(const uint8_t* src, const Math& math, uint8_t* dst, ptrdiff_t pixels) {
  return lumaOfQuads<bytesOf(kOrder)>(src, quadsOf<kOrder>(math), dst, pixels);
}

#else

template <PixelOrder kOrder, class Store, class Math>
HWY_INLINE bool packRow(const uint8_t* src, const Math& math, const YuvTarget& dst,
                        ptrdiff_t pairs) {
  return overlappingSteps(
      byteLanes() / 2, pairs, [&](ptrdiff_t i) HWY_ATTR __attribute__((always_inline)) {
        const Bytes3 pixels = loadPixels<kOrder>(src + 2 * i * bytesOf(kOrder));
        const RgbWords even = evenPixels(pixels);
        const auto sum = Math::sumOf(even);
        const V16 odd = Math::luma(Math::sumOf(oddPixels(pixels)));
        Store::at(dst, i, {{Math::luma(sum), odd}, math.u(even, sum), math.v(even, sum)});
      });
}

template <PixelOrder kOrder, class Math>
HWY_INLINE bool lumaRow(const uint8_t* src, const Math&, uint8_t* dst, ptrdiff_t pixels) {
  return overlappingSteps(byteLanes(), pixels, [&](ptrdiff_t i) HWY_ATTR {
    const Bytes3 loaded = loadPixels<kOrder>(src + i * bytesOf(kOrder));
    storeBytes(narrow({Math::luma(Math::sumOf(evenPixels(loaded))),
                       Math::luma(Math::sumOf(oddPixels(loaded)))}),
               dst + i);
  });
}

#endif  // HWY_TARGET

template <PixelOrder kOrder, class Math>
HWY_INLINE bool packRow(const uint8_t* src, const Math& math, const YuvTarget& dst,
                        ptrdiff_t pairs) {
  switch (shapeOf(dst)) {
    case RowShape::planes:
      return packRow<kOrder, StorePlanes>(src, math, dst, pairs);
    case RowShape::uvPairs:
      return packRow<kOrder, StorePairs<true>>(src, math, dst, pairs);
    case RowShape::vuPairs:
      return packRow<kOrder, StorePairs<false>>(src, math, dst, pairs);
    case RowShape::yuyv:
      return packRow<kOrder, StorePacked<true, true>>(src, math, dst, pairs);
    case RowShape::yvyu:
      return packRow<kOrder, StorePacked<true, false>>(src, math, dst, pairs);
    case RowShape::uyvy:
      return packRow<kOrder, StorePacked<false, true>>(src, math, dst, pairs);
    case RowShape::vyuy:
      return packRow<kOrder, StorePacked<false, false>>(src, math, dst, pairs);
    default:
      return false;
  }
}

template <class Math>
HWY_INLINE bool packRow(const uint8_t* src, PixelOrder order, const Math& math,
                        const YuvTarget& dst, ptrdiff_t pairs) {
  switch (order) {
    case PixelOrder::rgb24:
      return packRow<PixelOrder::rgb24>(src, math, dst, pairs);
    case PixelOrder::bgr24:
      return packRow<PixelOrder::bgr24>(src, math, dst, pairs);
    case PixelOrder::rgba32:
      return packRow<PixelOrder::rgba32>(src, math, dst, pairs);
    case PixelOrder::bgra32:
      return packRow<PixelOrder::bgra32>(src, math, dst, pairs);
  }
  return false;
}

void fromPixels(const uint8_t* src, PixelOrder order, ChromaWeights weights, const YuvTarget& dst,
                ptrdiff_t pairs) {
  if (!packRow(src, order, UsualMath(weights), dst, pairs)) {
    plain::fromPixels(src, order, weights, dst, pairs);
  }
}

void fromPixelsFine(const uint8_t* src, const YuvTarget& dst, ptrdiff_t pairs) {
  if (!packRow<PixelOrder::rgba32>(src, FineMath(), dst, pairs)) {
    plain::fromPixelsFine(src, dst, pairs);
  }
}

HWY_INLINE bool lumaRow(const uint8_t* src, PixelOrder order, const UsualMath& math, uint8_t* dst,
                        ptrdiff_t pixels) {
  switch (order) {
    case PixelOrder::rgb24:
      return lumaRow<PixelOrder::rgb24>(src, math, dst, pixels);
    case PixelOrder::bgr24:
      return lumaRow<PixelOrder::bgr24>(src, math, dst, pixels);
    case PixelOrder::rgba32:
      return lumaRow<PixelOrder::rgba32>(src, math, dst, pixels);
    case PixelOrder::bgra32:
      return lumaRow<PixelOrder::bgra32>(src, math, dst, pixels);
  }
  return false;
}

void lumaOfPixels(const uint8_t* src, PixelOrder order, uint8_t* dst, ptrdiff_t pixels) {
  if (!lumaRow(src, order, UsualMath(ChromaWeights{}), dst, pixels)) {
    plain::lumaOfPixels(src, order, dst, pixels);
  }
}

void fineLumaOfPixels(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  if (!lumaRow<PixelOrder::rgba32>(src, FineMath(), dst, pixels)) {
    plain::fineLumaOfPixels(src, dst, pixels);
  }
}

template <PixelOrder kOrder>
HWY_INLINE bool planesRow(const uint8_t* src, const UsualMath& math, uint8_t* const* planes,
                          ptrdiff_t pixels) {
  return overlappingSteps(byteLanes(), pixels, [&](ptrdiff_t i) HWY_ATTR {
    const Bytes3 loaded = loadPixels<kOrder>(src + i * bytesOf(kOrder));
    const RgbWords even = evenPixels(loaded), odd = oddPixels(loaded);
    const UsualMath::Sum evenSum = UsualMath::sumOf(even), oddSum = UsualMath::sumOf(odd);
    storeBytes(narrow({evenSum.luma, oddSum.luma}), planes[0] + i);
    storeBytes(narrow({math.u(even, evenSum), math.u(odd, oddSum)}), planes[1] + i);
    storeBytes(narrow({math.v(even, evenSum), math.v(odd, oddSum)}), planes[2] + i);
  });
}

void planesOfPixels(const uint8_t* src, PixelOrder order, ChromaWeights weights,
                    uint8_t* const* planes, ptrdiff_t pixels) {
  // One member asks for this, from R, G, B.
  if (order != PixelOrder::rgb24 ||
      !planesRow<PixelOrder::rgb24>(src, UsualMath(weights), planes, pixels)) {
    plain::planesOfPixels(src, order, weights, planes, pixels);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
