// Where the bytes of each format of McvImage lie.
#pragma once

#include <qpx/image_convert.h>

#include <cstddef>

#include "simd/yuv_rows.h"

namespace qpx {

// Where the samples of one kind stand: byte `offset` of a plane's row, then every `step` bytes.
struct SamplePlace {
  int32_t plane;
  int32_t offset;
  int32_t step;
};

struct YuvLayout {
  int32_t planes;
  SamplePlace y, u, v;
  int32_t halvedAcross;  // chroma: 1 if two columns share a sample
  int32_t halvedDown;    // chroma: 1 if two rows share a row
};

// Null for formats that are not YUV, and for NV41, whose chroma is of no other's shape.
const YuvLayout* yuvLayout(int32_t format);

// How many planes a format has; 0 for codes that are none.
int32_t planesOf(int32_t format);

inline uint8_t* rowOf(const McvImage& image, int32_t plane, int32_t row) {
  return image.plane[plane] + ptrdiff_t{image.pitch[plane]} * row;
}

// The samples of row `row`, chroma as pairs of columns share it: where each column has a sample,
// the even ones.
inline simd::YuvTarget yuvRow(const McvImage& image, const YuvLayout& layout, int32_t row) {
  const int32_t chromaRow = row >> layout.halvedDown;
  const ptrdiff_t chromaStep = layout.halvedAcross ? layout.u.step : 2 * layout.u.step;
  return {rowOf(image, layout.y.plane, row) + layout.y.offset,
          rowOf(image, layout.u.plane, chromaRow) + layout.u.offset,
          rowOf(image, layout.v.plane, chromaRow) + layout.v.offset, layout.y.step, chromaStep};
}

inline simd::YuvSource sourceRow(const McvImage& image, const YuvLayout& layout, int32_t row) {
  const simd::YuvTarget r = yuvRow(image, layout, row);
  return {r.y, r.u, r.v, r.lumaStep, r.chromaStep};
}

}  // namespace qpx
