// Where the chroma samples of planar and semi-planar pictures are.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/stage.h"
#include "toolkit/joined_rows.h"

namespace qpx {

// Chroma of a block belongs to the block's top-left pixel: it is what a rectangle holds if and only
// if the rectangle holds that pixel.
struct ChromaGrid {
  int32_t across;  // pixels of a block
  int32_t down;
  int32_t step;  // bytes from block to block in a row of plane 1 or 2

  explicit ChromaGrid(const PixInfo& pix)
      : across(isSemiPlanar(pix) ? 2 : pix.xSampling[1]),
        down(pix.ySampling[1]),
        step(isSemiPlanar(pix) ? 2 : pix.bytesPerSample[1]) {}

  // First block whose left edge is at x or behind it.
  int32_t blockFrom(int32_t x) const { return divideUp(x, across); }

  bool startsRow(int32_t y) const { return y % down == 0; }
};

inline bool isYuv(const PixInfo& pix) {
  return pix.family != kFamilyPackedRgb && pix.family != kFamilyGrey;
}

// Calls action(from, to, bytes) for the rows of chroma samples that the frame's rectangle holds.
// The two samples of a semi-planar block come in one row, in the order of memory.
template <typename Action>
void forEachChromaRow(const Frame& frame, const Action& action) {
  const PixInfo& pix = frame.stage.pix;
  const ChromaGrid grid(pix);
  const int32_t first = grid.blockFrom(frame.rect.left);
  const int32_t end = grid.blockFrom(frame.rect.right);
  if (first >= end) return;
  const ptrdiff_t offset = ptrdiff_t{first} * grid.step;
  const ptrdiff_t bytes = ptrdiff_t{end - first} * grid.step;
  // The interleaved plane starts at the plane pointer of the sample that comes first.
  const int firstPlane = pix.family == kFamilyNv21 ? 2 : 1;
  const int lastPlane = isSemiPlanar(pix) ? firstPlane : 2;
  for (int p = firstPlane; p <= lastPlane; ++p) {
    JoinedRows<Action> rows(action);
    for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
      if (!grid.startsRow(y)) continue;
      rows.add(chromaRow(frame.in[p], y, grid.down) + offset,
               chromaRow(frame.out[p], y, grid.down) + offset, bytes);
    }
  }
}

}  // namespace qpx
