// Rows of YUV for the sinks that write it.
#pragma once

#include "convert/kernels/source.h"
#include "convert/kernels/tables.h"

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

  void prefetch(const SourcePair& place) const { source_.prefetch(place, columns_); }
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

}  // namespace qpx::convert::fast
