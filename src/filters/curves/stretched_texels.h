// Textures of 256 x 256 texels stretched over the whole picture, as the oldest looks lay them.
//
// A column of such a texture is a byte, so that a row of texels, once apart, is three tables of 256
// bytes, and the texels of a run are its columns looked up in them.
#pragma once

#include <qpx/types.h>

#include "toolkit/pixel_run.h"

namespace qpx {

// Whether a texture has the shape that these looks are made for.
bool isSquareOf256(const MBitmap& texture);

// Which texel of any texture stands at a pixel: column (x * step) >> 20 with a step of
// 0xFF00000 / (width - 1), rows likewise. The first texel covers a side of one pixel.
class StretchedPlaces {
 public:
  explicit StretchedPlaces(const Stage& stage);

  // The texels of a run. The two pixels of a packed 4:2:2 pair share that of the first.
  void place(const PixelRun& run);

  const uint8_t* columns() const { return columns_; }
  int32_t row() const { return row_; }

 private:
  void placePairs(int32_t x, uint32_t step);

  uint32_t columnStep_;
  uint32_t rowStep_;
  bool inPairs_;
  int32_t row_ = 0;
  alignas(64) uint8_t columns_[kRunLength + 1];
};

// One texture of a kernel call and its texels of the current run.
class StretchedTexels {
 public:
  explicit StretchedTexels(const MBitmap& texture) : texture_(texture) {}

  void load(const StretchedPlaces& places, int32_t count);

  const uint8_t* red() const { return run_[0]; }
  const uint8_t* green() const { return run_[1]; }
  const uint8_t* blue() const { return run_[2]; }

 private:
  void split(int32_t row);

  const MBitmap& texture_;
  int32_t row_ = -1;  // which row the tables hold
  alignas(64) uint8_t tables_[3][256];
  alignas(64) uint8_t run_[3][kRunLength];
};

}  // namespace qpx
