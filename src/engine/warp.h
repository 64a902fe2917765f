// Tables and rectangles of the rotated effects.
#pragma once

#include "engine/stage.h"

namespace qpx {

// Sine and cosine of the angle times the distance of the centre of each output column and row from
// the centre of the output, 16.16 fixed point, in the stage's `lut`.
struct WarpTables {
  const int32_t* sinOfColumn;
  const int32_t* cosOfColumn;
  const int32_t* sinOfRow;
  const int32_t* cosOfRow;
};

// A place in the source, 16.16 fixed point. Whole numbers are the centres of pixels.
struct WarpPoint {
  int64_t x;
  int64_t y;
};

// Builds the tables for a picture turned clockwise by `degrees` and enlarged by `scale`, which is
// above 0. Returns 0; 3 for pictures too wide for 16.16 coordinates; 4 for no memory.
int32_t buildWarpTables(Stage& stage, double degrees, double scale = 1.0);

WarpTables warpTables(const Stage& stage);

// Where output pixel (column, row) comes from. Both lie inside the output picture.
WarpPoint warpSource(const Stage& stage, const WarpTables& tables, int32_t column, int32_t row);

// The farthest that a corner of the output lies from where it comes from, across or down, in whole
// pixels. 0 without tables or pixels.
int32_t greatestDisplacement(const Stage& stage);

// Fixes `outRect` as the rectangle that the next call makes (all zero: the whole output) and finds
// the source that it needs.
int32_t calcWarpRect(Stage& stage, MRect* outRect, MRect* inRect);

}  // namespace qpx
