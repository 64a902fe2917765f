// Samples scaled or toned by weights of their own, which follow the distance from a place in the
// picture. Included once per target.
#if defined(QPX_SIMD_RADIAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_RADIAL_INL_H_
#undef QPX_SIMD_RADIAL_INL_H_
#else
#define QPX_SIMD_RADIAL_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/blend-inl.h"
#include "simd/blend_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class D>
HWY_INLINE ptrdiff_t lanesOf(D d) {
  return static_cast<ptrdiff_t>(hn::Lanes(d));
}

// Columns are clamped far outside what any row of the usual size could make up for, so that the sum
// has room in 32 bits.
void falloffWeights(int32_t rowTerm, const int32_t* colTerms, uint16_t* weights, ptrdiff_t count) {
  constexpr int32_t kColumn = 1 << 29;
  constexpr int32_t kRow = kColumn / 2;
  if (rowTerm < -kRow || rowTerm > kRow) {
    return plain::falloffWeights(rowTerm, colTerms, weights, count);
  }
  const D32 d;
  const hn::Rebind<uint16_t, D32> d16;
  const V32 row = hn::Set(d, rowTerm - 128), most = hn::Set(d, kColumn), zero = hn::Zero(d);
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const V32 column = hn::Max(hn::Min(hn::LoadU(d, colTerms + i), most), hn::Neg(most));
    const V32 behind = hn::Min(hn::Max(hn::Add(row, column), zero), hn::Set(d, 1024));
    const V32 lost = hn::ShiftRight<10>(hn::Mul(behind, behind));
    return hn::DemoteTo(d16, hn::Max(hn::Sub(hn::Set(d, 512), lost), zero));
  };
  const auto store = [=](auto v, ptrdiff_t i) HWY_ATTR { hn::StoreU(v, d16, weights + i); };
  if (!eachVector(lanesOf(d), count, make, store)) {
    plain::falloffWeights(rowTerm, colTerms, weights, count);
  }
}

// (c * weight) >> 9 is the high half of 128 * c * weight.
void scaleByFalloff(const uint8_t* src, const uint16_t* weights, uint8_t* dst, ptrdiff_t count) {
  const D16 d;
  const hn::RebindToSigned<D16> ds;
  const hn::Rebind<uint8_t, D16> d8;
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const V16 c = hn::ShiftLeft<7>(hn::PromoteTo(d, hn::LoadU(d8, src + i)));
    return hn::DemoteTo(d8, hn::BitCast(ds, hn::MulHigh(c, hn::LoadU(d, weights + i))));
  };
  const auto store = [=](auto v, ptrdiff_t i) HWY_ATTR { hn::StoreU(v, d8, dst + i); };
  if (!eachVector(lanesOf(d), count, make, store)) plain::scaleByFalloff(src, weights, dst, count);
}

#if HWY_ARCH_ARM_V7
using plain::cornerWeights;  // no exact square root
#else
// Squares fit 31 bits up to this distance. A root in single precision is then at most 1 off, which
// its square tells.
void cornerWeights(const CornerRow& row, int32_t* weights, ptrdiff_t count) {
  constexpr int32_t kFarthest = 46000;
  if (row.farthest > kFarthest) return plain::cornerWeights(row, weights, count);
  const D32 d;
  const V32 rowSquare = hn::Set(d, static_cast<int32_t>(row.dy * row.dy));
  const V32 places = hn::Iota(d, 0), one = hn::Set(d, 1), inner = hn::Set(d, row.inner);
  const V32 scale = hn::Set(d, row.scale), start = hn::Set(d, row.start);
  const auto make = [&](ptrdiff_t i) HWY_ATTR {
    const V32 dx = hn::Add(hn::Set(d, static_cast<int32_t>(row.dx + i)), places);
    const V32 square = hn::Add(hn::Mul(dx, dx), rowSquare);
    V32 distance = hn::ConvertTo(d, hn::Sqrt(hn::ConvertTo(DF(), square)));
    distance = hn::Add(distance, hn::VecFromMask(d, hn::Gt(hn::Mul(distance, distance), square)));
    const V32 next = hn::Add(distance, one);
    distance = hn::IfThenElse(hn::Gt(hn::Mul(next, next), square), distance, next);
    const V32 t = hn::Sub(hn::ShiftRight<10>(hn::Mul(scale, distance)), start);
    return hn::IfThenElseZero(hn::Gt(distance, inner), hn::Mul(t, t));
  };
  const auto store = [=](V32 v, ptrdiff_t i) HWY_ATTR { hn::StoreU(v, d, weights + i); };
  if (!eachVector(lanesOf(d), count, make, store)) plain::cornerWeights(row, weights, count);
}
#endif

void mixCorner(const uint8_t* src, const uint8_t* tone, const int32_t* weights, uint8_t* dst,
               ptrdiff_t count, int32_t amount) {
  const D32 d;
  const hn::Rebind<uint8_t, D32> d8;
  const V32 shown = hn::Set(d, amount), kept = hn::Set(d, 1024 - amount);
  const V32 half = hn::Set(d, 512);
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const V32 c = hn::PromoteTo(d, hn::LoadU(d8, src + i));
    const V32 way = hn::Sub(hn::PromoteTo(d, hn::LoadU(d8, tone + i)), c);
    const V32 moved = hn::ShiftRight<20>(hn::Mul(hn::LoadU(d, weights + i), way));
    const V32 sum = hn::Add(hn::Mul(c, kept), hn::Mul(shown, hn::Add(c, moved)));
    return hn::DemoteTo(d8, hn::ShiftRight<10>(hn::Add(sum, half)));
  };
  const auto store = [=](auto v, ptrdiff_t i) HWY_ATTR { hn::StoreU(v, d8, dst + i); };
  if (!eachVector(lanesOf(d), count, make, store)) {
    plain::mixCorner(src, tone, weights, dst, count, amount);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
