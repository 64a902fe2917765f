// Luma and chroma out of pixels where four products of bytes are summed at once: a pixel stays in
// its 32 bits. Included once per target.
#if defined(QPX_SIMD_CONVERT_WEIGH_X86_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CONVERT_WEIGH_X86_INL_H_
#undef QPX_SIMD_CONVERT_WEIGH_X86_INL_H_
#else
#define QPX_SIMD_CONVERT_WEIGH_X86_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/convert_rows.h"
#include "simd/yuv_quads_x86-inl.h"

#if HWY_TARGET == HWY_AVX3_DL

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

// `sum` and the products of the four bytes of each quad with signed ones. Processors of this target
// have the instruction, but the target's attributes leave its intrinsic out.
HWY_INLINE __m512i plusProducts(__m512i sum, Quads bytes, Quads weights) {
  __asm__("vpdpbusd %2, %1, %0" : "+v"(sum) : "v"(bytes), "v"(weights));
  return sum;
}

// Signed bytes have room for half a weight's high byte.
class QuadWeights {
 public:
  explicit HWY_INLINE QuadWeights(const int32_t* weights)
      : base_(_mm512_set1_epi32(weights[3] >> 8)) {
    uint32_t low = 0, high = 0, rest = 0;
    for (int32_t c = 0; c < 3; ++c) {
      const auto lowByte = static_cast<int8_t>(weights[c]);
      const int32_t highByte = (weights[c] - lowByte) >> 8;
      low |= byteAt(c, lowByte);
      high |= byteAt(c, highByte / 2);
      rest |= byteAt(c, highByte - highByte / 2);
    }
    low_ = everyQuad(low);
    high_ = everyQuad(high);
    rest_ = everyQuad(rest);
  }

  // The sample is byte 2 of each sum.
  HWY_INLINE __m512i operator()(Quads pixels) const {
    const __m512i half = plusProducts(base_, pixels, high_);
    const __m512i whole = plusProducts(half, pixels, rest_);
    return plusProducts(_mm512_slli_epi32(whole, 8), pixels, low_);
  }

 private:
  static uint32_t byteAt(int32_t place, int32_t value) {
    return (static_cast<uint32_t>(value) & 0xFF) << 8 * place;
  }

  __m512i base_;
  Quads low_, high_, rest_;
};

struct SamplePlaces {
  alignas(64) uint8_t inOrder[64];  // of two vectors, 32 samples, twice
  alignas(64) uint8_t odd[64];      // the same of two vectors that oddQuads made
  alignas(64) uint8_t pairs[64];    // of one such vector, and as many of another in turn
};

constexpr SamplePlaces samplePlaces() {
  SamplePlaces p = {};
  // Sample k of oddQuads: blocks hold two of the first vector and two of the second.
  const auto oddAt = [](size_t k) { return k % 8 / 2 * 4 + k % 2 + (k / 8 != 0 ? 2 : 0); };
  for (size_t i = 0; i < 64; ++i) {
    p.inOrder[i] = static_cast<uint8_t>(i % 32 * 4 + 2);
    p.odd[i] = static_cast<uint8_t>(i % 32 / 16 * 64 + oddAt(i % 16) * 4 + 2);
    p.pairs[i] = static_cast<uint8_t>(i % 2 * 64 + oddAt(i / 2 % 16) * 4 + 2);
  }
  return p;
}
alignas(64) constexpr SamplePlaces kSamplePlaces = samplePlaces();

// The lower halves of two vectors of bytes.
HWY_INLINE __m512i joined(__m512i low, __m512i high) {
  return _mm512_inserti64x4(low, _mm512_castsi512_si256(high), 1);
}

HWY_INLINE __m512i oddQuads(Quads a, Quads b) {
  return _mm512_castps_si512(
      _mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), 0xDD));
}

// 64 samples.
class InOrder {
 public:
  HWY_INLINE InOrder() : places_(_mm512_load_si512(kSamplePlaces.inOrder)) {}
  HWY_INLINE void store(const QuadWeights& weigh, const Quads (&pixels)[4], uint8_t* dst) const {
    const __m512i low = _mm512_permutex2var_epi8(weigh(pixels[0]), places_, weigh(pixels[1]));
    const __m512i high = _mm512_permutex2var_epi8(weigh(pixels[2]), places_, weigh(pixels[3]));
    _mm512_storeu_si512(dst, joined(low, high));
  }

 private:
  __m512i places_;
};

template <ptrdiff_t kBytes>
class LumaVector {
 public:
  explicit HWY_INLINE LumaVector(const int32_t* weights) : weigh_(weights) {}
  HWY_INLINE void at(const uint8_t* src, uint8_t* dst) const {
    inOrder_.store(weigh_, {load_.at(src, 0), load_.at(src, 1), load_.at(src, 2), load_.at(src, 3)},
                   dst);
  }

 private:
  LoadQuads<kBytes> load_;
  QuadWeights weigh_;
  InOrder inOrder_;
};

template <ptrdiff_t kBytes>
class ChromaVector {
 public:
  HWY_INLINE ChromaVector(const RgbToChroma& weights, bool vFirst)
      : first_(vFirst ? weights.v : weights.u),
        second_(vFirst ? weights.u : weights.v),
        odd_(_mm512_load_si512(kSamplePlaces.odd)),
        pairs_(_mm512_load_si512(kSamplePlaces.pairs)) {}

  HWY_INLINE void full(const uint8_t* src, uint8_t* first, uint8_t* second) const {
    const Quads pixels[4] = {load_.at(src, 0), load_.at(src, 1), load_.at(src, 2),
                             load_.at(src, 3)};
    inOrder_.store(first_, pixels, first);
    inOrder_.store(second_, pixels, second);
  }
  HWY_INLINE void halved(const uint8_t* src, uint8_t* first, uint8_t* second) const {
    const Quads low = oddPixels<0>(src), high = oddPixels<1>(src);
    storePlane(first_(low), first_(high), first);
    storePlane(second_(low), second_(high), second);
  }
  HWY_INLINE void pairs(const uint8_t* src, uint8_t* dst) const {
    const Quads low = oddPixels<0>(src), high = oddPixels<1>(src);
    const __m512i lowPairs = _mm512_permutex2var_epi8(first_(low), pairs_, second_(low));
    const __m512i highPairs = _mm512_permutex2var_epi8(first_(high), pairs_, second_(high));
    _mm512_storeu_si512(dst, joined(lowPairs, highPairs));
  }

 private:
  template <int kHalf>
  HWY_INLINE Quads oddPixels(const uint8_t* src) const {
    return oddQuads(load_.at(src, 2 * kHalf), load_.at(src, 2 * kHalf + 1));
  }
  HWY_INLINE void storePlane(__m512i low, __m512i high, uint8_t* dst) const {
    const __m512i samples = _mm512_permutex2var_epi8(low, odd_, high);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), _mm512_castsi512_si256(samples));
  }

  LoadQuads<kBytes> load_;
  QuadWeights first_, second_;
  InOrder inOrder_;
  __m512i odd_, pairs_;
};

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
