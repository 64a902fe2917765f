#include "postprocess/split.h"

#include <gtest/gtest.h>

#include <vector>

#include "postprocess/context.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

TEST(Split, RoundsEdgesInwards) {
  expectRect({16, 8, 48, 40}, postprocess::innerRect({1, 1, 63, 47}, 16, 8));
  expectRect({16, 8, 48, 40}, postprocess::innerRect({16, 8, 48, 40}, 16, 8));
  expectRect({2, 2, 62, 46}, postprocess::innerRect({1, 1, 63, 47}, 2, 2));
}

TEST(Split, NarrowRequestsHaveNoWideMiddle) {
  for (int32_t left = 0; left < 40; ++left) {
    const MRect inner = postprocess::innerRect({left, 0, left + 15, 64}, 16, 8);
    EXPECT_GE(inner.left, inner.right);
  }
}

TEST(Split, ChoosesTheWidestStageThatFits) {
  const auto stageFor = [](const MRect& rect, bool wide) {
    return postprocess::innerPiece(rect, wide).stage;
  };
  EXPECT_EQ(2, stageFor({0, 0, 16, 8}, true));
  EXPECT_EQ(1, stageFor({0, 0, 16, 8}, false));
  EXPECT_EQ(1, stageFor({0, 0, 15, 800}, true));
  EXPECT_EQ(1, stageFor({1, 0, 31, 800}, true));
  EXPECT_EQ(1, stageFor({0, 0, 1600, 7}, true));
  expectRect({16, 8, 32, 16}, postprocess::innerPiece({3, 5, 33, 17}, true).rect);
  expectRect({4, 6, 32, 16}, postprocess::innerPiece({3, 5, 33, 17}, false).rect);
}

TEST(Split, RoundsTheFarthestCoordinates) {
  EXPECT_EQ(INT32_MAX, postprocess::roundUp(INT32_MAX, 16));
  EXPECT_EQ(INT32_MAX - 15, postprocess::roundDown(INT32_MAX, 16));
}

TEST(Split, NamesMarginsInOrder) {
  const postprocess::Margins margins = postprocess::marginsOf({1, 2, 63, 47}, {16, 8, 48, 40});
  expectRect({1, 2, 63, 8}, margins.part[0]);
  expectRect({1, 40, 63, 47}, margins.part[1]);
  expectRect({1, 8, 16, 40}, margins.part[2]);
  expectRect({48, 8, 63, 40}, margins.part[3]);
  expectRect({1, 2, 3, 4}, postprocess::marginsOf({1, 2, 3, 4}, {16, 8, 0, 0}).part[0]);
}

// Every pixel of a request once, and none beside it.
TEST(Split, CoversARequestOnce) {
  Random random(6);
  for (int32_t i = 0; i < 500; ++i) {
    MRect rect;
    rect.left = random.between(0, 40);
    rect.top = random.between(0, 30);
    rect.right = random.between(rect.left + 1, 48);
    rect.bottom = random.between(rect.top + 1, 48);
    const bool wide = i % 2 == 0;
    const MRect inner = postprocess::innerRect(rect, wide ? 16 : 2, wide ? 8 : 2);
    std::vector<int32_t> count(48 * 48);
    const auto add = [&count](const MRect& part) {
      for (int32_t y = part.top; y < part.bottom; ++y) {
        for (int32_t x = part.left; x < part.right; ++x) ++count[static_cast<size_t>(y * 48 + x)];
      }
    };
    add(inner);
    for (const MRect& margin : postprocess::marginsOf(rect, inner).part) add(margin);
    for (int32_t y = 0; y < 48; ++y) {
      for (int32_t x = 0; x < 48; ++x) {
        const bool inside = x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
        ASSERT_EQ(inside ? 1 : 0, count[static_cast<size_t>(y * 48 + x)]);
      }
    }
  }
}

}  // namespace
}  // namespace qpx::testing
