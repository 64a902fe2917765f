// Colours and channels mixed by weights, and colours brought to a luma. Included once per target.
#if defined(QPX_SIMD_TINT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_TINT_INL_H_
#undef QPX_SIMD_TINT_INL_H_
#else
#define QPX_SIMD_TINT_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/hue_rows.h"
#include "simd/tint_math.h"
#include "simd/word_table-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

void mixWeighted(const uint8_t* base, const uint8_t* top, const uint8_t* weight, uint8_t* dst,
                 ptrdiff_t count) {
  const auto half = [](V16 b, V16 t, V16 w) HWY_ATTR {
    const VS twice = hn::ShiftLeft<1>(difference(t, b));
    const VS share = hn::BitCast(DS(), hn::ShiftLeft<7>(w));
    return hn::Add(b, hn::BitCast(D16(), hn::MulHigh(twice, share)));
  };
  const auto op = [=](V8 b8, V8 t8, V8 w8) HWY_ATTR {
    const Halves b = widen(b8), t = widen(t8), w = widen(w8);
    return narrow({half(b.even, t.even, w.even), half(b.odd, t.odd, w.odd)});
  };
  if (!mapRow(op, dst, count, base, top, weight)) {
    plain::mixWeighted(base, top, weight, dst, count);
  }
}

#if HWY_ARCH_X86
// Two channels side by side make one multiply and add of neighbours; packing within blocks undoes
// interleaving within blocks.
class MixerRow {
 public:
  HWY_INLINE explicit MixerRow(const int32_t (&row)[4])
      : firstTwo_(hn::OddEven(signedWord(row[1]), signedWord(row[0]))),
        third_(signedWord(row[2])),
        constant_(hn::Set(Wide(), row[3])) {}

  // Of pixels at even or at odd places: interleaved channels, the third with nothing.
  HWY_INLINE V16 operator()(const VS (&pairs)[2], const VS (&thirds)[2]) const {
    const auto low = sum(pairs[0], thirds[0]), high = sum(pairs[1], thirds[1]);
    return clampWord(hn::ReorderDemote2To(DS(), hn::ShiftRight<8>(low), hn::ShiftRight<8>(high)));
  }

 private:
  using Wide = hn::Repartition<int32_t, D8>;

  HWY_INLINE hn::Vec<Wide> sum(VS pair, VS third) const {
    auto unused = hn::Zero(Wide());
    const auto two = hn::ReorderWidenMulAccumulate(Wide(), pair, firstTwo_, constant_, unused);
    return hn::ReorderWidenMulAccumulate(Wide(), third, third_, two, unused);
  }

  VS firstTwo_, third_;
  hn::Vec<Wide> constant_;
};

struct MixedWords {
  V16 r, g, b;
};

HWY_INLINE MixedWords mixedWords(V16 r16, V16 g16, V16 b16, const MixerRow& toR,
                                 const MixerRow& toG, const MixerRow& toB) {
  const DS d;
  const VS r = hn::BitCast(d, r16), g = hn::BitCast(d, g16), b = hn::BitCast(d, b16),
           nothing = hn::Zero(d);
  const VS pairs[2] = {hn::InterleaveLower(d, r, g), hn::InterleaveUpper(d, r, g)};
  const VS thirds[2] = {hn::InterleaveLower(d, b, nothing), hn::InterleaveUpper(d, b, nothing)};
  return {toR(pairs, thirds), toG(pairs, thirds), toB(pairs, thirds)};
}

void mixColors(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const int32_t (&rows)[3][4]) {
  const MixerRow toR(rows[0]), toG(rows[1]), toB(rows[2]);
  const auto op = [&](const Bytes3& c) HWY_ATTR {
    const Halves red = widen(c.a), green = widen(c.b), blue = widen(c.c);
    const MixedWords even = mixedWords(red.even, green.even, blue.even, toR, toG, toB);
    const MixedWords odd = mixedWords(red.odd, green.odd, blue.odd, toR, toG, toB);
    return Bytes3{narrow({even.r, odd.r}), narrow({even.g, odd.g}), narrow({even.b, odd.b})};
  };
  if (!mapColors(op, r, g, b, count)) plain::mixColors(r, g, b, count, rows);
}
#else
// Compilers turn it into vector code.
using plain::mixColors;
#endif

#if HWY_ARCH_ARM_V7
// Divisions must be exact.
using plain::tintGreys;
#else

// Divides 16-bit numbers by what bytes and one make: 1 ... 256.
class TintDivisor {
 public:
  HWY_INLINE explicit TintDivisor(V8 lessOne) {
    const Halves d = widen(lessOne);
    divisor_ = {hn::Add(d.even, word(1)), hn::Add(d.odd, word(1))};
#if HWY_TARGET <= HWY_AVX3
    reciprocal_ = WordTable(kReciprocals)(lessOne);
#endif
  }

  struct Result {
    V16 quotient, rest;
  };

  HWY_INLINE Result even(V16 n) const {
#if HWY_TARGET <= HWY_AVX3
    return divided(n, divisor_.even, dividedHalf(n, divisor_.even, reciprocal_.even));
#else
    return divided(n, divisor_.even, byFloats(n, divisor_.even));
#endif
  }

  HWY_INLINE Result odd(V16 n) const {
#if HWY_TARGET <= HWY_AVX3
    return divided(n, divisor_.odd, dividedHalf(n, divisor_.odd, reciprocal_.odd));
#else
    return divided(n, divisor_.odd, byFloats(n, divisor_.odd));
#endif
  }

 private:
  HWY_INLINE static Result divided(V16 n, V16 d, V16 quotient) {
    return {quotient, hn::Sub(n, hn::Mul(quotient, d))};
  }

#if HWY_TARGET <= HWY_AVX3
  Halves reciprocal_;
#else
  using Whole = hn::Repartition<int32_t, D8>;
  using Real = hn::RebindToFloat<Whole>;
  using Narrow = hn::Half<D16>;

  // The next whole number is farther away than a step of the float.
  HWY_INLINE static hn::Vec<Narrow> halfByFloats(hn::Vec<Narrow> n, hn::Vec<Narrow> d) {
    const Whole whole;
    const auto real = [=](hn::Vec<Narrow> v)
                          HWY_ATTR { return hn::ConvertTo(Real(), hn::PromoteTo(whole, v)); };
    return hn::DemoteTo(Narrow(), hn::ConvertTo(whole, hn::Div(real(n), real(d))));
  }

  HWY_INLINE static V16 byFloats(V16 n, V16 d) {
    const Narrow half;
    return hn::Combine(D16(), halfByFloats(hn::UpperHalf(half, n), hn::UpperHalf(half, d)),
                       halfByFloats(hn::LowerHalf(half, n), hn::LowerHalf(half, d)));
  }
#endif

  Halves divisor_;
};

// Which channel of a colour is the largest and which is in the middle, and their weights in luma;
// equal channels stand as red, green, blue, or where that is no order, in the order of the rest.
struct TintOrder {
  using M8 = hn::Mask<D8>;

  M8 redMost, greenMost, redMid, greenMid, natural;

  HWY_INLINE explicit TintOrder(const Bytes3& c) {
    const auto above = [](V8 a, V8 b) HWY_ATTR { return hn::Eq(hn::Max(a, b), a); };
    const M8 redAboveGreen = above(c.a, c.b), greenAboveBlue = above(c.b, c.c),
             redAboveBlue = above(c.a, c.c), blueAboveGreen = above(c.c, c.b);
    natural = hn::And(redAboveGreen, greenAboveBlue);
    redMost = hn::And(redAboveGreen, hn::Or(greenAboveBlue, redAboveBlue));
    greenMost = hn::Not(hn::Or(redAboveGreen, blueAboveGreen));
    redMid = hn::Or(hn::AndNot(redMost, redAboveGreen), hn::And(greenMost, redAboveBlue));
    greenMid = hn::Or(natural, hn::AndNot(redAboveGreen, blueAboveGreen));
  }

  HWY_INLINE V8 mostLuma() const { return luma(redMost, greenMost); }
  HWY_INLINE V8 midLuma() const { return luma(redMid, greenMid); }

  HWY_INLINE Bytes3 placed(V8 most, V8 mid, V8 least) const {
    const M8 blue = hn::Not(hn::Or(redMost, greenMost)),
             blueMid = hn::Not(hn::Or(redMid, greenMid));
    const auto pick = [&](M8 isMost, M8 isMid) HWY_ATTR {
      return hn::IfThenElse(isMost, most, hn::IfThenElse(isMid, mid, least));
    };
    return {pick(redMost, redMid), pick(greenMost, greenMid), pick(blue, blueMid)};
  }

 private:
  HWY_INLINE static V8 luma(M8 red, M8 green) {
    const D8 d;
    return hn::IfThenElse(
        red, hn::Set(d, kTintLuma.red),
        hn::IfThenElse(green, hn::Set(d, kTintLuma.green), hn::Set(d, kTintLuma.blue)));
  }
};

HWY_INLINE VS tintSigned(V16 v) { return hn::BitCast(DS(), v); }
HWY_INLINE V16 tintWords(VS v) { return hn::BitCast(D16(), v); }

// (a * b) >> 10 of 1024 and less by a.
HWY_INLINE V16 tintShare(V16 b, V16 place) { return hn::MulHigh(hn::ShiftLeft<6>(b), place); }

struct TintTones {
  V16 most, mid, least;
};

HWY_INLINE TintTones selectTones(hn::Mask<DS> first, const TintTones& a, const TintTones& b) {
  const auto mask = hn::RebindMask(D16(), first);
  return {hn::IfThenElse(mask, a.most, b.most), hn::IfThenElse(mask, a.mid, b.mid),
          hn::IfThenElse(mask, a.least, b.least)};
}

// One half of what is known of a vector's colours.
struct TintHalf {
  V16 grey, mostLuma, midLuma, range, above, place;
  V16 natural;  // 255 where the order is red, green, blue

  // By the sums' differences, which leave 16 bits, as bytes with a borrow.
  HWY_INLINE TintTones usual() const {
    const V16 gain = hn::Add(hn::Mul(hn::Sub(word(256), midLuma), above), word(128));
    const V16 loss = hn::Mul(mostLuma, range);
    const V16 low = word(255);
    const V16 borrow = hn::ShiftRight<15>(hn::Sub(hn::And(gain, low), hn::And(loss, low)));
    const V16 step = hn::Sub(hn::ShiftRight<8>(gain), hn::ShiftRight<8>(loss));
    const V16 mid = hn::Sub(hn::Add(grey, step), borrow);
    const V16 least = hn::Sub(mid, above);
    return {hn::Add(least, range), mid, least};
  }

  HWY_INLINE V16 darkLuma() const { return hn::Add(mostLuma, tintShare(midLuma, place)); }

  HWY_INLINE V16 lightLuma() const {
    const VS rest = tintSigned(hn::Sub(place, word(1024)));
    const VS share = hn::MulHigh(tintSigned(hn::ShiftLeft<6>(midLuma)), rest);
    const V16 leastLuma = hn::Sub(word(256), hn::Add(mostLuma, midLuma));
    return hn::Sub(hn::Add(leastLuma, word(1)), tintWords(share));
  }

  HWY_INLINE V16 lightRest() const {
    const V16 counted = hn::Sub(midLuma, hn::And(natural, word(1)));
    return hn::Sub(hn::Sub(grey, mostLuma), tintShare(counted, place));
  }

  HWY_INLINE TintTones aboveBlack(V16 most) const {
    return {most, hn::MulHigh(hn::ShiftLeft<5>(place), hn::Add(most, most)), hn::Zero(D16())};
  }

  // What is below 0 is cut downwards too.
  HWY_INLINE TintTones belowWhite(const TintDivisor::Result& result) const {
    const V16 more = hn::IfThenZeroElse(hn::Eq(result.rest, hn::Zero(D16())), word(1));
    const V16 negative = hn::Sub(hn::Zero(D16()), hn::Add(result.quotient, more));
    const auto below = hn::RebindMask(D16(), hn::Lt(tintSigned(lightRest()), hn::Zero(DS())));
    const V16 least = hn::IfThenElse(below, negative, result.quotient);
    const VS room = tintSigned(hn::ShiftLeft<2>(hn::Sub(word(256), least)));
    const VS step = hn::MulHigh(tintSigned(hn::ShiftLeft<4>(place)), room);
    return {word(255), hn::Add(least, tintWords(step)), least};
  }

  HWY_INLINE TintTones chosen(V16 darkMost, const TintDivisor::Result& light) const {
    const TintTones tones = usual();
    const VS zero = hn::Zero(DS());
    const auto dark =
        hn::Or(hn::Lt(tintSigned(tones.mid), signedWord(1)), hn::Lt(tintSigned(tones.least), zero));
    const auto bright = hn::Gt(tintSigned(tones.most), signedWord(255));
    return selectTones(dark, aboveBlack(darkMost), selectTones(bright, belowWhite(light), tones));
  }
};

HWY_INLINE V16 absolute256(V16 rest) {
  return hn::ShiftLeft<8>(tintWords(hn::Abs(tintSigned(rest))));
}

// ((above + 1) << 10) / (range + 1), three bits of it from what the rest leaves.
template <class Divide>
HWY_INLINE V16 placeOf(V16 above, const Divide& divide) {
  const auto high = divide(hn::ShiftLeft<7>(hn::Add(above, word(1))));
  const auto low = divide(hn::ShiftLeft<3>(high.rest));
  return hn::Add(hn::ShiftLeft<3>(high.quotient), low.quotient);
}

HWY_INLINE V8 clampToBytes(V16 even, V16 odd) {
  return narrow({clampWord(tintSigned(even)), clampWord(tintSigned(odd))});
}

HWY_INLINE Bytes3 tinted(const Bytes3& c, V8 grey8) {
  const V8 top = hn::Max(c.a, c.b), bottom = hn::Min(c.a, c.b);
  const V8 most = hn::Max(top, c.c), least = hn::Min(bottom, c.c);
  const V8 mid = hn::Max(bottom, hn::Min(top, c.c));
  const TintOrder order(c);
  const V8 range8 = hn::Sub(most, least);
  const Halves grey = widen(grey8), mostLuma = widen(order.mostLuma()),
               midLuma = widen(order.midLuma()), range = widen(range8),
               above = widen(hn::Sub(mid, least)),
               natural = widen(hn::VecFromMask(D8(), order.natural));
  const TintDivisor byRange(range8);
  const V16 evenPlace = placeOf(above.even, [&](V16 n) HWY_ATTR { return byRange.even(n); });
  const V16 oddPlace = placeOf(above.odd, [&](V16 n) HWY_ATTR { return byRange.odd(n); });
  const TintHalf even = {grey.even,  mostLuma.even, midLuma.even, range.even,
                         above.even, evenPlace,     natural.even};
  const TintHalf odd = {grey.odd,  mostLuma.odd, midLuma.odd, range.odd,
                        above.odd, oddPlace,     natural.odd};
  const V8 one = hn::Set(D8(), 1);
  const TintDivisor byDark(hn::Sub(narrow({even.darkLuma(), odd.darkLuma()}), one));
  const TintDivisor byLight(hn::Sub(narrow({even.lightLuma(), odd.lightLuma()}), one));
  const TintTones evens = even.chosen(byDark.even(hn::ShiftLeft<8>(grey.even)).quotient,
                                      byLight.even(absolute256(even.lightRest())));
  const TintTones odds = odd.chosen(byDark.odd(hn::ShiftLeft<8>(grey.odd)).quotient,
                                    byLight.odd(absolute256(odd.lightRest())));
  return order.placed(clampToBytes(evens.most, odds.most), clampToBytes(evens.mid, odds.mid),
                      clampToBytes(evens.least, odds.least));
}

void tintGreys(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    return tinted({loadBytes(r + i), loadBytes(g + i), loadBytes(b + i)}, loadBytes(grey + i));
  };
  const auto store = [=](const Bytes3& colors, ptrdiff_t i)
                         HWY_ATTR { storeColors(colors, r + i, g + i, b + i); };
  if (!eachVector(byteLanes(), count, make, store)) plain::tintGreys(r, g, b, count, grey);
}
#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
