// Rows from YUV to RGB. Included once per target.
#if defined(QPX_SIMD_YUV_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_INL_H_
#undef QPX_SIMD_YUV_INL_H_
#else
#define QPX_SIMD_YUV_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_pixels-inl.h"
#include "simd/yuv_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

HWY_INLINE VS centred(VS chroma) { return hn::Sub(chroma, signedWord(128)); }

template <int kFactor>
HWY_INLINE VS times(VS v) {
  return hn::Mul(v, signedWord(kFactor));
}

struct CutTerms {
  HWY_INLINE ColorTerms operator()(VS storedU, VS storedV) const {
    const VS u = centred(storedU), v = centred(storedV);
    const VS green = hn::Add(hn::ShiftRight<5>(times<23>(v)), hn::ShiftRight<5>(times<11>(u)));
    return {hn::ShiftRight<5>(times<45>(v)), hn::Sub(hn::Zero(DS()), green),
            hn::ShiftRight<5>(times<57>(u))};
  }
};

// 32 times luma is whole, so that it need not be rounded with the rest.
struct RoundedTerms {
  HWY_INLINE ColorTerms operator()(VS storedU, VS storedV) const {
    const VS u = centred(storedU), v = centred(storedV), half = signedWord(16);
    const VS green = hn::Sub(half, hn::Add(times<23>(v), times<11>(u)));
    return {hn::ShiftRight<5>(hn::Add(times<45>(v), half)), hn::ShiftRight<5>(green),
            hn::ShiftRight<5>(hn::Add(times<57>(u), half))};
  }
};

void toPixels(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
              ptrdiff_t pairs) {
  if (!convertRow(CutTerms(), src, order, alpha, dst, pairs)) {
    plain::toPixels(src, order, alpha, dst, pairs);
  }
}

void toPixelsRounded(const YuvSource& src, PixelOrder order, uint8_t alpha, uint8_t* dst,
                     ptrdiff_t pairs) {
  if (!convertRow(RoundedTerms(), src, order, alpha, dst, pairs)) {
    plain::toPixelsRounded(src, order, alpha, dst, pairs);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
