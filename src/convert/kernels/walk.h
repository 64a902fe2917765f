// The loop over a rectangle.
#pragma once

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

// As many rows as memory takes to answer.
inline constexpr int32_t kRowsAhead = 16;

// The rectangle in bands of rows and runs of columns, at most `run` pixels long. A sink hears of
// a run in a band, begin(positions, x, count, y), then of each of its rows, row(index, y, place),
// and that was all, end(rows). Where a picture is turned but not resampled, runs are short and lie
// below each other: it hears of rows to come, prefetch(place).
template <typename Sink>
void walk(const Call& call, const CellGrid& cells, int32_t run, Sink* sink) {
  const Positions positions(call);
  const MRect& rect = call.rect;
  const auto runEnd = [&](int32_t left) { return cells.x.runEnd(left, run, rect.right); };
  const bool isTurned = call.record->swapXY != 0;
  const bool announces = isTurned && positions.isDirect();
  const auto walkBand = [&](int32_t left, int32_t top, int32_t bottom) {
    sink->begin(positions, left, runEnd(left) - left, top);
    for (int32_t y = top; y < bottom; ++y) {
      if (announces && rect.bottom - y > kRowsAhead) {
        sink->prefetch(positions.row(y + kRowsAhead));
      }
      sink->row(y - top, y, positions.row(y));
    }
    sink->end(bottom - top);
  };
  if (!positions.isDirect() || isTurned) {
    // What is found out about columns serves all of their rows; tiles are as high as can be.
    for (int32_t left = rect.left; left < rect.right; left = runEnd(left)) {
      for (int32_t top = rect.top, bottom; top < rect.bottom; top = bottom) {
        bottom = cells.y.runEnd(top, kBandRows, rect.bottom);
        walkBand(left, top, bottom);
      }
    }
    return;
  }
  // Memory is best read and written in its order, as whole rows are anyway.
  const int32_t rows = run == kWholeRow ? kBandRows : 2;
  for (int32_t top = rect.top, bottom; top < rect.bottom; top = bottom) {
    bottom = cells.y.runEnd(top, rows, rect.bottom);
    for (int32_t left = rect.left; left < rect.right; left = runEnd(left)) {
      walkBand(left, top, bottom);
    }
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
