#include "picture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors.h"

namespace qpx::tool {
namespace {

using Bytes = std::vector<uint8_t>;

Picture greyOf(int32_t width, int32_t height, const Bytes& samples) {
  Picture picture(width, height, 1);
  std::copy(samples.begin(), samples.end(), picture.row(0));
  return picture;
}

Bytes bytesOf(const Picture& picture) {
  return {picture.row(0), picture.row(0) + picture.pitch() * picture.height()};
}

// The stored picture is
//   1 2 3
//   4 5 6
// and each orientation says where its first row and column belong.
TEST(Turned, FollowsTheExifOrientations) {
  const std::vector<Bytes> expected = {{1, 2, 3, 4, 5, 6}, {3, 2, 1, 6, 5, 4}, {6, 5, 4, 3, 2, 1},
                                       {4, 5, 6, 1, 2, 3}, {1, 4, 2, 5, 3, 6}, {4, 1, 5, 2, 6, 3},
                                       {6, 3, 5, 2, 4, 1}, {3, 6, 2, 5, 1, 4}};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const Picture result = turned(greyOf(3, 2, {1, 2, 3, 4, 5, 6}), orientation);
    EXPECT_EQ(bytesOf(result), expected[static_cast<size_t>(orientation - 1)]) << orientation;
    EXPECT_EQ(result.width(), orientation < 5 ? 3 : 2);
  }
}

TEST(Turned, GoesBeyondOneTile) {
  Picture picture(150, 70, 1);
  for (int32_t y = 0; y < 70; ++y) {
    for (int32_t x = 0; x < 150; ++x) picture.row(y)[x] = static_cast<uint8_t>(x + 7 * y);
  }
  const Picture result = turned(std::move(picture), 6);
  for (int32_t y = 0; y < 150; ++y) {
    for (int32_t x = 0; x < 70; ++x) {
      ASSERT_EQ(result.row(y)[x], static_cast<uint8_t>(y + 7 * (69 - x))) << x << " " << y;
    }
  }
}

TEST(Scaled, AveragesWhenItShrinksAndBlendsWhenItGrows) {
  // Two to one with a triangle of reach 2: centres at 0.5 and 2.5, weights .75 .75 .25 and
  // mirrored.
  EXPECT_EQ(bytesOf(scaled(greyOf(4, 1, {0, 0, 255, 255}), 2, 1)), (Bytes{36, 219}));
  EXPECT_EQ(bytesOf(scaled(greyOf(2, 1, {0, 100}), 4, 1)), (Bytes{0, 25, 75, 100}));
  EXPECT_EQ(bytesOf(scaled(greyOf(1, 1, {9}), 3, 2)), (Bytes{9, 9, 9, 9, 9, 9}));
}

TEST(MaskOf, TakesTransparencyBeforeLight) {
  Picture clear(2, 1, 4);
  const Bytes samples = {255, 255, 255, 10, 0, 0, 0, 255};
  std::copy(samples.begin(), samples.end(), clear.row(0));
  EXPECT_EQ(bytesOf(maskOf(clear)), (Bytes{10, 255}));
  clear.row(0)[3] = 255;  // now all opaque: by light
  EXPECT_EQ(bytesOf(maskOf(clear)), (Bytes{255, 0}));
}

TEST(MixWithSource, RoundsTheShareOfStrengthAndMask) {
  const Picture source = greyOf(4, 1, {0, 0, 200, 10});
  const Picture mask = greyOf(4, 1, {0, 255, 128, 1});
  Picture result = greyOf(4, 1, {100, 100, 100, 255});
  mixWithSource(result, source, 50, &mask);
  // 200 - 100 * 0.5 * 128 / 255 = 174.9; 10 + 245 * 0.5 / 255 = 10.48
  EXPECT_EQ(bytesOf(result), (Bytes{0, 50, 175, 10}));
  Picture whole = greyOf(1, 1, {255});
  mixWithSource(whole, greyOf(1, 1, {0}), 100, nullptr);
  EXPECT_EQ(bytesOf(whole), (Bytes{255}));
}

TEST(CheckSize, RefusesWhatIsEmptyTooLargeOrOverflows) {
  EXPECT_NO_THROW(checkSize(1, 1, 4));
  EXPECT_THROW(checkSize(0, 5, 3), RunError);
  EXPECT_THROW(checkSize(5, -1, 3), RunError);
  EXPECT_THROW(checkSize(40000, 40000, 3), RunError);
  EXPECT_THROW(checkSize(0xFFFFFFFF, 0xFFFFFFFF, 4), RunError);
  EXPECT_THROW(checkSize(0x7FFFFFFF, 1, 1), RunError);
}

}  // namespace
}  // namespace qpx::tool
