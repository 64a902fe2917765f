// Conversions to packed 4:2:2 in whole groups of four bytes: two lumas and the chroma they share.
#pragma once

#include "convert/kernels/lane.h"
#include "convert/kernels/walk.h"
#include "convert/kernels/yuv_maker.h"

namespace qpx::convert::fast {

class GroupSink {
 public:
  // Whether the rectangle is made of whole groups.
  static bool fits(const Call& call, const CellGrid& cells);

  bool open(const Call& call, FormatSet from, const CellGrid& cells);

  void begin(const Positions& positions, int32_t x, int32_t count, int32_t y);
  void prefetch(const SourcePair& place) const { maker_.prefetch(place); }
  void row(int32_t index, int32_t y, const SourcePair& place);
  void end(int32_t rows);

 private:
  void alongRow(int32_t index);
  void acrossRows(int32_t y);
  void putGroups(int32_t index, const uint8_t* first, const uint8_t* second);

  YuvMaker maker_;
  CellGrid cells_{Cells(0, 0), Cells(0, 0)};
  MRect rect_;
  int32_t offset_[3];
  bool turned_;     // the two lumas of a group come from two rows
  bool backwards_;  // and the second of them first
  int32_t groupRows_;
  uint8_t kept_[kRun];  // luma of the first row of a pair
  Lane lane_;
};

}  // namespace qpx::convert::fast
