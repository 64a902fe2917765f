// Chroma of halved width, and BT.601 in ten fractional bits. Included once per target.
#if defined(QPX_SIMD_CHROMA_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CHROMA_INL_H_
#undef QPX_SIMD_CHROMA_INL_H_
#else
#define QPX_SIMD_CHROMA_INL_H_
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

using DS = hn::RebindToSigned<D16>;
using VS = hn::Vec<DS>;
using DHalf8 = hn::Rebind<uint8_t, D16>;  // as many bytes as a vector has 16-bit lanes

// Calls make(i), which returns what whole vectors of `length` samples become, and store(result, i);
// false if the row is shorter than one. The last vector may overlap the one before it, is made
// before anything is stored and stored last, which keeps rows that are their own outputs right.
template <class Make, class Store>
HWY_INLINE bool eachVector(ptrdiff_t length, ptrdiff_t count, const Make& make,
                           const Store& store) {
  const ptrdiff_t end = count - length;
  if (end < 0) return false;
  const auto last = make(end);
  for (ptrdiff_t i = 0; i < end; i += length) store(make(i), i);
  store(last, end);
  return true;
}

HWY_INLINE ptrdiff_t byteLanes() { return static_cast<ptrdiff_t>(hn::Lanes(D8())); }
HWY_INLINE V8 loadBytes(const uint8_t* from) { return hn::LoadU(D8(), from); }
HWY_INLINE void storeBytes(V8 v, uint8_t* to) { hn::StoreU(v, D8(), to); }

struct Bytes3 {
  V8 a, b, c;
};

HWY_INLINE VS signedWord(int32_t value) { return hn::Set(DS(), static_cast<int16_t>(value)); }

HWY_INLINE V16 clampWord(VS v) {
  return hn::BitCast(D16(), hn::Min(hn::Max(v, hn::Zero(DS())), signedWord(255)));
}

HWY_INLINE VS aboutNoColor(V16 chroma) {
  return hn::Sub(hn::BitCast(DS(), chroma), signedWord(128));
}

// y is a whole number of 1024ths, so that each channel is y and a step that depends on chroma
// alone. The steps are brought into 16 bits:
//   (1436 * v + 512) >> 10 = v + ((103 * v + 128) >> 8);
//   (1815 * u + 512) >> 10 = (((1815 * u) >> 9) + 1) >> 1, the inner shift being the high half of
//   8 * u * 29040;
//   -352 * u - 731 * v + 512 = 128 * (-3 * (2 * v + u)) + (37 * v + 32 * u + 512).
HWY_INLINE VS redStep(VS v) {
  return hn::Add(v, hn::ShiftRight<8>(hn::Add(hn::Mul(v, signedWord(103)), signedWord(128))));
}

HWY_INLINE VS blueStep(VS u) {
  const VS ninths = hn::MulHigh(hn::ShiftLeft<3>(u), signedWord(29040));
  return hn::ShiftRight<1>(hn::Add(ninths, signedWord(1)));
}

HWY_INLINE VS greenStep(VS u, VS v) {
  const VS coarse = hn::Mul(hn::Add(hn::Add(v, v), u), signedWord(-3));
  const VS fine =
      hn::Add(hn::Add(hn::Mul(v, signedWord(37)), hn::ShiftLeft<5>(u)), signedWord(512));
  return hn::ShiftRight<3>(hn::Add(coarse, hn::ShiftRight<7>(fine)));
}

// A step for both pixels of each pair, in saturating bytes: what it adds, then what it takes away.
HWY_INLINE V8 stepped(V8 y, VS step) {
  const DS ds;
  const VS up = hn::Max(step, hn::Zero(ds));
  const VS down = hn::Sub(up, step);
  const V16 added = hn::BitCast(D16(), up), taken = hn::BitCast(D16(), down);
  return hn::SaturatedSub(hn::SaturatedAdd(y, narrow({added, added})), narrow({taken, taken}));
}

HWY_INLINE Bytes3 colorsOf(V8 y, V16 u, V16 v) {
  const VS du = aboutNoColor(u), dv = aboutNoColor(v);
  return {stepped(y, redStep(dv)), stepped(y, greenStep(du, dv)), stepped(y, blueStep(du))};
}

// Vectors step by whole pairs from the first; the last of them ends at the last whole pair. What is
// left, a row too short or one pixel, is the plain form's.
template <class Make, class Store>
HWY_INLINE ptrdiff_t overPairs(ptrdiff_t count, const Make& make, const Store& store) {
  const ptrdiff_t whole = count / 2 * 2;
  return eachVector(byteLanes(), whole, make, store) ? whole : 0;
}

HWY_INLINE V16 loadHalves(const uint8_t* from) {
  return hn::PromoteTo(D16(), hn::LoadU(DHalf8(), from));
}

HWY_INLINE void storeHalves(V16 v, uint8_t* to) {
  hn::StoreU(hn::DemoteTo(DHalf8(), hn::BitCast(DS(), v)), DHalf8(), to);
}

void halvesToRgb(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* r, uint8_t* g,
                 uint8_t* b, ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    return colorsOf(loadBytes(y + i), loadHalves(u + i / 2), loadHalves(v + i / 2));
  };
  const auto store = [=](const Bytes3& colors, ptrdiff_t i) HWY_ATTR {
    storeBytes(colors.a, r + i);
    storeBytes(colors.b, g + i);
    storeBytes(colors.c, b + i);
  };
  const ptrdiff_t done = overPairs(count, make, store);
  plainToneRows().halvesToRgb(y + done, u + done / 2, v + done / 2, r + done, g + done, b + done,
                              count - done);
}

template <bool kVFirst>
HWY_INLINE ptrdiff_t pairsToRgbOrdered(const uint8_t* y, const uint8_t* pairs, uint8_t* r,
                                       uint8_t* g, uint8_t* b, ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const Halves chroma = widen(loadBytes(pairs + i));
    return kVFirst ? colorsOf(loadBytes(y + i), chroma.odd, chroma.even)
                   : colorsOf(loadBytes(y + i), chroma.even, chroma.odd);
  };
  const auto store = [=](const Bytes3& colors, ptrdiff_t i) HWY_ATTR {
    storeBytes(colors.a, r + i);
    storeBytes(colors.b, g + i);
    storeBytes(colors.c, b + i);
  };
  return overPairs(count, make, store);
}

void pairsToRgb(const uint8_t* y, const uint8_t* pairs, bool vFirst, uint8_t* r, uint8_t* g,
                uint8_t* b, ptrdiff_t count) {
  const ptrdiff_t done = vFirst ? pairsToRgbOrdered<true>(y, pairs, r, g, b, count)
                                : pairsToRgbOrdered<false>(y, pairs, r, g, b, count);
  plainToneRows().pairsToRgb(y + done, pairs + done, vFirst, r + done, g + done, b + done,
                             count - done);
}

// Weights split into multiples of 256 and a rest, so that two sums of 16 bits do:
// (256 * high + low) >> 10 is (high + (low >> 8)) >> 2.
//   306, 601, 117 = 256 * (1, 2, 0) + (50, 89, 117)
//   -173, -339, 512 = 256 * (-1, -1, 2) + (83, -83, 0)
//   512, -428, -83 = 256 * (2, -2, 0) + (0, 84, -83)
HWY_INLINE V16 lumaHalf(V16 r, V16 g, V16 b) {
  const V16 low =
      hn::Add(hn::Add(hn::Mul(r, word(50)), hn::Mul(g, word(89))), hn::Mul(b, word(117)));
  const V16 high = hn::Add(r, hn::Add(g, g));
  return hn::ShiftRight<2>(hn::Add(high, hn::ShiftRight<8>(low)));
}

HWY_INLINE V16 chromaOf(V16 high, V16 low) {
  return hn::Add(arithmeticShift<2>(hn::Add(high, arithmeticShift<8>(low))), word(128));
}

HWY_INLINE V16 blueHalf(V16 r, V16 g, V16 b) {
  const V16 high = hn::Sub(hn::Sub(hn::Add(b, b), r), g);
  return chromaOf(high, hn::Mul(hn::Sub(r, g), word(83)));
}

HWY_INLINE V16 redHalf(V16 r, V16 g, V16 b) {
  const V16 overGreen = hn::Sub(r, g);
  const V16 low = hn::Sub(hn::Mul(g, word(84)), hn::Mul(b, word(83)));
  return chromaOf(hn::Add(overGreen, overGreen), low);
}

void rgbToLuma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y, ptrdiff_t count) {
  const auto op = [](V8 r8, V8 g8, V8 b8) HWY_ATTR {
    const Halves red = widen(r8), green = widen(g8), blue = widen(b8);
    return narrow(
        {lumaHalf(red.even, green.even, blue.even), lumaHalf(red.odd, green.odd, blue.odd)});
  };
  if (!mapRow(op, y, count, r, g, b)) plainToneRows().rgbToLuma(r, g, b, y, count);
}

// U and V of the even pixels of a vector.
struct Chroma {
  V16 u, v;
};

HWY_INLINE Chroma chromaAt(const uint8_t* r, const uint8_t* g, const uint8_t* b) {
  const V16 red = widen(loadBytes(r)).even, green = widen(loadBytes(g)).even,
            blue = widen(loadBytes(b)).even;
  return {blueHalf(red, green, blue), redHalf(red, green, blue)};
}

void rgbToHalves(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* u, uint8_t* v,
                 ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR { return chromaAt(r + i, g + i, b + i); };
  const auto store = [=](const Chroma& chroma, ptrdiff_t i) HWY_ATTR {
    storeHalves(chroma.u, u + i / 2);
    storeHalves(chroma.v, v + i / 2);
  };
  const ptrdiff_t done = overPairs(count, make, store);
  plainToneRows().rgbToHalves(r + done, g + done, b + done, u + done / 2, v + done / 2,
                              count - done);
}

void rgbToPairs(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* pairs, bool vFirst,
                ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const Chroma chroma = chromaAt(r + i, g + i, b + i);
    return vFirst ? narrow({chroma.v, chroma.u}) : narrow({chroma.u, chroma.v});
  };
  const auto store = [=](V8 made, ptrdiff_t i) HWY_ATTR { storeBytes(made, pairs + i); };
  const ptrdiff_t done = overPairs(count, make, store);
  plainToneRows().rgbToPairs(r + done, g + done, b + done, pairs + done, vFirst, count - done);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
