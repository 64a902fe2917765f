#include "api/c_caller.h"

#include <gtest/gtest.h>

namespace {

TEST(CCaller, RunsAnEngine) {
  const unsigned char pixel[3] = {0, 100, 255};
  unsigned char negative[3] = {1, 1, 1};
  ASSERT_EQ(0, cNegativeOfPixel(pixel, negative));
  EXPECT_EQ(255, negative[0]);
  EXPECT_EQ(155, negative[1]);
  EXPECT_EQ(0, negative[2]);
}

TEST(CCaller, DrawsACurve) {
  unsigned char table[256] = {};
  ASSERT_EQ(0, cTableOfRamp(table));
  for (int i = 0; i < 256; ++i) EXPECT_EQ(i, table[i]);
}

TEST(CCaller, CountsCharacters) { EXPECT_EQ(5, cLengthOfText("qpxen")); }

}  // namespace
