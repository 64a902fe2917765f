// Packed RGB to packed RGB. Included once per target.
#if defined(QPX_SIMD_PIXEL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_PIXEL_INL_H_
#undef QPX_SIMD_PIXEL_INL_H_
#else
#define QPX_SIMD_PIXEL_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>

#include "simd/byte_vectors-inl.h"
#include "simd/pixel_rows.h"
#include "simd/yuv_store-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// A vector whose bytes can be looked up by any place in it.
#if HWY_TARGET == HWY_AVX3_DL
using DPermuted = D8;
HWY_INLINE V8 permuted(V8 v, V8 places) { return V8{_mm512_permutexvar_epi8(places.raw, v.raw)}; }
#else
using DPermuted = hn::Full128<uint8_t>;
HWY_INLINE hn::Vec<DPermuted> permuted(hn::Vec<DPermuted> v, hn::Vec<DPermuted> places) {
  return hn::TableLookupBytes(v, places);
}
#endif
constexpr ptrdiff_t kPermutedBytes = static_cast<ptrdiff_t>(hn::MaxLanes(DPermuted()));

// Where the bytes of as many whole pixels as fit come from, and which are white.
template <PixelMove kMove>
struct MovePlaces {
  static constexpr ptrdiff_t kPixels =
      kPermutedBytes / (kMove.srcBytes > kMove.dstBytes ? kMove.srcBytes : kMove.dstBytes);

  alignas(64) uint8_t from[kPermutedBytes] = {};
  alignas(64) uint8_t white[kPermutedBytes] = {};

  constexpr MovePlaces() {
    for (ptrdiff_t t = 0; t < kPixels * kMove.dstBytes; ++t) {
      const int8_t place = kMove.place[t % kMove.dstBytes];
      const bool isOpaque = place == PixelMove::kOpaque;
      white[t] = isOpaque ? 255 : 0;
      from[t] = static_cast<uint8_t>(isOpaque ? 0 : t / kMove.dstBytes * kMove.srcBytes + place);
    }
  }
};

template <PixelMove kMove>
constexpr MovePlaces<kMove> kMovePlaces;

#if HWY_TARGET == HWY_AVX3_DL

HWY_INLINE uint64_t firstBytes(ptrdiff_t count) {
  return count >= 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1;
}

template <PixelMove kMove>
HWY_INLINE ptrdiff_t moveRest(const uint8_t* src, uint8_t* dst, ptrdiff_t start, ptrdiff_t pixels,
                              V8 places, V8 white) {
  ptrdiff_t i = start;
  for (; i < pixels; i += MovePlaces<kMove>::kPixels) {
    const ptrdiff_t count = std::min(pixels - i, MovePlaces<kMove>::kPixels);
    const V8 bytes{
        _mm512_maskz_loadu_epi8(firstBytes(count * kMove.srcBytes), src + i * kMove.srcBytes)};
    _mm512_mask_storeu_epi8(dst + i * kMove.dstBytes, firstBytes(count * kMove.dstBytes),
                            hn::Or(permuted(bytes, places), white).raw);
  }
  return pixels;
}

#else

template <PixelMove kMove, class V>
HWY_INLINE ptrdiff_t moveRest(const uint8_t*, uint8_t*, ptrdiff_t start, ptrdiff_t, V, V) {
  return start;
}

#endif  // HWY_TARGET

// Stores whole vectors; what they have behind their pixels the next one overwrites. Returns the
// pixels done.
template <PixelMove kMove>
HWY_INLINE ptrdiff_t moveVectors(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  constexpr ptrdiff_t kSmaller = std::min(kMove.srcBytes, kMove.dstBytes);
  const DPermuted d;
  const auto places = hn::Load(d, kMovePlaces<kMove>.from);
  const auto white = hn::Load(d, kMovePlaces<kMove>.white);
  ptrdiff_t i = 0;
  for (; (pixels - i) * kSmaller >= kPermutedBytes; i += MovePlaces<kMove>::kPixels) {
    const auto bytes = permuted(hn::LoadU(d, src + i * kMove.srcBytes), places);
    hn::StoreU(hn::Or(bytes, white), d, dst + i * kMove.dstBytes);
  }
  return moveRest<kMove>(src, dst, i, pixels, places, white);
}

template <PixelMove kMove, void (*kPlain)(const uint8_t*, uint8_t*, ptrdiff_t)>
HWY_INLINE void movePixels(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  const ptrdiff_t i = moveVectors<kMove>(src, dst, pixels);
  kPlain(src + i * kMove.srcBytes, dst + i * kMove.dstBytes, pixels - i);
}

void swapRgb24(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kSwapRgb24, plain::swapRgb24>(src, dst, pixels);
}

void bgr24OfRgba32(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kBgr24OfRgba32, plain::bgr24OfRgba32>(src, dst, pixels);
}

void argb32OfRgb24(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kArgb32OfRgb24, plain::argb32OfRgb24>(src, dst, pixels);
}

void argb32OfBgr24(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  movePixels<kArgb32OfBgr24, plain::argb32OfBgr24>(src, dst, pixels);
}

HWY_INLINE V16 word565(V16 low, V16 middle, V16 high) {
  const V16 green = hn::ShiftLeft<5>(hn::ShiftRight<2>(middle));
  return hn::Or(hn::Or(hn::ShiftRight<3>(low), green), hn::ShiftLeft<11>(hn::ShiftRight<3>(high)));
}

void pack565(const uint8_t* src, bool swapped, uint8_t* dst, ptrdiff_t pixels) {
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    const Bytes3 c = loadChannels<3>(src + 3 * i);
    const Halves low = widen(swapped ? c.c : c.a), middle = widen(c.b),
                 high = widen(swapped ? c.a : c.c);
    const V16 even = word565(low.even, middle.even, high.even);
    const V16 odd = word565(low.odd, middle.odd, high.odd);
    storeBlocks(hn::BitCast(D8(), hn::InterleaveLower(D16(), even, odd)),
                hn::BitCast(D8(), hn::InterleaveUpper(D16(), even, odd)), dst + 2 * i);
  };
  if (!overlappingSteps(byteLanes(), pixels, step)) plain::pack565(src, swapped, dst, pixels);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
