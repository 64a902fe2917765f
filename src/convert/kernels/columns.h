// The columns of one run of destination pixels, as the rows of a band share them.
#pragma once

#include <cstdint>

#include "convert/kernels/call.h"
#include "convert/kernels/positions.h"

namespace qpx::convert::fast {

// Chroma cells of a destination along one axis: two pixels each, or one. Cells are those of the
// destination's own pixels; in a mirrored picture of an odd size, and where a format counts them
// from the rectangle, the first pixel of a rectangle may be the second of its cell.
class Cells {
 public:
  // Pixel `odd` + 2k and the next share a cell where `shift` is 1.
  Cells(int32_t shift, int32_t odd) : shift_(shift), odd_(shift != 0 ? odd & 1 : 0) {}

  int32_t shift() const { return shift_; }
  int32_t of(int32_t pixel) const { return (pixel - odd_) >> shift_; }
  // The last pixel of a cell, in a row or column that ends before `end`.
  int32_t lastOf(int32_t cell, int32_t end) const {
    const int32_t last = (cell << shift_) + shift_ + odd_;
    return last < end ? last : end - 1;
  }
  bool isLast(int32_t pixel, int32_t end) const { return pixel == lastOf(of(pixel), end); }
  // Whether the last cell of a row or column is whole.
  bool endsWhole(int32_t end) const { return of(end) != of(end - 1); }
  // The end of the run that begins at `begin` and holds whole cells, but for the last of all.
  int32_t runEnd(int32_t begin, int32_t length, int32_t end) const;

 private:
  int32_t shift_;
  int32_t odd_;
};

// Where the chroma samples of a run are taken.
struct ChromaColumns {
  int32_t x;  // where the run begins
  int32_t count;
  bool direct;  // sample i is source sample start + i
  bool halved;  // one sample for two pixels, else one a pixel or cell
  int32_t start;
  int32_t place[kRun];
};

struct Columns {
  int32_t x = 0;
  int32_t count = 0;
  bool direct;  // pixel i is source column start + i, and the places are not filled
  int32_t start;
  int32_t place[kRun];
  int32_t fraction[kRun];
  ChromaColumns chroma;

  // Columns of the source.
  int32_t first() const { return columnOf(0); }
  int32_t last() const { return columnOf(count - 1); }

  // A run that is asked for again stays as it is.
  void locate(const Positions& positions, int32_t firstX, int32_t pixels);
  // One chroma sample for each pixel, or one for two where they lie so.
  void chromaOfPixels(int32_t sourceShift);
  // One for each cell: that of its last pixel, the last to be written.
  void chromaOfCells(int32_t sourceShift, const Cells& cells, int32_t right);

 private:
  int32_t columnOf(int32_t index) const { return direct ? start + index : place[index]; }
  bool isEvenlyCut(const Cells& cells, int32_t right) const;
  void findDirectChroma();

  bool hasChroma_ = false;
};

}  // namespace qpx::convert::fast
