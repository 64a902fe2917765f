// Roundings of mean colours in integers, over all sums of eight samples, against their formulas.
#include "etc/levels.h"

#include <gtest/gtest.h>

#include <cmath>

#include "etc/reference.h"

namespace qpx::etc {
namespace {

TEST(Levels, MeansAreRoundedAsTheirFormulasSay) {
  for (uint32_t sum = 0; sum <= 2040; ++sum) {
    const double mean = static_cast<float>(sum) / 8.0f;
    EXPECT_EQ(meanLevel5(sum), static_cast<uint32_t>(std::round(mean * 31 / 255))) << sum;
    EXPECT_EQ(meanLevel4(sum), static_cast<uint32_t>(mean / 17.0 + 0.5 + 0.0001)) << sum;
  }
  EXPECT_EQ(meanLevel5(1020), 16u) << "a half goes up";
}

TEST(Levels, NearestOnesAreTheBestOfEightColors) {
  for (uint32_t sum = 0; sum <= 2040; ++sum) {
    const float mean = static_cast<float>(sum) / 8.0f;
    const reference::Mean grey = {mean, mean, mean};
    EXPECT_EQ(nearLevel5(sum), static_cast<uint32_t>(reference::nearestLevels(grey, 5)[0])) << sum;
    EXPECT_EQ(nearLevel4(sum), static_cast<uint32_t>(reference::nearestLevels(grey, 4)[0])) << sum;
  }
}

}  // namespace
}  // namespace qpx::etc
