// Rows from RGB to YUV where products of neighbouring bytes can be summed: a pixel of four bytes
// becomes luma as it lies, and red and blue stay side by side as V and U. Included once per target.
#if defined(QPX_SIMD_YUV_QUADS_X86_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_QUADS_X86_INL_H_
#undef QPX_SIMD_YUV_QUADS_X86_INL_H_
#else
#define QPX_SIMD_YUV_QUADS_X86_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_rows.h"
#include "simd/yuv_store-inl.h"

#if HWY_TARGET == HWY_AVX3_DL

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

// Sixteen pixels in 32-bit lanes: their bytes 0, 1 and 2, and one without meaning.
using Quads = __m512i;

HWY_INLINE Quads everyQuad(uint32_t value) {
  return _mm512_set1_epi32(static_cast<int32_t>(value));
}

// Bytes or words 0, 1 (in the upper half: 2) of a quad, for pixels whose first byte is red or blue.
HWY_INLINE Quads firstAndThird(bool blueIsFirst, int32_t red, int32_t blue) {
  const auto low = static_cast<uint32_t>(blueIsFirst ? blue : red);
  const auto high = static_cast<uint32_t>(blueIsFirst ? red : blue);
  return everyQuad(low | high << 16);
}

// A vector's pixels, 64 of them.
template <ptrdiff_t kBytes>
class LoadQuads;

template <>
class LoadQuads<4> {
 public:
  HWY_INLINE LoadQuads() = default;
  HWY_INLINE Quads at(const uint8_t* src, int index) const {
    return _mm512_loadu_si512(src + 64 * index);
  }
};

// Vectors of 48 bytes; the last one is read by its end, behind which there may be nothing.
template <>
class LoadQuads<3> {
 public:
  HWY_INLINE LoadQuads() {
    HWY_ALIGN uint8_t places[64];
    for (uint32_t i = 0; i < 64; ++i) places[i] = static_cast<uint8_t>(i / 4 * 3 + i % 4);
    start_ = _mm512_load_si512(places);
    end_ = _mm512_add_epi8(start_, _mm512_set1_epi8(16));
  }
  HWY_INLINE Quads at(const uint8_t* src, int index) const {
    const bool last = index == 3;
    const __m512i bytes = _mm512_loadu_si512(src + (last ? 128 : 48 * index));
    return _mm512_permutexvar_epi8(last ? end_ : start_, bytes);
  }

 private:
  __m512i start_, end_;
};

HWY_INLINE Quads redAndBlue(Quads pixels) {
  return _mm512_and_si512(pixels, everyQuad(0x00FF00FF));
}

// Both words of each quad are its low one.
HWY_INLINE Quads twice(Quads words) { return _mm512_or_si512(words, _mm512_slli_epi32(words, 16)); }

// Chroma words are 128 below what they stand for and may leave the range of a byte.
template <bool kBlueFirst>
class UsualQuads {
 public:
  explicit HWY_INLINE UsualQuads(ChromaWeights weights)
      : luma_(everyQuad(kBlueFirst ? 7 | 38 << 8 | 19 << 16 : 19 | 38 << 8 | 7 << 16)),
        chroma_(firstAndThird(kBlueFirst, weights.v, weights.u)) {}

  HWY_INLINE Quads luma(Quads pixels) const {
    const __m512i halves = _mm512_maddubs_epi16(pixels, luma_);
    return _mm512_srli_epi32(_mm512_madd_epi16(halves, _mm512_set1_epi16(1)), 6);
  }
  HWY_INLINE Quads chroma(Quads pixels) const {
    const __m512i difference = _mm512_sub_epi16(redAndBlue(pixels), twice(luma(pixels)));
    return _mm512_srai_epi16(_mm512_mullo_epi16(difference, chroma_), 7);
  }

 private:
  Quads luma_, chroma_;
};

// Of pixels whose first byte is red.
class FineQuads {
 public:
  HWY_INLINE FineQuads()
      : redBlue_(firstAndThird(false, 9798, 3736)),
        green_(everyQuad(19235)),
        chroma_(firstAndThird(false, 23372, 18492)) {}

  HWY_INLINE Quads luma(Quads pixels) const {
    return _mm512_srli_epi32(sum(pixels, redAndBlue(pixels)), 15);
  }
  HWY_INLINE Quads chroma(Quads pixels) const {
    const __m512i channels = redAndBlue(pixels);
    const __m512i shifted = twice(_mm512_srli_epi32(sum(pixels, channels), 8));
    const __m512i difference = _mm512_sub_epi16(_mm512_slli_epi16(channels, 7), shifted);
    return _mm512_srai_epi16(_mm512_mulhi_epi16(difference, chroma_), 6);
  }

 private:
  HWY_INLINE __m512i sum(Quads pixels, __m512i channels) const {
    const __m512i green = _mm512_madd_epi16(_mm512_srli_epi16(pixels, 8), green_);
    return _mm512_add_epi32(green, _mm512_madd_epi16(channels, redBlue_));
  }

  Quads redBlue_, green_, chroma_;
};

// Packing leaves groups of four bytes by block; they belong by vector.
class GatheredGroups {
 public:
  HWY_INLINE GatheredGroups()
      : places_(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15)) {}
  HWY_INLINE V8 operator()(__m512i packed) const {
    return V8{_mm512_permutexvar_epi32(places_, packed)};
  }

 private:
  __m512i places_;
};

HWY_INLINE __m512i evenQuads(Quads a, Quads b) {
  return _mm512_castps_si512(
      _mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), 0x88));
}

struct QuadRow {
  Quads pixels[4];
  GatheredGroups gathered;

  template <class Math>
  HWY_INLINE V8 luma(const Math& math) const {
    const __m512i first = _mm512_packs_epi32(math.luma(pixels[0]), math.luma(pixels[1]));
    const __m512i second = _mm512_packs_epi32(math.luma(pixels[2]), math.luma(pixels[3]));
    return gathered(_mm512_packus_epi16(first, second));
  }
  // Pairs in the order of red and blue.
  template <class Math>
  HWY_INLINE V8 chroma(const Math& math) const {
    const __m512i first = math.chroma(evenQuads(pixels[0], pixels[1]));
    const __m512i second = math.chroma(evenQuads(pixels[2], pixels[3]));
    const __m512i packed = _mm512_packs_epi16(first, second);
    return gathered(_mm512_xor_si512(packed, _mm512_set1_epi8(-128)));
  }
};

template <ptrdiff_t kBytes>
HWY_INLINE QuadRow loadRow(const LoadQuads<kBytes>& load, const uint8_t* src) {
  return {{load.at(src, 0), load.at(src, 1), load.at(src, 2), load.at(src, 3)}, {}};
}

template <ptrdiff_t kBytes, class Store, class Math>
HWY_INLINE bool packQuads(const uint8_t* src, const Math& math, bool blueIsFirst,
                          const YuvTarget& dst, ptrdiff_t pairs) {
  const LoadQuads<kBytes> load;
  return overlappingSteps(
      byteLanes() / 2, pairs, [&](ptrdiff_t i) HWY_ATTR __attribute__((always_inline)) {
        const QuadRow row = loadRow(load, src + 2 * i * kBytes);
        Store::bytesAt(dst, i, row.luma(math), row.chroma(math), blueIsFirst);
      });
}

template <ptrdiff_t kBytes, class Math>
HWY_INLINE bool lumaOfQuads(const uint8_t* src, const Math& math, uint8_t* dst, ptrdiff_t pixels) {
  const LoadQuads<kBytes> load;
  return overlappingSteps(byteLanes(), pixels, [&](ptrdiff_t i) HWY_ATTR {
    storeBytes(loadRow(load, src + i * kBytes).luma(math), dst + i);
  });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
