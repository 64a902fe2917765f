// Look-ups of 16-bit words by bytes, and divisions by looked-up reciprocals. Included once per
// target.
#if defined(QPX_SIMD_WORD_TABLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_WORD_TABLE_INL_H_
#undef QPX_SIMD_WORD_TABLE_INL_H_
#else
#define QPX_SIMD_WORD_TABLE_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_table-inl.h"
#include "simd/byte_vectors-inl.h"

#if HWY_TARGET <= HWY_AVX3

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// 256 words as their low and their high bytes.
struct WordBytes {
  uint8_t low[256] = {}, high[256] = {};

  template <typename Entry>
  constexpr explicit WordBytes(const Entry& entry) {
    for (int32_t i = 0; i < 256; ++i) {
      const auto word = static_cast<uint16_t>(entry(i));
      low[i] = static_cast<uint8_t>(word & 255);
      high[i] = static_cast<uint8_t>(word >> 8);
    }
  }
};

// Of bytes at even and at odd places.
HWY_INLINE Halves wordsOf(V8 low8, V8 high8) {
  const D16 d;
  const V16 low = hn::BitCast(d, low8), high = hn::BitCast(d, high8);
  const V16 lowByte = hn::Set(d, 0xFF);
  return {hn::Or(hn::And(low, lowByte), hn::ShiftLeft<8>(high)),
          hn::Or(hn::ShiftRight<8>(low), hn::AndNot(lowByte, high))};
}

// The low bytes of words, as narrow() where it may not be known that they are all there is.
HWY_INLINE V8 lowBytes(const Halves& h) { return narrow({hn::And(h.even, word(0xFF)), h.odd}); }

class WordTable {
 public:
  HWY_INLINE explicit WordTable(const WordBytes& words) : low_(words.low), high_(words.high) {}
  HWY_INLINE Halves operator()(V8 index) const { return wordsOf(low_(index), high_(index)); }

 private:
  ByteTable low_, high_;
};

// Below 2^16 / (i + 1) by less than one.
constexpr WordBytes kReciprocals([](int32_t i) { return 65535 / (i + 1); });

// n / d cut, d being 1 ... 256 and `place` one less. A product with the reciprocal falls short of
// the quotient by less than one.
HWY_INLINE V16 dividedHalf(V16 n, V16 d, V16 reciprocal) {
  const V16 near = hn::MulHigh(n, reciprocal);
  const V16 rest = hn::Sub(n, hn::Mul(near, d));
  return hn::IfThenElse(hn::Lt(rest, d), near, hn::Add(near, word(1)));
}

HWY_INLINE Halves divided(const Halves& n, const Halves& d, V8 place) {
  const Halves reciprocal = WordTable(kReciprocals)(place);
  return {dividedHalf(n.even, d.even, reciprocal.even), dividedHalf(n.odd, d.odd, reciprocal.odd)};
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
