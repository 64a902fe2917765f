#include "retouch/full_size.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace qpx::testing {
namespace {

using namespace qpx::retouch;

// Every pixel belongs to the cell whose place it is nearest to, cells are runs, and none is lost.
TEST(Cells, ArePixelsNearestToTheirPlace) {
  for (const auto& [size, cells] : {std::pair{1, 1}, {2, 1}, {7, 7}, {10, 4}, {100, 13}, {5, 12}}) {
    const Cells line(size, cells);
    ASSERT_TRUE(line);
    line.fill();
    const double step = line.step();
    EXPECT_DOUBLE_EQ(static_cast<double>(std::max(size - 1, 1)) / std::max(cells - 1, 1), step);
    for (int32_t pixel = 0; pixel < size; ++pixel) {
      const int32_t cell = line.cellOf(pixel);
      ASSERT_TRUE(cell >= 0 && cell < cells);
      EXPECT_TRUE(std::fabs(cell * step - pixel) <= step / 2 + 1e-9 || cells == 1);
      EXPECT_LE(line.firstOf(cell), pixel);
      EXPECT_GT(line.firstOf(cell + 1), pixel);
    }
    EXPECT_EQ(0, line.firstOf(0));
    EXPECT_EQ(size, line.firstOf(cells));
  }
}

TEST(Cells, ByHand) {
  const Cells line(9, 3);  // places 0, 4 and 8
  line.fill();
  EXPECT_EQ(0, line.cellOf(1));
  EXPECT_EQ(1, line.cellOf(2));
  EXPECT_EQ(1, line.cellOf(5));
  EXPECT_EQ(2, line.cellOf(6));
  EXPECT_EQ(4, line.longestRun(1));
  EXPECT_EQ(7, line.longestRun(2));
  EXPECT_EQ(9, line.longestRun(5));
  EXPECT_EQ(-8, line.shift(-2));
}

}  // namespace
}  // namespace qpx::testing
