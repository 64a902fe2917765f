// Sums of rows of pixels and what is made of them. Included once per target.
#if defined(QPX_SIMD_SUM_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_SUM_INL_H_
#undef QPX_SIMD_SUM_INL_H_
#else
#define QPX_SIMD_SUM_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>

#include "simd/byte_vectors-inl.h"
#include "simd/sum_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using D32 = hn::Repartition<uint32_t, D8>;
using V32 = hn::Vec<D32>;

// As many rows as 16 bits hold the sum of.
constexpr ptrdiff_t kMostRows = 257;

// Pairs of bytes summed as words, and their high bytes by themselves. What the high bytes put into
// the words is taken off in the end, which saves a mask for every row.
struct PairSums {
  V16 words, high;
};

HWY_INLINE PairSums noSums() { return {hn::Zero(D16()), hn::Zero(D16())}; }

HWY_INLINE void add(PairSums& sums, const uint8_t* bytes) {
  const V16 pair = hn::BitCast(D16(), hn::LoadU(D8(), bytes));
  sums.words = hn::Add(sums.words, pair);
  sums.high = hn::Add(sums.high, hn::ShiftRight<8>(pair));
}

HWY_INLINE void addWeighted(V32 sums, V32 weight, uint32_t* plane) {
  const D32 d;
  hn::StoreU(hn::Add(hn::LoadU(d, plane), hn::Mul(sums, weight)), d, plane);
}

// A vector of pairs holds bytes 0 and 2 of each pixel in one sum and bytes 1 and 3 in the other.
HWY_INLINE void store(const PairSums& sums, V32 weight, const QuadSums& to) {
  const D32 d;
  const V32 low = hn::Set(d, 0xFFFF);
  const V32 even = hn::BitCast(d, hn::Sub(sums.words, hn::ShiftLeft<8>(sums.high)));
  const V32 odd = hn::BitCast(d, sums.high);
  addWeighted(hn::And(even, low), weight, to.plane[0]);
  addWeighted(hn::And(odd, low), weight, to.plane[1]);
  addWeighted(hn::ShiftRight<16>(even), weight, to.plane[2]);
  addWeighted(hn::ShiftRight<16>(odd), weight, to.plane[3]);
}

// Four vectors of pixels at `start` through all rows.
HWY_INLINE void addFour(const uint8_t* const* rows, ptrdiff_t rowCount, V32 weight,
                        const QuadSums& sums, ptrdiff_t start) {
  const ptrdiff_t step = static_cast<ptrdiff_t>(hn::Lanes(D8()));
  PairSums s0 = noSums(), s1 = noSums(), s2 = noSums(), s3 = noSums();
  for (ptrdiff_t k = 0; k < rowCount; ++k) {
    const uint8_t* row = rows[k] + 4 * start;
    add(s0, row);
    add(s1, row + step);
    add(s2, row + 2 * step);
    add(s3, row + 3 * step);
  }
  store(s0, weight, sums.from(start));
  store(s1, weight, sums.from(start + step / 4));
  store(s2, weight, sums.from(start + step / 2));
  store(s3, weight, sums.from(start + 3 * step / 4));
}

HWY_INLINE void addOne(const uint8_t* const* rows, ptrdiff_t rowCount, V32 weight,
                       const QuadSums& sums, ptrdiff_t start) {
  PairSums s = noSums();
  for (ptrdiff_t k = 0; k < rowCount; ++k) add(s, rows[k] + 4 * start);
  store(s, weight, sums.from(start));
}

void addQuads(const uint8_t* const* rows, ptrdiff_t rowCount, uint32_t weight, const QuadSums& sums,
              ptrdiff_t pixels) {
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(D32()));
  const V32 weights = hn::Set(D32(), weight);
  while (rowCount > 0) {
    const ptrdiff_t count = std::min(rowCount, kMostRows);
    ptrdiff_t i = 0;
    for (; i + 4 * length <= pixels; i += 4 * length) addFour(rows, count, weights, sums, i);
    for (; i + length <= pixels; i += length) addOne(rows, count, weights, sums, i);
    for (ptrdiff_t k = 0; k < count && i < pixels; ++k) {
      const uint8_t* rest = rows[k] + 4 * i;
      plain::addQuads(&rest, 1, weight, sums.from(i), pixels - i);
    }
    rows += count;
    rowCount -= count;
  }
}

// Deep inside a mask all counts are the same, and a gather is slow.
HWY_INLINE V32 factorsOf(const uint32_t* counts, const uint32_t* reciprocals) {
  const D32 d;
  const V32 places = hn::LoadU(d, counts);
  if (hn::AllTrue(d, hn::Eq(places, hn::Set(d, counts[0])))) {
    return hn::Set(d, reciprocals[counts[0]]);
  }
  return hn::GatherIndex(d, reciprocals, hn::BitCast(hn::RebindToSigned<D32>(), places));
}

void scaleSums(const uint32_t* sums, const uint32_t* counts, const uint32_t* reciprocals,
               uint32_t bias, uint8_t* dst, ptrdiff_t count) {
  const D32 d;
  const hn::RebindToSigned<D32> di;
  const hn::Rebind<uint8_t, D32> bytes;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const V32 rounding = hn::Set(d, bias);
  ptrdiff_t i = 0;
  for (; i + length <= count; i += length) {
    const V32 product = hn::Mul(factorsOf(counts + i, reciprocals), hn::LoadU(d, sums + i));
    const V32 mean = hn::ShiftRight<20>(hn::Add(product, rounding));
    hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(di, mean)), bytes, dst + i);
  }
  plain::scaleSums(sums + i, counts + i, reciprocals, bias, dst + i, count - i);
}

// b + (((a - b) * weight + 512) >> 10), which is the same sum.
void mixByWeights(const uint8_t* a, const uint8_t* b, const uint16_t* weights, uint8_t* dst,
                  ptrdiff_t count) {
  const hn::RebindToSigned<D32> di;
  const hn::Rebind<uint8_t, D32> bytes;
  const hn::Rebind<uint16_t, D32> words;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(di));
  const auto half = hn::Set(di, 512);
  ptrdiff_t i = 0;
  for (; i + length <= count; i += length) {
    const auto top = hn::PromoteTo(di, hn::LoadU(bytes, a + i));
    const auto base = hn::PromoteTo(di, hn::LoadU(bytes, b + i));
    const auto weight = hn::PromoteTo(di, hn::LoadU(words, weights + i));
    const auto moved = hn::ShiftRight<10>(hn::Add(hn::Mul(hn::Sub(top, base), weight), half));
    hn::StoreU(hn::DemoteTo(bytes, hn::Add(base, moved)), bytes, dst + i);
  }
  plain::mixByWeights(a + i, b + i, weights + i, dst + i, count - i);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
