// Compression of neighbouring blocks, side by side: each step is a loop over the blocks of a batch,
// which compilers turn into vectors, around the search of simd/etc_rows.h.
#pragma once

#include <cstdint>

#include "simd/etc_block.h"
#include "simd/etc_rows.h"

namespace qpx::etc {

using simd::kEtcBatch;

// Four rows of the blocks of a batch, a channel each: the four samples of a block's row in a word,
// the left one in the lowest bits.
struct BlockRows {
  uint32_t words[3][4][kEtcBatch];

  // `count` blocks from four rows of R, G, B pixels.
  void take(const uint8_t* rgb, ptrdiff_t pitch, ptrdiff_t count);
};

// Sums of the eight samples of half blocks.
struct Sums {
  uint32_t of[3][kEtcBatch];
};

// The halves of the blocks of a batch for one way to halve them.
struct Halves {
  simd::EtcSamples samples[2];
  Sums sums[2];
};

// One way to code the blocks of a batch.
struct Coding {
  uint32_t levels[2][3][kEtcBatch];
  uint32_t differential[kEtcBatch];  // 1 or 0
  uint32_t bases[2][kEtcBatch];
  simd::EtcChoices choices[2];
};

// How base colours are chosen.
enum class Bases { mean, nearest };

// The working set of the quick forms.
struct Halved {
  Halves halves;
  Coding coding;
};

// Half blocks that are searched once more, with where their results go.
struct Again {
  simd::EtcSamples samples;
  uint32_t bases[kEtcBatch];
  simd::EtcChoices choices;
  uint8_t block[kEtcBatch];
  uint8_t half[kEtcBatch];
  ptrdiff_t count;
};

// The working set of the slow form; index 1 is the flipped one.
struct SlowSet {
  BlockRows rows;
  Halved mean[2];
  Coding nearest[2];
  Again again;
};

// Left and right halves, mean colours.
void compressFast(const BlockRows& rows, Halved& set, ptrdiff_t count, simd::EtcWords* out);

// Both ways to halve, base colours as `bases` says.
void compressFlipping(const BlockRows& rows, Halved (&sets)[2], Bases bases, ptrdiff_t count,
                      simd::EtcWords* out);

// The better of compressFlipping with mean and with nearest colours, for the blocks in set.rows.
void compressSlow(SlowSet& set, ptrdiff_t count, simd::EtcWords* out);

}  // namespace qpx::etc
