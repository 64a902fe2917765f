// The tables of a record as the row functions take them.
#pragma once

#include <qpx/convert_record.h>

#include "simd/convert_rows.h"

namespace qpx::convert::fast {

simd::YuvToRgb yuvToRgbOf(const ConvRecord& record);

// Weights of a pixel's three bytes in memory order with 16 fractional bits, and what is added to
// their sum.
struct ToYuvWeights {
  int32_t y[4];
  simd::RgbToChroma chroma;
};
ToYuvWeights toYuvWeightsOf(const ConvRecord& record, bool redFirst);

// Colour tables from YUV to YUV, or null where samples are copied.
struct ColourLut {
  const uint8_t* luma;
  const uint8_t* chroma;
};
ColourLut colourLutOf(const ConvRecord& record);

}  // namespace qpx::convert::fast
