// Fixed-point arithmetic on planar bytes. Included once per target.
#if defined(QPX_SIMD_MIX_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_MIX_INL_H_
#undef QPX_SIMD_MIX_INL_H_
#else
#define QPX_SIMD_MIX_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The sum has 23 bits. Its weights split into 256 * (38, 75, 15) + (70, 35, -105), and the lower
// part is 35 * (2 * r + g - 3 * b), so that two sums of 16 bits do: (256 * high + low) >> 15 is
// (high + (low >> 8)) >> 7, with high in 0..32640 and low in -26775..26775.
class Luma {
 public:
  V8 operator()(V8 r, V8 g, V8 b) const {
    const Halves red = widen(r), green = widen(g), blue = widen(b);
    return narrow({half(red.even, green.even, blue.even), half(red.odd, green.odd, blue.odd)});
  }

 private:
  HWY_INLINE static V16 half(V16 r, V16 g, V16 b) {
    const V16 high =
        hn::Add(hn::Add(hn::Mul(r, word(38)), hn::Mul(g, word(75))), hn::Mul(b, word(15)));
    const V16 redOverBlue = hn::Sub(r, b);
    const V16 low = hn::Mul(hn::Add(hn::Add(redOverBlue, redOverBlue), hn::Sub(g, b)), word(35));
    return hn::ShiftRight<7>(hn::Add(high, arithmeticShift<8>(low)));
  }
};

// Works on a quarter of the bytes at a time, as lanes of 32 bits.
class WeightedSum {
 public:
  using D32 = hn::ScalableTag<int32_t>;
  using Quarter = hn::Rebind<uint8_t, D32>;

  explicit WeightedSum(const int32_t* w)
      : a_(hn::Set(D32(), w[0])),
        b_(hn::Set(D32(), w[1])),
        c_(hn::Set(D32(), w[2])),
        offset_(hn::Set(D32(), w[3])) {}

  hn::Vec<Quarter> operator()(const uint8_t* a, const uint8_t* b, const uint8_t* c) const {
    const auto sum = hn::Add(hn::Add(hn::Mul(lanes(a), a_), hn::Mul(lanes(b), b_)),
                             hn::Add(hn::Mul(lanes(c), c_), offset_));
    return hn::DemoteTo(Quarter(), hn::ShiftRight<16>(sum));  // clamps
  }

 private:
  HWY_INLINE static hn::Vec<D32> lanes(const uint8_t* bytes) {
    return hn::PromoteTo(D32(), hn::LoadU(Quarter(), bytes));
  }

  hn::Vec<D32> a_, b_, c_, offset_;
};

// n / 100 for n in 0..25550. 5243 / 2^19 is 1/100 + 12 / (100 * 2^19), which adds less than 1/100
// in all as long as 12 * n < 2^19.
HWY_INLINE V16 divideBy100(V16 n) { return hn::ShiftRight<3>(hn::MulHigh(n, word(5243))); }

class MixOpaque {
 public:
  explicit MixOpaque(int32_t opacity) : base_(word(100 - opacity)), top_(word(opacity)) {}

  V8 operator()(V8 base, V8 top) const {
    const Halves b = widen(base), t = widen(top);
    return narrow({half(b.even, t.even), half(b.odd, t.odd)});
  }

 private:
  HWY_INLINE V16 half(V16 b, V16 t) const {
    return divideBy100(hn::Add(hn::Add(hn::Mul(b, base_), hn::Mul(t, top_)), word(50)));
  }

  V16 base_, top_;
};

class MixColor {
 public:
  MixColor(int32_t top, int32_t opacity)
      : base_(word(100 - opacity)), added_(word(top * opacity + 50)) {}

  V8 operator()(V8 base) const {
    const Halves b = widen(base);
    return narrow({half(b.even), half(b.odd)});
  }

 private:
  HWY_INLINE V16 half(V16 b) const { return divideBy100(hn::Add(hn::Mul(b, base_), added_)); }

  V16 base_, added_;
};

// With weight = opacity * mask and distance = |top - base|, the result is base + q where top is not
// below base and base - q where it is, q being
//   (distance * weight + 12750) / 25500   or   (distance * weight + 12749) / 25500
// (below base a half rounds towards it). The quotient is found in 16 bits: share, a little less
// than weight / 25500 in units of 2^-16, gives q or q - 1, and the remainder, which fits 16 bits
// and needs no more of the products than their low halves, tells which.
class MixMasked {
 public:
  explicit MixMasked(int32_t opacity)
      : opacity_(word(opacity)), fraction_(word(opacity * 65535 / 100)) {}

  V8 operator()(V8 base, V8 top, V8 mask) const {
    const D8 d;
    const V8 fall = hn::SaturatedSub(base, top);
    const V8 falls = hn::Min(fall, hn::Set(d, 1));
    const Halves distance = widen(hn::Or(fall, hn::SaturatedSub(top, base)));
    const Halves m = widen(mask), less = widen(falls);
    const V8 q =
        narrow({half(distance.even, m.even, less.even), half(distance.odd, m.odd, less.odd)});
    // -q is ~q + 1.
    const V8 sign = hn::Sub(hn::Zero(d), falls);
    return hn::Add(base, hn::Add(hn::Xor(q, sign), falls));
  }

 private:
  HWY_INLINE V16 half(V16 distance, V16 mask, V16 less) const {
    // mask * 257 is mask / 255 in units of 1 / 65535.
    const V16 share = hn::MulHigh(hn::Mul(mask, word(257)), fraction_);
    const V16 quotient = hn::MulHigh(distance, share);
    const V16 product = hn::Mul(distance, hn::Mul(mask, opacity_));
    // The remainder is in 0..50999; minus 25500 it is negative where the quotient is right.
    const V16 over =
        hn::Sub(hn::Sub(hn::Sub(product, word(12750)), less), hn::Mul(quotient, word(25500)));
    return hn::Add(hn::Add(quotient, word(1)), arithmeticShift<15>(over));
  }

  V16 opacity_, fraction_;
};

class Complement256 {
 public:
  V8 operator()(V8 v) const { return hn::SaturatedAdd(hn::Not(v), hn::Set(D8(), 1)); }
};

void luma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  if (!mapRow(Luma(), dst, count, r, g, b)) plain::luma(r, g, b, dst, count);
}

void weightedSum(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* dst,
                 ptrdiff_t count, const int32_t* w) {
  const WeightedSum::Quarter d;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = count - length;
  if (end < 0) {
    plain::weightedSum(a, b, c, dst, count, w);
    return;
  }
  const WeightedSum op(w);
  const auto last = op(a + end, b + end, c + end);
  for (ptrdiff_t i = 0; i < end; i += length) hn::StoreU(op(a + i, b + i, c + i), d, dst + i);
  hn::StoreU(last, d, dst + end);
}

void mixOpaque(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
               int32_t opacity) {
  if (!mapRow(MixOpaque(opacity), dst, count, base, top)) {
    plain::mixOpaque(base, top, dst, count, opacity);
  }
}

void mixColor(const uint8_t* base, uint8_t top, uint8_t* dst, ptrdiff_t count, int32_t opacity) {
  if (!mapRow(MixColor(top, opacity), dst, count, base)) {
    plain::mixColor(base, top, dst, count, opacity);
  }
}

void mixMasked(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, int32_t opacity) {
  if (!mapRow(MixMasked(opacity), dst, count, base, top, mask)) {
    plain::mixMasked(base, top, mask, dst, count, opacity);
  }
}

void complement256(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
  if (!mapRow(Complement256(), dst, count, src)) plain::complement256(src, dst, count);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
