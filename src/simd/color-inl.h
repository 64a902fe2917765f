// Distances of colours to palettes. Included once per target.
#if defined(QPX_SIMD_COLOR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_COLOR_INL_H_
#undef QPX_SIMD_COLOR_INL_H_
#else
#define QPX_SIMD_COLOR_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/color_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using DistanceTag = hn::Repartition<int32_t, D8>;
using Distance = hn::Vec<DistanceTag>;

// Colours in lanes of 32 bits, one a lane.
#if HWY_TARGET == HWY_NEON
class Colors {
 public:
  HWY_INLINE Colors(Distance c0, Distance c1, Distance c2) : c0_(c0), c1_(c1), c2_(c2) {}

  HWY_INLINE Distance distanceTo(const uint8_t* color) const {
    const DistanceTag d;
    const Distance d0 = hn::Sub(c0_, hn::Set(d, color[0])), d1 = hn::Sub(c1_, hn::Set(d, color[1])),
                   d2 = hn::Sub(c2_, hn::Set(d, color[2]));
    return hn::Add(hn::Add(hn::Mul(d0, d0), hn::Mul(d1, d1)), hn::Mul(d2, d2));
  }

 private:
  Distance c0_, c1_, c2_;
};
#else
// Two channels share a lane, so that one instruction squares and adds both.
class Colors {
 public:
  HWY_INLINE Colors(Distance c0, Distance c1, Distance c2)
      : pair_(words(hn::Or(c0, hn::ShiftLeft<16>(c1)))), third_(words(c2)) {}

  HWY_INLINE Distance distanceTo(const uint8_t* color) const {
    const DistanceTag d;
    const VS pair = hn::Sub(pair_, words(hn::Set(d, color[0] | color[1] << 16)));
    const VS third = hn::Sub(third_, words(hn::Set(d, color[2])));
    Distance unused = hn::Zero(d);
    const Distance sum = hn::ReorderWidenMulAccumulate(d, third, third, hn::Zero(d), unused);
    return hn::ReorderWidenMulAccumulate(d, pair, pair, sum, unused);
  }

 private:
  HWY_INLINE static VS words(Distance v) { return hn::BitCast(DS(), v); }

  VS pair_, third_;
};
#endif

HWY_INLINE Distance wideChannel(const uint8_t* from) {
  return hn::PromoteTo(DistanceTag(), hn::LoadU(hn::Rebind<uint8_t, DistanceTag>(), from));
}

void nearest(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, ptrdiff_t count,
             const uint8_t* palette, ptrdiff_t entries, int32_t* distance) {
  const DistanceTag d;
  const auto make = [=](ptrdiff_t i) HWY_ATTR {
    const Colors colors(wideChannel(c0 + i), wideChannel(c1 + i), wideChannel(c2 + i));
    Distance smallest = hn::LoadU(d, distance + i);
    for (ptrdiff_t k = 0; k < entries; ++k) {
      smallest = hn::Min(smallest, colors.distanceTo(palette + 3 * k));
    }
    return smallest;
  };
  const auto store = [=](Distance v, ptrdiff_t i) HWY_ATTR { hn::StoreU(v, d, distance + i); };
  if (!eachVector(static_cast<ptrdiff_t>(hn::Lanes(d)), count, make, store)) {
    plain::nearest(c0, c1, c2, count, palette, entries, distance);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
