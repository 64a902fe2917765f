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

using SkinBytesVector = hn::Vec<DHalf8>;

HWY_INLINE SkinBytesVector halfBytes(const uint8_t* from) { return hn::LoadU(DHalf8(), from); }

HWY_INLINE SkinBytesVector apart(SkinBytesVector a, SkinBytesVector b) {
  return hn::Sub(hn::Max(a, b), hn::Min(a, b));
}

class SkinLanes {
 public:
  // The middle's weight is the same everywhere: that of no distance.
  HWY_INLINE SkinLanes(const SkinWindow& window, ptrdiff_t x)
      : window_(window), x_(x), allInside_(isInside()) {
    const uint8_t* middle = window.rows[window.reach] + x;
    SkinTap tap;
    for (int p = 0; p < 3; ++p) {
      middle_[p] = halfBytes(middle + p * window.planeStep);
      tap.sample[p] = wordsFrom(middle + p * window.planeStep);
    }
    const int32_t side = 2 * window.reach + 1;
    tap.weight = weightOf(hn::Zero(D16()), window.near[side * window.reach + window.reach]);
    add({tap.weight, hn::Zero(DS())}, tap, tap);
  }

  // All others come in pairs, each with the one across the middle.
  HWY_INLINE void addNeighbours() {
    const int32_t reach = window_.reach, side = 2 * reach + 1;
    const uint16_t *ahead = window_.near, *behind = window_.near + side * side - 1;
    for (int32_t v = -reach; v <= 0; ++v) {
      const uint8_t *above = window_.rows[reach + v], *below = window_.rows[reach - v];
      const int32_t end = v < 0 ? reach + 1 : 0;
      for (int32_t u = -reach; u < end; ++u) {
        const SkinTap a = tap(above, u, *ahead++), b = tap(below, -u, *behind--);
        add({a.weight, b.weight}, a, b);
      }
    }
  }

  HWY_INLINE void finish() { total_.invert(); }
  HWY_INLINE VS mean(int plane) const { return sum_[plane].over(total_); }

 private:
  // Whether all neighbours of all lanes count.
  HWY_INLINE bool isInside() const {
    const DHalf8 d;
    const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
    const uint8_t* inside = window_.inside + x_;
    SkinBytesVector all = halfBytes(inside + window_.reach);
    for (ptrdiff_t u = -window_.reach; u < window_.reach; u += lanes) {
      all = hn::And(all, halfBytes(inside + u));
    }
    return hn::AllTrue(d, hn::Eq(all, hn::Set(d, 255)));
  }

  HWY_INLINE static VS weightOf(V16 distance, uint16_t near) {
    const V16 t = hn::ShiftLeft<1>(
        hn::SaturatedSub(word(kSkinContrast * kSkinContrast), hn::Mul(distance, distance)));
    return hn::BitCast(DS(), hn::MulHigh(hn::MulHigh(t, t), hn::Set(D16(), near)));
  }

  HWY_INLINE SkinTap tap(const uint8_t* row, int32_t across, uint16_t near) const {
    const ptrdiff_t column = x_ + across;
    SkinTap tap;
    SkinBytesVector distance = hn::Zero(DHalf8());
    for (int p = 0; p < 3; ++p) {
      const uint8_t* from = row + column + p * window_.planeStep;
      distance = hn::SaturatedAdd(distance, apart(halfBytes(from), middle_[p]));
      tap.sample[p] = wordsFrom(from);
    }
    tap.weight = weightOf(hn::PromoteTo(D16(), distance), near);
    if (allInside_) return tap;
    // A byte of 255 as a sign extended word is all ones.
    const hn::RebindToSigned<DHalf8> bits;
    const VS counts = hn::PromoteTo(DS(), hn::BitCast(bits, halfBytes(window_.inside + column)));
    tap.weight = hn::And(tap.weight, counts);
    return tap;
  }

  HWY_INLINE void add(const TwoWeights& weights, const SkinTap& a, const SkinTap& b) {
    for (int p = 0; p < 3; ++p) sum_[p].add(weights, a.sample[p], b.sample[p]);
    total_.add(weights, signedWord(1), signedWord(1));
  }

  const SkinWindow& window_;
  ptrdiff_t x_;
  bool allInside_;
  SkinBytesVector middle_[3];
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
  lanes.addNeighbours();
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

// A lane for each block: its sum of masks, and what is made of it.
class BlockLanes {
 public:
  HWY_INLINE BlockLanes(V8 upperMask, V8 lowerMask, V16 strength) {
    const Halves upper = widen(upperMask), lower = widen(lowerMask);
    const V16 sum = hn::Add(hn::Add(upper.even, upper.odd), hn::Add(lower.even, lower.odd));
    luma_ = hn::ShiftRight<2>(sum);
    // No more is needed to reach either limit from a way of one.
    const V16 share = hn::MulHigh(strength, hn::ShiftLeft<6>(sum));
    chroma_ = hn::ShiftLeft<4>(hn::Min(share, word(kMostU << 8)));
  }

  HWY_INLINE V8 mixed(V8 luma8, V8 aim8) const {
    const V16 rest = hn::Sub(word(256), luma_);
    const auto half = [&](V16 luma, V16 aim) HWY_ATTR {
      return hn::ShiftRight<8>(hn::Add(hn::Mul(luma, rest), hn::Mul(aim, luma_)));
    };
    const Halves luma = widen(luma8), aim = widen(aim8);
    return narrow({half(luma.even, aim.even), half(luma.odd, aim.odd)});
  }

  HWY_INLINE V8 lifted(V8 pairs) const {
    const Halves both = widen(pairs);
    const VS v = difference(both.even, word(128)), u = difference(both.odd, word(128));
    const VS zero = hn::Zero(DS());
    const VS above = hn::Max(v, zero), below = hn::Min(u, zero);
    const V16 wayV = hn::Sub(hn::ShiftRight<8>(hn::Mul(hn::BitCast(D16(), above), word(332))),
                             hn::BitCast(D16(), above));
    const VS wayU = hn::Sub(hn::ShiftRight<7>(hn::Mul(below, signedWord(51))), below);
    const V16 stepV = hn::Min(stepOf(wayV), word(kMostV));
    const V16 stepU = hn::Min(stepOf(hn::BitCast(D16(), wayU)), word(kMostU));
    return narrow({hn::Min(hn::Add(both.even, stepV), word(255)), hn::Add(both.odd, stepU)});
  }

 private:
  static constexpr int32_t kMostU = 9, kMostV = 4;

  HWY_INLINE V16 stepOf(V16 way) const { return hn::MulHigh(chroma_, hn::ShiftLeft<4>(way)); }

  V16 luma_, chroma_;
};

// Chroma only rises: a strength below 0 does nothing to it.
void whitenBlocks(const WhitenedRows& rows, ptrdiff_t count, int32_t strength) {
  if (strength > 65535) {
    plain::whitenBlocks(rows, count, strength);
    return;
  }
  const V16 share = word(strength < 0 ? 0 : strength);
  const auto make = [&](ptrdiff_t i) HWY_ATTR {
    const BlockLanes block(loadBytes(rows.mask[0] + i), loadBytes(rows.mask[1] + i), share);
    return Bytes3{block.mixed(loadBytes(rows.luma[0] + i), loadBytes(rows.aim[0] + i)),
                  block.mixed(loadBytes(rows.luma[1] + i), loadBytes(rows.aim[1] + i)),
                  block.lifted(loadBytes(rows.pairs + i))};
  };
  const auto store = [&](const Bytes3& made, ptrdiff_t i) HWY_ATTR {
    storeColors(made, rows.luma[0] + i, rows.luma[1] + i, rows.pairs + i);
  };
  if (!eachVector(byteLanes(), count, make, store)) plain::whitenBlocks(rows, count, strength);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
