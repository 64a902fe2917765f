// Film that answers light with its dyes: their cross-talk, then an overlay of light by luma.
#pragma once

#include "filters/curves/look_block.h"
#include "filters/curves/tone_runs.h"

namespace qpx {

// A colour matrix laid out for simd::Rows: rows are red, green and blue of the result, columns
// those of the source, then the offset.
struct DyeMatrix {
  int32_t rows[3][4];
};

// The dyes of the films here, in 8 fractional bits. The gains of green and blue, each in its own
// row, are 234 as the films are made.
inline constexpr int32_t kUsualGain = 234;

constexpr DyeMatrix dyeMatrix(int32_t greenGain, int32_t blueGain) {
  constexpr int32_t kToSixteenBits = 256;
  DyeMatrix dyes = {{{311, -56, 10, 2550}, {45, greenGain, -71, 3825}, {-15, 10, blueGain, 2550}}};
  for (auto& row : dyes.rows) {
    for (int32_t& weight : row) weight *= kToSixteenBits;
  }
  return dyes;
}

// A run as tone curves made it.
struct FilmRun {
  alignas(kRunAlignment) uint8_t r[kRunLength];
  alignas(kRunAlignment) uint8_t g[kRunLength];
  alignas(kRunAlignment) uint8_t b[kRunLength];
};

// Through the dyes; then every channel is overlaid with what its table holds for the luma of the
// result.
void developFilm(const FilmRun& exposed, const DyeMatrix& dyes, const ChannelTables& light,
                 PixelRun& run);

}  // namespace qpx
