// Distances of neighbouring patches, one in each lane. Included once per target.
#if defined(QPX_SIMD_PATCH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_PATCH_INL_H_
#undef QPX_SIMD_PATCH_INL_H_
#else
#define QPX_SIMD_PATCH_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>

#include "simd/patch_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The search often asks for 64 patches and less: longer vectors would rarely be full.
using D8 = hn::CappedTag<uint8_t, 32>;
using D16 = hn::Repartition<uint16_t, D8>;
using D32 = hn::Repartition<uint32_t, D8>;
using V8 = hn::Vec<D8>;
using V16 = hn::Vec<D16>;
using V32 = hn::Vec<D32>;

// So few that 16 bits hold their sum, and that little is lost on patches that are out early.
constexpr ptrdiff_t kTermsAtOnce = 24;

// Patch 4 * i + c in lane i of quarter[c].
struct Distances {
  V32 quarter[4];
};

HWY_INLINE void addTo(V32& sums, V32 more) {
  sums = hn::Min(hn::Add(sums, more), hn::Set(D32(), kFarPatch));
}

// Pairs of bytes are summed as words, and their high bytes by themselves; what these put into the
// words is taken off in the end, which saves a mask for every term.
HWY_INLINE void addTerms(const uint8_t* places, const PatchTerm* terms, const PatchTerm* end,
                         Distances& sums) {
  const D8 d8;
  const D16 d16;
  const D32 d32;
  V16 words = hn::Zero(d16), high = hn::Zero(d16);
  for (; terms != end; ++terms) {
    const V8 there = hn::LoadU(d8, places + terms->offset);
    const V8 wanted = hn::Set(d8, terms->value);
    const V8 off = hn::Or(hn::SaturatedSub(there, wanted), hn::SaturatedSub(wanted, there));
    const V16 pair = hn::BitCast(d16, off);
    words = hn::Add(words, pair);
    high = hn::Add(high, hn::ShiftRight<8>(pair));
  }
  const V32 low = hn::Set(d32, 0xFFFF);
  const V32 even = hn::BitCast(d32, hn::Sub(words, hn::ShiftLeft<8>(high)));
  const V32 odd = hn::BitCast(d32, high);
  addTo(sums.quarter[0], hn::And(even, low));
  addTo(sums.quarter[1], hn::And(odd, low));
  addTo(sums.quarter[2], hn::ShiftRight<16>(even));
  addTo(sums.quarter[3], hn::ShiftRight<16>(odd));
}

HWY_INLINE bool allAbove(const Distances& sums, V32 limit) {
  const V32 least =
      hn::Min(hn::Min(sums.quarter[0], sums.quarter[1]), hn::Min(sums.quarter[2], sums.quarter[3]));
  const hn::RebindToSigned<D32> d;
  return hn::AllTrue(d, hn::Gt(hn::BitCast(d, least), hn::BitCast(d, limit)));
}

HWY_INLINE void store(const Distances& sums, uint32_t* distances) {
  const D32 d;
  const size_t length = hn::Lanes(d);
  HWY_ALIGN uint32_t lanes[8];
  static_assert(hn::MaxLanes(D32()) <= 8);
  for (size_t c = 0; c < 4; ++c) {
    hn::Store(sums.quarter[c], d, lanes);
    for (size_t i = 0; i < length; ++i) distances[4 * i + c] = lanes[i];
  }
}

HWY_INLINE bool oneVector(const uint8_t* places, const PatchTerm* terms, ptrdiff_t termCount,
                          uint32_t limit, uint32_t* distances) {
  const V32 zero = hn::Zero(D32()), limits = hn::Set(D32(), limit);
  Distances sums = {{zero, zero, zero, zero}};
  const PatchTerm* const end = terms + termCount;
  do {
    const PatchTerm* const stop = terms + std::min(kTermsAtOnce, end - terms);
    addTerms(places, terms, stop, sums);
    if (allAbove(sums, limits)) {
      std::fill_n(distances, hn::Lanes(D8()), limit + 1);
      return false;
    }
    terms = stop;
  } while (terms != end);
  store(sums, distances);
  return true;
}

// The last vector overlaps the one before it.
bool patchDistances(const uint8_t* places, const PatchTerm* terms, ptrdiff_t termCount,
                    uint32_t limit, uint32_t* distances, ptrdiff_t count) {
  const auto length = static_cast<ptrdiff_t>(hn::Lanes(D8()));
  if (count < length) {
    return plain::patchDistances(places, terms, termCount, limit, distances, count);
  }
  bool near = false;
  for (ptrdiff_t i = 0; i < count; i += length) {
    i = std::min(i, count - length);
    near |= oneVector(places + i, terms, termCount, limit, distances + i);
  }
  return near;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
