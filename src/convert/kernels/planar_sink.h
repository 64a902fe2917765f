// Conversions to YUV, sample by sample: in planes, with chroma in two of them or in pairs, and to
// grey. Packed formats are three planes that lie in each other.
#pragma once

#include "convert/kernels/lane.h"
#include "convert/kernels/walk.h"
#include "convert/kernels/yuv_maker.h"

namespace qpx::convert::fast {

class PlanarSink {
 public:
  bool open(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells);

  // Delivers whole planes where samples only change their places. Returns whether that was all.
  bool copyPlanes(const Positions& positions);

  // Whether runs may be of any length.
  bool needsNoRooms(const Positions& positions) const;

  void begin(const Positions& positions, int32_t x, int32_t count, int32_t y);
  void prefetch(const SourcePair& place) const { maker_.prefetch(place); }
  void row(int32_t index, int32_t y, const SourcePair& place);
  void end(int32_t rows);

 private:
  enum class Chroma { none, planes, pairs };
  bool copyChroma(const Positions& positions);
  bool openChroma(const Call& call, FormatSet to);
  void putPairs(int32_t index);

  YuvMaker maker_;
  CellGrid cells_{Cells(0, 0), Cells(0, 0)};
  MRect rect_;
  Chroma chroma_;
  bool vFirst_;
  bool lumaIsDone_ = false;
  int32_t chromaRows_;
  Lane luma_;
  Lane u_;  // or the pairs
  Lane v_;
};

}  // namespace qpx::convert::fast
