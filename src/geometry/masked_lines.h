// Sums along a line through every pixel of a picture, over the pixels under a mask alone.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

#include "engine/stage.h"
#include "geometry/line_sums.h"

namespace qpx {

// A mask of one byte a pixel; any value but 0 is inside.
struct MaskRows {
  const uint8_t* bytes;
  ptrdiff_t pitch;

  const uint8_t* row(int32_t y) const { return bytes + pitch * y; }
};

// Works in tiles of columns, so that the rows that a line crosses stay in the cache however wide
// the picture is. Within a tile rows come one after another from the top.
//
// Lines along rows and columns are running sums, whose cost does not grow with the length.
class MaskedLines {
 public:
  static constexpr int32_t kTileWidth = 512;

  // Lines of `half` steps each way. The picture is packed RGB, and picture and mask outlive this.
  MaskedLines(const MBitmap& picture, const MaskRows& mask, const Line& line, int64_t half);

  // False when there is no memory for the rows.
  explicit operator bool() const { return bool(rows_); }

  // Starts a tile of at most kTileWidth columns whose next row is `top`.
  void startTile(int32_t left, int32_t right, int32_t top);

  // Sums of the pixels left ... right - 1, which lie in the tile, of the next row. Place 0 is that
  // of the pixel `left`.
  simd::QuadSums nextRow(int32_t left, int32_t right);

 private:
  LineRows lineRows() const;
  const uint8_t* quadsAt(int32_t x, int32_t y) const;
  void loadRow(int32_t y);
  void slideAcross(int32_t y, int32_t left, int32_t right, const simd::QuadSums& sums) const;
  void slideDown(int32_t y);
  void addRow(int64_t y, uint32_t weight);

  const MBitmap& picture_;
  MaskRows mask_;
  Line line_;
  int64_t half_;
  int32_t bytesPerPixel_;
  int32_t reachAcross_, reachDown_;
  int32_t slots_;
  ptrdiff_t pitch_;
  Scratch rows_;
  int32_t left_ = 0, right_ = 0;  // of the tile
  int32_t top_ = 0;
  int32_t next_ = 0;    // row
  int32_t loaded_ = 0;  // rows below are in their slots, as far as lines still reach them
  uint32_t sums_[4][kTileWidth];
};

}  // namespace qpx
