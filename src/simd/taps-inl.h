// Vector forms of TapRows. A lane of 32 bits is one place; its four bytes are worked on as two
// pairs of 16 bits or one by one, so that nothing has to be spread out and put together again.
#if defined(QPX_SIMD_TAPS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_TAPS_INL_H_
#undef QPX_SIMD_TAPS_INL_H_
#else
#define QPX_SIMD_TAPS_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/plain_tap_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using PlaceTag = hn::ScalableTag<uint32_t>;
using PlaceVector = hn::VFromD<PlaceTag>;

// The left and the right pixels of a row's pairs.
struct PixelPair {
  PlaceVector left, right;
};

template <int kBytes>
HWY_INLINE PixelPair loadPairs(PlaceTag d, const uint64_t* pairs) {
  const hn::Repartition<uint64_t, PlaceTag> d64;
  const auto first = hn::LoadU(d64, pairs);
  const auto second = hn::LoadU(d64, pairs + hn::Lanes(d64));
  const auto left = hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first));
  if constexpr (kBytes == 4) {
    return {left, hn::ConcatOdd(d, hn::BitCast(d, second), hn::BitCast(d, first))};
  } else {
    return {left, hn::ConcatEven(d, hn::BitCast(d, hn::ShiftRight<24>(second)),
                                 hn::BitCast(d, hn::ShiftRight<24>(first)))};
  }
}

// p + ((q - p) * f >> 16) in 16 bits, f having 16 bits without a sign: read with one it is 65536
// too small where its top bit is set, which the last term gives back.
template <class V>
HWY_INLINE V mixShorts(V p, V q, V fraction, V topBit) {
  const V step = hn::Sub(q, p);
  return hn::Add(hn::Add(p, hn::MulHigh(step, fraction)), hn::And(step, topBit));
}

// A fraction of 16 bits, once for each half of a lane.
HWY_INLINE auto twice(PlaceTag d, const int32_t* positions) {
  const hn::Repartition<int16_t, PlaceTag> d16;
  const hn::RebindToSigned<PlaceTag> signedTag;
  const auto fraction =
      hn::And(hn::BitCast(d, hn::LoadU(signedTag, positions)), hn::Set(d, 0xFFFF));
  return hn::BitCast(d16, hn::Or(fraction, hn::ShiftLeft<16>(fraction)));
}

template <bool kAcrossFirst, class V>
HWY_INLINE V mixFour(V a, V b, V c, V d, V fx, V topX, V fy, V topY) {
  if constexpr (kAcrossFirst) {
    return mixShorts(mixShorts(a, b, fx, topX), mixShorts(c, d, fx, topX), fy, topY);
  } else {
    return mixShorts(mixShorts(a, c, fy, topY), mixShorts(b, d, fy, topY), fx, topX);
  }
}

template <int kBytes, bool kAcrossFirst>
void mixRow(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  const PlaceTag d;
  const hn::Repartition<int16_t, PlaceTag> d16;
  const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const auto lowBytes = hn::Set(d, 0x00FF00FF);
  const auto colors = hn::Set(d, 0x00FFFFFF);
  const auto even = [&](PlaceVector v) HWY_ATTR { return hn::BitCast(d16, hn::And(v, lowBytes)); };
  const auto odd = [&](PlaceVector v) HWY_ATTR {
    return hn::BitCast(d16, hn::And(hn::ShiftRight<8>(v), lowBytes));
  };
  ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const PixelPair upper = loadPairs<kBytes>(d, taps.top + i);
    const PixelPair lower = loadPairs<kBytes>(d, taps.bottom + i);
    const auto fx = twice(d, taps.u + i);
    const auto fy = twice(d, taps.v + i);
    const auto topX = hn::ShiftRight<15>(fx);
    const auto topY = hn::ShiftRight<15>(fy);
    const auto evens = mixFour<kAcrossFirst>(even(upper.left), even(upper.right), even(lower.left),
                                             even(lower.right), fx, topX, fy, topY);
    const auto odds = mixFour<kAcrossFirst>(odd(upper.left), odd(upper.right), odd(lower.left),
                                            odd(lower.right), fx, topX, fy, topY);
    const auto mixed = hn::Or(hn::BitCast(d, evens), hn::ShiftLeft<8>(hn::BitCast(d, odds)));
    hn::StoreU(hn::Or(hn::And(mixed, colors), hn::AndNot(colors, upper.left)), d, dst + i);
  }
  constexpr plain::TapFunction kPlain =
      kAcrossFirst ? plain::acrossFirstAt<kBytes> : plain::downFirstAt<kBytes>;
  plain::tapRow<kPlain>({taps.top + i, taps.bottom + i, taps.u + i, taps.v + i}, dst + i,
                        count - i);
}

// Channel kChannel of the four taps with 20 fractional bits.
template <int kChannel, class D, class V>
HWY_INLINE V sumChannel(D d, const PixelPair& upper, const PixelPair& lower, V fx, V fy, V half) {
  const auto byte = [&](PlaceVector v) HWY_ATTR {
    return hn::And(hn::BitCast(d, hn::ShiftRight<8 * kChannel>(v)), hn::Set(d, 255));
  };
  const auto across = [&](const PixelPair& pair) HWY_ATTR {
    const V left = byte(pair.left);
    return hn::Add(hn::ShiftLeft<10>(left), hn::Mul(hn::Sub(byte(pair.right), left), fx));
  };
  const V above = across(upper);
  const V sum = hn::Add(hn::ShiftLeft<10>(above), hn::Mul(hn::Sub(across(lower), above), fy));
  return hn::ShiftLeft<8 * kChannel>(hn::ShiftRight<20>(hn::Add(sum, half)));
}

template <int kBytes, bool kRounded>
void sumRow(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  const PlaceTag d;
  const hn::RebindToSigned<PlaceTag> di;
  const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const auto fractions = hn::Set(di, plain::kFull10 - 1);
  const auto half = hn::Set(di, kRounded ? 1 << 19 : 0);
  ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const PixelPair upper = loadPairs<kBytes>(d, taps.top + i);
    const PixelPair lower = loadPairs<kBytes>(d, taps.bottom + i);
    const auto fx = hn::And(hn::LoadU(di, taps.u + i), fractions);
    const auto fy = hn::And(hn::LoadU(di, taps.v + i), fractions);
    auto word = hn::Or(sumChannel<0>(di, upper, lower, fx, fy, half),
                       hn::Or(sumChannel<1>(di, upper, lower, fx, fy, half),
                              sumChannel<2>(di, upper, lower, fx, fy, half)));
    if constexpr (kRounded) {
      word = hn::Or(word, sumChannel<3>(di, upper, lower, fx, fy, half));
    } else {
      word = hn::Or(word, hn::BitCast(di, hn::Set(d, plain::kFourthByte)));
    }
    hn::StoreU(hn::BitCast(d, word), d, dst + i);
  }
  plain::tapRow<plain::oneSumAt<kBytes, kRounded>>(
      {taps.top + i, taps.bottom + i, taps.u + i, taps.v + i}, dst + i, count - i);
}

void acrossFirst3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  mixRow<3, true>(taps, dst, count);
}

void acrossFirst4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  mixRow<4, true>(taps, dst, count);
}

void downFirst3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  mixRow<3, false>(taps, dst, count);
}

void downFirst4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  mixRow<4, false>(taps, dst, count);
}

void oneSum3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  sumRow<3, false>(taps, dst, count);
}

void oneSum4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  sumRow<4, false>(taps, dst, count);
}

void rounded3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  sumRow<3, true>(taps, dst, count);
}

void rounded4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  sumRow<4, true>(taps, dst, count);
}

void offsets(const int32_t* u, const int32_t* v, int32_t* dst, ptrdiff_t count, int fraction,
             int32_t pitch, int32_t bytes) {
  const hn::ScalableTag<int32_t> d;
  const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const auto rowBytes = hn::Set(d, pitch);
  const auto pixelBytes = hn::Set(d, bytes);
  ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto column = hn::ShiftRightSame(hn::LoadU(d, u + i), fraction);
    const auto row = hn::ShiftRightSame(hn::LoadU(d, v + i), fraction);
    hn::StoreU(hn::Add(hn::Mul(row, rowBytes), hn::Mul(column, pixelBytes)), d, dst + i);
  }
  plain::offsets(u + i, v + i, dst + i, count - i, fraction, pitch, bytes);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif

#endif  // QPX_SIMD_TAPS_INL_H_
