#include "convert/kernels/columns.h"

#include <algorithm>

namespace qpx::convert::fast {

int32_t Cells::runEnd(int32_t begin, int32_t length, int32_t end) const {
  if (end - begin <= length - 1) return end;
  // Lengths are even: one pixel less makes room for a first cell that is cut.
  const int32_t whole = begin + length - ((begin - odd_) & shift_);
  return std::min(whole, end);
}

void Columns::locate(const Positions& positions, int32_t firstX, int32_t pixels) {
  if (x == firstX && count == pixels) return;
  x = firstX;
  count = pixels;
  direct = positions.isDirect();
  start = direct ? firstX + positions.shiftX() : 0;
  hasChroma_ = false;
  if (!direct) positions.columns(firstX, pixels, place, fraction);
}

void Columns::chromaOfPixels(int32_t sourceShift) {
  if (hasChroma_) return;
  hasChroma_ = true;
  chroma.x = x;
  chroma.direct = direct && (sourceShift == 0 || (start & 1) == 0);
  chroma.halved = chroma.direct && sourceShift != 0;
  chroma.start = start >> sourceShift;
  chroma.count = chroma.halved ? (count + 1) / 2 : count;
  if (chroma.direct) return;
  for (int32_t i = 0; i < count; ++i) chroma.place[i] = columnOf(i) >> sourceShift;
}

void Columns::chromaOfCells(int32_t sourceShift, const Cells& cells, int32_t right) {
  if (hasChroma_) return;
  hasChroma_ = true;
  const int32_t first = cells.of(x), end = x + count;
  chroma.x = x;
  chroma.halved = false;
  chroma.count = cells.of(end - 1) - first + 1;
  if (direct && sourceShift == cells.shift() && isEvenlyCut(cells, right)) {
    chroma.direct = true;
    chroma.start = columnOf(cells.lastOf(first, right) - x) >> sourceShift;
    return;
  }
  for (int32_t i = 0; i < chroma.count; ++i) {
    const int32_t last = cells.lastOf(first + i, right);
    chroma.place[i] = columnOf(last - x) >> sourceShift;
  }
  findDirectChroma();
}

// Whether the last pixel of a cell lies alike in its source cell, for all cells.
bool Columns::isEvenlyCut(const Cells& cells, int32_t right) const {
  const int32_t end = x + count;
  return end < right || cells.endsWhole(end);
}

void Columns::findDirectChroma() {
  chroma.start = chroma.place[0];
  chroma.direct = direct;
  for (int32_t i = 0; i < chroma.count && chroma.direct; ++i) {
    chroma.direct = chroma.place[i] == chroma.start + i;
  }
}

}  // namespace qpx::convert::fast
