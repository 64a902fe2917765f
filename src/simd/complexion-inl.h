// The bilateral mean of skin. Included once per target.
#if defined(QPX_SIMD_COMPLEXION_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_COMPLEXION_INL_H_
#undef QPX_SIMD_COMPLEXION_INL_H_
#else
#define QPX_SIMD_COMPLEXION_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/complexion_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using SumTag = hn::Repartition<int32_t, D8>;
using Sum = hn::Vec<SumTag>;
using RatioTag = hn::RebindToFloat<SumTag>;
using Ratio = hn::Vec<RatioTag>;

HWY_INLINE VS wordsFrom(const uint8_t* from) {
  return hn::BitCast(DS(), hn::PromoteTo(D16(), hn::LoadU(DHalf8(), from)));
}

struct TwoWeights {
  VS first, second;
};

// Sums of products of two taps at a time, both below 2^15, in 32 bits.
class ProductSums {
 public:
  HWY_INLINE ProductSums() : low_(hn::Zero(SumTag())), high_(hn::Zero(SumTag())) {}

  // Before anything is divided by these sums.
  HWY_INLINE void invert() {
    lowInverse_ = inverseOf(low_);
    highInverse_ = inverseOf(high_);
  }

#if HWY_TARGET == HWY_NEON
  HWY_INLINE void add(const TwoWeights& weights, VS a, VS b) {
    addOne(weights.first, a);
    addOne(weights.second, b);
  }

  HWY_INLINE VS over(const ProductSums& total) const {
    const hn::Rebind<int16_t, hn::Half<DS>> half;
    return hn::Combine(DS(), hn::DemoteTo(half, quotient(high_, total.high_, total.highInverse_)),
                       hn::DemoteTo(half, quotient(low_, total.low_, total.lowInverse_)));
  }

 private:
  HWY_INLINE void addOne(VS a, VS b) {
    const hn::Half<DS> half;
    const SumTag d;
    low_ = hn::Add(low_, hn::Mul(hn::PromoteTo(d, hn::LowerHalf(half, a)),
                                 hn::PromoteTo(d, hn::LowerHalf(half, b))));
    high_ = hn::Add(high_, hn::Mul(hn::PromoteTo(d, hn::UpperHalf(half, a)),
                                   hn::PromoteTo(d, hn::UpperHalf(half, b))));
  }
#else
  // Lanes of both taps side by side make one multiply and add of neighbours; packing within blocks
  // undoes interleaving within blocks.
  HWY_INLINE void add(const TwoWeights& weights, VS a, VS b) {
    const DS d;
    Sum unused = hn::Zero(SumTag());
    low_ = hn::ReorderWidenMulAccumulate(SumTag(),
                                         hn::InterleaveLower(d, weights.first, weights.second),
                                         hn::InterleaveLower(d, a, b), low_, unused);
    high_ = hn::ReorderWidenMulAccumulate(SumTag(),
                                          hn::InterleaveUpper(d, weights.first, weights.second),
                                          hn::InterleaveUpper(d, a, b), high_, unused);
  }

  HWY_INLINE VS over(const ProductSums& total) const {
    return hn::ReorderDemote2To(DS(), quotient(low_, total.low_, total.lowInverse_),
                                quotient(high_, total.high_, total.highInverse_));
  }

 private:
#endif
  HWY_INLINE static Ratio inverseOf(Sum sum) {
    const RatioTag d;
    return hn::Div(hn::Set(d, 1.0f), hn::ConvertTo(d, sum));
  }

  // Floats come as near as one; what remains tells which way.
  HWY_INLINE static Sum quotient(Sum a, Sum b, Ratio inverseOfB) {
    const SumTag d;
    const Sum near = hn::ConvertTo(d, hn::Mul(hn::ConvertTo(RatioTag(), a), inverseOfB));
    const Sum rest = hn::Sub(a, hn::Mul(near, b));
    const Sum tooMuch = hn::VecFromMask(d, hn::Lt(rest, hn::Zero(d)));
    const Sum tooLittle = hn::VecFromMask(d, hn::Not(hn::Lt(rest, b)));
    return hn::Sub(hn::Add(near, tooMuch), tooLittle);
  }

  Sum low_, high_;
  Ratio lowInverse_ = hn::Zero(RatioTag()), highInverse_ = hn::Zero(RatioTag());
};

// A neighbour's samples, and the bits that say whether it counts.
struct SkinTap {
  VS sample[3];
  VS weight;
};

class SkinLanes {
 public:
  HWY_INLINE SkinLanes(const SkinWindow& window, ptrdiff_t x) : window_(window), x_(x) {
    const uint8_t* middle = window.rows[window.reach] + x;
    for (int p = 0; p < 3; ++p) middle_[p] = wordsFrom(middle + p * window.planeStep);
  }

  // Each row has an odd number of neighbours; the last is paired with nothing.
  HWY_INLINE void addRow(const uint8_t* row, const uint16_t* near) {
    const int32_t reach = window_.reach;
    for (int32_t u = -reach; u < reach; u += 2) {
      const SkinTap a = tap(row, u, near[u + reach]), b = tap(row, u + 1, near[u + 1 + reach]);
      add({a.weight, b.weight}, a, b);
    }
    const SkinTap last = tap(row, reach, near[2 * reach]);
    add({last.weight, hn::Zero(DS())}, last, last);
  }

  HWY_INLINE void finish() { total_.invert(); }
  HWY_INLINE VS mean(int plane) const { return sum_[plane].over(total_); }

 private:
  HWY_INLINE SkinTap tap(const uint8_t* row, int32_t across, uint16_t near) const {
    const D16 d;
    const ptrdiff_t column = x_ + across;
    SkinTap tap;
    VS distance = hn::Zero(DS());
    for (int p = 0; p < 3; ++p) {
      tap.sample[p] = wordsFrom(row + column + p * window_.planeStep);
      distance = hn::Add(distance, hn::Abs(hn::Sub(tap.sample[p], middle_[p])));
    }
    const V16 x = hn::BitCast(d, hn::Min(distance, signedWord(255)));
    const V16 t =
        hn::ShiftLeft<1>(hn::SaturatedSub(word(kSkinContrast * kSkinContrast), hn::Mul(x, x)));
    const V16 weight = hn::MulHigh(hn::MulHigh(t, t), hn::Set(d, near));
    // A byte of 255 as a sign extended word is all ones.
    const VS counts = hn::PromoteTo(
        DS(),
        hn::BitCast(hn::RebindToSigned<DHalf8>(), hn::LoadU(DHalf8(), window_.inside + column)));
    tap.weight = hn::And(hn::BitCast(DS(), weight), counts);
    return tap;
  }

  HWY_INLINE void add(const TwoWeights& weights, const SkinTap& a, const SkinTap& b) {
    for (int p = 0; p < 3; ++p) sum_[p].add(weights, a.sample[p], b.sample[p]);
    total_.add(weights, signedWord(1), signedWord(1));
  }

  const SkinWindow& window_;
  ptrdiff_t x_;
  VS middle_[3];
  ProductSums sum_[3], total_;
};

struct SkinBytes {
  hn::Vec<DHalf8> plane[3];
};

HWY_INLINE SkinBytes smoothed(const SkinWindow& window, const uint8_t* skin, ptrdiff_t i) {
  const hn::Vec<DHalf8> chosen = hn::LoadU(DHalf8(), skin + i);
  const auto isSkin = hn::Ne(chosen, hn::Zero(DHalf8()));
  SkinBytes result;
  for (int p = 0; p < 3; ++p) {
    result.plane[p] = hn::LoadU(DHalf8(), window.rows[window.reach] + p * window.planeStep + i);
  }
  if (hn::AllFalse(DHalf8(), isSkin)) return result;
  SkinLanes lanes(window, i);
  const int32_t side = 2 * window.reach + 1;
  for (int32_t v = 0; v < side; ++v) lanes.addRow(window.rows[v], window.near + v * side);
  lanes.finish();
  for (int p = 0; p < 3; ++p) {
    const auto mean = hn::DemoteTo(DHalf8(), lanes.mean(p));
    result.plane[p] = hn::IfThenElse(isSkin, mean, result.plane[p]);
  }
  return result;
}

void smoothSkin(const SkinWindow& window, const uint8_t* skin, uint8_t* const (&dst)[3],
                ptrdiff_t count) {
  const auto make = [&](ptrdiff_t i) HWY_ATTR { return smoothed(window, skin, i); };
  const auto store = [&](const SkinBytes& bytes, ptrdiff_t i) HWY_ATTR {
    for (int p = 0; p < 3; ++p) hn::StoreU(bytes.plane[p], DHalf8(), dst[p] + i);
  };
  if (!eachVector(static_cast<ptrdiff_t>(hn::Lanes(D16())), count, make, store)) {
    plain::smoothSkin(window, skin, dst, count);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
