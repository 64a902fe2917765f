// How much of the source shows at and beyond the edge of a mask.
#pragma once

#include <qpx/types.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace qpx {

// The share of pixels outside the mask in a window about each pixel, with 10 fractional bits, which
// is the weight of the source there: 0 deep inside, 1024 far outside. Works in tiles of columns
// whose rows come one after another from row 0.
class SourceWeights {
 public:
  static constexpr int32_t kTileWidth = 512;
  // Of half the longest line, 2^30.
  static constexpr int32_t kMostPasses = 28;

  // Windows reach `passes` pixels to each side, as far as the picture does.
  SourceWeights(const MBitmap& mask, int32_t passes) : mask_(mask), passes_(passes) {}

  void startTile(int32_t left, int32_t right);

  // Weights of the tile's columns in row y, the next one.
  void row(int32_t y, uint16_t* weights);

 private:
  static constexpr size_t kMostColumns = kTileWidth + 2 * kMostPasses;
  static constexpr size_t kMostArea = (2 * kMostPasses + 1) * (2 * kMostPasses + 1);

  void count(int32_t y, int32_t sign);
  bool allAre(int32_t value) const;
  void tabulate(int32_t rows);
  void slide(int32_t rows, uint16_t* weights) const;
  int32_t columnsAt(int32_t x) const;

  const MBitmap& mask_;
  int32_t passes_;
  int32_t left_ = 0, right_ = 0;  // of the tile
  int32_t from_ = 0, to_ = 0;     // columns of the picture that its windows reach
  int32_t counted_ = 0;
  int32_t tabulated_ = 0;
  // Pixels outside the mask in the window's rows, from column left_ - passes_ on. Columns beyond
  // the picture have none.
  std::array<uint16_t, kMostColumns> outside_;
  std::array<uint16_t, kMostArea + 1> table_;  // weights by number of pixels in a whole window
};

}  // namespace qpx
