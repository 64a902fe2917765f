// Vectors of bytes, their halves of 16 bits, and walking rows by them. Included once per target.
#if defined(QPX_SIMD_BYTE_VECTORS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_BYTE_VECTORS_INL_H_
#undef QPX_SIMD_BYTE_VECTORS_INL_H_
#else
#define QPX_SIMD_BYTE_VECTORS_INL_H_
#endif

#include <hwy/highway.h>

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

template <int kBits>
HWY_INLINE V16 arithmeticShift(V16 v) {
  return hn::BitCast(D16(), hn::ShiftRight<kBits>(hn::BitCast(hn::RebindToSigned<D16>(), v)));
}

// dst = op(inputs...) on whole vectors; false if the row is shorter than one. The vector that ends
// the row may overlap the one before it. Its result is worked out before anything is stored and
// stored last, which keeps a row that is its own output right.
template <class Op, class... Inputs>
HWY_INLINE bool mapRow(const Op& op, uint8_t* dst, ptrdiff_t count, Inputs... inputs) {
  const D8 d;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = count - length;
  if (end < 0) return false;
  const V8 last = op(hn::LoadU(d, inputs + end)...);
  for (ptrdiff_t i = 0; i < end; i += length)
    hn::StoreU(op(hn::LoadU(d, inputs + i)...), d, dst + i);
  hn::StoreU(last, d, dst + end);
  return true;
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
