#include "simd/pixel_rows.h"

#include <gtest/gtest.h>

#include <vector>

#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class PixelRowsTest : public TargetTest {
 protected:
  const PixelRows& plainPixels() const { return plainForm<PixelRows>(); }
  const PixelRows& vectorPixels() const { return vectorForm<PixelRows>(); }
};
QPX_FOR_EACH_TARGET(PixelRowsTest);

struct NamedMove {
  decltype(PixelRows::swapRgb24) PixelRows::*row;
  PixelMove move;
};
constexpr NamedMove kMoves[] = {{&PixelRows::swapRgb24, kSwapRgb24},
                                {&PixelRows::bgr24OfRgba32, kBgr24OfRgba32},
                                {&PixelRows::argb32OfRgb24, kArgb32OfRgb24},
                                {&PixelRows::argb32OfBgr24, kArgb32OfBgr24}};

TEST_P(PixelRowsTest, MovesOfEveryLengthAreThePlainOnes) {
  for (const auto& [row, move] : kMoves) {
    for (ptrdiff_t pixels = 0; pixels <= 200; ++pixels) {
      const auto src = noisyBytes(pixels * move.srcBytes, 1);
      auto expected = noisyBytes(pixels * move.dstBytes, 2), actual = expected;
      (plainPixels().*row)(src.data(), expected.data(), pixels);
      (vectorPixels().*row)(src.data(), actual.data(), pixels);
      ASSERT_EQ(expected, actual) << pixels;
    }
  }
}

TEST_P(PixelRowsTest, EveryWordIsThePlainOne) {
  std::vector<uint8_t> src;
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; b += 3) {
      for (const int c : {a, b, (a ^ b) & 255}) src.push_back(static_cast<uint8_t>(c));
    }
  }
  const auto count = static_cast<ptrdiff_t>(src.size() / 3);
  for (const bool swapped : {false, true}) {
    std::vector<uint8_t> expected(static_cast<size_t>(2 * count)), actual = expected;
    plainPixels().pack565(src.data(), swapped, expected.data(), count);
    vectorPixels().pack565(src.data(), swapped, actual.data(), count);
    EXPECT_TRUE(expected == actual);
    for (ptrdiff_t pixels = 0; pixels <= 150; ++pixels) {
      const auto row = noisyBytes(3 * pixels, 3);
      auto wanted = noisyBytes(2 * pixels, 4), made = wanted;
      plainPixels().pack565(row.data(), swapped, wanted.data(), pixels);
      vectorPixels().pack565(row.data(), swapped, made.data(), pixels);
      ASSERT_EQ(wanted, made) << pixels;
    }
  }
}

}  // namespace
}  // namespace qpx::simd
