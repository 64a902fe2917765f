// The plain forms one by one: the definition of every entry of Rows, and what the vector forms call
// for the samples that are left over behind the last whole vector.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qpx::simd::plain {

void lookup(const uint8_t* src, uint8_t* dst, ptrdiff_t count, const uint8_t* table);
void lookup3(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2);
void lookup4(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, const uint8_t* t0,
             const uint8_t* t1, const uint8_t* t2);
void deinterleave3(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2);
void interleave3(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, ptrdiff_t pixels,
                 uint8_t* dst);
void deinterleave4(const uint8_t* src, ptrdiff_t pixels, uint8_t* p0, uint8_t* p1, uint8_t* p2,
                   uint8_t* p3);
void interleave4(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, const uint8_t* p3,
                 ptrdiff_t pixels, uint8_t* dst);
void luma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
void weightedSum(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* dst,
                 ptrdiff_t count, const int32_t* w);
void mixOpaque(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
               int32_t opacity);
void mixColor(const uint8_t* base, uint8_t top, uint8_t* dst, ptrdiff_t count, int32_t opacity);
void mixMasked(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, int32_t opacity);
void complement256(const uint8_t* src, uint8_t* dst, ptrdiff_t count);

}  // namespace qpx::simd::plain
