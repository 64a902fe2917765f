#include <algorithm>
#include <cstring>

#include "simd/rows.h"

namespace qpx::simd {
namespace plain {

void lookup(const uint8_t* src, uint8_t* dst, ptrdiff_t count, const uint8_t* table) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = table[src[i]];
}

void lookup3(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 3, dst += 3) {
    dst[0] = t0[src[0]];
    dst[1] = t1[src[1]];
    dst[2] = t2[src[2]];
  }
}

void lookup4(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    dst[0] = t0[src[0]];
    dst[1] = t1[src[1]];
    dst[2] = t2[src[2]];
    dst[3] = src[3];
  }
}

void deinterleave2(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1) {
  for (ptrdiff_t i = 0; i < pixels; ++i) {
    p0[i] = src[2 * i];
    p1[i] = src[2 * i + 1];
  }
}

void interleave2(const uint8_t* p0, const uint8_t* p1, ptrdiff_t pixels, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < pixels; ++i) {
    dst[2 * i] = p0[i];
    dst[2 * i + 1] = p1[i];
  }
}

void deinterleave3(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 3) {
    p0[i] = src[0];
    p1[i] = src[1];
    p2[i] = src[2];
  }
}

void interleave3(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, ptrdiff_t pixels,
                 uint8_t* dst) {
  for (ptrdiff_t i = 0; i < pixels; ++i, dst += 3) {
    dst[0] = p0[i];
    dst[1] = p1[i];
    dst[2] = p2[i];
  }
}

void deinterleave4(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2,
                   uint8_t* p3) {
  for (ptrdiff_t i = 0; i < pixels; ++i, src += 4) {
    p0[i] = src[0];
    p1[i] = src[1];
    p2[i] = src[2];
    p3[i] = src[3];
  }
}

void interleave4(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, const uint8_t* p3,
                 ptrdiff_t pixels, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < pixels; ++i, dst += 4) {
    dst[0] = p0[i];
    dst[1] = p1[i];
    dst[2] = p2[i];
    dst[3] = p3[i];
  }
}

void gather4(const uint8_t* src, ptrdiff_t, const int32_t* places, ptrdiff_t count, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < count; ++i) std::memcpy(dst + 4 * i, src + ptrdiff_t{4} * places[i], 4);
}

void luma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = static_cast<uint8_t>((9798 * r[i] + 19235 * g[i] + 3735 * b[i]) >> 15);
  }
}

void weightedSum(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* dst,
                 ptrdiff_t count, const int32_t* w) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int32_t sum = w[0] * a[i] + w[1] * b[i] + w[2] * c[i] + w[3];
    dst[i] = static_cast<uint8_t>(std::clamp(sum >> 16, 0, 255));
  }
}

void mixOpaque(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
               int32_t opacity) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = static_cast<uint8_t>((base[i] * (100 - opacity) + top[i] * opacity + 50) / 100);
  }
}

void mixColor(const uint8_t* base, uint8_t top, uint8_t* dst, ptrdiff_t count, int32_t opacity) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = static_cast<uint8_t>((base[i] * (100 - opacity) + top * opacity + 50) / 100);
  }
}

void mixMasked(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, int32_t opacity) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int32_t weight = opacity * mask[i];
    dst[i] = static_cast<uint8_t>((base[i] * (25500 - weight) + top[i] * weight + 12750) / 25500);
  }
}

void complement256(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>(std::min(255, 256 - src[i]));
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(Rows, QPX_ROWS)

}  // namespace qpx::simd
