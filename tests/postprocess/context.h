#pragma once

#include <gtest/gtest.h>
#include <qpx/postprocess.h>

#include <cstdint>

#include "convert/conversion_picture.h"

namespace qpx::testing {

// A context that a test made.
class Context {
 public:
  Context(const PostProcessImage& src, const PostProcessImage& dst,
          const PostProcessOption& option) {
    result = MPPCreate(&src, &dst, &option, &handle);
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  ~Context() { MPPDestroy(handle); }

  int32_t run(const ConversionPicture& src, const MRect* clip, ConversionPicture* dst) const {
    return MPProcess(handle, src.planes(), clip, src.pitches(), dst->planes(), dst->pitches());
  }

  PostProcessContext* handle = nullptr;
  int32_t result;
};

inline PostProcessImage imageOf(uint32_t format, uint32_t width, uint32_t height) {
  const bool palette = format >> 28 == 4;
  return {format, width, height, {}, palette ? noisePalette() : nullptr};
}

inline void expectRect(const MRect& expected, const MRect& actual) {
  EXPECT_EQ(expected.left, actual.left);
  EXPECT_EQ(expected.top, actual.top);
  EXPECT_EQ(expected.right, actual.right);
  EXPECT_EQ(expected.bottom, actual.bottom);
}

}  // namespace qpx::testing
