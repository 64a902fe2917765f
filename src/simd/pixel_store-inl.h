// Channels out of words, and pixels out of channels. Included once per target.
#if defined(QPX_SIMD_PIXEL_STORE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_PIXEL_STORE_INL_H_
#undef QPX_SIMD_PIXEL_STORE_INL_H_
#else
#define QPX_SIMD_PIXEL_STORE_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using D32 = hn::Repartition<uint32_t, D8>;

#if HWY_ARCH_X86

// Words of even and odd pixels, clamped to bytes: in each block of 16 the even ones, then the odd
// ones.
#if HWY_TARGET <= HWY_AVX3
HWY_INLINE V8 packWords(VS even, VS odd) { return V8{_mm512_packus_epi16(even.raw, odd.raw)}; }
#elif HWY_TARGET == HWY_AVX2
HWY_INLINE V8 packWords(VS even, VS odd) { return V8{_mm256_packus_epi16(even.raw, odd.raw)}; }
#else
HWY_INLINE V8 packWords(VS even, VS odd) { return V8{_mm_packus_epi16(even.raw, odd.raw)}; }
#endif

// Packed bytes in the order of pixels.
HWY_INLINE V8 unpacked(V8 v) {
  alignas(16) static constexpr uint8_t kPlaces[16] = {0, 8,  1, 9,  2, 10, 3, 11,
                                                      4, 12, 5, 13, 6, 14, 7, 15};
  return hn::TableLookupBytes(v, hn::LoadDup128(D8(), kPlaces));
}

// Blocks of 16 pixels come out of the interleaving below as four vectors of four pixels of each
// block. So that these are neighbours, groups of four are dealt out to the blocks beforehand.
class DealtGroups {
 public:
  HWY_INLINE DealtGroups() : places_(places()) {}

  template <class V>
  HWY_INLINE V placed(V v) const {
    if constexpr (kBlocks == 1) return v;
    const D32 d;
    return hn::BitCast(hn::DFromV<V>(), hn::TableLookupLanes(hn::BitCast(d, v), places_));
  }

 private:
  static constexpr size_t kBlocks = HWY_MAX_BYTES / 16;

  using Places = decltype(hn::IndicesFromVec(D32(), hn::Zero(D32())));
  static HWY_INLINE Places places() {
    HWY_ALIGN uint32_t groups[HWY_MAX_BYTES / 4];
    for (uint32_t i = 0; i < 4 * kBlocks; ++i) groups[i] = i % 4 * kBlocks + i / 4;
    return hn::SetTableIndices(D32(), groups);
  }

  Places places_;
};

HWY_INLINE void storeQuads(V8 c0, V8 c1, V8 c2, V8 c3, uint8_t* dst) {
  const D16 d16;
  const D32 d32;
  const auto e01 = hn::BitCast(d16, hn::InterleaveLower(D8(), c0, c1));
  const auto e23 = hn::BitCast(d16, hn::InterleaveLower(D8(), c2, c3));
  const auto o01 = hn::BitCast(d16, hn::InterleaveUpper(D8(), c0, c1));
  const auto o23 = hn::BitCast(d16, hn::InterleaveUpper(D8(), c2, c3));
  const auto e0 = hn::BitCast(d32, hn::InterleaveLower(d16, e01, e23));
  const auto e1 = hn::BitCast(d32, hn::InterleaveUpper(d16, e01, e23));
  const auto o0 = hn::BitCast(d32, hn::InterleaveLower(d16, o01, o23));
  const auto o1 = hn::BitCast(d32, hn::InterleaveUpper(d16, o01, o23));
  const ptrdiff_t length = byteLanes();
  storeBytes(hn::BitCast(D8(), hn::InterleaveLower(d32, e0, o0)), dst);
  storeBytes(hn::BitCast(D8(), hn::InterleaveUpper(d32, e0, o0)), dst + length);
  storeBytes(hn::BitCast(D8(), hn::InterleaveLower(d32, e1, o1)), dst + 2 * length);
  storeBytes(hn::BitCast(D8(), hn::InterleaveUpper(d32, e1, o1)), dst + 3 * length);
}

#else

HWY_INLINE V8 packWords(VS even, VS odd) { return narrow({clampWord(even), clampWord(odd)}); }
HWY_INLINE V8 unpacked(V8 v) { return v; }

class DealtGroups {
 public:
  template <class V>
  HWY_INLINE V placed(V v) const {
    return v;
  }
};

HWY_INLINE void storeQuads(V8 c0, V8 c1, V8 c2, V8 c3, uint8_t* dst) {
  hn::StoreInterleaved4(c0, c1, c2, c3, D8(), dst);
}

#endif  // HWY_ARCH_X86

struct GroupsInOrder {
  template <class V>
  HWY_INLINE V placed(V v) const {
    return v;
  }
};

template <PixelOrder kOrder, ptrdiff_t kBytes = bytesOf(kOrder)>
class PixelStore;

#if HWY_TARGET == HWY_AVX3_DL

// Byte t of the vectors that 64 pixels make up is channel t % kBytes of pixel t / kBytes. Those of
// the first two channels are looked up in both at once.
template <size_t kBytes>
struct PixelPlaces {
  alignas(64) uint8_t place[kBytes * 64] = {};
  uint64_t fromFirstTwo[kBytes] = {};  // bytes of an output, and those of the third channel
  uint64_t fromThird[kBytes] = {};

  constexpr PixelPlaces() {
    for (size_t t = 0; t < kBytes * 64; ++t) {
      const size_t pixel = t / kBytes, channel = t % kBytes;
      const size_t packed = pixel / 16 * 16 + pixel % 2 * 8 + pixel % 16 / 2;
      place[t] = static_cast<uint8_t>(packed + (channel == 1 ? 64 : 0));
      if (channel < 2) fromFirstTwo[t / 64] |= uint64_t{1} << t % 64;
      if (channel == 2) fromThird[t / 64] |= uint64_t{1} << t % 64;
    }
  }
};
template <size_t kBytes>
alignas(64) constexpr PixelPlaces<kBytes> kPixelPlaces;

// Stores packed channels of pixels that were loaded through `placed`.
template <PixelOrder kOrder, ptrdiff_t kBytes>
class PixelStore : public GroupsInOrder {
 public:
  explicit HWY_INLINE PixelStore(uint8_t alpha)
      : rest_(_mm512_set1_epi32(static_cast<int32_t>(uint32_t{alpha} << 24))) {}
  HWY_INLINE void operator()(V8 r, V8 g, V8 b, uint8_t* dst) const {
    const V8 first = blueFirst(kOrder) ? b : r, third = blueFirst(kOrder) ? r : b;
    store<0>(first, g, third, dst);
    store<1>(first, g, third, dst);
    store<2>(first, g, third, dst);
    if constexpr (kBytes == 4) store<3>(first, g, third, dst);
  }

 private:
  template <size_t kOutput>
  HWY_INLINE void store(V8 c0, V8 c1, V8 c2, uint8_t* dst) const {
    constexpr const PixelPlaces<kBytes>& kPlaces = kPixelPlaces<kBytes>;
    constexpr uint64_t kTwo = kPlaces.fromFirstTwo[kOutput], kThird = kPlaces.fromThird[kOutput];
    const __m512i places = _mm512_load_si512(kPlaces.place + 64 * kOutput);
    const __m512i two = _mm512_maskz_permutex2var_epi8(kTwo, c0.raw, places, c1.raw);
    if constexpr (kBytes == 3) {
      storeBytes(V8{_mm512_mask_permutexvar_epi8(two, kThird, places, c2.raw)}, dst + 64 * kOutput);
    } else {
      const __m512i third = _mm512_maskz_permutexvar_epi8(kThird, places, c2.raw);
      storeBytes(hn::Or(V8{two}, hn::Or(V8{third}, V8{rest_})), dst + 64 * kOutput);
    }
  }

  __m512i rest_;
};

#else

// Stores packed channels of pixels that were loaded through `placed`.
template <PixelOrder kOrder>
class PixelStore<kOrder, 4> : public DealtGroups {
 public:
  explicit HWY_INLINE PixelStore(uint8_t alpha) : alpha_(hn::Set(D8(), alpha)) {}
  HWY_INLINE void operator()(V8 r, V8 g, V8 b, uint8_t* dst) const {
    storeQuads(blueFirst(kOrder) ? b : r, g, blueFirst(kOrder) ? r : b, alpha_, dst);
  }

 private:
  V8 alpha_;
};

template <PixelOrder kOrder>
class PixelStore<kOrder, 3> : public GroupsInOrder {
 public:
  explicit HWY_INLINE PixelStore(uint8_t /*alpha*/) {}
  HWY_INLINE void operator()(V8 r, V8 g, V8 b, uint8_t* dst) const {
    const V8 first = unpacked(blueFirst(kOrder) ? b : r);
    const V8 third = unpacked(blueFirst(kOrder) ? r : b);
    hn::StoreInterleaved3(first, unpacked(g), third, D8(), dst);
  }
};

#endif  // HWY_TARGET

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
