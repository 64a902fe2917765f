// The arguments of a wide kernel, and where its samples stand. Components are Y, U, V, or 0 for
// pixels.
#pragma once

#include <qpx/convert_record.h>

#include <cstdint>

#include "convert/format_decoder.h"
#include "convert/kernels/kernel_call.h"
#include "engine/address.h"
#include "simd/yuv_rows.h"

namespace qpx::convert::wide {

struct WideCall {
  const MRect* rect;
  const int32_t* dstPitch;
  const int32_t* srcPitch;
  uint8_t* const* dstPlanes;
  const uint8_t* const* srcPlanes;
  const ConvRecord* record;

  bool isComplete() const {
    return fast::isComplete({rect, srcPlanes, dstPlanes, srcPitch, dstPitch}, record);
  }

  int32_t width() const { return rect->right - rect->left; }
  int32_t height() const { return rect->bottom - rect->top; }

  // The sample of picture column x and row y.
  const uint8_t* source(int32_t component, int32_t x, int32_t y) const {
    const int32_t plane = planeOf(record->srcPlane, component);
    const uint8_t* const row =
        srcPlanes[plane] + ptrdiff_t{srcPitch[plane]} * (y / record->srcSubY[component]);
    return row + ptrdiff_t{record->srcPlane.step[component]} * (x / record->srcSubX[component]) +
           record->srcPlane.offset[component];
  }

  simd::YuvSource sourceRow(int32_t x, int32_t y) const {
    return {source(0, x, y), source(1, x, y), source(2, x, y), record->srcPlane.step[0],
            record->srcPlane.step[1]};
  }

  // The sample of row `row` of the rectangle's first column. Kernels that turn ask for none but
  // the first row.
  uint8_t* target(int32_t component, int32_t row) const {
    const int32_t plane = planeOf(record->dstPlane, component);
    return advance(dstPlanes[plane], dstPitch[plane], row / record->dstSubY[component]);
  }

  simd::YuvTarget targetRow(int32_t row) const {
    return {target(0, row), target(1, row), target(2, row), record->dstPlane.step[0],
            record->dstPlane.step[1]};
  }
};

}  // namespace qpx::convert::wide
