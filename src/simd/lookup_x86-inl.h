// Rows through tables of 256 bytes, on x86. Included once per target.
#if defined(QPX_SIMD_LOOKUP_X86_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_LOOKUP_X86_INL_H_
#undef QPX_SIMD_LOOKUP_X86_INL_H_
#else
#define QPX_SIMD_LOOKUP_X86_INL_H_
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include "simd/byte_table-inl.h"
#include "simd/rows.h"

#if HWY_TARGET <= HWY_AVX2

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// In all rows here, the vector that ends the row may overlap the one before it. Its result is
// worked out before anything is stored and stored last, which keeps a row that is its own output
// right.

// From this length on a row would push everything else out of the caches, and reading what it is
// about to overwrite would cost as much as writing it: its output goes past them.
constexpr ptrdiff_t kStreamedBytes = ptrdiff_t{1} << 22;

// Whole vectors of a long row through streaming stores, but for the last; returns the bytes done.
ptrdiff_t lookupStreamed(const ByteTable& t, const uint8_t* src, uint8_t* dst, ptrdiff_t count,
                         const uint8_t* table) {
  const Bytes d;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  // Streaming stores are aligned.
  ptrdiff_t i = static_cast<ptrdiff_t>(-reinterpret_cast<uintptr_t>(dst) &
                                       static_cast<uintptr_t>(length - 1));
  plain::lookup(src, dst, i, table);
  for (; i < count - length; i += length) hn::Stream(t(hn::LoadU(d, src + i)), d, dst + i);
  hwy::FlushStream();
  return i;
}

void lookup(const uint8_t* src, uint8_t* dst, ptrdiff_t count, const uint8_t* table) {
  const Bytes d;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  if (count < length) return plain::lookup(src, dst, count, table);
  const ByteTable t(table);
  const ByteVector last = t(hn::LoadU(d, src + count - length));
  ptrdiff_t i = count >= kStreamedBytes ? lookupStreamed(t, src, dst, count, table) : 0;
  for (; i < count - length; i += length) {
    hn::StoreU(t(hn::LoadU(d, src + i)), d, dst + i);
  }
  hn::StoreU(last, d, dst + count - length);
}

// Three and four registers of neighbouring pixels, one channel a register. A look-up does not ask
// in which order the pixels stand, so bytes are exchanged between registers, never across lanes.
struct Split3 {
  ByteVector c0, c1, c2;
};

struct Split4 {
  ByteVector c0, c1, c2, c3;
};

// Lanes of the same number in three registers hold three different channels, because a register's
// length is no multiple of 3.
class Phase3 {
 public:
  Phase3() {
    const Bytes d;
    HWY_ALIGN uint8_t lanes[HWY_MAX_BYTES];
    for (size_t i = 0; i < sizeof(lanes); ++i) lanes[i] = static_cast<uint8_t>(i % 3);
    const ByteVector phase = hn::Load(d, lanes);
    is0_ = hn::Eq(phase, hn::Zero(d));
    is1_ = hn::Eq(phase, hn::Set(d, 1));
  }

  // Lane i from a, b or c, as i % 3 is 0, 1 or 2.
  ByteVector select(ByteVector a, ByteVector b, ByteVector c) const {
    return hn::IfThenElse(is0_, a, hn::IfThenElse(is1_, b, c));
  }

 private:
  hn::Mask<Bytes> is0_, is1_;
};

constexpr size_t kLength = HWY_MAX_BYTES;
// Where the register with phase 1 and the one with phase 2 stand in memory.
constexpr size_t kPhase1 = kLength % 3 == 1 ? kLength : 2 * kLength;
constexpr size_t kPhase2 = 3 * kLength - kPhase1;

HWY_INLINE Split3 loadSplit3(const Phase3& phase, const uint8_t* p) {
  const Bytes d;
  const ByteVector a = hn::LoadU(d, p);
  const ByteVector b = hn::LoadU(d, p + kPhase1);
  const ByteVector c = hn::LoadU(d, p + kPhase2);
  return {phase.select(a, c, b), phase.select(b, a, c), phase.select(c, b, a)};
}

HWY_INLINE void storeSplit3(const Phase3& phase, const Split3& s, uint8_t* p) {
  const Bytes d;
  hn::StoreU(phase.select(s.c0, s.c1, s.c2), d, p);
  hn::StoreU(phase.select(s.c1, s.c2, s.c0), d, p + kPhase1);
  hn::StoreU(phase.select(s.c2, s.c0, s.c1), d, p + kPhase2);
}

// The 2 x 2 exchange of the halves of words of type T between two registers; its own inverse.
template <typename T>
HWY_INLINE void exchangeHalves(ByteVector& a, ByteVector& b) {
  const Bytes d;
  const hn::Repartition<T, Bytes> dt;
  const hn::Repartition<hwy::MakeWide<T>, Bytes> dw;
  constexpr int kBits = 8 * sizeof(T);
  const auto up = hn::BitCast(dt, hn::ShiftLeft<kBits>(hn::BitCast(dw, b)));
  const auto down = hn::BitCast(dt, hn::ShiftRight<kBits>(hn::BitCast(dw, a)));
  const ByteVector low = hn::BitCast(d, hn::OddEven(up, hn::BitCast(dt, a)));
  b = hn::BitCast(d, hn::OddEven(hn::BitCast(dt, b), down));
  a = low;
}

HWY_INLINE Split4 loadSplit4(const uint8_t* p) {
  const Bytes d;
  ByteVector a = hn::LoadU(d, p);
  ByteVector b = hn::LoadU(d, p + kLength);
  ByteVector c = hn::LoadU(d, p + 2 * kLength);
  ByteVector e = hn::LoadU(d, p + 3 * kLength);
  exchangeHalves<uint16_t>(a, b);
  exchangeHalves<uint16_t>(c, e);
  exchangeHalves<uint8_t>(a, c);
  exchangeHalves<uint8_t>(b, e);
  return {a, c, b, e};
}

HWY_INLINE void storeSplit4(Split4 s, uint8_t* p) {
  const Bytes d;
  exchangeHalves<uint8_t>(s.c0, s.c1);
  exchangeHalves<uint8_t>(s.c2, s.c3);
  exchangeHalves<uint16_t>(s.c0, s.c2);
  exchangeHalves<uint16_t>(s.c1, s.c3);
  hn::StoreU(s.c0, d, p);
  hn::StoreU(s.c2, d, p + kLength);
  hn::StoreU(s.c1, d, p + 2 * kLength);
  hn::StoreU(s.c3, d, p + 3 * kLength);
}

void lookup3(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2) {
  if (t0 == t1 && t1 == t2) return lookup(src, dst, 3 * pixels, t0);
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(Bytes()));
  if (pixels < length) return plain::lookup3(src, dst, pixels, t0, t1, t2);
  const ByteTable b0(t0), b1(t1), b2(t2);
  const Phase3 phase;
  const ptrdiff_t end = 3 * (pixels - length);
  Split3 last = loadSplit3(phase, src + end);
  last = {b0(last.c0), b1(last.c1), b2(last.c2)};
  for (ptrdiff_t i = 0; i < end; i += 3 * length) {
    const Split3 s = loadSplit3(phase, src + i);
    storeSplit3(phase, {b0(s.c0), b1(s.c1), b2(s.c2)}, dst + i);
  }
  storeSplit3(phase, last, dst + end);
}

#if HWY_TARGET != HWY_AVX2
// One table for three bytes of every four: what the fourth gives is thrown away, which is cheaper
// than to split. A row of 4 * length bytes or more.
void lookupColors4(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* table) {
  const Bytes d;
  const auto fourth = hn::BitCast(d, hn::Set(hn::Repartition<uint32_t, Bytes>(), 0xFF000000u));
  const auto isFourth = hn::MaskFromVec(fourth);
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = 4 * pixels - length;
  const ByteTable t(table);
  ByteVector last = hn::LoadU(d, src + end);
  last = hn::IfThenElse(isFourth, last, t(last));
  for (ptrdiff_t i = 0; i < end; i += length) {
    const ByteVector v = hn::LoadU(d, src + i);
    hn::StoreU(hn::IfThenElse(isFourth, v, t(v)), d, dst + i);
  }
  hn::StoreU(last, d, dst + end);
}
#endif

void lookup4(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2) {
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(Bytes()));
  if (pixels < length) return plain::lookup4(src, dst, pixels, t0, t1, t2);
#if HWY_TARGET != HWY_AVX2
  if (t0 == t1 && t1 == t2) return lookupColors4(src, dst, pixels, t0);
#endif
  const ByteTable b0(t0), b1(t1), b2(t2);
  const ptrdiff_t end = 4 * (pixels - length);
  Split4 last = loadSplit4(src + end);
  last = {b0(last.c0), b1(last.c1), b2(last.c2), last.c3};
  for (ptrdiff_t i = 0; i < end; i += 4 * length) {
    const Split4 s = loadSplit4(src + i);
    storeSplit4({b0(s.c0), b1(s.c1), b2(s.c2), s.c3}, dst + i);
  }
  storeSplit4(last, dst + end);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
