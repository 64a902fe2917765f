// Vectors into rows of YUV, by the shape of the row. Included once per target.
#if defined(QPX_SIMD_YUV_STORE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_STORE_INL_H_
#undef QPX_SIMD_YUV_STORE_INL_H_
#else
#define QPX_SIMD_YUV_STORE_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_load-inl.h"
#include "simd/yuv_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Words of 0..255 as half a vector of bytes.
HWY_INLINE void storeWords(V16 v, uint8_t* to) {
  const DHalf8 d;
  hn::StoreU(hn::DemoteTo(d, hn::BitCast(DS(), v)), d, to);
}

// Two vectors whose blocks belong in turn.
#if HWY_MAX_BYTES == 64
HWY_INLINE void storeBlocks(V8 even, V8 odd, uint8_t* to) {
  const __m512i first = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
  const __m512i second = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
  _mm512_storeu_si512(to, _mm512_permutex2var_epi64(even.raw, first, odd.raw));
  _mm512_storeu_si512(to + 64, _mm512_permutex2var_epi64(even.raw, second, odd.raw));
}
#elif HWY_MAX_BYTES == 32
HWY_INLINE void storeBlocks(V8 even, V8 odd, uint8_t* to) {
  storeBytes(hn::ConcatLowerLower(D8(), odd, even), to);
  storeBytes(hn::ConcatUpperUpper(D8(), odd, even), to + 32);
}
#else
HWY_INLINE void storeBlocks(V8 even, V8 odd, uint8_t* to) {
  storeBytes(even, to);
  storeBytes(odd, to + 16);
}
#endif

struct StorePlanes {
  static HWY_INLINE void at(const YuvTarget& dst, ptrdiff_t i, const YuvWords& words) {
    storeBytes(narrow(words.luma), dst.y + 2 * i);
    storeWords(words.u, dst.u + i);
    storeWords(words.v, dst.v + i);
  }
  static HWY_INLINE void bytesAt(const YuvTarget& dst, ptrdiff_t i, V8 luma, V8 pairs,
                                 bool uFirst) {
    const Halves chroma = widen(pairs);
    storeBytes(luma, dst.y + 2 * i);
    storeWords(chroma.even, (uFirst ? dst.u : dst.v) + i);
    storeWords(chroma.odd, (uFirst ? dst.v : dst.u) + i);
  }
};

HWY_INLINE V8 swappedPairs(V8 pairs) {
  const Halves halves = widen(pairs);
  return narrow({halves.odd, halves.even});
}

template <bool kUFirst>
struct StorePairs {
  static HWY_INLINE void at(const YuvTarget& dst, ptrdiff_t i, const YuvWords& words) {
    storeBytes(narrow(words.luma), dst.y + 2 * i);
    storeBytes(kUFirst ? narrow({words.u, words.v}) : narrow({words.v, words.u}),
               (kUFirst ? dst.u : dst.v) + 2 * i);
  }
  static HWY_INLINE void bytesAt(const YuvTarget& dst, ptrdiff_t i, V8 luma, V8 pairs,
                                 bool uFirst) {
    storeBytes(luma, dst.y + 2 * i);
    storeBytes(uFirst == kUFirst ? pairs : swappedPairs(pairs), (kUFirst ? dst.u : dst.v) + 2 * i);
  }
};

// Luma and chroma as pairs of bytes in turn.
template <bool kLumaFirst, bool kUFirst>
struct StorePacked {
  static HWY_INLINE void at(const YuvTarget& dst, ptrdiff_t i, const YuvWords& words) {
    bytesAt(dst, i, narrow(words.luma), narrow({words.u, words.v}), true);
  }
  static HWY_INLINE void bytesAt(const YuvTarget& dst, ptrdiff_t i, V8 luma, V8 pairs,
                                 bool uFirst) {
    const V8 chroma = uFirst == kUFirst ? pairs : swappedPairs(pairs);
    const V8 first = kLumaFirst ? luma : chroma, second = kLumaFirst ? chroma : luma;
    storeBlocks(hn::InterleaveLower(D8(), first, second), hn::InterleaveUpper(D8(), first, second),
                (kLumaFirst ? dst.y
                 : kUFirst  ? dst.u
                            : dst.v) +
                    4 * i);
  }
};

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
