// Look-ups in one table of 256 bytes, a vector at a time, on x86. Included once per target.
#if defined(QPX_SIMD_BYTE_TABLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_BYTE_TABLE_INL_H_
#undef QPX_SIMD_BYTE_TABLE_INL_H_
#else
#define QPX_SIMD_BYTE_TABLE_INL_H_
#endif

#include <hwy/highway.h>

// Only targets on which this beats a load a byte: sixteen shuffles for sixteen bytes (SSE4) or
// eight look-ups for eight (32-bit ARM) do not.
#if HWY_TARGET <= HWY_AVX2 || HWY_ARCH_ARM_A64

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
using ByteVector = hn::Vec<Bytes>;

#if HWY_TARGET == HWY_AVX3_DL

// Two permutes over 128 bytes each take the low seven bits; the top bit chooses between them.
class ByteTable {
 public:
  explicit ByteTable(const uint8_t* table)
      : q0_(_mm512_loadu_si512(table)),
        q1_(_mm512_loadu_si512(table + 64)),
        q2_(_mm512_loadu_si512(table + 128)),
        q3_(_mm512_loadu_si512(table + 192)) {}

  ByteVector operator()(ByteVector v) const {
    const __m512i low = _mm512_permutex2var_epi8(q0_, v.raw, q1_);
    const __m512i high = _mm512_permutex2var_epi8(q2_, v.raw, q3_);
    return ByteVector{_mm512_mask_blend_epi8(_mm512_movepi8_mask(v.raw), low, high)};
  }

 private:
  __m512i q0_, q1_, q2_, q3_;
};

#elif HWY_TARGET == HWY_AVX3

// Permutes over 64 words. Word k holds entries k and k + 128, so that an index needs no masking:
// the permute takes its low six bits, bit 6 chooses the pair of registers and bit 7 the byte of the
// word.
class ByteTable {
 public:
  explicit ByteTable(const uint8_t* table)
      : w0_(pair(table)), w1_(pair(table + 32)), w2_(pair(table + 64)), w3_(pair(table + 96)) {}

  ByteVector operator()(ByteVector v) const {
    constexpr __mmask64 kOdd = 0xAAAAAAAAAAAAAAAAu;
    const __m512i even = words(v.raw);
    const __m512i odd = words(_mm512_srli_epi16(v.raw, 8));
    const __m512i low = _mm512_mask_blend_epi8(kOdd, even, _mm512_slli_epi16(odd, 8));
    const __m512i high = _mm512_mask_blend_epi8(kOdd, _mm512_srli_epi16(even, 8), odd);
    return ByteVector{_mm512_mask_blend_epi8(_mm512_movepi8_mask(v.raw), low, high)};
  }

 private:
  static __m512i widen(const uint8_t* p) {
    return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
  }

  static __m512i pair(const uint8_t* p) {
    return _mm512_or_si512(widen(p), _mm512_slli_epi16(widen(p + 128), 8));
  }

  __m512i words(__m512i index) const {
    const __mmask32 bit6 = _mm512_test_epi16_mask(index, _mm512_set1_epi16(0x40));
    return _mm512_mask_blend_epi16(bit6, _mm512_permutex2var_epi16(w0_, index, w1_),
                                   _mm512_permutex2var_epi16(w2_, index, w3_));
  }

  __m512i w0_, w1_, w2_, w3_;
};

#elif HWY_TARGET == HWY_AVX2

// Sixteen shuffles over 16 bytes each take the low four bits; a tree of blends, each by the sign
// bit of its lanes, takes the upper four.
class ByteTable {
 public:
  explicit ByteTable(const uint8_t* table) {
    for (size_t h = 0; h < 16; ++h) chunks_[h] = hn::LoadDup128(Bytes(), table + 16 * h).raw;
  }

  ByteVector operator()(ByteVector v) const {
    const __m256i index = _mm256_and_si256(v.raw, _mm256_set1_epi8(15));
    const __m256i bit4 = _mm256_slli_epi16(v.raw, 3);
    const __m256i bit5 = _mm256_slli_epi16(v.raw, 2);
    const __m256i bit6 = _mm256_slli_epi16(v.raw, 1);
    __m256i quarters[4];
    for (size_t q = 0; q < 4; ++q) {
      quarters[q] =
          _mm256_blendv_epi8(pair(index, bit4, 4 * q), pair(index, bit4, 4 * q + 2), bit5);
    }
    const __m256i low = _mm256_blendv_epi8(quarters[0], quarters[1], bit6);
    const __m256i high = _mm256_blendv_epi8(quarters[2], quarters[3], bit6);
    return ByteVector{_mm256_blendv_epi8(low, high, v.raw)};
  }

 private:
  HWY_INLINE __m256i pair(__m256i index, __m256i bit4, size_t h) const {
    return _mm256_blendv_epi8(_mm256_shuffle_epi8(chunks_[h], index),
                              _mm256_shuffle_epi8(chunks_[h + 1], index), bit4);
  }

  __m256i chunks_[16];
};

#endif  // HWY_TARGET

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
