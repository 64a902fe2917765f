// Layers laid on planar bytes: the blends, and their mix by mask and opacity in single precision.
// Included once per target.
#if defined(QPX_SIMD_BLEND_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_BLEND_INL_H_
#undef QPX_SIMD_BLEND_INL_H_
#else
#define QPX_SIMD_BLEND_INL_H_
#endif

#include <hwy/highway.h>

#include <cstring>

#include "simd/blend_rows.h"
#include "simd/byte_vectors-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D32 = hn::Repartition<int32_t, D8>;
using DF = hn::Repartition<float, D8>;
using V32 = hn::Vec<D32>;
using VF = hn::Vec<DF>;

// Bytes as four vectors of floats, byte k of each 32-bit lane in vector k: no lane is crossed.
struct Floats {
  VF q0, q1, q2, q3;
};

HWY_INLINE Floats toFloats(V8 v) {
  const hn::RebindToUnsigned<D32> du;
  const auto words = hn::BitCast(du, v);
  const auto low = hn::Set(du, 0xFF);
  const auto convert = [](auto lanes)
                           HWY_ATTR { return hn::ConvertTo(DF(), hn::BitCast(D32(), lanes)); };
  return {convert(hn::And(words, low)), convert(hn::And(hn::ShiftRight<8>(words), low)),
          convert(hn::And(hn::ShiftRight<16>(words), low)), convert(hn::ShiftRight<24>(words))};
}

// Lanes are 0..255.
HWY_INLINE V8 gatherBytes(V32 q0, V32 q1, V32 q2, V32 q3) {
  return hn::BitCast(D8(), hn::Or(hn::Or(q0, hn::ShiftLeft<8>(q1)),
                                  hn::Or(hn::ShiftLeft<16>(q2), hn::ShiftLeft<24>(q3))));
}

// Lanes are at least 0 and below 256.
HWY_INLINE V32 cut(VF v) { return hn::ConvertTo(D32(), v); }

// roundHalfDown of lanes in the same range, step by step.
HWY_INLINE V32 roundDown(VF v) {
  const DF d;
  const VF fraction = hn::Sub(v, hn::ConvertTo(d, cut(v)));
  const auto rises = hn::Gt(fraction, hn::Set(d, 0.5f));
  return cut(hn::Add(v, hn::IfThenElseZero(rises, hn::Set(d, 1.0f))));
}

// As mapRow, but a row shorter than a vector is worked in one that is filled up with zeros.
template <class Op, class... Inputs>
HWY_INLINE void mapRowPadded(const Op& op, uint8_t* dst, ptrdiff_t count, Inputs... inputs) {
  if (count <= 0 || mapRow(op, dst, count, inputs...)) return;
  const D8 d;
  const auto load = [d, count](const uint8_t* from) HWY_ATTR {
    HWY_ALIGN uint8_t padded[HWY_MAX_BYTES] = {};
    std::memcpy(padded, from, static_cast<size_t>(count));
    return hn::Load(d, padded);
  };
  HWY_ALIGN uint8_t result[HWY_MAX_BYTES];
  hn::Store(op(load(inputs)...), d, result);
  std::memcpy(dst, result, static_cast<size_t>(count));
}

// The blends of two samples: operator()(base, top).

class NormalBlend {
 public:
  HWY_INLINE V8 operator()(V8, V8 top) const { return top; }
};

class ScreenBlend {
 public:
  HWY_INLINE V8 operator()(V8 base, V8 top) const {
    const Halves b = widen(hn::Not(base)), t = widen(hn::Not(top));
    return hn::Not(narrow(
        {hn::ShiftRight<8>(hn::Mul(b.even, t.even)), hn::ShiftRight<8>(hn::Mul(b.odd, t.odd))}));
  }
};

// The upper branch is the lower one of complements, complemented.
class OverlayBlend {
 public:
  HWY_INLINE V8 operator()(V8 base, V8 top) const {
    const hn::RebindToSigned<D8> ds;
    const V8 upper =
        hn::BitCast(D8(), hn::VecFromMask(ds, hn::Lt(hn::BitCast(ds, base), hn::Zero(ds))));
    const Halves b = widen(hn::Xor(base, upper)), t = widen(hn::Xor(top, upper));
    return hn::Xor(narrow({half(b.even, t.even), half(b.odd, t.odd)}), upper);
  }

 private:
  // 32897 / 2^23 is 1/255 and so little more that every quotient of 16 bits is right.
  HWY_INLINE static V16 half(V16 b, V16 t) {
    return hn::ShiftRight<7>(hn::MulHigh(hn::Mul(hn::Add(b, b), t), word(32897)));
  }
};

// blendSoft without division and in single precision: with n = 2 * top - 255, it is b + n * f cut,
// where f is b * (255 - b) / 255^2 below a top of 129 and (sqrt(255 * b) - b) / 255 from there on.
// All 65,536 pairs were compared to find the second quotient's constant, a little below 1/255, and
// the two pairs for which the definition falls short of a whole number.
class SoftBlend {
 public:
  HWY_INLINE V8 operator()(V8 base, V8 top) const {
    const Floats b = toFloats(base), t = toFloats(top);
    const V8 result = gatherBytes(quarter(b.q0, t.q0), quarter(b.q1, t.q1), quarter(b.q2, t.q2),
                                  quarter(b.q3, t.q3));
    const D8 d;
    const auto either = hn::Or(hn::Eq(base, hn::Set(d, 34)), hn::Eq(base, hn::Set(d, 68)));
    const auto falls = hn::And(hn::Eq(top, hn::Set(d, 15)), either);
    return hn::Add(result, hn::VecFromMask(d, falls));
  }

 private:
  HWY_INLINE static V32 quarter(VF b, VF t) {
    const DF d;
    const VF white = hn::Set(d, 255.0f);
    const VF n = hn::Sub(hn::Add(t, t), white);
    const VF square = hn::Mul(hn::Mul(b, hn::Sub(white, b)), hn::Set(d, 1.0f / 65025.0f));
    const VF root = hn::Mul(hn::Sub(hn::Sqrt(hn::Mul(white, b)), b),
                            hn::Set(d, 1.0f / 255.0f - 20.0f / 2147483648.0f));
    const VF f = hn::IfThenElse(hn::Lt(n, hn::Set(d, 2.0f)), square, root);
    return cut(hn::Add(b, hn::Mul(n, f)));
  }
};

// What is mixed with the base, as floats: a blended byte, or a product that was not rounded yet.
template <class Blend>
class Rounded {
 public:
  HWY_INLINE Floats operator()(V8 base, V8 top, const Floats&) const {
    return toFloats(Blend()(base, top));
  }
};

class Product {
 public:
  HWY_INLINE Floats operator()(V8, V8 top, const Floats& b) const {
    const Floats t = toFloats(top);
    return {quarter(b.q0, t.q0), quarter(b.q1, t.q1), quarter(b.q2, t.q2), quarter(b.q3, t.q3)};
  }

 private:
  HWY_INLINE static VF quarter(VF b, VF t) { return hn::Div(hn::Mul(t, b), hn::Set(DF(), 255.0f)); }
};

// At full mask both mixes are base * (1 - opacity) + opacity * top: (1 - m) * base is 0 there.
template <class Top>
class LayOpaque {
 public:
  explicit LayOpaque(float opacity)
      : opacity_(hn::Set(DF(), opacity)), rest_(hn::Set(DF(), 1.0f - opacity)) {}

  HWY_INLINE V8 operator()(V8 base, V8 top) const {
    const Floats b = toFloats(base), x = Top()(base, top, b);
    return gatherBytes(quarter(b.q0, x.q0), quarter(b.q1, x.q1), quarter(b.q2, x.q2),
                       quarter(b.q3, x.q3));
  }

 private:
  HWY_INLINE V32 quarter(VF b, VF x) const {
    return roundDown(hn::Add(hn::Mul(b, rest_), hn::Mul(opacity_, x)));
  }

  VF opacity_, rest_;
};

// The two addends in the brackets may change places, which changes no sum.
template <class Top>
class LayMasked {
 public:
  explicit LayMasked(float opacity)
      : opacity_(hn::Set(DF(), opacity)), rest_(hn::Set(DF(), 1.0f - opacity)) {}

  HWY_INLINE V8 operator()(V8 base, V8 top, V8 mask) const {
    const Floats b = toFloats(base), x = Top()(base, top, b), m = toFloats(mask);
    return gatherBytes(quarter(b.q0, x.q0, m.q0), quarter(b.q1, x.q1, m.q1),
                       quarter(b.q2, x.q2, m.q2), quarter(b.q3, x.q3, m.q3));
  }

 private:
  HWY_INLINE V32 quarter(VF b, VF x, VF mask) const {
    const DF d;
    const VF m = hn::Div(mask, hn::Set(d, 255.0f));
    const VF mixed = hn::Add(hn::Mul(hn::Sub(hn::Set(d, 1.0f), m), b), hn::Mul(x, m));
    return roundDown(hn::Add(hn::Mul(b, rest_), hn::Mul(opacity_, mixed)));
  }

  VF opacity_, rest_;
};

// Outside 0..1 sums leave the range that the rounding above is for.
HWY_INLINE bool usual(float opacity) { return opacity >= 0.0f && opacity <= 1.0f; }

#if HWY_ARCH_ARM_V7
// Division and square root are estimates there.
constexpr bool kDivides = false;
#else
constexpr bool kDivides = true;
#endif

template <class Blend>
HWY_INLINE void layRounded(const uint8_t* base, const uint8_t* top, const uint8_t* mask,
                           uint8_t* dst, ptrdiff_t count, float opacity, BlendRows::Lay plainForm) {
  if (!usual(opacity) || (mask != nullptr && !kDivides)) {
    return plainForm(base, top, mask, dst, count, opacity);
  }
  if (mask != nullptr) {
    mapRowPadded(LayMasked<Rounded<Blend>>(opacity), dst, count, base, top, mask);
  } else if (opacity == 1.0f) {
    mapRowPadded(Blend(), dst, count, base, top);
  } else {
    mapRowPadded(LayOpaque<Rounded<Blend>>(opacity), dst, count, base, top);
  }
}

void layNormal(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, float opacity) {
  layRounded<NormalBlend>(base, top, mask, dst, count, opacity, plain::layNormal);
}

void layScreen(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, float opacity) {
  layRounded<ScreenBlend>(base, top, mask, dst, count, opacity, plain::layScreen);
}

void layOverlay(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                ptrdiff_t count, float opacity) {
  layRounded<OverlayBlend>(base, top, mask, dst, count, opacity, plain::layOverlay);
}

#if HWY_ARCH_ARM_V7
using plain::layMultiply;
using plain::laySoft;
#else
void laySoft(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
             ptrdiff_t count, float opacity) {
  layRounded<SoftBlend>(base, top, mask, dst, count, opacity, plain::laySoft);
}

void layMultiply(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                 ptrdiff_t count, float opacity) {
  if (!usual(opacity)) return plain::layMultiply(base, top, mask, dst, count, opacity);
  if (mask == nullptr) {
    mapRowPadded(LayOpaque<Product>(opacity), dst, count, base, top);
  } else {
    mapRowPadded(LayMasked<Product>(opacity), dst, count, base, top, mask);
  }
}
#endif

class MultiplyShift {
 public:
  HWY_INLINE V8 operator()(V8 a, V8 b) const {
    const Halves x = widen(a), y = widen(b);
    return narrow(
        {hn::ShiftRight<8>(hn::Mul(x.even, y.even)), hn::ShiftRight<8>(hn::Mul(x.odd, y.odd))});
  }
};

class Larger {
 public:
  HWY_INLINE V8 operator()(V8 a, V8 b) const { return hn::Max(a, b); }
};

class Smaller {
 public:
  HWY_INLINE V8 operator()(V8 a, V8 b) const { return hn::Min(a, b); }
};

void multiplyShift(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  mapRowPadded(MultiplyShift(), dst, count, a, b);
}

void lighten(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  mapRowPadded(Larger(), dst, count, a, b);
}

void darken(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  mapRowPadded(Smaller(), dst, count, a, b);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
