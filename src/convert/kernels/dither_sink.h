// Conversions to 16-bit pixels that pass on what each pixel loses to the next.
#pragma once

#include "convert/kernels/lane.h"
#include "convert/kernels/source.h"
#include "convert/kernels/walk.h"

namespace qpx::convert::fast {

// What the last pixel lost of its three channels, lowest field first.
struct DitherCarries {
  int32_t carry[3] = {3, 1, 3};
};

class DitherSink {
 public:
  bool open(const Call& call, FormatSet from, FormatSet to);

  // Row by row, through walkRows.
  void begin(const Positions& positions, int32_t x, int32_t count, int32_t y);
  void row(int32_t index, int32_t y, const SourcePair& place);
  void end(int32_t) {}

  // Two rows at a time, the pixels of each cell of 2x2 in turn: left top, right top, left bottom,
  // right bottom.
  void convertCells(const Call& call);

 private:
  // Channels of a row before they are cut, lowest field first; they may lie outside 0..255.
  struct Values {
    int16_t channel[3][kRun];
  };
  void fetch(const SourcePair& place, Values* values);
  void fetchYuv(const SourcePair& place, Values* values);
  void fetchRgb(const SourcePair& place, Values* values);
  void ditherPixel(const Values& values, int32_t i, uint8_t* room);

  Source source_;
  simd::YuvToRgb tables_;
  MRect rect_;
  bool redFirst_;
  DitherCarries carries_;
  Columns columns_;
  Lane lane_;
};

}  // namespace qpx::convert::fast
