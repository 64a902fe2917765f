// Hue, saturation and lightness in 16-bit lanes, for processors that look up bytes in registers:
// every division is a product with a looked-up reciprocal. Included once per target.
#if defined(QPX_SIMD_HUE_WORDS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_HUE_WORDS_INL_H_
#undef QPX_SIMD_HUE_WORDS_INL_H_
#else
#define QPX_SIMD_HUE_WORDS_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/hue_rows.h"
#include "simd/word_table-inl.h"

#if HWY_TARGET <= HWY_AVX3

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using M8 = hn::Mask<D8>;

// 60 degrees with ten fractional bits divided by a chroma, 2^15 divided by a sample, and what
// chroma is multiplied by, less one, in 256ths, by the base of that gain.
constexpr WordBytes kSixtyByChroma([](int32_t i) { return i == 0 ? 0 : (60 << 10) / i; });
constexpr WordBytes kWholeBySample([](int32_t i) { return i == 0 ? 0 : (1 << 15) / i; });
constexpr WordBytes kGainByBase([](int32_t i) {
  const int32_t gain = 65025 / (i + 1);
  return gain == 254 ? 0 : gain - 255;
});

// Both halves of a vector through op.
template <class Op, class... Inputs>
HWY_INLINE Halves both(const Op& op, const Inputs&... inputs) {
  return {op(inputs.even...), op(inputs.odd...)};
}

HWY_INLINE VS asSigned16(V16 v) { return hn::BitCast(DS(), v); }
HWY_INLINE V16 asWords(VS v) { return hn::BitCast(D16(), v); }

template <int kShift>
HWY_INLINE V16 scaledWord(V16 v, int32_t factor) {
  return hn::MulHigh(hn::ShiftLeft<16 - kShift>(v), word(factor));
}

// Whole degrees, up to 360: the low bytes, and where 256 is to be added.
struct Degrees {
  V8 low;
  M8 above;

  HWY_INLINE explicit Degrees(const Halves& degrees)
      : low(lowBytes(degrees)), above(hn::MaskFromVec(isAbove(degrees))) {}

 private:
  HWY_INLINE static V8 isAbove(const Halves& degrees) {
    const auto sign = [](V16 v) HWY_ATTR { return hn::ShiftRight<8>(hn::ShiftLeft<7>(v)); };
    return narrow(both([=](V16 v) HWY_ATTR { return hn::And(sign(v), word(0x80)); }, degrees));
  }
};

class DegreeTable {
 public:
  HWY_INLINE explicit DegreeTable(const uint8_t* bytes) : low_(bytes), high_(bytes + 256) {}

  HWY_INLINE V8 operator()(const Degrees& at) const {
    return hn::IfThenElse(at.above, high_(at.low), low_(at.low));
  }

 private:
  ByteTable low_, high_;
};

// How far from the start of its sextant a hue lies, and on which side.
struct HuePartBytes {
  V8 magnitude;
  M8 negative, first, second;
};

struct Extremes {
  V8 most, least;

  HWY_INLINE explicit Extremes(const Bytes3& c)
      : most(hn::Max(hn::Max(c.a, c.b), c.c)), least(hn::Min(hn::Min(c.a, c.b), c.c)) {}
  HWY_INLINE V8 chroma() const { return hn::Sub(most, least); }
};

// Of the largest channel, the first of equals.
HWY_INLINE HuePartBytes huePartsOf(const Bytes3& c, V8 most) {
  const M8 first = hn::Eq(most, c.a), second = hn::Eq(most, c.b);
  const V8 from = hn::IfThenElse(first, c.b, hn::IfThenElse(second, c.c, c.a));
  const V8 take = hn::IfThenElse(first, c.c, hn::IfThenElse(second, c.a, c.b));
  return {hn::Sub(hn::Max(from, take), hn::Min(from, take)), hn::Lt(from, take), first, second};
}

// Degrees from parts of 60 of which `steps` are whole, of negative ones rounded up: 360 is a start
// for what lies below 0.
HWY_INLINE Halves degreesOf(const HuePartBytes& parts, V8 steps) {
  const D8 d;
  const V8 first = hn::IfThenElseZero(parts.negative, hn::Set(d, 180));
  const V8 later = hn::IfThenElse(parts.second, hn::Set(d, 60), hn::Set(d, 120));
  const Halves start = widen(hn::IfThenElse(parts.first, first, later));
  const Halves up = widen(hn::IfThenZeroElse(parts.negative, steps));
  const Halves down = widen(hn::IfThenElseZero(parts.negative, steps));
  return both([](V16 s, V16 u, V16 w) HWY_ATTR { return hn::Sub(hn::Add(hn::Add(s, s), u), w); },
              start, up, down);
}

// All bits up to kBits where a part is negative, so that its cut falls downwards.
template <int kBits>
HWY_INLINE V16 cutBias(V16 negative) {
  return hn::And(hn::Or(negative, hn::ShiftLeft<8>(negative)), word((1 << kBits) - 1));
}

HWY_INLINE Halves hueOf(const Bytes3& c, const Extremes& extremes) {
  const HuePartBytes parts = huePartsOf(c, extremes.most);
  const Halves sixty = WordTable(kSixtyByChroma)(extremes.chroma());
  const Halves steps = both(
      [](V16 whole, V16 part, V16 negative) HWY_ATTR {
        return hn::ShiftRight<10>(hn::Add(hn::Mul(whole, part), cutBias<10>(negative)));
      },
      sixty, widen(parts.magnitude), widen(hn::VecFromMask(D8(), parts.negative)));
  return degreesOf(parts, narrow(steps));
}

// The largest, the middle and the least sample by sector.
HWY_INLINE Bytes3 bySector(V8 sector, V8 most, V8 middle, V8 least) {
  const auto is = [&](uint8_t value) HWY_ATTR { return hn::Eq(sector, hn::Set(D8(), value)); };
  const M8 in0 = is(0), in1 = is(1), in2 = is(2), in3 = is(3), in4 = is(4), in5 = is(5);
  const auto pick = [&](M8 top, M8 mid) HWY_ATTR {
    return hn::IfThenElse(top, most, hn::IfThenElse(mid, middle, least));
  };
  return {pick(hn::Or(in0, in5), hn::Or(in1, in4)), pick(hn::Or(in1, in2), hn::Or(in0, in3)),
          pick(hn::Or(in3, in4), hn::Or(in2, in5))};
}

template <class Op>
HWY_INLINE Bytes3 eachColor(const Bytes3& c, const Op& op) {
  return {op(c.a), op(c.b), op(c.c)};
}

// What a degree's word holds, in 16-bit lanes.
struct ChangeWords {
  Halves light, spread, turn;

  HWY_INLINE ChangeWords(const DegreeWords& table, const Degrees& at) {
    const auto plane = [&](int k) HWY_ATTR { return DegreeTable(table.bytes(k))(at); };
    const Halves low = wordsOf(plane(0), plane(1)), high = wordsOf(plane(2), plane(3));
    light = both([](V16 h) HWY_ATTR { return arithmeticShift<4>(h); }, high);
    spread = both(
        [](V16 l, V16 h) HWY_ATTR {
          const V16 bits = hn::Or(hn::ShiftLeft<12>(h), hn::ShiftLeft<6>(hn::ShiftRight<10>(l)));
          return arithmeticShift<6>(bits);
        },
        low, high);
    turn = both([](V16 l) HWY_ATTR { return arithmeticShift<6>(hn::ShiftLeft<6>(l)); }, low);
  }
};

// The product with 2^15ths rounds as the thousandth parts do; the step of all the way, which would
// be 2^15, is a negative number.
HWY_INLINE Bytes3 lightened(const Bytes3& colors, const Extremes& extremes, const Halves& light) {
  const Halves step = both(
      [](V16 l) HWY_ATTR { return asWords(hn::ShiftLeft<5>(hn::Neg(hn::Abs(asSigned16(l))))); },
      light);
  const Halves least = widen(extremes.least), most = widen(extremes.most);
  const Halves target = both(
      [](V16 l, V16 low, V16 high) HWY_ATTR {
        return asWords(hn::IfThenElse(hn::Gt(asSigned16(l), hn::Zero(DS())), asSigned16(low),
                                      asSigned16(high)));
      },
      light, least, most);
  return eachColor(colors, [&](V8 c8) HWY_ATTR {
    return narrow(both(
        [](V16 c, V16 s, V16 t) HWY_ATTR {
          return hn::Add(c, asWords(hn::MulFixedPoint15(asSigned16(s), difference(c, t))));
        },
        widen(c8), step, target));
  });
}

// Of HSL, 0 ... 255; a black and a white have none.
HWY_INLINE V8 hslSaturation(const Extremes& extremes) {
  const D8 d;
  const V8 sum = hn::Add(extremes.most, extremes.least);
  const V8 base = hn::IfThenElse(hn::Lt(sum, extremes.most), hn::Not(sum), sum);
  const V8 divisor = hn::Max(base, hn::Set(d, 1));
  const Halves chroma = widen(extremes.chroma());
  const Halves whole = divided(both([](V16 c) HWY_ATTR { return hn::ShiftLeft<8>(c); }, chroma),
                               widen(divisor), hn::Sub(divisor, hn::Set(d, 1)));
  return narrow(both([](V16 s) HWY_ATTR { return hn::Min(s, word(255)); }, whole));
}

HWY_INLINE Halves spreadGain(const Halves& spread, V8 saturation) {
  const Halves base = both(
      [](V16 e, V16 s) HWY_ATTR {
        const V16 free = hn::Sub(word(255), e);
        return hn::And(hn::Max(free, s), word(255));
      },
      spread, widen(saturation));
  const Halves risen = WordTable(kGainByBase)(narrow(base));
  return both(
      [](V16 e, V16 gain) HWY_ATTR {
        return asWords(
            hn::IfThenElse(hn::Gt(asSigned16(e), hn::Zero(DS())), asSigned16(gain), asSigned16(e)));
      },
      spread, risen);
}

// No product of a gain and a distance from the mean leaves 16 bits.
HWY_INLINE Bytes3 spreadOut(const Bytes3& colors, const Halves& spread) {
  const Extremes extremes(colors);
  const Halves mean = widen(cutMean(extremes.most, extremes.least));
  const Halves gain = spreadGain(spread, hslSaturation(extremes));
  return eachColor(colors, [&](V8 c8) HWY_ATTR {
    return narrow(both(
        [](V16 c, V16 m, V16 g) HWY_ATTR {
          const V16 step = hn::Add(hn::Mul(hn::Sub(c, m), g), word(128));
          return clampWord(asSigned16(hn::Add(c, arithmeticShift<8>(step))));
        },
        widen(c8), mean, gain));
  });
}

HWY_INLINE Halves wrapped(const Halves& hue) {
  return both(
      [](V16 h) HWY_ATTR {
        const VS zero = hn::Zero(DS()), turn = signedWord(360), s = asSigned16(h);
        const VS up = hn::IfThenElse(hn::Lt(s, zero), hn::Add(s, turn), s);
        return asWords(hn::IfThenElse(hn::Gt(up, turn), hn::Sub(up, turn), up));
      },
      hue);
}

// 273 / 2^14 of a hue is its sector and, of a share of 60 degrees of a chroma, that share.
HWY_INLINE Bytes3 ofHue(const Halves& hue, const Extremes& extremes) {
  const auto sectorOf = [](V16 h) HWY_ATTR { return scaledWord<14>(h, 273); };
  const Halves sector = both(sectorOf, hue);
  const Halves middle = both(
      [](V16 h, V16 s, V16 chroma, V16 least) HWY_ATTR {
        const V16 past = hn::Sub(h, hn::Mul(s, word(60)));
        const auto even = hn::Eq(hn::And(s, word(1)), hn::Zero(D16()));
        const V16 part = hn::IfThenElse(even, past, hn::Sub(word(60), past));
        return hn::Add(least, scaledWord<14>(hn::Mul(chroma, part), 273));
      },
      hue, sector, widen(extremes.chroma()), widen(extremes.least));
  return bySector(narrow(sector), extremes.most, narrow(middle), extremes.least);
}

// Rows shorter than a vector go through a copy of one.
template <class Change, class Rest>
HWY_INLINE void changeBytes(const Change& change, uint8_t* r, uint8_t* g, uint8_t* b,
                            ptrdiff_t count, const Rest& rest) {
  const auto make = [&](ptrdiff_t i) HWY_ATTR {
    return change(Bytes3{loadBytes(r + i), loadBytes(g + i), loadBytes(b + i)}, i);
  };
  const auto store = [=](const Bytes3& colors, ptrdiff_t i)
                         HWY_ATTR { storeColors(colors, r + i, g + i, b + i); };
  if (!eachVector(byteLanes(), count, make, store)) rest();
}

void changeHues(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const HueChanges& changes) {
  const auto change = [&](const Bytes3& colors, ptrdiff_t) HWY_ATTR {
    const Extremes extremes(colors);
    const ChangeWords by(changes.packed(), Degrees(hueOf(colors, extremes)));
    const Bytes3 made = spreadOut(lightened(colors, extremes, by.light), by.spread);
    const Extremes left(made);
    const auto turned = [](V16 h, V16 t) HWY_ATTR { return hn::Add(h, t); };
    return ofHue(wrapped(both(turned, hueOf(made, left), by.turn)), left);
  };
  changeBytes(change, r, g, b, count,
              [=, &changes] { plain::changeHues(r, g, b, count, changes); });
}

struct HsvHalves {
  Halves hue;
  V8 saturation, value;
};

// Turns with 1024 for 60 degrees, -1024 ... 5120.
HWY_INLINE HsvHalves hsvOf(const Bytes3& c) {
  const D8 d;
  const Extremes extremes(c);
  const HuePartBytes parts = huePartsOf(c, extremes.most);
  const WordTable whole(kWholeBySample);
  const V8 later = hn::IfThenElse(parts.second, hn::Set(d, 2), hn::Set(d, 4));
  const Halves start = widen(hn::IfThenZeroElse(parts.first, later));
  const Halves hue = both(
      [](V16 one, V16 part, V16 negative, V16 from) HWY_ATTR {
        const V16 step = hn::ShiftRight<5>(hn::Add(hn::Mul(one, part), cutBias<5>(negative)));
        const auto minus = hn::Ne(negative, hn::Zero(D16()));
        const V16 base = hn::ShiftLeft<10>(from);
        const V16 turn = hn::IfThenElse(minus, hn::Sub(base, step), hn::Add(base, step));
        const VS degrees = hn::MulHigh(hn::ShiftLeft<2>(asSigned16(turn)), signedWord(960));
        const VS up = hn::Add(degrees, signedWord(360));
        return asWords(hn::IfThenElse(hn::Lt(degrees, hn::Zero(DS())), up, degrees));
      },
      whole(extremes.chroma()), widen(parts.magnitude), widen(hn::VecFromMask(d, parts.negative)),
      start);
  const Halves saturation =
      both([](V16 one, V16 chroma)
               HWY_ATTR { return hn::Min(hn::ShiftRight<7>(hn::Mul(one, chroma)), word(255)); },
           whole(extremes.most), widen(extremes.chroma()));
  return {hue, narrow(saturation), extremes.most};
}

// Hue 360 is the value with two channels held down, as hue 0 is.
HWY_INLINE Bytes3 rgbOf(const HsvHalves& hsv) {
  const Halves hue =
      both([](V16 h) HWY_ATTR { return hn::IfThenZeroElse(hn::Eq(h, word(360)), h); }, hsv.hue);
  const Halves sector = both([](V16 h) HWY_ATTR { return scaledWord<15>(h, 546); }, hue);
  const Halves s = widen(hsv.saturation), v = widen(hsv.value);
  const auto sample = [](V16 share, V16 value)
                          HWY_ATTR { return hn::ShiftRight<8>(hn::Mul(share, value)); };
  const Halves middle = both(
      [=](V16 h, V16 sextant, V16 saturation, V16 value) HWY_ATTR {
        const V16 past = hn::Sub(h, hn::Mul(sextant, word(60)));
        const V16 part = scaledWord<15>(hn::Mul(saturation, past), 546);
        const auto even = hn::Eq(hn::And(sextant, word(1)), hn::Zero(D16()));
        const V16 rising = hn::Sub(hn::Add(word(255), part), saturation);
        return sample(hn::IfThenElse(even, rising, hn::Sub(word(255), part)), value);
      },
      hue, sector, s, v);
  const Halves hold = both([=](V16 saturation, V16 value)
                               HWY_ATTR { return sample(hn::Sub(word(255), saturation), value); },
                           s, v);
  return bySector(narrow(sector), hsv.value, narrow(middle), narrow(hold));
}

HWY_INLINE Bytes3 chosen(M8 first, const Bytes3& a, const Bytes3& b) {
  return {hn::IfThenElse(first, a.a, b.a), hn::IfThenElse(first, a.b, b.b),
          hn::IfThenElse(first, a.c, b.c)};
}

// A product of three, cut once: what two cuts in turn leave is the same.
HWY_INLINE V8 changedValue(const HsvHalves& hsv, const Halves& weight, int32_t light) {
  const VS up = signedWord(light);
  return narrow(both(
      [=](V16 v, V16 s, V16 w) HWY_ATTR {
        const V16 off = hn::Sub(v, word(128));
        const V16 bump = hn::ShiftRight<8>(hn::Sub(word(16384), hn::Mul(off, off)));
        const V16 strength = hn::Min(hn::ShiftLeft<2>(s), word(256));
        const V16 share = hn::MulHigh(hn::ShiftLeft<4>(w), hn::ShiftLeft<4>(strength));
        const VS lit = hn::Mul(asSigned16(bump), up);
        const VS step = hn::ShiftRight<2>(hn::MulHigh(lit, asSigned16(share)));
        return clampWord(hn::Add(asSigned16(v), step));
      },
      widen(hsv.value), widen(hsv.saturation), weight));
}

HWY_INLINE V8 weighedSaturation(const HsvHalves& hsv, V8 target, const Halves& weight) {
  return narrow(both(
      [](V16 s, V16 t, V16 w) HWY_ATTR {
        const VS away = hn::ShiftLeft<2>(difference(t, s));
        const VS step = hn::MulHigh(away, asSigned16(hn::ShiftLeft<4>(w)));
        return clampWord(hn::Add(asSigned16(s), step));
      },
      widen(hsv.saturation), widen(target), weight));
}

void changeRange(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const RangeChanges& changes) {
  const ByteTable saturations(changes.saturation);
  const auto change = [&](const Bytes3& colors, ptrdiff_t) HWY_ATTR {
    const D8 d;
    const HsvHalves hsv = hsvOf(colors);
    const Degrees at(hsv.hue);
    const auto plane = [&](int k) HWY_ATTR { return DegreeTable(changes.packed().bytes(k))(at); };
    const V8 top = plane(2);
    const Halves low = wordsOf(plane(0), plane(1));
    const Halves weight = both(
        [](V16 l, V16 t) HWY_ATTR {
          return hn::Or(hn::ShiftRight<9>(l), hn::ShiftLeft<7>(hn::And(t, word(0xF))));
        },
        low, widen(top));
    const Halves hue = both([](V16 l) HWY_ATTR { return hn::And(l, word(0x1FF)); }, low);
    const Bytes3 made = rgbOf({hue, weighedSaturation(hsv, saturations(hsv.saturation), weight),
                               changedValue(hsv, weight, changes.light)});
    const V8 inside = hn::And(top, hn::Set(d, RangeChanges::kInside >> 16));
    return chosen(hn::Eq(inside, hn::Zero(d)), colors, made);
  };
  changeBytes(change, r, g, b, count,
              [=, &changes] { plain::changeRange(r, g, b, count, changes); });
}

void brighten(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* tones,
              int32_t units) {
  const ByteTable toTone(tones);
  const V16 strength = word(4 * units);
  const auto change = [&](const Bytes3& colors, ptrdiff_t) HWY_ATTR {
    const D8 d;
    const HsvHalves hsv = hsvOf(colors);
    const V8 light = hn::Set(d, 128);
    const V8 toEnd = hn::IfThenElse(hn::Gt(hsv.value, light), hn::Not(hsv.value), hsv.value);
    const V8 fade = narrow(both(
        [=](V16 v) HWY_ATTR { return hn::MulHigh(hn::ShiftLeft<4>(v), strength); }, widen(toEnd)));
    const V8 value = toTone(hsv.value);
    const Bytes3 made = rgbOf({hsv.hue, hn::SaturatedSub(hsv.saturation, fade), value});
    const M8 isBlack = hn::Eq(hsv.value, hn::Zero(d));
    const Bytes3 bright = chosen(hn::Gt(fade, hsv.saturation), {value, value, value}, made);
    return chosen(isBlack, colors, bright);
  };
  changeBytes(change, r, g, b, count, [=] { plain::brighten(r, g, b, count, tones, units); });
}

HWY_INLINE Halves wholeHueOf(const Bytes3& c) {
  const D8 d;
  const Extremes extremes(c);
  const HuePartBytes parts = huePartsOf(c, extremes.most);
  const V8 divisor = hn::Max(extremes.chroma(), hn::Set(d, 1));
  const Halves sixty =
      both([](V16 part) HWY_ATTR { return hn::Mul(part, word(60)); }, widen(parts.magnitude));
  const V8 steps = narrow(divided(sixty, widen(divisor), hn::Sub(divisor, hn::Set(d, 1))));
  return both([](V16 h) HWY_ATTR { return hn::IfThenZeroElse(hn::Eq(h, word(360)), h); },
              degreesOf(parts, steps));
}

void fadeHues(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey,
              const uint8_t* mask, const DegreeWords& shares) {
  const DegreeTable low(shares.bytes(0)), high(shares.bytes(1));
  const auto change = [&](const Bytes3& colors, ptrdiff_t i) HWY_ATTR {
    const Degrees at(wholeHueOf(colors));
    Halves share = wordsOf(low(at), high(at));
    if (mask != nullptr) {
      share =
          both([](V16 s, V16 m)
                   HWY_ATTR { return hn::ShiftRight<7>(hn::MulHigh(hn::Mul(s, m), word(0x8081))); },
               share, widen(loadBytes(mask + i)));
    }
    const Halves step =
        both([](V16 s) HWY_ATTR { return hn::Sub(hn::Zero(D16()), hn::ShiftLeft<7>(s)); }, share);
    const Halves light = widen(loadBytes(grey + i));
    return eachColor(colors, [&](V8 c8) HWY_ATTR {
      return narrow(both(
          [](V16 c, V16 s, V16 l) HWY_ATTR {
            return hn::Add(c, asWords(hn::MulFixedPoint15(asSigned16(s), difference(c, l))));
          },
          widen(c8), step, light));
    });
  };
  changeBytes(change, r, g, b, count,
              [=, &shares] { plain::fadeHues(r, g, b, count, grey, mask, shares); });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
