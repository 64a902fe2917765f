// Colours sorted and enriched, light laid on by weights. Included once per target.
#if defined(QPX_SIMD_TONE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_TONE_INL_H_
#undef QPX_SIMD_TONE_INL_H_
#else
#define QPX_SIMD_TONE_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/tone_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

HWY_INLINE V8 largest(const Bytes3& v) { return hn::Max(hn::Max(v.a, v.b), v.c); }
HWY_INLINE V8 smallest(const Bytes3& v) { return hn::Min(hn::Min(v.a, v.b), v.c); }

void sortToSepia(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count) {
  const auto mixed = [](V16 least, V16 most) HWY_ATTR {
    return hn::ShiftRight<8>(hn::Add(hn::Mul(least, word(197)), hn::Mul(most, word(59))));
  };
  const auto op = [=](const Bytes3& colors) HWY_ATTR {
    const V8 most = largest(colors), least = smallest(colors);
    const Halves m = widen(most), l = widen(least);
    return Bytes3{most, narrow({mixed(l.even, m.even), mixed(l.odd, m.odd)}), least};
  };
  if (!mapColors(op, r, g, b, count)) plain::sortToSepia(r, g, b, count);
}

// c + ((distance * weight) >> kBits), whose product fits 16 bits.
template <int kBits>
HWY_INLINE V16 moved(V16 c, VS distance, VS weight) {
  return clampWord(hn::Add(hn::BitCast(DS(), c), hn::ShiftRight<kBits>(hn::Mul(distance, weight))));
}

void lean(const uint8_t* src, const uint8_t* light, const uint8_t* up, const uint8_t* down,
          uint8_t* dst, ptrdiff_t count) {
  const auto half = [](V16 c, V16 l, V16 w) HWY_ATTR {
    return moved<7>(c, difference(l, word(128)), hn::BitCast(DS(), w));
  };
  const auto op = [=](V8 c8, V8 l8, V8 up8, V8 down8) HWY_ATTR {
    const D8 d;
    const V8 above = hn::SaturatedSub(l8, hn::Set(d, 128));
    const auto darker = hn::Eq(above, hn::Zero(d));
    const Halves c = widen(c8), l = widen(l8), w = widen(hn::IfThenElse(darker, down8, up8));
    return narrow({half(c.even, l.even, w.even), half(c.odd, l.odd, w.odd)});
  };
  if (!mapRow(op, dst, count, src, light, up, down)) {
    plain::lean(src, light, up, down, dst, count);
  }
}

// Of the darker form both products fit 16 bits without a sign, of the lighter one with a sign;
// src * 256 passes the last shift as it is.
HWY_INLINE V16 overlayHalf(V16 c, V16 t) {
  const V16 shadow =
      hn::Add(hn::Mul(c, word(52)), hn::Mul(hn::ShiftRight<7>(hn::Mul(c, t)), word(204)));
  const V16 lean16 = arithmeticShift<7>(hn::Mul(hn::Sub(word(255), c), hn::Sub(t, word(128))));
  const V16 lit = hn::Add(c, arithmeticShift<8>(hn::Mul(lean16, word(204))));
  const auto dark = hn::Lt(hn::BitCast(DS(), c), signedWord(129));
  return hn::IfThenElse(hn::RebindMask(D16(), dark), hn::ShiftRight<8>(shadow), lit);
}

void overlay(const uint8_t* src, const uint8_t* tone, uint8_t* dst, ptrdiff_t count) {
  const auto op = [](V8 c8, V8 t8) HWY_ATTR {
    const Halves c = widen(c8), t = widen(t8);
    return narrow({overlayHalf(c.even, t.even), overlayHalf(c.odd, t.odd)});
  };
  if (!mapRow(op, dst, count, src, tone)) plain::overlay(src, tone, dst, count);
}

// Products of a distance and a weight, and the 510 beside them, just fit 16 bits; what is left of
// them is below 64, so that 64 times a step fits with a sign.
void layTexels(const uint8_t* src, const uint8_t* texels, const uint8_t* darker,
               const uint8_t* lighter, uint8_t* dst, ptrdiff_t count, int32_t share) {
  const VS share16 = signedWord(share);
  const auto stepHalf = [](V16 texel, V16 weight) HWY_ATTR {
    const V16 distance = hn::Add(hn::Add(texel, texel), word(1));
    return hn::ShiftRight<10>(hn::Add(hn::Mul(distance, weight), word(510)));
  };
  const auto mixHalf = [=](V16 c, V16 laid) HWY_ATTR {
    const VS step = hn::ShiftLeft<6>(difference(laid, c));
    return hn::Add(c, hn::BitCast(D16(), hn::MulHigh(step, share16)));
  };
  const auto op = [=](V8 c8, V8 t8, V8 darker8, V8 lighter8) HWY_ATTR {
    const D8 d;
    const auto dark = hn::Lt(t8, hn::Set(d, 128));
    const V8 behind8 = hn::Xor(t8, hn::IfThenElse(dark, hn::Set(d, 0x7F), hn::Set(d, 0x80)));
    const Halves behind = widen(behind8), w = widen(hn::IfThenElse(dark, darker8, lighter8));
    const V8 step8 = narrow({stepHalf(behind.even, w.even), stepHalf(behind.odd, w.odd)});
    const V8 laid8 = hn::IfThenElse(dark, hn::SaturatedSub(c8, step8), hn::SaturatedAdd(c8, step8));
    const Halves c = widen(c8), laid = widen(laid8);
    return narrow({mixHalf(c.even, laid.even), mixHalf(c.odd, laid.odd)});
  };
  if (!mapRow(op, dst, count, src, texels, darker, lighter)) {
    plain::layTexels(src, texels, darker, lighter, dst, count, share);
  }
}

// Sums of up to 25500 are doubled, so that the high half of a product is its shift by 15.
void mixPercent(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
                int32_t percent) {
  if (percent < 0 || percent > 100) {
    plain::mixPercent(base, top, dst, count, percent);
    return;
  }
  const V16 ofTop = word(2 * percent), ofBase = word(2 * (100 - percent));
  const auto half = [=](V16 b, V16 t) HWY_ATTR {
    return hn::MulHigh(hn::Add(hn::Mul(t, ofTop), hn::Mul(b, ofBase)), word(327));
  };
  const auto op = [=](V8 b8, V8 t8) HWY_ATTR {
    const Halves b = widen(b8), t = widen(t8);
    return narrow({half(b.even, t.even), half(b.odd, t.odd)});
  };
  if (!mapRow(op, dst, count, base, top)) {
    plain::mixPercent(base, top, dst, count, percent);
  }
}

#if HWY_ARCH_ARM_V7
// Divisions must be exact.
void enrich(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count) { plain::enrich(r, g, b, count); }
#else
using D32 = hn::Repartition<int32_t, D8>;
using DF = hn::RebindToFloat<D32>;
using V32 = hn::Vec<D32>;

// Quotients of whole numbers below 2^21 by divisors below 2^11 are never rounded up to the next
// whole number: it is farther away than a step of the float.
HWY_INLINE V32 quotient(V32 a, V32 b) {
  return hn::ConvertTo(D32(), hn::Div(hn::ConvertTo(DF(), a), hn::ConvertTo(DF(), b)));
}

template <class Narrow>
HWY_INLINE hn::Vec<hn::Rebind<int16_t, D32> > strongGain(Narrow span, Narrow base) {
  const D32 d;
  const V32 saturation =
      quotient(hn::ShiftLeft<10>(hn::PromoteTo(d, span)), hn::PromoteTo(d, base));
  const V32 full = quotient(hn::Set(d, 0x100000), hn::Add(saturation, hn::Set(d, 1)));
  return hn::DemoteTo(hn::Rebind<int16_t, D32>(), hn::Sub(full, hn::Set(d, 1024)));
}

// span * 1024 / base is below 820 if and only if span * 256 < 205 * base; both fit 16 bits without
// a sign.
HWY_INLINE VS gainOf(V16 least, V16 most) {
  const D16 d;
  const V16 sum = hn::Add(least, most), span = hn::Sub(most, least);
  const V16 base = hn::Min(hn::Add(sum, word(1)), hn::Sub(word(511), sum));
  const V16 excess = hn::SaturatedSub(hn::Mul(base, word(205)), hn::ShiftLeft<8>(span));
  const auto strong = hn::RebindMask(DS(), hn::Eq(excess, hn::Zero(d)));
  const VS usual = signedWord(253);
  if (hn::AllFalse(DS(), strong)) return usual;
  const hn::Half<D16> dh;
  const auto low = strongGain(hn::LowerHalf(dh, span), hn::LowerHalf(dh, base));
  const auto high = strongGain(hn::UpperHalf(dh, span), hn::UpperHalf(dh, base));
  return hn::IfThenElse(strong, hn::Combine(DS(), high, low), usual);
}

void enrich(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count) {
  const auto op = [](const Bytes3& colors) HWY_ATTR {
    const V8 most8 = largest(colors), least8 = smallest(colors);
    const Halves most = widen(most8), least = widen(least8), mean = widen(cutMean(most8, least8));
    const VS even = gainOf(least.even, most.even), odd = gainOf(least.odd, most.odd);
    const auto enriched = [&](V8 c8) HWY_ATTR {
      const Halves c = widen(c8);
      return narrow({moved<10>(c.even, difference(c.even, mean.even), even),
                     moved<10>(c.odd, difference(c.odd, mean.odd), odd)});
    };
    return Bytes3{enriched(colors.a), enriched(colors.b), enriched(colors.c)};
  };
  if (!mapColors(op, r, g, b, count)) plain::enrich(r, g, b, count);
}
#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
