// The loop over a rectangle.
#pragma once

#include <algorithm>
#include <cstdint>

#include "convert/kernels/columns.h"
#include "convert/kernels/positions.h"
#include "convert/kernels/run_sinks.h"

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

// The rectangle in bands of rows and runs of columns. A sink is told of a run in a band,
// begin(columns, y), then of each of its rows, row(index, y, place), and that was all, end(rows).
class Walk {
 public:
  // A run is at most `run` pixels long.
  Walk(const Call& call, const CellGrid& cells, int32_t run)
      : positions_(call), rect_(call.rect), cells_(cells), run_(run) {
    const bool turned = call.record->swapXY != 0;
    inOrder_ = positions_.isDirect() && !turned;
    isSampled_ = !positions_.isDirect() && !turned;
  }

  // One that is resampled is best walked with a sink for each run.
  bool isSampled() const { return isSampled_; }
  int32_t runs() const {
    int32_t count = 0;
    for (int32_t left = rect_.left; left < rect_.right; left = runEnd(left)) ++count;
    return count;
  }

  // With one sink for all.
  template <typename Sink>
  void run(Sink* sink) const {
    if (!inOrder_) {
      // What is found out about columns serves all of their rows; tiles are as high as can be.
      for (int32_t left = rect_.left; left < rect_.right; left = runEnd(left)) {
        for (int32_t top = rect_.top; top < rect_.bottom; top = bandEnd(top, kBandRows)) {
          walkBand(left, runEnd(left), top, bandEnd(top, kBandRows), sink);
        }
      }
      return;
    }
    // Memory is best read and written in its order, as whole rows are anyway.
    const int32_t rows = run_ == kWholeRow ? kBandRows : 2;
    for (int32_t top = rect_.top; top < rect_.bottom; top = bandEnd(top, rows)) {
      for (int32_t left = rect_.left; left < rect_.right; left = runEnd(left)) {
        walkBand(left, runEnd(left), top, bandEnd(top, rows), sink);
      }
    }
  }

  // With one for each run.
  template <typename Sink>
  void run(RunSinks<Sink>* sinks) const {
    for (int32_t top = rect_.top; top < rect_.bottom; top = bandEnd(top, kBandRows)) {
      const int32_t bottom = bandEnd(top, kBandRows);
      int32_t left = rect_.left;
      for (int32_t i = 0; i < sinks->count(); ++i, left = runEnd(left)) {
        sinks->at(i)->begin(positions_, left, runEnd(left) - left, top);
      }
      for (int32_t y = top; y < bottom; ++y) {
        const SourcePair place = positions_.row(y);
        for (int32_t i = 0; i < sinks->count(); ++i) sinks->at(i)->row(y - top, y, place);
      }
      for (int32_t i = 0; i < sinks->count(); ++i) sinks->at(i)->end(bottom - top);
    }
  }

 private:
  int32_t bandEnd(int32_t top, int32_t rows) const {
    return cells_.y.runEnd(top, rows, rect_.bottom);
  }
  int32_t runEnd(int32_t left) const { return cells_.x.runEnd(left, run_, rect_.right); }

  template <typename Sink>
  void walkBand(int32_t left, int32_t right, int32_t top, int32_t bottom, Sink* sink) const {
    sink->begin(positions_, left, right - left, top);
    for (int32_t y = top; y < bottom; ++y) sink->row(y - top, y, positions_.row(y));
    sink->end(bottom - top);
  }

  Positions positions_;
  MRect rect_;
  CellGrid cells_;
  int32_t run_;
  bool inOrder_;
  bool isSampled_;
};

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
