// Interleaved pixels to planes and back. Included once per target.
#if defined(QPX_SIMD_CHANNELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CHANNELS_INL_H_
#undef QPX_SIMD_CHANNELS_INL_H_
#else
#define QPX_SIMD_CHANNELS_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>

#include "simd/byte_vectors-inl.h"
#include "simd/rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

void deinterleave2(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1) {
  const hn::ScalableTag<uint8_t> d;
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Zero(d), v1 = v0;
    hn::LoadInterleaved2(d, src + 2 * i, v0, v1);
    hn::StoreU(v0, d, p0 + i);
    hn::StoreU(v1, d, p1 + i);
  };
  if (!overlappingShortSteps(byteLanes(), pixels, step)) plain::deinterleave2(src, pixels, p0, p1);
}

void interleave2(const uint8_t* p0, const uint8_t* p1, ptrdiff_t pixels, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    hn::StoreInterleaved2(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i), d, dst + 2 * i);
  };
  if (!overlappingShortSteps(byteLanes(), pixels, step)) plain::interleave2(p0, p1, pixels, dst);
}

void deinterleave3(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2) {
  const hn::ScalableTag<uint8_t> d;
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0;
    hn::LoadInterleaved3(d, src + 3 * i, v0, v1, v2);
    hn::StoreU(v0, d, p0 + i);
    hn::StoreU(v1, d, p1 + i);
    hn::StoreU(v2, d, p2 + i);
  };
  if (!overlappingShortSteps(byteLanes(), pixels, step))
    plain::deinterleave3(src, pixels, p0, p1, p2);
}

void interleave3(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, ptrdiff_t pixels,
                 uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    hn::StoreInterleaved3(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i), hn::LoadU(d, p2 + i), d,
                          dst + 3 * i);
  };
  if (!overlappingShortSteps(byteLanes(), pixels, step))
    plain::interleave3(p0, p1, p2, pixels, dst);
}

void deinterleave4(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2,
                   uint8_t* p3) {
  const hn::ScalableTag<uint8_t> d;
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0, v3 = v0;
    hn::LoadInterleaved4(d, src + 4 * i, v0, v1, v2, v3);
    hn::StoreU(v0, d, p0 + i);
    hn::StoreU(v1, d, p1 + i);
    hn::StoreU(v2, d, p2 + i);
    hn::StoreU(v3, d, p3 + i);
  };
  if (!overlappingShortSteps(byteLanes(), pixels, step))
    plain::deinterleave4(src, pixels, p0, p1, p2, p3);
}

void interleave4(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, const uint8_t* p3,
                 ptrdiff_t pixels, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    hn::StoreInterleaved4(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i), hn::LoadU(d, p2 + i),
                          hn::LoadU(d, p3 + i), d, dst + 4 * i);
  };
  if (!overlappingShortSteps(byteLanes(), pixels, step))
    plain::interleave4(p0, p1, p2, p3, pixels, dst);
}

// A vector's pixels at a time out of one window of as many, where they all lie in it.
void gather4(const uint8_t* src, ptrdiff_t texels, const int32_t* places, ptrdiff_t count,
             uint8_t* dst) {
  const hn::ScalableTag<uint32_t> d;
  const hn::RebindToSigned<decltype(d)> ds;
  const hn::Repartition<uint8_t, decltype(d)> bytes;
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const auto size = hn::Set(d, static_cast<uint32_t>(length));
  const ptrdiff_t lastWindow = texels - length;
  ptrdiff_t i = 0;
  for (; lastWindow >= 0 && i <= count - length; i += length) {
    const ptrdiff_t lower = std::min(places[i], places[i + length - 1]);
    const ptrdiff_t window = std::min(lower, lastWindow);
    const auto origin = hn::Set(d, static_cast<uint32_t>(window));
    const auto lanes = hn::Sub(hn::BitCast(d, hn::LoadU(ds, places + i)), origin);
    if (hn::AllTrue(d, hn::Lt(lanes, size))) {
      const auto pixels = hn::BitCast(d, hn::LoadU(bytes, src + 4 * window));
      const auto picked = hn::TableLookupLanes(pixels, hn::IndicesFromVec(d, lanes));
      hn::StoreU(hn::BitCast(bytes, picked), bytes, dst + 4 * i);
    } else {
      plain::gather4(src, texels, places + i, length, dst + 4 * i);
    }
  }
  plain::gather4(src, texels, places + i, count - i, dst + 4 * i);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
