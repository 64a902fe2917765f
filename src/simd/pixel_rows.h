// Packed RGB to packed RGB, as a table of row functions beside Rows: no alignment needed, nothing
// outside the count touched, plain form and vector form of the same bytes, outputs apart from
// inputs.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// How the bytes of a pixel become those of another: byte k comes from place[k] of the source, or is
// 255 where that is kOpaque.
struct PixelMove {
  static constexpr int8_t kOpaque = -1;

  int8_t srcBytes;  // 3 or 4
  int8_t dstBytes;  // 3 or 4
  int8_t place[4];
};
inline constexpr PixelMove kSwapRgb24 = {3, 3, {2, 1, 0, 0}};
inline constexpr PixelMove kBgr24OfRgba32 = {4, 3, {2, 1, 0, 0}};
inline constexpr PixelMove kArgb32OfRgb24 = {3, 4, {PixelMove::kOpaque, 0, 1, 2}};
inline constexpr PixelMove kArgb32OfBgr24 = {3, 4, {PixelMove::kOpaque, 2, 1, 0}};

struct PixelRows {
  // By the moves of these names. Names of formats give the order of bytes.
  void (*swapRgb24)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels);
  void (*bgr24OfRgba32)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels);
  void (*argb32OfRgb24)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels);
  void (*argb32OfBgr24)(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels);

  // Pixels of 3 bytes to words of 16 bits, the lowest byte first: the first byte's top five bits
  // from bit 0, the second's top six from bit 5, the third's top five from bit 11. With
  // `swapped` first and third change places.
  void (*pack565)(const uint8_t* src, bool swapped, uint8_t* dst, ptrdiff_t pixels);
};

#define QPX_PIXEL_ROWS(ROW, Table) \
  ROW(Table, swapRgb24)            \
  ROW(Table, bgr24OfRgba32)        \
  ROW(Table, argb32OfRgb24)        \
  ROW(Table, argb32OfBgr24)        \
  ROW(Table, pack565)
QPX_DECLARE_ROWS(PixelRows, QPX_PIXEL_ROWS)

inline const PixelRows& pixelRows() { return chosenForm<PixelRows>(); }

}  // namespace qpx::simd
