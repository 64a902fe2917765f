// Bilinear rows of a resampled picture. Included once per target.
#if defined(QPX_SIMD_SAMPLED_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_SAMPLED_ROWS_INL_H_
#undef QPX_SIMD_SAMPLED_ROWS_INL_H_
#else
#define QPX_SIMD_SAMPLED_ROWS_INL_H_
#endif

#include <hwy/highway.h>
#include <string.h>

#include <algorithm>

#include "simd/convert_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

inline constexpr int32_t kMiddle = 0x8000;

// Every pixel is the mean of four neighbours: the picture is halved.
inline bool isHalving(const SampledRow& row) {
  return row.even && row.step == 0x20000 && row.down == kMiddle && row.fraction[0] == kMiddle;
}

// (p + q) >> 1, cut as the fractions cut.
template <class V>
HWY_INLINE V meanOf(V p, V q) {
  const hn::DFromV<V> d;
  const auto odd = hn::And(hn::Xor(p, q), hn::Set(d, uint8_t{1}));
  return hn::Sub(hn::AverageRound(p, q), odd);
}

// p + (f * (q - p) >> 16) for fractions below 65536, held in lanes of 16 bits: those from the
// middle on read as negative, which takes q - p once too often.
template <class V>
HWY_INLINE V mix16(V p, V q, V fraction) {
  const auto way = hn::Sub(q, p);
  const auto missing = hn::And(hn::BroadcastSignBit(fraction), way);
  return hn::Add(p, hn::Add(hn::MulHigh(fraction, way), missing));
}

// Pixels of a block, in bytes: the four around each place, and how far across.
struct Corners {
  static constexpr int kBytes = 64;
  HWY_ALIGN uint8_t a[kBytes];
  HWY_ALIGN uint8_t b[kBytes];
  HWY_ALIGN uint8_t c[kBytes];
  HWY_ALIGN uint8_t d[kBytes];
  HWY_ALIGN int16_t across[kBytes];
};

HWY_INLINE void mixCorners(const Corners& corners, int32_t down, uint8_t* dst) {
  const hn::ScalableTag<int16_t> d16;
  const hn::Rebind<uint8_t, decltype(d16)> d8;
  const auto length = static_cast<int>(hn::Lanes(d16));
  const auto fy = hn::Set(d16, static_cast<int16_t>(down));
  const auto wide = [&](const uint8_t* bytes)
                        HWY_ATTR { return hn::PromoteTo(d16, hn::LoadU(d8, bytes)); };
  for (int i = 0; i < Corners::kBytes; i += length) {
    const auto fx = hn::LoadU(d16, corners.across + i);
    const auto top = mix16(wide(corners.a + i), wide(corners.b + i), fx);
    const auto bottom = mix16(wide(corners.c + i), wide(corners.d + i), fx);
    hn::StoreU(hn::DemoteTo(d8, mix16(top, bottom, fy)), d8, dst + i);
  }
}

HWY_INLINE void gatherCorners1(const SampledRow& row, ptrdiff_t first, Corners* corners) {
  for (ptrdiff_t i = 0; i < Corners::kBytes; ++i) {
    const int32_t fraction = row.fraction[first + i];
    const ptrdiff_t left = row.place[first + i], right = left + (fraction != 0 ? 1 : 0);
    corners->a[i] = row.top[left];
    corners->b[i] = row.top[right];
    corners->c[i] = row.bottom[left];
    corners->d[i] = row.bottom[right];
    corners->across[i] = static_cast<int16_t>(fraction);
  }
}

template <int kBytes>
HWY_INLINE void gatherCorners(const SampledRow& row, ptrdiff_t first, Corners* corners) {
  for (ptrdiff_t i = 0; i < Corners::kBytes / 4; ++i) {
    const int32_t fraction = row.fraction[first + i];
    const ptrdiff_t left = ptrdiff_t{row.place[first + i]} * kBytes;
    const ptrdiff_t right = left + (fraction != 0 ? kBytes : 0);
    memcpy(corners->a + 4 * i, row.top + left, kBytes);
    memcpy(corners->b + 4 * i, row.top + right, kBytes);
    memcpy(corners->c + 4 * i, row.bottom + left, kBytes);
    memcpy(corners->d + 4 * i, row.bottom + right, kBytes);
    const uint64_t four = static_cast<uint64_t>(fraction) * 0x0001000100010001u;
    memcpy(corners->across + 4 * i, &four, sizeof(four));
  }
}

inline SampledRow restOf(const SampledRow& row, ptrdiff_t done) {
  SampledRow rest = row;
  rest.place += done;
  rest.fraction += done;
  return rest;
}

HWY_INLINE ptrdiff_t halve1(const SampledRow& row, ptrdiff_t count, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const auto length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const uint8_t *const top = row.top + row.place[0], *const bottom = row.bottom + row.place[0];
  ptrdiff_t i = 0;
  for (; i <= count - length; i += length) {
    auto a = hn::Zero(d), b = a, c = a, e = a;
    hn::LoadInterleaved2(d, top + 2 * i, a, b);
    hn::LoadInterleaved2(d, bottom + 2 * i, c, e);
    hn::StoreU(meanOf(meanOf(a, b), meanOf(c, e)), d, dst + i);
  }
  return i;
}

// Fourth bytes are those of the left upper pixels.
HWY_INLINE ptrdiff_t halve4(const SampledRow& row, ptrdiff_t count, uint8_t* dst) {
  const hn::ScalableTag<uint32_t> d;
  const hn::Repartition<uint8_t, decltype(d)> bytes;
  const auto length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t start = ptrdiff_t{row.place[0]} * 4;
  const auto colours = hn::Set(d, 0x00FFFFFFu);
  const auto load = [&](const uint8_t* at)
                        HWY_ATTR { return hn::BitCast(d, hn::LoadU(bytes, at)); };
  const auto meanAcross =
      [&](const decltype(hn::Zero(d))& left, const decltype(hn::Zero(d))& right)
          HWY_ATTR { return meanOf(hn::BitCast(bytes, left), hn::BitCast(bytes, right)); };
  ptrdiff_t i = 0;
  for (; i <= count - length; i += length) {
    const uint8_t *const top = row.top + start + 8 * i, *const bottom = row.bottom + start + 8 * i;
    const auto t0 = load(top), t1 = load(top + 4 * length);
    const auto b0 = load(bottom), b1 = load(bottom + 4 * length);
    const auto a = hn::ConcatEven(d, t1, t0);
    const auto upper = meanAcross(a, hn::ConcatOdd(d, t1, t0));
    const auto lower = meanAcross(hn::ConcatEven(d, b1, b0), hn::ConcatOdd(d, b1, b0));
    const auto mean = hn::BitCast(d, meanOf(upper, lower));
    const auto pixels = hn::Or(hn::And(mean, colours), hn::AndNot(colours, a));
    hn::StoreU(hn::BitCast(bytes, pixels), bytes, dst + 4 * i);
  }
  return i;
}

void blend1(const SampledRow& row, ptrdiff_t count, uint8_t* dst) {
  ptrdiff_t done = 0;
  if (count > 0 && isHalving(row)) {
    done = halve1(row, count, dst);
  } else {
    Corners corners;
    for (; done <= count - Corners::kBytes; done += Corners::kBytes) {
      gatherCorners1(row, done, &corners);
      mixCorners(corners, row.down, dst + done);
    }
  }
  plain::blend1(restOf(row, done), count - done, dst + done);
}

void blend3(const SampledRow& row, ptrdiff_t count, uint8_t* dst) {
  constexpr ptrdiff_t kPixels = Corners::kBytes / 4;
  Corners corners = {};
  uint8_t mixed[Corners::kBytes];
  ptrdiff_t done = 0;
  for (; done <= count - kPixels; done += kPixels) {
    gatherCorners<3>(row, done, &corners);
    mixCorners(corners, row.down, mixed);
    for (ptrdiff_t i = 0; i < kPixels; ++i) memcpy(dst + 3 * (done + i), mixed + 4 * i, 3);
  }
  plain::blend3(restOf(row, done), count - done, dst + 3 * done);
}

void blend4(const SampledRow& row, ptrdiff_t count, uint8_t* dst) {
  constexpr ptrdiff_t kPixels = Corners::kBytes / 4;
  ptrdiff_t done = 0;
  if (count > 0 && isHalving(row)) {
    done = halve4(row, count, dst);
  } else {
    Corners corners;
    for (; done <= count - kPixels; done += kPixels) {
      gatherCorners<4>(row, done, &corners);
      mixCorners(corners, row.down, dst + 4 * done);
      for (ptrdiff_t i = 0; i < kPixels; ++i) dst[4 * (done + i) + 3] = corners.a[4 * i + 3];
    }
  }
  plain::blend4(restOf(row, done), count - done, dst + 4 * done);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
