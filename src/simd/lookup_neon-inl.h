// Rows through tables of 256 bytes, on 64-bit ARM. Included once per target.
#if defined(QPX_SIMD_LOOKUP_NEON_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_LOOKUP_NEON_INL_H_
#undef QPX_SIMD_LOOKUP_NEON_INL_H_
#else
#define QPX_SIMD_LOOKUP_NEON_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/rows.h"

#if HWY_ARCH_ARM_A64

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

// A look-up covers 64 entries and leaves lanes with an index outside as they are. Going quarter by
// quarter over several vectors keeps the registers to one quarter of a table at a time.
template <int kVectors>
HWY_INLINE void lookupVectors(uint8x16_t (&v)[kVectors], const uint8_t* table) {
  uint8x16_t found[kVectors];
  const uint8x16x4_t first = vld1q_u8_x4(table);
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) found[n] = vqtbl4q_u8(first, v[n]);
#pragma GCC unroll 3
  for (int quarter = 1; quarter < 4; ++quarter) {
    const uint8x16x4_t entries = vld1q_u8_x4(table + 64 * quarter);
#pragma GCC unroll 4
    for (int n = 0; n < kVectors; ++n) {
      v[n] = vsubq_u8(v[n], vdupq_n_u8(64));
      found[n] = vqtbx4q_u8(found[n], entries, v[n]);
    }
  }
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) v[n] = found[n];
}

template <int kVectors>
HWY_INLINE void lookupBlock(const uint8_t* src, uint8_t* dst, const uint8_t* table) {
  uint8x16_t v[kVectors];
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) v[n] = vld1q_u8(src + 16 * n);
  lookupVectors(v, table);
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) vst1q_u8(dst + 16 * n, v[n]);
}

template <int kVectors>
HWY_INLINE void lookupBlock3(const uint8_t* src, uint8_t* dst, const uint8_t* t0, const uint8_t* t1,
                             const uint8_t* t2) {
  uint8x16_t c0[kVectors], c1[kVectors], c2[kVectors];
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) {
    const uint8x16x3_t pixels = vld3q_u8(src + 48 * n);
    c0[n] = pixels.val[0];
    c1[n] = pixels.val[1];
    c2[n] = pixels.val[2];
  }
  lookupVectors(c0, t0);
  lookupVectors(c1, t1);
  lookupVectors(c2, t2);
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) {
    const uint8x16x3_t pixels = {{c0[n], c1[n], c2[n]}};
    vst3q_u8(dst + 48 * n, pixels);
  }
}

template <int kVectors>
HWY_INLINE void lookupBlock4(const uint8_t* src, uint8_t* dst, const uint8_t* t0, const uint8_t* t1,
                             const uint8_t* t2) {
  uint8x16_t c0[kVectors], c1[kVectors], c2[kVectors], c3[kVectors];
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) {
    const uint8x16x4_t pixels = vld4q_u8(src + 64 * n);
    c0[n] = pixels.val[0];
    c1[n] = pixels.val[1];
    c2[n] = pixels.val[2];
    c3[n] = pixels.val[3];
  }
  lookupVectors(c0, t0);
  lookupVectors(c1, t1);
  lookupVectors(c2, t2);
#pragma GCC unroll 4
  for (int n = 0; n < kVectors; ++n) {
    const uint8x16x4_t pixels = {{c0[n], c1[n], c2[n], c3[n]}};
    vst4q_u8(dst + 64 * n, pixels);
  }
}

void lookup(const uint8_t* src, uint8_t* dst, ptrdiff_t count, const uint8_t* table) {
  ptrdiff_t i = 0;
  for (; i <= count - 64; i += 64) lookupBlock<4>(src + i, dst + i, table);
  for (; i <= count - 16; i += 16) lookupBlock<1>(src + i, dst + i, table);
  plain::lookup(src + i, dst + i, count - i, table);
}

void lookup3(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2) {
  if (t0 == t1 && t1 == t2) return lookup(src, dst, 3 * pixels, t0);
  ptrdiff_t i = 0;
  for (; i <= pixels - 48; i += 48) lookupBlock3<3>(src + 3 * i, dst + 3 * i, t0, t1, t2);
  for (; i <= pixels - 16; i += 16) lookupBlock3<1>(src + 3 * i, dst + 3 * i, t0, t1, t2);
  plain::lookup3(src + 3 * i, dst + 3 * i, pixels - i, t0, t1, t2);
}

void lookup4(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2) {
  ptrdiff_t i = 0;
  for (; i <= pixels - 48; i += 48) lookupBlock4<3>(src + 4 * i, dst + 4 * i, t0, t1, t2);
  for (; i <= pixels - 16; i += 16) lookupBlock4<1>(src + 4 * i, dst + 4 * i, t0, t1, t2);
  plain::lookup4(src + 4 * i, dst + 4 * i, pixels - i, t0, t1, t2);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_ARCH_ARM_A64

#endif  // per target
