#include "convert/kernels/yuv_pixels.h"

#include "convert/kernels/tables.h"

namespace qpx::convert::fast {

void YuvPixels::open(const ConvRecord& record, FormatSet to) {
  rows_ = &simd::convertRows();
  tables_ = yuvToRgbOf(record);
  bytes_ = pixelBytes(to);
  redFirst_ = (to & kInRedFirst) != 0;
  alpha_ = static_cast<uint8_t>(record.alpha);
}

void YuvPixels::convert(const simd::YuvRow* rows, int32_t count, int32_t pixels) const {
  if (bytes_ == 2) {
    rows_->yuvToRgb16(rows, count, pixels, tables_, redFirst_);
  } else if (bytes_ == 3) {
    rows_->yuvToRgb24(rows, count, pixels, tables_, redFirst_);
  } else {
    rows_->yuvToRgb32(rows, count, pixels, tables_, redFirst_, alpha_);
  }
}

}  // namespace qpx::convert::fast
