// Rows of the widest conversions. Included once per target.
#if defined(QPX_SIMD_WIDE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_WIDE_INL_H_
#undef QPX_SIMD_WIDE_INL_H_
#else
#define QPX_SIMD_WIDE_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/wide_rows.h"
#include "simd/yuv_pixels-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Luma times a power of two is whole, so that the rest is shifted by itself.
template <int kShift>
class FoldedTerms {
 public:
  explicit HWY_INLINE FoldedTerms(const FoldedWeights& w)
      : redV_(signedWord(w.redV)),
        redBias_(signedWord(w.redBias)),
        greenV_(signedWord(w.greenV)),
        greenU_(signedWord(w.greenU)),
        greenBias_(signedWord(w.greenBias)),
        blueU_(signedWord(w.blueU)),
        blueBias_(signedWord(w.blueBias)) {}

  HWY_INLINE ColorTerms operator()(VS u, VS v) const {
    const VS green = hn::Sub(hn::Sub(greenBias_, hn::Mul(greenV_, v)), hn::Mul(greenU_, u));
    return {hn::ShiftRight<kShift>(hn::Sub(hn::Mul(redV_, v), redBias_)),
            hn::ShiftRight<kShift>(green),
            hn::ShiftRight<kShift>(hn::Sub(hn::Mul(blueU_, u), blueBias_))};
  }

 private:
  VS redV_, redBias_, greenV_, greenU_, greenBias_, blueU_, blueBias_;
};

class FineTerms {
 public:
  HWY_INLINE ColorTerms operator()(VS storedU, VS storedV) const {
    const VS u = hn::Sub(storedU, signedWord(128)), v = hn::Sub(storedV, signedWord(128));
    const VS green = hn::Add(product<360853>(u), product<748826>(v));
    return {hn::ShiftRight<4>(product<1470104>(v)),
            hn::ShiftRight<4>(hn::Sub(hn::Zero(DS()), green)),
            hn::ShiftRight<4>(product<1858077>(u))};
  }

 private:
  using DW = hn::RepartitionToWide<DS>;

  // c * kWeight >> 16, exactly: the products have more than 16 bits. Words at even places and at
  // odd ones apart.
  template <int32_t kWeight>
  static HWY_INLINE VS product(VS c) {
    const DW d;
    const auto weight = hn::Set(d, kWeight);
    const auto both = hn::BitCast(d, c);
    const auto even = hn::Mul(hn::ShiftRight<16>(hn::ShiftLeft<16>(both)), weight);
    const auto odd = hn::Mul(hn::ShiftRight<16>(both), weight);
    const auto upper = hn::Set(d, static_cast<int32_t>(0xFFFF0000u));
    const auto lower =
        hn::BitCast(d, hn::ShiftRight<16>(hn::BitCast(hn::RebindToUnsigned<DW>(), even)));
    return hn::BitCast(DS(), hn::Or(lower, hn::And(odd, upper)));
  }
};

void toPixelsFolded(const YuvSource& src, const FoldedWeights& weights, PixelOrder order,
                    uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  const bool done = weights.shift == 6
                        ? convertRow(FoldedTerms<6>(weights), src, order, alpha, dst, pairs)
                        : convertRow(FoldedTerms<7>(weights), src, order, alpha, dst, pairs);
  if (!done) plain::toPixelsFolded(src, weights, order, alpha, dst, pairs);
}

template <int kShift>
HWY_INLINE bool convertFullChroma(const YuvSource& src, const FoldedWeights& weights, uint8_t alpha,
                                  uint8_t* dst, ptrdiff_t pixels) {
  const FoldedTerms<kShift> terms(weights);
  const PixelStore<PixelOrder::bgra32> store(alpha);
  const auto half = [&](V16 luma, V16 u, V16 v) HWY_ATTR {
    const ColorTerms t = terms(hn::BitCast(DS(), u), hn::BitCast(DS(), v));
    const VS y = hn::BitCast(DS(), luma);
    return ColorTerms{hn::Add(y, t.red), hn::Add(y, t.green), hn::Add(y, t.blue)};
  };
  return overlappingSteps(byteLanes(), pixels, [&](ptrdiff_t i) HWY_ATTR {
    const Halves y = widen(store.placed(loadBytes(src.y + i)));
    const Halves u = widen(store.placed(loadBytes(src.u + i)));
    const Halves v = widen(store.placed(loadBytes(src.v + i)));
    const ColorTerms even = half(y.even, u.even, v.even), odd = half(y.odd, u.odd, v.odd);
    store(packWords(even.red, odd.red), packWords(even.green, odd.green),
          packWords(even.blue, odd.blue), dst + 4 * i);
  });
}

void toPixelsFullChroma(const YuvSource& src, const FoldedWeights& weights, uint8_t alpha,
                        uint8_t* dst, ptrdiff_t pixels) {
  const bool done = weights.shift == 6 ? convertFullChroma<6>(src, weights, alpha, dst, pixels)
                                       : convertFullChroma<7>(src, weights, alpha, dst, pixels);
  if (!done) plain::toPixelsFullChroma(src, weights, alpha, dst, pixels);
}

void toPixelsFine(const YuvSource& src, uint8_t alpha, uint8_t* dst, ptrdiff_t pairs) {
  if (!convertRow(FineTerms(), src, PixelOrder::bgra32, alpha, dst, pairs)) {
    plain::toPixelsFine(src, alpha, dst, pairs);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
