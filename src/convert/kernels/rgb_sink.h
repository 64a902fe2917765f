// Conversions to RGB.
#pragma once

#include "convert/kernels/lane.h"
#include "convert/kernels/source.h"
#include "convert/kernels/walk.h"
#include "convert/kernels/yuv_pixels.h"

namespace qpx::convert::fast {

class RgbSink {
 public:
  bool open(const Call& call, FormatSet from, FormatSet to);

  // Delivers all pixels where they only change their places: between pictures of one format.
  // Returns whether it did.
  bool copyPixels(const Positions& positions);

  // Whether runs may be of any length.
  bool needsNoRooms(const Positions& positions) const;

  void begin(const Positions& positions, int32_t x, int32_t count, int32_t y);
  void prefetch(const SourcePair& place) const { source_.prefetch(place, columns_); }
  void row(int32_t index, int32_t y, const SourcePair& place);
  void end(int32_t rows);

 private:
  void fromYuv(int32_t first, int32_t end);
  int32_t linesTogether(int32_t index, int32_t end) const;
  void fromRgb(int32_t index);
  void reorder(const PixelRow& row, uint8_t* room) const;

  Source source_;
  const simd::ConvertRows* rows_;
  YuvPixels pixels_;  // of a YUV source
  MRect rect_;
  int32_t bytes_;    // of a stored pixel
  bool keepsAlpha_;  // the fourth byte of the destination is not written
  bool redFirst_;
  Columns columns_;
  SourcePair places_[kBandRows];
  Lane lane_;
};

}  // namespace qpx::convert::fast
