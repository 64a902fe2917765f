// Luma and chroma out of pixels by the weights that conversion tables hold. Included once per
// target.
//
// Weights have 16 fractional bits, of which a sample keeps none. They are cut into bytes: a sum
// without its low eight bits is that of the high bytes and of what the low ones carry.
#if defined(QPX_SIMD_CONVERT_WEIGH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CONVERT_WEIGH_INL_H_
#undef QPX_SIMD_CONVERT_WEIGH_INL_H_
#else
#define QPX_SIMD_CONVERT_WEIGH_INL_H_
#endif

#include <hwy/highway.h>

#include <cstdlib>
#include <cstring>

#include "simd/byte_vectors-inl.h"
#include "simd/convert_rows.h"
#include "simd/convert_weigh_x86-inl.h"
#include "simd/yuv_store-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3_DL

HWY_INLINE bool fit(const int32_t*) { return true; }

#else

// Low bytes are signed. Their sum is moved up by whole 256s, so that it never is negative.
struct LowBytes {
  int32_t lift = 0;
  int32_t most = 0;

  explicit LowBytes(const int32_t* weights) {
    for (int32_t c = 0; c < 3; ++c) {
      const auto low = static_cast<int8_t>(weights[c]);
      (low < 0 ? lift : most) += 255 * std::abs(low);
    }
    lift = (lift + 255) / 256;
  }
};

// Whether the sum of the low bytes stays within 16 bits.
HWY_INLINE bool fit(const int32_t* weights) {
  const LowBytes low(weights);
  return low.most + 256 * low.lift < 65536;
}

class WordWeights {
 public:
  explicit HWY_INLINE WordWeights(const int32_t* weights) {
    const LowBytes bytes(weights);
    for (int32_t c = 0; c < 3; ++c) {
      const auto low = static_cast<int8_t>(weights[c]);
      low_[c] = word(low);
      high_[c] = word((weights[c] - low) >> 8);
    }
    lift_ = word(256 * bytes.lift);
    base_ = word((weights[3] >> 8) - bytes.lift);
  }

  // Bytes in words.
  HWY_INLINE V16 operator()(V16 c0, V16 c1, V16 c2) const {
    const V16 low = sum(c0, c1, c2, low_, lift_), high = sum(c0, c1, c2, high_, base_);
    return hn::ShiftRight<8>(hn::Add(high, hn::ShiftRight<8>(low)));
  }

 private:
  static HWY_INLINE V16 sum(V16 c0, V16 c1, V16 c2, const V16 (&weights)[3], V16 start) {
    const V16 first = hn::Add(hn::Mul(c0, weights[0]), hn::Mul(c1, weights[1]));
    return hn::Add(first, hn::Add(hn::Mul(c2, weights[2]), start));
  }

  V16 low_[3], high_[3];
  V16 lift_, base_;
};

HWY_INLINE V16 evenSamples(const WordWeights& weigh, const Bytes3& c) {
  return weigh(widen(c.a).even, widen(c.b).even, widen(c.c).even);
}
HWY_INLINE V16 oddSamples(const WordWeights& weigh, const Bytes3& c) {
  return weigh(widen(c.a).odd, widen(c.b).odd, widen(c.c).odd);
}

// A vector of luma.
template <ptrdiff_t kBytes>
class LumaVector {
 public:
  explicit HWY_INLINE LumaVector(const int32_t* weights) : weigh_(weights) {}
  HWY_INLINE void at(const uint8_t* src, uint8_t* dst) const {
    const Bytes3 channels = loadChannels<kBytes>(src);
    storeBytes(narrow({evenSamples(weigh_, channels), oddSamples(weigh_, channels)}), dst);
  }

 private:
  WordWeights weigh_;
};

// Chroma of a vector of pixels.
template <ptrdiff_t kBytes>
class ChromaVector {
 public:
  HWY_INLINE ChromaVector(const RgbToChroma& weights, bool vFirst)
      : first_(vFirst ? weights.v : weights.u), second_(vFirst ? weights.u : weights.v) {}

  HWY_INLINE void full(const uint8_t* src, uint8_t* first, uint8_t* second) const {
    const Bytes3 channels = loadChannels<kBytes>(src);
    storeBytes(narrow({evenSamples(first_, channels), oddSamples(first_, channels)}), first);
    storeBytes(narrow({evenSamples(second_, channels), oddSamples(second_, channels)}), second);
  }
  HWY_INLINE void halved(const uint8_t* src, uint8_t* first, uint8_t* second) const {
    const Bytes3 channels = loadChannels<kBytes>(src);
    storeWords(oddSamples(first_, channels), first);
    storeWords(oddSamples(second_, channels), second);
  }
  HWY_INLINE void pairs(const uint8_t* src, uint8_t* dst) const {
    const Bytes3 channels = loadChannels<kBytes>(src);
    storeBytes(narrow({oddSamples(first_, channels), oddSamples(second_, channels)}), dst);
  }

 private:
  WordWeights first_, second_;
};

#endif  // HWY_TARGET

// Of a vector of pixels at least.
template <ptrdiff_t kBytes>
HWY_INLINE void lumaOf(const uint8_t* src, ptrdiff_t pixels, const int32_t* weights, uint8_t* dst) {
  const LumaVector<kBytes> luma(weights);
  overlappingSteps(byteLanes(), pixels,
                   [&](ptrdiff_t i) HWY_ATTR { luma.at(src + i * kBytes, dst + i); });
}

// Of a vector of pixels at least, and of whole pairs where chroma is halved.
template <ptrdiff_t kBytes>
HWY_INLINE void chromaOf(const uint8_t* src, ptrdiff_t pixels, bool halved,
                         const RgbToChroma& weights, const ChromaTarget& dst) {
  const bool vFirst = dst.v < dst.u;
  const ChromaVector<kBytes> chroma(weights, vFirst);
  uint8_t *const first = vFirst ? dst.v : dst.u, *const second = vFirst ? dst.u : dst.v;
  if (dst.step == 2) {
    overlappingSteps(byteLanes(), pixels,
                     [&](ptrdiff_t i) HWY_ATTR { chroma.pairs(src + i * kBytes, first + i); });
  } else if (halved) {
    overlappingSteps(byteLanes(), pixels, [&](ptrdiff_t i) HWY_ATTR {
      chroma.halved(src + i * kBytes, first + i / 2, second + i / 2);
    });
  } else {
    overlappingSteps(byteLanes(), pixels, [&](ptrdiff_t i) HWY_ATTR {
      chroma.full(src + i * kBytes, first + i, second + i);
    });
  }
}

// Pixels of a row that is shorter than a vector, with room behind them.
template <ptrdiff_t kBytes>
struct PaddedPixels {
  PaddedPixels(const uint8_t* src, ptrdiff_t pixels) {
    memcpy(bytes, src, static_cast<size_t>(pixels * kBytes));
  }
  uint8_t bytes[kBytes * HWY_MAX_BYTES] = {};
};

template <ptrdiff_t kBytes, class Plain>
HWY_INLINE void rgbToLuma(const Plain& plainForm, const uint8_t* src, ptrdiff_t pixels,
                          const int32_t* weights, uint8_t* dst) {
  if (pixels <= 0) return;
  if (!fit(weights)) {
    plainForm(src, pixels, weights, dst);
  } else if (pixels >= byteLanes()) {
    lumaOf<kBytes>(src, pixels, weights, dst);
  } else {
    uint8_t made[HWY_MAX_BYTES];
    lumaOf<kBytes>(PaddedPixels<kBytes>(src, pixels).bytes, byteLanes(), weights, made);
    memcpy(dst, made, static_cast<size_t>(pixels));
  }
}

template <ptrdiff_t kBytes>
HWY_INLINE void shortChroma(const uint8_t* src, ptrdiff_t pixels, bool halved,
                            const RgbToChroma& weights, const ChromaTarget& dst) {
  const PaddedPixels<kBytes> padded(src, pixels);
  const auto samples = static_cast<size_t>(halved ? pixels / 2 : pixels);
  uint8_t made[2 * HWY_MAX_BYTES];
  if (dst.step == 2) {
    const bool vFirst = dst.v < dst.u;
    const ChromaTarget pairs = {made + (vFirst ? 1 : 0), made + (vFirst ? 0 : 1), 2};
    chromaOf<kBytes>(padded.bytes, byteLanes(), halved, weights, pairs);
    memcpy(vFirst ? dst.v : dst.u, made, 2 * samples);
    return;
  }
  const ChromaTarget planes = {made, made + HWY_MAX_BYTES, 1};
  chromaOf<kBytes>(padded.bytes, byteLanes(), halved, weights, planes);
  memcpy(dst.u, planes.u, samples);
  memcpy(dst.v, planes.v, samples);
}

template <ptrdiff_t kBytes, class Plain>
HWY_INLINE void rgbToChroma(const Plain& plainForm, const uint8_t* src, ptrdiff_t pixels,
                            bool halved, const RgbToChroma& weights, const ChromaTarget& dst) {
  ptrdiff_t whole = halved ? pixels & ~ptrdiff_t{1} : pixels;
  if (whole <= 0 || !fit(weights.u) || !fit(weights.v) || (dst.step == 2 && !halved)) {
    whole = 0;
  } else if (whole >= byteLanes()) {
    chromaOf<kBytes>(src, whole, halved, weights, dst);
  } else {
    shortChroma<kBytes>(src, whole, halved, weights, dst);
  }
  const ptrdiff_t done = (halved ? whole / 2 : whole) * dst.step;
  plainForm(src + whole * kBytes, pixels - whole, halved, weights,
            {dst.u + done, dst.v + done, dst.step});
}

void rgb24ToLuma(const uint8_t* src, ptrdiff_t pixels, const int32_t* weights, uint8_t* dst) {
  rgbToLuma<3>(plain::rgb24ToLuma, src, pixels, weights, dst);
}

void rgb32ToLuma(const uint8_t* src, ptrdiff_t pixels, const int32_t* weights, uint8_t* dst) {
  rgbToLuma<4>(plain::rgb32ToLuma, src, pixels, weights, dst);
}

void rgb24ToChroma(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& weights,
                   const ChromaTarget& dst) {
  rgbToChroma<3>(plain::rgb24ToChroma, src, pixels, halved, weights, dst);
}

void rgb32ToChroma(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& weights,
                   const ChromaTarget& dst) {
  rgbToChroma<4>(plain::rgb32ToChroma, src, pixels, halved, weights, dst);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
