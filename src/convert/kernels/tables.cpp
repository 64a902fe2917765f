#include "convert/kernels/tables.h"

#include "convert/format_decoder.h"
#include "convert/tables.h"

namespace qpx::convert::fast {

simd::YuvToRgb yuvToRgbOf(const ConvRecord& record) {
  const auto* const words = static_cast<const uint32_t*>(record.tables);
  const ToRgbLines lines = toRgbLines(record);
  simd::YuvToRgb tables = {};
  tables.luma = words + record.yIndex;
  tables.blue = words + record.uIndex;
  tables.red = words + record.vIndex;
  tables.greenBias =
      static_cast<int32_t>(channelBias(record.dstBitsG, record.dstPlane.bitsPerPixel));
  tables.blueU = {lines.bBase, lines.bSlope};
  tables.greenU = lines.guSlope;
  tables.redV = {lines.rBase, lines.rSlope};
  tables.greenV = {lines.gBase, lines.gvSlope};
  return tables;
}

// The tables are straight lines: a step of each is its weight, its first entry its share of the
// constant.
ToYuvWeights toYuvWeightsOf(const ConvRecord& record, bool redFirst) {
  const auto* const words = static_cast<const int32_t*>(record.tables);
  const auto fill = [=](int32_t r, int32_t g, int32_t b, int32_t* weights) {
    weights[redFirst ? 0 : 2] = words[r + 1] - words[r];
    weights[1] = words[g + 1] - words[g];
    weights[redFirst ? 2 : 0] = words[b + 1] - words[b];
    weights[3] = words[r] + words[g] + words[b];
  };
  ToYuvWeights weights = {};
  fill(kRedToY, kGreenToY, kBlueToY, weights.y);
  fill(kRedToU, kGreenToU, kBlueToU, weights.chroma.u);
  fill(kRedToV, kGreenToV, kBlueToV, weights.chroma.v);
  return weights;
}

ColourLut colourLutOf(const ConvRecord& record) {
  if (record.convKind != kYuvToYuv || record.useLut == 0) return {};
  const auto* const bytes = static_cast<const uint8_t*>(record.tables);
  return {bytes, bytes + kChromaLut};
}

}  // namespace qpx::convert::fast
