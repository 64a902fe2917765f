// The steps of the layered looks as a second table of row functions, beside Rows and under the same
// rules: no alignment needed, nothing outside [0, count) touched, plain form and vector form of the
// same bytes. All of them work in place: an output may be the very same row as any input.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/blend_math.h"
#include "simd/row_forms.h"

namespace qpx::simd {

// Distances of a row of pixels from a centre, and what they mean for the corners of a picture: t =
// ((scale * distance) >> 10) - start is 0..1 in ten fractional bits from the inner radius outwards.
struct CornerRow {
  int64_t dx;        // of the first pixel
  int64_t dy;        // of the row
  int32_t inner;     // distances up to this have no weight
  int32_t scale;     // twenty fractional bits
  int32_t start;     // ten fractional bits
  int32_t farthest;  // no pixel of the picture is farther away
};

struct BlendRows {
  // `top` laid over `base` through `mask`, null for full coverage, in one of the five ways.
  using Lay = void (*)(const uint8_t* base, const uint8_t* top, const uint8_t* mask, uint8_t* dst,
                       ptrdiff_t count, float opacity);
  Lay layNormal;    // mixNormal
  Lay layScreen;    // laidScreen
  Lay layOverlay;   // laidOverlay
  Lay laySoft;      // laidSoft
  Lay layMultiply;  // laidMultiply

  // Two rows by blendMultiplyShift, the larger, the smaller.
  using Pair = void (*)(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
  Pair multiplyShift;
  Pair lighten;
  Pair darken;

  // Greys of planar colours.
  void (*lightness)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                    ptrdiff_t count);
  void (*weighedLuma)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                      ptrdiff_t count, const LumaWeights& weights);
  void (*hueGrey)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                  ptrdiff_t count, const HueWeights<double>& weights);
  void (*chalkBoardGrey)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* dst,
                         ptrdiff_t count);

  // moveApart and drawTogether about a row of centres; |amount| is below 8192.
  using Move = void (*)(const uint8_t* src, const uint8_t* centre, uint8_t* dst, ptrdiff_t count,
                        int32_t amount);
  Move moveApart;
  Move drawTogether;

  // falloffWeight of a row, and scaleByFalloff by such weights.
  void (*falloffWeights)(int32_t rowTerm, const int32_t* colTerms, uint16_t* weights,
                         ptrdiff_t count);
  void (*scaleByFalloff)(const uint8_t* src, const uint16_t* weights, uint8_t* dst,
                         ptrdiff_t count);

  // Weights of a row with twenty fractional bits, 0 up to the inner radius, and mixCorner by them.
  void (*cornerWeights)(const CornerRow& row, int32_t* weights, ptrdiff_t count);
  void (*mixCorner)(const uint8_t* src, const uint8_t* tone, const int32_t* weights, uint8_t* dst,
                    ptrdiff_t count, int32_t amount);
};

#define QPX_BLEND_ROWS(ROW, Table) \
  ROW(Table, layNormal)            \
  ROW(Table, layScreen)            \
  ROW(Table, layOverlay)           \
  ROW(Table, laySoft)              \
  ROW(Table, layMultiply)          \
  ROW(Table, multiplyShift)        \
  ROW(Table, lighten)              \
  ROW(Table, darken)               \
  ROW(Table, lightness)            \
  ROW(Table, weighedLuma)          \
  ROW(Table, hueGrey)              \
  ROW(Table, chalkBoardGrey)       \
  ROW(Table, moveApart)            \
  ROW(Table, drawTogether)         \
  ROW(Table, falloffWeights)       \
  ROW(Table, scaleByFalloff)       \
  ROW(Table, cornerWeights)        \
  ROW(Table, mixCorner)
QPX_DECLARE_ROWS(BlendRows, QPX_BLEND_ROWS)

inline const BlendRows& blendRows() { return chosenForm<BlendRows>(); }

}  // namespace qpx::simd
