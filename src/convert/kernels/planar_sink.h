// Conversions to YUV, sample by sample: in planes, with chroma in two of them or in pairs, and to
// grey. Packed formats are three planes that lie in each other.
#pragma once

#include "convert/kernels/lane.h"
#include "convert/kernels/source.h"
#include "convert/kernels/tables.h"
#include "convert/kernels/walk.h"

namespace qpx::convert::fast {

// Luma and chroma of rows, from any source. A cell's chroma is that of its last pixel.
class YuvMaker {
 public:
  bool open(const Call& call, FormatSet from);
  const Source& source() const { return source_; }

  void begin(const Positions& positions, int32_t x, int32_t count, const Cells& cells,
             int32_t right, bool wantsChroma);
  const Columns& columns() const { return columns_; }
  bool copies() const { return !source_.isRgb() && lut_.luma == nullptr; }

  void expect(const SourcePair& place) const { source_.fetch(place, columns_); }
  // The row whose luma and chroma are asked for next.
  void load(const SourcePair& place);
  const uint8_t* luma(uint8_t* room);
  ChromaRow chroma(uint8_t* roomU, uint8_t* roomV);
  // Of RGB sources.
  void makeChroma(const simd::ChromaTarget& dst) const;
  // Of sources with pairs, in pairs of either order.
  const uint8_t* chromaPairs(bool vFirst, uint8_t* room);

 private:
  void weighChroma(const uint8_t* pixels, int32_t count, const simd::ChromaTarget& dst) const;

  Source source_;
  const simd::Rows* rows_;
  const simd::ConvertRows* convert_;
  ColourLut lut_;
  ToYuvWeights weights_;
  SourcePair place_;
  Columns columns_;
  int32_t firstInCell_;  // 1 where the run begins with the second pixel of a cell
  bool cellsOfTwo_;
  PixelRow pixels_;  // of an RGB source, of 3 or 4 bytes each
  uint8_t pixelRoom_[4 * kRun];
  uint8_t unpacked_[3 * kRun];
};

class PlanarSink {
 public:
  bool open(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells);

  // Delivers whole planes where samples only change their places. Returns whether that was all.
  bool copyPlanes(const Positions& positions);

  // Whether runs may be of any length.
  bool needsNoRooms(const Positions& positions) const;

  void begin(const Positions& positions, int32_t x, int32_t count, int32_t y);
  void expect(const SourcePair& place) const { maker_.expect(place); }
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
