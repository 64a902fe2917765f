// Vectors of bytes, their halves of 16 bits, and walking rows by them. Included once per target.
#if defined(QPX_SIMD_BYTE_VECTORS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_BYTE_VECTORS_INL_H_
#undef QPX_SIMD_BYTE_VECTORS_INL_H_
#else
#define QPX_SIMD_BYTE_VECTORS_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D8 = hn::ScalableTag<uint8_t>;
using D16 = hn::Repartition<uint16_t, D8>;
using V8 = hn::Vec<D8>;
using V16 = hn::Vec<D16>;
using DS = hn::RebindToSigned<D16>;
using VS = hn::Vec<DS>;
using DHalf8 = hn::Rebind<uint8_t, D16>;  // as many bytes as a vector has 16-bit lanes

// Bytes as two vectors of 16-bit lanes, those at even and those at odd places: two instructions
// apart and two together, without crossing lanes.
struct Halves {
  V16 even, odd;
};

HWY_INLINE Halves widen(V8 v) {
  const D16 d;
  const V16 words = hn::BitCast(d, v);
  return {hn::And(words, hn::Set(d, 0xFF)), hn::ShiftRight<8>(words)};
}

// Lanes are 0..255.
HWY_INLINE V8 narrow(const Halves& h) {
  return hn::BitCast(D8(), hn::Or(h.even, hn::ShiftLeft<8>(h.odd)));
}

HWY_INLINE V16 word(int32_t value) { return hn::Set(D16(), static_cast<uint16_t>(value)); }

HWY_INLINE VS signedWord(int32_t value) { return hn::Set(DS(), static_cast<int16_t>(value)); }

HWY_INLINE VS difference(V16 a, V16 b) { return hn::BitCast(DS(), hn::Sub(a, b)); }

HWY_INLINE V16 clampWord(VS v) {
  return hn::BitCast(D16(), hn::Min(hn::Max(v, hn::Zero(DS())), signedWord(255)));
}

template <int kBits>
HWY_INLINE V16 arithmeticShift(V16 v) {
  return hn::BitCast(D16(), hn::ShiftRight<kBits>(hn::BitCast(DS(), v)));
}

// The mean of two bytes, cut: what they share and half of what they do not.
HWY_INLINE V8 cutMean(V8 a, V8 b) {
  const V16 half = hn::ShiftRight<1>(hn::BitCast(D16(), hn::Xor(a, b)));
  return hn::Add(hn::And(a, b), hn::BitCast(D8(), hn::And(half, word(0x7F7F))));
}

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

// Calls step(i) for whole vectors of `length` samples; false if the row is shorter than one. The
// last vector may overlap the one before it: for rows that are not their own outputs. Large steps
// stand in the code once, since compilers leave those that are called twice out of line; where one
// function has many kinds of step, these are marked always_inline as well.
template <class Step>
HWY_INLINE bool overlappingSteps(ptrdiff_t length, ptrdiff_t count, const Step& step) {
  const ptrdiff_t last = count - length;
  if (last < 0) return false;
  for (ptrdiff_t next = 0; next < count; next += length) step(std::min(next, last));
  return true;
}

// The same for steps of a few instructions, of which finding the place would be a good part.
template <class Step>
HWY_INLINE bool overlappingShortSteps(ptrdiff_t length, ptrdiff_t count, const Step& step) {
  const ptrdiff_t last = count - length;
  if (last < 0) return false;
  for (ptrdiff_t i = 0; i < last; i += length) step(i);
  step(last);
  return true;
}

HWY_INLINE ptrdiff_t byteLanes() { return static_cast<ptrdiff_t>(hn::Lanes(D8())); }
HWY_INLINE V8 loadBytes(const uint8_t* from) { return hn::LoadU(D8(), from); }
HWY_INLINE void storeBytes(V8 v, uint8_t* to) { hn::StoreU(v, D8(), to); }

struct Bytes3 {
  V8 a, b, c;
};

// The first three channels of a vector of pixels of kBytes bytes, in memory order.
template <ptrdiff_t kBytes>
HWY_INLINE Bytes3 loadChannels(const uint8_t* src) {
  V8 c0 = hn::Zero(D8()), c1 = c0, c2 = c0, c3 = c0;
  if constexpr (kBytes == 4) {
    hn::LoadInterleaved4(D8(), src, c0, c1, c2, c3);
  } else {
    hn::LoadInterleaved3(D8(), src, c0, c1, c2);
  }
  return {c0, c1, c2};
}

HWY_INLINE void storeColors(const Bytes3& colors, uint8_t* r, uint8_t* g, uint8_t* b) {
  storeBytes(colors.a, r);
  storeBytes(colors.b, g);
  storeBytes(colors.c, b);
}

// The three channels of whole vectors through op, in place; false if the row is shorter than one.
template <class Op>
HWY_INLINE bool mapColors(const Op& op, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count) {
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    return op(Bytes3{loadBytes(r + i), loadBytes(g + i), loadBytes(b + i)});
  };
  const auto store = [=](const Bytes3& colors, ptrdiff_t i)
                         HWY_ATTR { storeColors(colors, r + i, g + i, b + i); };
  return eachVector(byteLanes(), count, make, store);
}

// dst = op(inputs...) on whole vectors; false if the row is shorter than one.
template <class Op, class... Inputs>
HWY_INLINE bool mapRow(const Op& op, uint8_t* dst, ptrdiff_t count, Inputs... inputs) {
  const auto make = [&](ptrdiff_t i) HWY_ATTR { return op(loadBytes(inputs + i)...); };
  const auto store = [=](V8 v, ptrdiff_t i) HWY_ATTR { storeBytes(v, dst + i); };
  return eachVector(byteLanes(), count, make, store);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
