// Pictures of 24 and 32-bit RGB sample by sample, and stages of their size.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>

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

struct Color {
  int32_t r, g, b;
  bool operator==(const Color&) const = default;
};

inline std::ostream& operator<<(std::ostream& to, const Color& c) {
  return to << "(" << c.r << ", " << c.g << ", " << c.b << ")";
}

inline bool startsWithBlue(uint32_t format) {
  return format == QPX_FORMAT_BGR24 || format == QPX_FORMAT_BGRA32;
}

inline Color colorAt(const Picture& picture, int32_t x, int32_t y) {
  const uint8_t* p = sampleAt(picture, x, y, 0);
  return startsWithBlue(picture.format()) ? Color{p[2], p[1], p[0]} : Color{p[0], p[1], p[2]};
}

inline void setColor(const Picture& picture, int32_t x, int32_t y, const Color& color) {
  uint8_t* p = sampleAt(picture, x, y, 0);
  const bool blueFirst = startsWithBlue(picture.format());
  p[0] = static_cast<uint8_t>(blueFirst ? color.b : color.r);
  p[1] = static_cast<uint8_t>(color.g);
  p[2] = static_cast<uint8_t>(blueFirst ? color.r : color.b);
}

// All greys in the first row, colours with two equal channels in the next three, any below.
inline Picture packedColors(uint32_t format) {
  Picture picture(format, 256, 20, Placement::exact);
  scramble(picture, 11);
  for (int32_t x = 0; x < 256; ++x) {
    setColor(picture, x, 0, {x, x, x});
    for (int32_t y = 1; y <= 3; ++y) {
      *sampleAt(picture, x, y, y - 1) = *sampleAt(picture, x, y, y % 3);
    }
  }
  return picture;
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

// Kernels for packed RGB called on stages of other formats answer 0 and write nothing.
template <typename Record>
void expectOtherFormatsLeft(Kernel kernel, uint32_t id, const Record& record) {
  for (const uint32_t format : {QPX_FORMAT_NV21, QPX_FORMAT_RGB565}) {
    Picture source(format, 32, 10, Placement::exact);
    source.paint(3);
    Picture result = source;
    result.fill(9);
    const Picture before = result;
    EXPECT_EQ(frameOf(source, id, record)->run(kernel, source, result, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(before.firstDifference(result)) << std::hex << id << " in " << format;
  }
}

}  // namespace qpx::testing
