// The search for tables and indices of half blocks, a half block in each 32-bit lane. Included once
// per target.
//
// With d the pixel less the base colour and m an offset as clamping leaves it, in each channel,
//
//   error = sum w * (d - m)^2 = sum w * d^2 + sum w * m^2 - sum 2 * w * m * d
//
// The first term does not depend on the offset, the second not on the pixel, so that an offset
// costs a pixel one product of vectors. Where no channel is clamped, m is the table's offset itself
// and with S = sum w * d, as the weights add up to 64,
//
//   error = sum w * d^2 + 64 * m^2 - 2 * m * S
//
// of which the better sign is known beforehand: -2 * |m| * |S|.
#if defined(QPX_SIMD_ETC_SEARCH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_ETC_SEARCH_INL_H_
#undef QPX_SIMD_ETC_SEARCH_INL_H_
#else
#define QPX_SIMD_ETC_SEARCH_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/etc_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace etc {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<int32_t>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;

static_assert(kEtcBatch % static_cast<ptrdiff_t>(HWY_LANES(int32_t)) == 0);

HWY_INLINE V number(int32_t value) { return hn::Set(D(), value); }

HWY_INLINE V loadWords(const uint32_t* words) {
  return hn::BitCast(D(), hn::LoadU(hn::RebindToUnsigned<D>(), words));
}

HWY_INLINE void storeWords(V v, uint32_t* words) {
  const hn::RebindToUnsigned<D> du;
  hn::StoreU(hn::BitCast(du, v), du, words);
}

#if HWY_ARCH_X86

// Red and green as the halves of a lane, blue with 0: x86 multiplies and adds such pairs at once.
using DPair = hn::RepartitionToNarrow<D>;
using VPair = hn::Vec<DPair>;

struct Color {
  VPair rg, b;
};

HWY_INLINE VPair pairs(V low, V high) {
  return hn::BitCast(DPair(), hn::Or(low, hn::ShiftLeft<16>(high)));
}
HWY_INLINE VPair pairs(int32_t low, int32_t high) {
  return pairs(number(low & 0xFFFF), number(high));
}

HWY_INLINE Color makeColor(V r, V g, V b) { return {pairs(r, g), hn::BitCast(DPair(), b)}; }

// A number in both halves of a lane.
struct Offset {
  VPair both;
};
HWY_INLINE Offset offset(V value) { return {pairs(hn::And(value, number(0xFFFF)), value)}; }
HWY_INLINE Offset offset(int32_t value) { return {hn::Set(DPair(), static_cast<int16_t>(value))}; }

HWY_INLINE Color minus(const Color& a, const Color& b) {
  return {hn::Sub(a.rg, b.rg), hn::Sub(a.b, b.b)};
}

HWY_INLINE VPair movedInRange(VPair base, VPair by) {
  const VPair most = hn::Set(DPair(), 255);
  return hn::Sub(hn::Min(hn::Max(hn::Add(base, by), hn::Zero(DPair())), most), base);
}

HWY_INLINE Color moved(const Color& base, const Offset& by) {
  return {movedInRange(base.rg, by.both), movedInRange(base.b, by.both)};
}

// The weight of the half that is not blue is 0, whatever stands there.
HWY_INLINE Color weighed(const Color& c, int32_t times) {
  return {hn::Mul(c.rg, pairs(times * kEtcWeights.red, times * kEtcWeights.green)),
          hn::Mul(c.b, pairs(times * kEtcWeights.blue, 0))};
}

HWY_INLINE V plusProduct(VPair a, VPair b, V sum) {
  V unused = hn::Zero(D());
  return hn::ReorderWidenMulAccumulate(D(), a, b, sum, unused);
}

HWY_INLINE V plusProduct(const Color& a, const Color& b, V sum) {
  return plusProduct(a.b, b.b, plusProduct(a.rg, b.rg, sum));
}

// The number of a lane is below 2^15.
HWY_INLINE V timesSmall(V number, int32_t factor) {
  return plusProduct(hn::BitCast(DPair(), number), pairs(factor, 0), hn::Zero(D()));
}

#else

struct Color {
  V r, g, b;
};

HWY_INLINE Color makeColor(V r, V g, V b) { return {r, g, b}; }

using Offset = V;
HWY_INLINE Offset offset(V value) { return value; }
HWY_INLINE Offset offset(int32_t value) { return number(value); }

HWY_INLINE Color minus(const Color& a, const Color& b) {
  return {hn::Sub(a.r, b.r), hn::Sub(a.g, b.g), hn::Sub(a.b, b.b)};
}

HWY_INLINE V movedInRange(V base, V by) {
  return hn::Sub(hn::Min(hn::Max(hn::Add(base, by), hn::Zero(D())), number(255)), base);
}

HWY_INLINE Color moved(const Color& base, const Offset& by) {
  return {movedInRange(base.r, by), movedInRange(base.g, by), movedInRange(base.b, by)};
}

HWY_INLINE Color weighed(const Color& c, int32_t times) {
  return {hn::Mul(c.r, number(times * kEtcWeights.red)),
          hn::Mul(c.g, number(times * kEtcWeights.green)),
          hn::Mul(c.b, number(times * kEtcWeights.blue))};
}

HWY_INLINE V plusProduct(const Color& a, const Color& b, V sum) {
  sum = hn::Add(sum, hn::Mul(a.r, b.r));
  sum = hn::Add(sum, hn::Mul(a.g, b.g));
  return hn::Add(sum, hn::Mul(a.b, b.b));
}

HWY_INLINE V timesSmall(V v, int32_t factor) { return hn::Mul(v, number(factor)); }

#endif

template <int kByte>
HWY_INLINE V byteOf(V word) {
  return hn::And(hn::ShiftRight<8 * kByte>(word), number(255));
}

// What a pixel adds to all its errors, and what it multiplies.
struct Pixels {
  Color away[8];  // from the base colour
  V square[8];    // sum w * d^2
  V sum[8];       // |sum w * d|
};

template <int kByte>
HWY_INLINE void takePixel(V red, V green, V blue, const Color& base, const Color& weights,
                          Pixels& p, int32_t k) {
  p.away[k] = minus(makeColor(byteOf<kByte>(red), byteOf<kByte>(green), byteOf<kByte>(blue)), base);
  p.square[k] = plusProduct(p.away[k], weighed(p.away[k], 1), hn::Zero(D()));
  p.sum[k] = hn::Abs(plusProduct(p.away[k], weights, hn::Zero(D())));
}

HWY_INLINE void takePixels(const EtcSamples& samples, ptrdiff_t at, const Color& base, Pixels& p) {
  const Color weights = weighed(makeColor(number(1), number(1), number(1)), 1);
  for (int32_t word = 0; word < 2; ++word) {
    const V red = loadWords(samples.words[0][word] + at);
    const V green = loadWords(samples.words[1][word] + at);
    const V blue = loadWords(samples.words[2][word] + at);
    takePixel<0>(red, green, blue, base, weights, p, 4 * word);
    takePixel<1>(red, green, blue, base, weights, p, 4 * word + 1);
    takePixel<2>(red, green, blue, base, weights, p, 4 * word + 2);
    takePixel<3>(red, green, blue, base, weights, p, 4 * word + 3);
  }
}

// One of the four offsets: what it adds to all errors, and what it multiplies.
struct Candidate {
  Color factor;  // -2 * w * m
  V square;      // sum w * m^2
};

HWY_INLINE Candidate candidate(const Color& base, const Offset& by) {
  const Color m = moved(base, by);
  return {weighed(m, -2), plusProduct(m, weighed(m, 1), hn::Zero(D()))};
}

HWY_INLINE V errorOf(const Candidate& c, const Color& away) {
  return plusProduct(c.factor, away, c.square);
}

HWY_INLINE V tableErrorClamped(const Pixels& p, const Color& base, EtcOffsets by) {
  const Candidate c0 = candidate(base, offset(-by.large)), c1 = candidate(base, offset(-by.small));
  const Candidate c2 = candidate(base, offset(by.small)), c3 = candidate(base, offset(by.large));
  V total = hn::Zero(D());
  for (int32_t k = 0; k < 8; ++k) {
    const V darker = hn::Min(errorOf(c0, p.away[k]), errorOf(c1, p.away[k]));
    const V lighter = hn::Min(errorOf(c2, p.away[k]), errorOf(c3, p.away[k]));
    const V error = hn::Add(p.square[k], hn::Min(darker, lighter));
    total = hn::Add(total, hn::ShiftRight<6>(error));
  }
  return total;
}

HWY_INLINE V tableErrorInRange(const Pixels& p, EtcOffsets by) {
  const V near = number(64 * by.small * by.small), far = number(64 * by.large * by.large);
  V total = hn::Zero(D());
  for (int32_t k = 0; k < 8; ++k) {
    const V small = hn::Sub(near, timesSmall(p.sum[k], 2 * by.small));
    const V large = hn::Sub(far, timesSmall(p.sum[k], 2 * by.large));
    const V error = hn::Add(p.square[k], hn::Min(small, large));
    total = hn::Add(total, hn::ShiftRight<6>(error));
  }
  return total;
}

struct Best {
  V table, error, small, large;
};

// `reach` is the distance of the base colour from the nearest end of the range.
HWY_INLINE Best bestTable(const Pixels& p, const Color& base, V reach) {
  Best best = {hn::Zero(D()), number(kEtcWorstError), number(0), number(0)};
  for (int32_t table = 0; table < 8; ++table) {
    const EtcOffsets by = kEtcTables[table];
    const bool inRange = hn::AllFalse(D(), hn::Lt(reach, number(by.large)));
    const V error = inRange ? tableErrorInRange(p, by) : tableErrorClamped(p, base, by);
    const M less = hn::Lt(error, best.error);
    best.error = hn::Min(error, best.error);
    best.table = hn::IfThenElse(less, number(table), best.table);
    best.small = hn::IfThenElse(less, number(by.small), best.small);
    best.large = hn::IfThenElse(less, number(by.large), best.large);
  }
  return best;
}

struct Indices {
  V bits, exact;
};

// Offsets are tried in ascending order and replaced by better ones only.
HWY_INLINE Indices bestIndices(const Pixels& p, const Color& base, const Best& best) {
  constexpr int32_t kIndexBits[4] = {1 << 16 | 1, 1 << 16, 0, 1};
  const Candidate candidates[4] = {
      candidate(base, offset(hn::Neg(best.large))), candidate(base, offset(hn::Neg(best.small))),
      candidate(base, offset(best.small)), candidate(base, offset(best.large))};
  Indices indices = {hn::Zero(D()), hn::Zero(D())};
  for (int32_t k = 7; k >= 0; --k) {
    V exact = hn::Add(p.square[k], errorOf(candidates[0], p.away[k]));
    V bits = number(kIndexBits[0]);
    for (int32_t c = 1; c < 4; ++c) {
      const V error = hn::Add(p.square[k], errorOf(candidates[c], p.away[k]));
      const M less = hn::Lt(hn::ShiftRight<6>(error), hn::ShiftRight<6>(exact));
      exact = hn::IfThenElse(less, error, exact);
      bits = hn::IfThenElse(less, number(kIndexBits[c]), bits);
    }
    indices.bits = hn::Or(hn::Add(indices.bits, indices.bits), bits);
    indices.exact = hn::Add(indices.exact, exact);
  }
  return indices;
}

void searchEtc(const EtcSamples& samples, const uint32_t* bases, EtcChoices& choices,
               ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i += static_cast<ptrdiff_t>(hn::Lanes(D()))) {
    const V packed = loadWords(bases + i);
    const V r = byteOf<0>(packed), g = byteOf<1>(packed), b = byteOf<2>(packed);
    const Color base = makeColor(r, g, b);
    const V least = hn::Min(hn::Min(r, g), b), most = hn::Max(hn::Max(r, g), b);
    Pixels pixels;
    takePixels(samples, i, base, pixels);
    const Best best = bestTable(pixels, base, hn::Min(least, hn::Sub(number(255), most)));
    const Indices indices = bestIndices(pixels, base, best);
    storeWords(best.table, choices.table + i);
    storeWords(best.error, choices.error + i);
    storeWords(indices.bits, choices.bits + i);
    storeWords(indices.exact, choices.exact + i);
  }
}

}  // namespace etc

using etc::searchEtc;

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
