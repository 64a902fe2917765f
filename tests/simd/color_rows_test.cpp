#include "simd/color_rows.h"

#include <gtest/gtest.h>

#include <vector>

#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class ColorRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(ColorRowsTest);

// Blocks end with their last entry, so that the address sanitizer sees reads behind them.
TEST_P(ColorRowsTest, NearestIsThePlainOne) {
  for (size_t count = 0; count <= 70; ++count) {
    for (const size_t entries : {size_t{0}, size_t{1}, size_t{5}, size_t{64}}) {
      std::vector<uint8_t> c[3];
      for (uint32_t k = 0; k < 3; ++k) c[k] = noisyBytes(static_cast<ptrdiff_t>(count), k);
      std::vector<uint8_t> palette = noisyBytes(static_cast<ptrdiff_t>(3 * entries), 9);
      if (entries == 5) palette.assign(15, count % 2 == 0 ? 0 : 255);
      std::vector<int32_t> expected(count, 195075), actual(count, 195075);
      const auto run = [&](const ColorRows& rows, std::vector<int32_t>& to) {
        rows.nearest(c[0].data(), c[1].data(), c[2].data(), static_cast<ptrdiff_t>(count),
                     palette.data(), static_cast<ptrdiff_t>(entries), to.data());
      };
      run(plainForm<ColorRows>(), expected);
      run(vectorForm<ColorRows>(), actual);
      ASSERT_EQ(expected, actual) << count << ", " << entries;
    }
  }
}

TEST_P(ColorRowsTest, NearestByHand) {
  const std::vector<uint8_t> c0(40, 255), c1(40, 0), c2(40, 10);
  std::vector<int32_t> distances(40, 195075);
  distances[7] = 3;
  const uint8_t palette[] = {0, 255, 255, 250, 3, 10};
  vectorForm<ColorRows>().nearest(c0.data(), c1.data(), c2.data(), 40, palette, 1,
                                  distances.data());
  EXPECT_EQ(65025 + 65025 + 60025, distances[0]);
  EXPECT_EQ(3, distances[7]);
  vectorForm<ColorRows>().nearest(c0.data(), c1.data(), c2.data(), 40, palette, 2,
                                  distances.data());
  EXPECT_EQ(34, distances[39]);
}

}  // namespace
}  // namespace qpx::simd
