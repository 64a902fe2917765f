// Pictures of 24 and 32-bit RGB sample by sample, and stages of their size.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "support/kernel_frame.h"

namespace qpx::testing {

inline constexpr uint32_t kPackedFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32,
                                              QPX_FORMAT_RGBA32};

inline int32_t pixelBytes(const Picture& picture) {
  return picture.format() == QPX_FORMAT_BGR24 || picture.format() == QPX_FORMAT_RGB24 ? 3 : 4;
}

// Byte `channel` of a pixel; columns and rows beyond the picture are those of its edge.
inline uint8_t* sampleAt(const Picture& picture, int32_t x, int32_t y, int32_t channel) {
  const MBitmap bitmap = picture.bitmap();
  const int32_t column = std::clamp(x, 0, picture.width() - 1);
  const int32_t row = std::clamp(y, 0, picture.height() - 1);
  return bitmap.plane[0] + ptrdiff_t{row} * bitmap.pitch[0] + column * pixelBytes(picture) +
         channel;
}

// A stage of the picture's size, set up.
template <typename Record>
std::unique_ptr<KernelFrame> frameOf(const Picture& picture, uint32_t id, const Record& record) {
  auto frame = std::make_unique<KernelFrame>(picture.format());
  frame->stage().inWidth = frame->stage().outWidth = picture.width();
  frame->stage().inHeight = frame->stage().outHeight = picture.height();
  EXPECT_EQ(frame->setUp(id, record), QPX_OK);
  return frame;
}

// A kernel that hosts call by name, as frames run kernels.
template <auto kKernel>
int32_t byName(const Frame& frame) {
  return kKernel(&frame.stage, &frame.rect, frame.out, frame.in);
}

}  // namespace qpx::testing
