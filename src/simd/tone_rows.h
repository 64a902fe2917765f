// The steps of the looks that exist natively in YUV, as a table of row functions beside Rows and
// under the same rules: no alignment needed, nothing outside [0, count) touched, plain form and
// vector form of the same bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

struct ToneRows {
  // Full-range BT.601 in ten fractional bits, rounded to nearest and clamped, from chroma of halved
  // width: sample i / 2 is that of pixel i.
  //   r = (1024 * y + 1436 * (v - 128) + 512) >> 10
  //   g = (1024 * y - 352 * (u - 128) - 731 * (v - 128) + 512) >> 10
  //   b = (1024 * y + 1815 * (u - 128) + 512) >> 10
  // Interleaved chroma comes in pairs, V before U or U before V.
  void (*halvesToRgb)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* r, uint8_t* g,
                      uint8_t* b, ptrdiff_t count);
  void (*pairsToRgb)(const uint8_t* y, const uint8_t* pairs, bool vFirst, uint8_t* r, uint8_t* g,
                     uint8_t* b, ptrdiff_t count);

  // The way back, which cuts; chroma is that of even pixels. No sum leaves 8 bits.
  //   y = (306 * r + 601 * g + 117 * b) >> 10
  //   u = ((-173 * r - 339 * g + 512 * b) >> 10) + 128
  //   v = ((512 * r - 428 * g - 83 * b) >> 10) + 128
  void (*rgbToLuma)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y,
                    ptrdiff_t count);
  void (*rgbToHalves)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* u, uint8_t* v,
                      ptrdiff_t count);
  void (*rgbToPairs)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* pairs,
                     bool vFirst, ptrdiff_t count);

  // Red takes the largest channel, blue the smallest, green (197 * smallest + 59 * largest) >> 8.
  void (*sortToSepia)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count);

  // Lighter where light is above 128, darker where it is below:
  //   dst = clamp(src + (((light > 128 ? up : down) * (light - 128)) >> 7)). In place on any.
  void (*lean)(const uint8_t* src, const uint8_t* light, const uint8_t* up, const uint8_t* down,
               uint8_t* dst, ptrdiff_t count);

  // Overlay of `tone` in 7 bits, at 204 of 256. In place on either.
  //   src < 129: dst = (src * 52 + ((src * tone) >> 7) * 204) >> 8
  //   otherwise: dst = (src * 256 + (((255 - src) * (tone - 128)) >> 7) * 204) >> 8
  void (*overlay)(const uint8_t* src, const uint8_t* tone, uint8_t* dst, ptrdiff_t count);

  // A texture over samples: texels below the middle darken, texels above it lighten, in proportion
  // to their distance d = |2 * texel - 255| from it. `darker` and `lighter` are what the farthest
  // texels do to each sample, in 1024ths of 255.
  //   laid = texel < 128 ? src - ((d * darker + 510) >> 10) : src + ((d * lighter + 510) >> 10)
  //   dst = (src * (1024 - share) + laid * share) >> 10, laid being clamped and share in 0..1024
  // In place on any.
  void (*layTexels)(const uint8_t* src, const uint8_t* texels, const uint8_t* darker,
                    const uint8_t* lighter, uint8_t* dst, ptrdiff_t count, int32_t share);

  // The family's mix by percent, whose 327 / 2^15 is a little less than a hundredth:
  //   dst = clamp(((top * percent + base * (100 - percent)) * 327) >> 15)
  // Any percent; sums do not wrap. In place on either.
  void (*mixPercent)(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
                     int32_t percent);

  // Every channel moves away from the mean m of the extremes by ((c - m) * gain) >> 10, clamped.
  // The gain is 253, or for saturations s of 820/1024 and above what brings them to full,
  // 2^20 / (s + 1) - 1024; s = (max - min) * 1024 / (sum + 1), of light colours / (511 - sum), sum
  // being max + min.
  void (*enrich)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count);
};

#define QPX_TONE_ROWS(ROW, Table) \
  ROW(Table, halvesToRgb)         \
  ROW(Table, pairsToRgb)          \
  ROW(Table, rgbToLuma)           \
  ROW(Table, rgbToHalves)         \
  ROW(Table, rgbToPairs)          \
  ROW(Table, sortToSepia)         \
  ROW(Table, lean)                \
  ROW(Table, overlay)             \
  ROW(Table, layTexels)           \
  ROW(Table, mixPercent)          \
  ROW(Table, enrich)
QPX_DECLARE_ROWS(ToneRows, QPX_TONE_ROWS)

inline const ToneRows& toneRows() { return chosenForm<ToneRows>(); }

}  // namespace qpx::simd
