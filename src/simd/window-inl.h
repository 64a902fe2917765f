// Weighted means over rows, sums of windows and steps towards them. Included once per target.
#if defined(QPX_SIMD_WINDOW_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_WINDOW_INL_H_
#undef QPX_SIMD_WINDOW_INL_H_
#else
#define QPX_SIMD_WINDOW_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/window_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using WideTag = hn::Repartition<int32_t, D8>;
using Wide = hn::Vec<WideTag>;
using WideBytes = hn::Rebind<uint8_t, WideTag>;  // as many bytes as a vector has 32-bit lanes

// Sums of products of 16-bit lanes, kept in 32 bits: two taps at a time, and back to 16 bits.
class TapSums {
 public:
  HWY_INLINE TapSums() : low_(hn::Zero(WideTag())), high_(hn::Zero(WideTag())) {}

#if HWY_TARGET == HWY_NEON
  HWY_INLINE void add(VS a, VS b, const int16_t* weights) {
    addOne(a, weights[0]);
    addOne(b, weights[1]);
  }

  HWY_INLINE V16 cut() const {
    const hn::Rebind<uint16_t, hn::Half<D16>> half;
    return hn::Combine(D16(), demote(half, high_), demote(half, low_));
  }

 private:
  HWY_INLINE void addOne(VS a, int32_t weight) {
    const hn::Half<DS> half;
    const Wide w = hn::Set(WideTag(), weight);
    low_ = hn::Add(low_, hn::Mul(hn::PromoteTo(WideTag(), hn::LowerHalf(half, a)), w));
    high_ = hn::Add(high_, hn::Mul(hn::PromoteTo(WideTag(), hn::UpperHalf(half, a)), w));
  }

  template <class D>
  HWY_INLINE static hn::Vec<D> demote(D d, Wide v) {
    return hn::DemoteTo(d, hn::ShiftRight<kWindowWeightBits>(v));
  }
#else
  // Lanes of both side by side make one multiply and add of neighbours; packing within blocks
  // undoes interleaving within blocks.
  HWY_INLINE void add(VS a, VS b, const int16_t* weights) {
    const VS w = hn::OddEven(signedWord(weights[1]), signedWord(weights[0]));
    Wide unused = hn::Zero(WideTag());
    low_ =
        hn::ReorderWidenMulAccumulate(WideTag(), hn::InterleaveLower(DS(), a, b), w, low_, unused);
    high_ =
        hn::ReorderWidenMulAccumulate(WideTag(), hn::InterleaveUpper(DS(), a, b), w, high_, unused);
  }

  HWY_INLINE V16 cut() const {
    return hn::BitCast(D16(), hn::ReorderDemote2To(DS(), hn::ShiftRight<kWindowWeightBits>(low_),
                                                   hn::ShiftRight<kWindowWeightBits>(high_)));
  }

 private:
#endif
  Wide low_, high_;
};

HWY_INLINE VS asSigned(V16 v) { return hn::BitCast(DS(), v); }

// Two bytes of one distance from the middle, added.
HWY_INLINE Halves pairOf(const uint8_t* a, const uint8_t* b) {
  const Halves x = widen(loadBytes(a)), y = widen(loadBytes(b));
  return {hn::Add(x.even, y.even), hn::Add(x.odd, y.odd)};
}

// The middle and the first distance are two taps, as are each two distances behind; with an even
// radius the last is alone.
HWY_INLINE V8 weighBytes(const uint8_t* const* middle, const int16_t* weights, int32_t radius,
                         ptrdiff_t i) {
  TapSums even, odd;
  const auto add = [&](const Halves& a, const Halves& b, const int16_t* w) HWY_ATTR {
    even.add(asSigned(a.even), asSigned(b.even), w);
    odd.add(asSigned(a.odd), asSigned(b.odd), w);
  };
  add(widen(loadBytes(middle[0] + i)), pairOf(middle[-1] + i, middle[1] + i), weights);
  int32_t k = 2;
  for (; k < radius; k += 2) {
    add(pairOf(middle[-k] + i, middle[k] + i), pairOf(middle[-k - 1] + i, middle[k + 1] + i),
        weights + k);
  }
  if (k == radius) {
    const Halves nothing = {hn::Zero(D16()), hn::Zero(D16())};
    const int16_t last[2] = {weights[k], 0};
    add(pairOf(middle[-k] + i, middle[k] + i), nothing, last);
  }
  return narrow({even.cut(), odd.cut()});
}

void weighRows(const uint8_t* const* rows, const int16_t* weights, int32_t radius, uint8_t* dst,
               ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i)
                        HWY_ATTR { return weighBytes(rows + radius, weights, radius, i); };
  const auto store = [=](V8 v, ptrdiff_t i) HWY_ATTR { storeBytes(v, dst + i); };
  if (!eachVector(byteLanes(), count, make, store)) {
    plain::weighRows(rows, weights, radius, dst, count);
  }
}

void distance(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  const auto op = [](V8 x, V8 y) HWY_ATTR { return hn::Sub(hn::Max(x, y), hn::Min(x, y)); };
  if (!mapRow(op, dst, count, a, b)) plain::distance(a, b, dst, count);
}

void moveAway(const uint8_t* src, const uint8_t* from, const uint8_t* step, uint8_t* dst,
              ptrdiff_t count) {
  const auto op = [](V8 c, V8 centre, V8 s) HWY_ATTR {
    const auto below = hn::Ne(hn::Max(c, centre), c);
    return hn::IfThenElse(below, hn::SaturatedSub(c, s), hn::SaturatedAdd(c, s));
  };
  if (!mapRow(op, dst, count, src, from, step)) plain::moveAway(src, from, step, dst, count);
}

HWY_INLINE ptrdiff_t wideLanes() { return static_cast<ptrdiff_t>(hn::Lanes(WideTag())); }

HWY_INLINE Wide wideBytes(const uint8_t* from) {
  return hn::PromoteTo(WideTag(), hn::LoadU(WideBytes(), from));
}

void slideDown(int32_t* sums, const uint8_t* in, const uint8_t* out, ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    return hn::Add(hn::LoadU(WideTag(), sums + i), hn::Sub(wideBytes(in + i), wideBytes(out + i)));
  };
  const auto store = [=](Wide v, ptrdiff_t i) HWY_ATTR { hn::StoreU(v, WideTag(), sums + i); };
  if (!eachVector(wideLanes(), count, make, store)) plain::slideDown(sums, in, out, count);
}

// A running sum waits for itself: three of them side by side hide that better than a vector does.
void windowSums(const int32_t* const (&src)[3], int32_t* const (&dst)[3], int32_t size,
                ptrdiff_t count) {
  const int32_t *a = src[0], *b = src[1], *c = src[2];
  int32_t *sumsA = dst[0], *sumsB = dst[1], *sumsC = dst[2];
  int32_t sumA = 0, sumB = 0, sumC = 0;
  const ptrdiff_t ahead = size - 1;
  for (ptrdiff_t i = 0; i < ahead; ++i) {
    sumA += a[i];
    sumB += b[i];
    sumC += c[i];
  }
  for (ptrdiff_t i = 0; i < count; ++i) {
    sumsA[i] = sumA += a[i + ahead];
    sumsB[i] = sumB += b[i + ahead];
    sumsC[i] = sumC += c[i + ahead];
    sumA -= a[i];
    sumB -= b[i];
    sumC -= c[i];
  }
}

void moveToMean(const uint8_t* src, const int32_t* sums, uint8_t* dst, ptrdiff_t count, int32_t q,
                int32_t amount) {
  const WideTag d;
  const Wide reciprocal = hn::Set(d, q);
  const Wide share = hn::Set(d, amount >= 0 ? amount : -amount);
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const Wide sum = hn::LoadU(d, sums + i);
    const Wide once = hn::ShiftRight<10>(hn::Mul(sum, reciprocal));
    const Wide mean = hn::ShiftRight<10>(hn::Mul(once, reciprocal));
    const Wide c = wideBytes(src + i);
    const Wide way = amount >= 0 ? hn::Sub(mean, c) : hn::Sub(c, mean);
    return hn::DemoteTo(WideBytes(), hn::Add(c, hn::ShiftRight<8>(hn::Mul(share, way))));
  };
  const auto store = [=](hn::Vec<WideBytes> v, ptrdiff_t i)
                         HWY_ATTR { hn::StoreU(v, WideBytes(), dst + i); };
  if (!eachVector(wideLanes(), count, make, store)) {
    plain::moveToMean(src, sums, dst, count, q, amount);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
