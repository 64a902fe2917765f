// Greys of planar colours, and colours moved about them. Included once per target.
#if defined(QPX_SIMD_GREY_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_GREY_INL_H_
#undef QPX_SIMD_GREY_INL_H_
#else
#define QPX_SIMD_GREY_INL_H_
#endif

#include <hwy/highway.h>

#include <cmath>
#include <cstdlib>

#include "simd/blend-inl.h"
#include "simd/blend_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

class Lightness {
 public:
  HWY_INLINE V8 operator()(V8 r, V8 g, V8 b) const {
    return cutMean(hn::Max(hn::Max(r, g), b), hn::Min(hn::Min(r, g), b));
  }
};

// Weights of up to 256 each, and 256 together, keep the sum in 16 bits.
class WeighedLuma {
 public:
  explicit WeighedLuma(const LumaWeights& w)
      : red_(word(w.red)), green_(word(w.green)), blue_(word(w.blue)) {}

  HWY_INLINE V8 operator()(V8 r, V8 g, V8 b) const {
    const Halves red = widen(r), green = widen(g), blue = widen(b);
    return narrow({half(red.even, green.even, blue.even), half(red.odd, green.odd, blue.odd)});
  }

 private:
  HWY_INLINE V16 half(V16 r, V16 g, V16 b) const {
    const V16 sum = hn::Add(hn::Mul(r, red_), hn::Mul(g, green_));
    return hn::ShiftRight<8>(hn::Add(hn::Add(sum, hn::Mul(b, blue_)), word(128)));
  }

  V16 red_, green_, blue_;
};

// hueSum of the lanes of three channels. Where channels are equal, the weight that the comparison
// picks is that of a zero.
template <class D, class V, typename Float>
HWY_INLINE V hueSumOf(D d, V r, V g, V b, const HueWeights<Float>& w) {
  const V most = hn::Max(hn::Max(r, g), b), least = hn::Min(hn::Min(r, g), b);
  const V middle = hn::Max(hn::Min(r, g), hn::Min(hn::Max(r, g), b));
  const V primary =
      hn::IfThenElse(hn::Eq(most, r), hn::Set(d, w.reds),
                     hn::IfThenElse(hn::Eq(most, g), hn::Set(d, w.greens), hn::Set(d, w.blues)));
  const V secondary =
      hn::IfThenElse(hn::Eq(least, b), hn::Set(d, w.yellows),
                     hn::IfThenElse(hn::Eq(least, r), hn::Set(d, w.cyans), hn::Set(d, w.magentas)));
  const V sum =
      hn::Add(hn::Mul(hn::Sub(middle, least), secondary), hn::Mul(hn::Sub(most, middle), primary));
  return hn::Add(sum, least);
}

class ChalkBoardGrey {
 public:
  HWY_INLINE V8 operator()(V8 red, V8 green, V8 blue) const {
    const Floats r = toFloats(red), g = toFloats(green), b = toFloats(blue);
    return gatherBytes(quarter(r.q0, g.q0, b.q0), quarter(r.q1, g.q1, b.q1),
                       quarter(r.q2, g.q2, b.q2), quarter(r.q3, g.q3, b.q3));
  }

 private:
  HWY_INLINE static V32 quarter(VF r, VF g, VF b) {
    return cut(hueSumOf(DF(), r, g, b, kChalkBoardWeights));
  }
};

#if HWY_HAVE_FLOAT64

// In double precision, two halves for each quarter.
class HueGrey {
 public:
  explicit HueGrey(const HueWeights<double>& weights) : weights_(weights) {}

  HWY_INLINE V8 operator()(V8 red, V8 green, V8 blue) const {
    const Ints r = toInts(red), g = toInts(green), b = toInts(blue);
    return gatherBytes(quarter(r.q0, g.q0, b.q0), quarter(r.q1, g.q1, b.q1),
                       quarter(r.q2, g.q2, b.q2), quarter(r.q3, g.q3, b.q3));
  }

 private:
  using DD = hn::Repartition<double, D8>;
  using DHalf = hn::Rebind<int32_t, DD>;
  using VD = hn::Vec<DD>;
  using VHalf = hn::Vec<DHalf>;

  struct Ints {
    V32 q0, q1, q2, q3;
  };

  HWY_INLINE static Ints toInts(V8 v) {
    const hn::RebindToUnsigned<D32> du;
    const D32 d;
    const auto words = hn::BitCast(du, v);
    const auto low = hn::Set(du, 0xFF);
    return {hn::BitCast(d, hn::And(words, low)),
            hn::BitCast(d, hn::And(hn::ShiftRight<8>(words), low)),
            hn::BitCast(d, hn::And(hn::ShiftRight<16>(words), low)),
            hn::BitCast(d, hn::ShiftRight<24>(words))};
  }

  HWY_INLINE V32 quarter(V32 r, V32 g, V32 b) const {
    const DHalf d;
    const VHalf low = half(hn::LowerHalf(d, r), hn::LowerHalf(d, g), hn::LowerHalf(d, b));
    const VHalf high = half(hn::UpperHalf(d, r), hn::UpperHalf(d, g), hn::UpperHalf(d, b));
    return hn::Combine(D32(), high, low);
  }

  // Weights may carry the sum out of a byte; clamping it before the rounding is as good as after.
  HWY_INLINE VHalf half(VHalf r, VHalf g, VHalf b) const {
    const DD d;
    const DHalf di;
    const VD sum =
        hueSumOf(d, hn::PromoteTo(d, r), hn::PromoteTo(d, g), hn::PromoteTo(d, b), weights_);
    const VD v = hn::Min(hn::Max(sum, hn::Zero(d)), hn::Set(d, 255.0));
    const VD fraction = hn::Sub(v, hn::PromoteTo(d, hn::DemoteTo(di, v)));
    const auto rises = hn::Gt(fraction, hn::Set(d, 0.5));
    return hn::DemoteTo(di, hn::Add(v, hn::IfThenElseZero(rises, hn::Set(d, 1.0))));
  }

  HueWeights<double> weights_;
};

// Sums of huge weights, and of what is no number, are left to the definition.
HWY_INLINE bool usual(const HueWeights<double>& w) {
  constexpr double kMost = 1e9;
  for (const double weight : {w.reds, w.yellows, w.greens, w.cyans, w.blues, w.magentas}) {
    if (!(std::abs(weight) <= kMost)) return false;
  }
  return true;
}

void hueGrey(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count,
             const HueWeights<double>& weights) {
  if (!usual(weights)) return plain::hueGrey(r, g, b, dst, count, weights);
  mapRowPadded(HueGrey(weights), dst, count, r, g, b);
}

#else
using plain::hueGrey;
#endif

void lightness(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
               ptrdiff_t count) {
  mapRowPadded(Lightness(), dst, count, r, g, b);
}

void weighedLuma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                 ptrdiff_t count, const LumaWeights& weights) {
  mapRowPadded(WeighedLuma(weights), dst, count, r, g, b);
}

void chalkBoardGrey(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                    ptrdiff_t count) {
  mapRowPadded(ChalkBoardGrey(), dst, count, r, g, b);
}

// (amount * distance) >> 10 is the high half of 64 * amount * distance.
constexpr int32_t kFarthestMove = 511;

template <bool kApart>
class Moved {
 public:
  explicit Moved(int32_t amount) : amount_(signedWord(64 * amount)) {}

  HWY_INLINE V8 operator()(V8 c, V8 centre) const {
    const Halves x = widen(c), m = widen(centre);
    return narrow({half(x.even, m.even), half(x.odd, m.odd)});
  }

 private:
  HWY_INLINE V16 half(V16 c, V16 centre) const {
    const VS from = hn::BitCast(DS(), c), step = hn::MulHigh(difference(c, centre), amount_);
    return clampWord(kApart ? hn::Add(from, step) : hn::Sub(from, step));
  }

  VS amount_;
};

void moveApart(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
               int32_t amount) {
  if (std::abs(amount) > kFarthestMove) return plain::moveApart(src, centre, dst, count, amount);
  mapRowPadded(Moved<true>(amount), dst, count, src, centre);
}

void drawTogether(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
                  int32_t amount) {
  if (std::abs(amount) > kFarthestMove) return plain::drawTogether(src, centre, dst, count, amount);
  mapRowPadded(Moved<false>(amount), dst, count, src, centre);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
