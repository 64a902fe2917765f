// Pixels out of rows of YUV, by a record's tables and in its destination's format.
#pragma once

#include "convert/kernels/formats.h"
#include "simd/convert_rows.h"

namespace qpx::convert::fast {

class YuvPixels {
 public:
  void open(const ConvRecord& record, FormatSet to);
  void convert(const simd::YuvRow* rows, int32_t count, int32_t pixels) const;

 private:
  const simd::ConvertRows* rows_;
  simd::YuvToRgb tables_;
  int32_t bytes_;  // of a pixel
  bool redFirst_;
  uint8_t alpha_;
};

}  // namespace qpx::convert::fast
