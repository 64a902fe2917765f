// The plain forms of BlendRows one by one, which vector forms call where they do not serve.
#ifndef QPX_SIMD_PLAIN_BLEND_ROWS_H_
#define QPX_SIMD_PLAIN_BLEND_ROWS_H_

#include "simd/blend_rows.h"

namespace qpx::simd::plain {

void layNormal(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, float opacity);
void layScreen(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
               ptrdiff_t count, float opacity);
void layOverlay(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                ptrdiff_t count, float opacity);
void laySoft(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
             ptrdiff_t count, float opacity);
void layMultiply(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                 ptrdiff_t count, float opacity);
void multiplyShift(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
void lighten(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
void darken(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
void lightness(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
void weighedLuma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                 ptrdiff_t count, const LumaWeights& weights);
void hueGrey(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst, ptrdiff_t count,
             const HueWeights<double>& weights);
void chalkBoardGrey(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                    ptrdiff_t count);
void moveApart(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
               int32_t amount);
void drawTogether(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
                  int32_t amount);
void falloffWeights(int32_t rowTerm, const int32_t* colTerms, uint16_t* weights, ptrdiff_t count);
void scaleByFalloff(const uint8_t* src, const uint16_t* weights, uint8_t* dst, ptrdiff_t count);
void cornerWeights(const CornerRow& row, int32_t* weights, ptrdiff_t count);
void mixCorner(const uint8_t* src, const uint8_t* tone, const int32_t* weights, uint8_t* dst,
               ptrdiff_t count, int32_t amount);

}  // namespace qpx::simd::plain

#endif  // QPX_SIMD_PLAIN_BLEND_ROWS_H_
