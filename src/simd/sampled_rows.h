// Rows of resampled pictures, as a table of row functions beside Rows and under the same rules.
//
// A run of destination elements takes bytes of a source row: each element those at its place, or a
// mixture of those at its place and the next one. Where is the same for all rows, so that it is
// worked out once, into what the processor's vectors need.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/row_forms.h"

namespace qpx::simd {

// The elements of a run.
struct SampledRun {
  const int32_t* place;     // the source element of each, never negative
  const int32_t* fraction;  // 0..65535, from it to the next, which is not read where it is 0; or
                            // null where nothing is mixed
  ptrdiff_t count;
  int32_t stride;  // bytes from a source element to the next one
  int32_t bytes;   // of an element that are taken, 1..4: what the run makes is without gaps

  ptrdiff_t made() const { return count * bytes; }
  int32_t fractionOf(ptrdiff_t i) const { return fraction != nullptr ? fraction[i] : 0; }
};

// Where vectors find the bytes of a run: windows of neighbouring source bytes, each for a few bytes
// of the run, and in each window the nearer and the farther of the two that are mixed.
struct SampledWindows {
  static constexpr ptrdiff_t kMost = 2048;  // bytes that a run may make

  bool found;  // small steps, and enough bytes to read: else the places serve by themselves
  int32_t start[kMost / 8 + 1];
  // Aligned, so that no vector of them lies across cache lines.
  alignas(64) uint8_t index[2 * kMost];  // nearer and farther
  alignas(64) int16_t weight[kMost];     // of the farther, in 65536ths and negative: 0..-32768
};

struct SampledRows {
  // What `windows` holds is for the same form of `pick` and `across` alone.
  void (*findWindows)(const SampledRun& run, SampledWindows* windows);

  // The bytes at the places, of a run without fractions.
  void (*pick)(const SampledRun& run, const SampledWindows& windows, const uint8_t* src,
               uint8_t* dst);

  // Each byte mixed with that of the next element:
  //   mix(p, q, f) = ((p << 16) + f * (q - p)) >> 16
  // The fourth byte of four is that at the place.
  void (*across)(const SampledRun& run, const SampledWindows& windows, const uint8_t* src,
                 uint8_t* dst);

  // dst = mix(top, bottom, fraction); with `keepsFourth` every fourth byte is that of `top`.
  void (*down)(const uint8_t* top, const uint8_t* bottom, int32_t fraction, ptrdiff_t count,
               bool keepsFourth, uint8_t* dst);

  // Both rows across and then down, at once: where neither is needed again. The fourth byte of four
  // is that of `top` at the place.
  void (*blend)(const SampledRun& run, const SampledWindows& windows, const uint8_t* top,
                const uint8_t* bottom, int32_t fraction, uint8_t* dst);

  // The same where the picture is halved: element i of 1 or 4 bytes is mixed from
  // elements 2 * i and 2 * i + 1 of both rows, half way each time.
  void (*halve1)(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst);
  void (*halve4)(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst);
};

#define QPX_SAMPLED_ROWS(ROW, Table) \
  ROW(Table, findWindows)            \
  ROW(Table, pick)                   \
  ROW(Table, across)                 \
  ROW(Table, down)                   \
  ROW(Table, blend)                  \
  ROW(Table, halve1)                 \
  ROW(Table, halve4)
QPX_DECLARE_ROWS(SampledRows, QPX_SAMPLED_ROWS)

inline const SampledRows& sampledRows() { return chosenForm<SampledRows>(); }

}  // namespace qpx::simd
