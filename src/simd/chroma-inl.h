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

HWY_INLINE VS aboutNoColor(V16 chroma) {
  return hn::Sub(hn::BitCast(DS(), chroma), signedWord(128));
}

// y is a whole number of 1024ths, so that each channel is y and a step that depends on chroma
// alone. The steps are brought into 16 bits, by products that are rounded in 2^15ths:
//   (1436 * v + 512) >> 10 = v + ((412 * 32 * v + 2^14) >> 15)
//   (1815 * u + 512) >> 10 = u + ((791 * 32 * u + 2^14) >> 15)
//   (-352 * u - 731 * v + 512) >> 10 = (16 + ((5 * v) >> 5) - 11 * u - 23 * v) >> 5
HWY_INLINE VS redStep(VS v) { return hn::Add(v, hn::MulFixedPoint15(v, signedWord(412 * 32))); }

HWY_INLINE VS blueStep(VS u) { return hn::Add(u, hn::MulFixedPoint15(u, signedWord(791 * 32))); }

HWY_INLINE VS greenStep(VS u, VS v) {
  const VS fine = hn::ShiftRight<5>(hn::Mul(v, signedWord(5)));
  const VS coarse = hn::Add(hn::Mul(u, signedWord(11)), hn::Mul(v, signedWord(23)));
  return hn::ShiftRight<5>(hn::Sub(hn::Add(fine, signedWord(16)), coarse));
}

// The low byte of each lane in both of its bytes.
HWY_INLINE V8 doubled(V16 v) { return hn::BitCast(D8(), hn::Or(v, hn::ShiftLeft<8>(v))); }

// A step for both pixels of each pair, in saturating bytes: what it adds, then what it takes away.
HWY_INLINE V8 stepped(V8 y, VS step) {
  const VS up = hn::Max(step, hn::Zero(DS()));
  const V16 down = hn::BitCast(D16(), hn::Sub(up, step));
  return hn::SaturatedSub(hn::SaturatedAdd(y, doubled(hn::BitCast(D16(), up))), doubled(down));
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
  const auto store = [=](const Bytes3& colors, ptrdiff_t i)
                         HWY_ATTR { storeColors(colors, r + i, g + i, b + i); };
  const ptrdiff_t done = overPairs(count, make, store);
  plain::halvesToRgb(y + done, u + done / 2, v + done / 2, r + done, g + done, b + done,
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
  const auto store = [=](const Bytes3& colors, ptrdiff_t i)
                         HWY_ATTR { storeColors(colors, r + i, g + i, b + i); };
  return overPairs(count, make, store);
}

void pairsToRgb(const uint8_t* y, const uint8_t* pairs, bool vFirst, uint8_t* r, uint8_t* g,
                uint8_t* b, ptrdiff_t count) {
  const ptrdiff_t done = vFirst ? pairsToRgbOrdered<true>(y, pairs, r, g, b, count)
                                : pairsToRgbOrdered<false>(y, pairs, r, g, b, count);
  plain::pairsToRgb(y + done, pairs + done, vFirst, r + done, g + done, b + done, count - done);
}

// Each sum is a channel, or half the distance of two, and a rest that fits 16 bits:
//   306 * r + 601 * g + 117 * b = 1024 * g + 9 * (34 * (r - g) + 13 * (b - g)), 9 / 1024 being
//   576 / 2^16
//   -173 * r - 339 * g + 512 * b = 512 * (b - g) - 173 * (r - g), 173 / 512 being 22144 / 2^16
//   512 * r - 428 * g - 83 * b = 512 * (r - g) + g - 83 * (b - g)
HWY_INLINE V16 lumaHalf(V16 r, V16 g, V16 b) {
  const VS lean =
      hn::Add(hn::Mul(difference(r, g), signedWord(34)), hn::Mul(difference(b, g), signedWord(13)));
  return hn::Add(g, hn::BitCast(D16(), hn::MulHigh(lean, signedWord(576))));
}

HWY_INLINE V16 aroundNoColor(VS half) {
  return hn::BitCast(D16(), hn::Add(hn::ShiftRight<1>(half), signedWord(128)));
}

HWY_INLINE V16 blueHalf(VS overRed, VS overBlue) {
  return aroundNoColor(hn::Add(overBlue, hn::MulHigh(overRed, signedWord(-22144))));
}

HWY_INLINE V16 redHalf(VS overRed, VS overBlue, V16 g) {
  const VS rest = hn::Sub(hn::BitCast(DS(), g), hn::Mul(overBlue, signedWord(83)));
  return aroundNoColor(hn::Add(overRed, hn::ShiftRight<9>(rest)));
}

void rgbToLuma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y, ptrdiff_t count) {
  const auto op = [](V8 r8, V8 g8, V8 b8) HWY_ATTR {
    const Halves red = widen(r8), green = widen(g8), blue = widen(b8);
    return narrow(
        {lumaHalf(red.even, green.even, blue.even), lumaHalf(red.odd, green.odd, blue.odd)});
  };
  if (!mapRow(op, y, count, r, g, b)) plain::rgbToLuma(r, g, b, y, count);
}

// U and V of the even pixels of a vector.
struct Chroma {
  V16 u, v;
};

HWY_INLINE Chroma chromaAt(const uint8_t* r, const uint8_t* g, const uint8_t* b) {
  const V16 green = widen(loadBytes(g)).even;
  const VS overRed = difference(widen(loadBytes(r)).even, green);
  const VS overBlue = difference(widen(loadBytes(b)).even, green);
  return {blueHalf(overRed, overBlue), redHalf(overRed, overBlue, green)};
}

void rgbToHalves(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* u, uint8_t* v,
                 ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR { return chromaAt(r + i, g + i, b + i); };
  const auto store = [=](const Chroma& chroma, ptrdiff_t i) HWY_ATTR {
    storeHalves(chroma.u, u + i / 2);
    storeHalves(chroma.v, v + i / 2);
  };
  const ptrdiff_t done = overPairs(count, make, store);
  plain::rgbToHalves(r + done, g + done, b + done, u + done / 2, v + done / 2, count - done);
}

void rgbToPairs(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* pairs, bool vFirst,
                ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const Chroma chroma = chromaAt(r + i, g + i, b + i);
    return vFirst ? narrow({chroma.v, chroma.u}) : narrow({chroma.u, chroma.v});
  };
  const auto store = [=](V8 made, ptrdiff_t i) HWY_ATTR { storeBytes(made, pairs + i); };
  const ptrdiff_t done = overPairs(count, make, store);
  plain::rgbToPairs(r + done, g + done, b + done, pairs + done, vFirst, count - done);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
