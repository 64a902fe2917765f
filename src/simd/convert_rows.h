// What conversions between pixel formats are made of, as a table of row functions beside Rows and
// under the same rules: no alignment needed beyond that of the types, nothing outside the named
// range is read or written, a count of 0 or less does nothing, outputs overlap neither inputs nor
// each other unless the entry says "in place", plain and vector forms give the same bytes.
//
// (De)interleaving, byte tables and weighted sums are entries of Rows.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// The tables from YUV to RGB. With y = luma[Y], u = blue[Cb] and v = red[Cr], a pixel's channels
// are
//   R: value(y + v, 512)      B: value(y + u, 512)      G: value(y + ((u + v) << 16), greenBias)
//   value(sum, bias) = clamp(int32(sum - (bias << 20)) >> 20, 0, 255)
// with all sums modulo 2^32 and an arithmetic shift; a field of fewer than 8 bits takes the highest
// ones.
//
// What the tables hold, for i in 0..255, in 32-bit arithmetic that wraps, with arithmetic shifts:
//   luma[i] = i * luma[1]
//   blue[i] = (i * greenU) >> 12 & 0xffff | (blueU.base + i * blueU.slope) >> 12 << 16
//   red[i]  = (redV.base + i * redV.slope) >> 12 << 16
//           | (greenV.base + i * greenV.slope) >> 12 & 0xffff
struct YuvToRgb {
  struct Line {
    int32_t base;
    int32_t slope;
  };
  const uint32_t* luma;
  const uint32_t* blue;
  const uint32_t* red;
  int32_t greenBias;
  Line blueU;
  int32_t greenU;
  Line redV;
  Line greenV;
};

// Samples of a picture row, or of two rows that share their chroma, where they stand, and where the
// pixels go. Luma i is at luma[i * lumaStep], chroma i at u[i * chromaStep] and v[i * chromaStep].
// Steps are 1 and 1; 1 and 2, where u and v stand side by side; or 2 and 4, where groups of four
// bytes hold two lumas in turn with a sample of each chroma, which is halved then. All bytes of a
// pair or group may be read.
struct YuvRow {
  const uint8_t* luma[2];  // the second null: of one row
  const uint8_t* u;
  const uint8_t* v;
  bool halved;  // pixel i takes chroma sample i / 2, else sample i
  ptrdiff_t lumaStep = 1;
  ptrdiff_t chromaStep = 1;
  uint8_t* dst[2] = {};

  ptrdiff_t lines() const { return luma[1] != nullptr ? 2 : 1; }
};

// What the bytes of a pixel weigh in its chroma, and what is added.
struct RgbToChroma {
  int32_t u[4];
  int32_t v[4];
};

// Sample i goes to u[i * step] and v[i * step]: planes by 1, or pairs side by side by 2.
struct ChromaTarget {
  uint8_t* u;
  uint8_t* v;
  ptrdiff_t step;
};

struct ConvertRows {
  // Pixels from YUV: three bytes, four (the last being `alpha`), or 16-bit words 5-6-5. The first
  // byte, of a word the lowest field, is blue, or red with `redFirst`. All rows are of one shape.
  void (*yuvToRgb24)(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                     bool redFirst);
  void (*yuvToRgb32)(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                     bool redFirst, uint8_t alpha);
  void (*yuvToRgb16)(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                     bool redFirst);

  // First and third byte of each pixel exchanged; the fourth is copied. In place.
  void (*swapEnds3)(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst);
  void (*swapEnds4)(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst);

  // Between pixels of 3 and 4 bytes, the ends exchanged with `swap`. The fourth bytes of `dst` keep
  // what they held.
  void (*rgb24To32)(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst);
  void (*rgb32To24)(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst);

  // Luma of pixels of 3 or 4 bytes. With b0 b1 b2 the first three and 16 fractional bits,
  //   sample = (w[0] * b0 + w[1] * b1 + w[2] * b2 + w[3]) >> 16
  // for weights within 65151 either way, w[3] a multiple of 256, that keep every sample within
  // 0..255 and every sum within 32 bits.
  void (*rgb24ToLuma)(const uint8_t* src, ptrdiff_t pixels, const int32_t* w, uint8_t* dst);
  void (*rgb32ToLuma)(const uint8_t* src, ptrdiff_t pixels, const int32_t* w, uint8_t* dst);

  // Chroma in the same way: of every pixel, or with `halved` of the second of each two and of a
  // last one that stands alone.
  void (*rgb24ToChroma)(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& w,
                        const ChromaTarget& dst);
  void (*rgb32ToChroma)(const uint8_t* src, ptrdiff_t pixels, bool halved, const RgbToChroma& w,
                        const ChromaTarget& dst);

  // Pixels of 3 or 4 bytes, b0 b1 b2, cut to 16-bit words, low byte first:
  // b2 >> 3 << 11 | b1 >> 2 << 5 | b0 >> 3, b0 and b2 exchanged with `swap`; and back, without
  // replication: b0 = (w & 31) << 3, b1 = (w >> 5 & 63) << 2, b2 = w >> 11 << 3.
  void (*rgb24To16)(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst);
  void (*rgb32To16)(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst);
  void (*rgb16To24)(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst);

  // The two bytes of each pair exchanged. In place.
  void (*swapPairs)(const uint8_t* src, ptrdiff_t pairs, uint8_t* dst);

  // Elements of 1 to 4 bytes in reverse order.
  void (*reverse1)(const uint8_t* src, ptrdiff_t count, uint8_t* dst);
  void (*reverse2)(const uint8_t* src, ptrdiff_t count, uint8_t* dst);
  void (*reverse3)(const uint8_t* src, ptrdiff_t count, uint8_t* dst);
  void (*reverse4)(const uint8_t* src, ptrdiff_t count, uint8_t* dst);

  // Elements of 1 to 4 bytes, rows and columns exchanged: dst element y of row x is src element x
  // of row y, for x < columns and y < rows. Pitches may be negative.
  void (*transpose1)(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                     uint8_t* dst, ptrdiff_t dstPitch);
  void (*transpose2)(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                     uint8_t* dst, ptrdiff_t dstPitch);
  void (*transpose3)(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                     uint8_t* dst, ptrdiff_t dstPitch);
  void (*transpose4)(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                     uint8_t* dst, ptrdiff_t dstPitch);
};

#define QPX_CONVERT_ROWS(ROW, Table) \
  ROW(Table, yuvToRgb24)             \
  ROW(Table, yuvToRgb32)             \
  ROW(Table, yuvToRgb16)             \
  ROW(Table, swapEnds3)              \
  ROW(Table, swapEnds4)              \
  ROW(Table, rgb24To32)              \
  ROW(Table, rgb32To24)              \
  ROW(Table, rgb24ToLuma)            \
  ROW(Table, rgb32ToLuma)            \
  ROW(Table, rgb24ToChroma)          \
  ROW(Table, rgb32ToChroma)          \
  ROW(Table, rgb24To16)              \
  ROW(Table, rgb32To16)              \
  ROW(Table, rgb16To24)              \
  ROW(Table, swapPairs)              \
  ROW(Table, reverse1)               \
  ROW(Table, reverse2)               \
  ROW(Table, reverse3)               \
  ROW(Table, reverse4)               \
  ROW(Table, transpose1)             \
  ROW(Table, transpose2)             \
  ROW(Table, transpose3)             \
  ROW(Table, transpose4)
QPX_DECLARE_ROWS(ConvertRows, QPX_CONVERT_ROWS)

inline const ConvertRows& convertRows() { return chosenForm<ConvertRows>(); }

}  // namespace qpx::simd
