// The loop over a rectangle.
#pragma once

#include <algorithm>
#include <cstdint>

#include "convert/kernels/columns.h"
#include "convert/kernels/positions.h"

namespace qpx::convert::fast {

struct CellGrid {
  Cells x;
  Cells y;
};

// Chroma cells of the record's destination, in the frame of the source.
inline CellGrid cellsOf(const ConvRecord& record, const MRect& rect, bool countsFromLeft) {
  const auto odd = [](const FrameAxis& axis) { return axis.mirrored ? axis.extent & 1 : 0; };
  return {Cells(record.dstSubX[1] - 1, countsFromLeft ? rect.left & 1 : odd(frameX(record))),
          Cells(record.dstSubY[1] - 1, odd(frameY(record)))};
}

// For each band of rows and each run of columns: sink.begin(columns, y); for each of its rows
// sink.row(index, y, place); sink.end(rows). A run is at most `run` pixels long.
template <typename Sink>
void walk(const Call& call, const CellGrid& cells, int32_t run, Sink* sink) {
  const Positions positions(call);
  const MRect& rect = call.rect;
  // Rows share the work of finding columns, and tiles are as high as can be; where there is
  // neither, memory is best read and written in its order, as whole rows do anyway.
  const bool inOrder = positions.isDirect() && call.record->swapXY == 0 && run != kWholeRow;
  const int32_t rows = inOrder ? 2 : kBandRows;
  for (int32_t top = rect.top; top < rect.bottom;) {
    const int32_t bottom = cells.y.runEnd(top, rows, rect.bottom);
    for (int32_t left = rect.left; left < rect.right;) {
      const int32_t right = cells.x.runEnd(left, run, rect.right);
      sink->begin(positions, left, right - left, top);
      for (int32_t y = top; y < bottom; ++y) sink->row(y - top, y, positions.row(y));
      sink->end(bottom - top);
      left = right;
    }
    top = bottom;
  }
}

// For each row, and each run of it: sink.begin(columns, y), sink.row(0, y, place), sink.end(1).
template <typename Sink>
void walkRows(const Call& call, const CellGrid& cells, Sink* sink) {
  const Positions positions(call);
  const MRect& rect = call.rect;
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t left = rect.left; left < rect.right;) {
      const int32_t right = cells.x.runEnd(left, kRun, rect.right);
      sink->begin(positions, left, right - left, y);
      sink->row(0, y, positions.row(y));
      sink->end(1);
      left = right;
    }
  }
}

}  // namespace qpx::convert::fast
