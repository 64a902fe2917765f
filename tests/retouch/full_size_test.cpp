#include "retouch/full_size.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "retouch/scenes.h"

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

// A guide of 20 x 20 before a picture of 77 x 77: guide pixel (x, y) stands for 4 x 4 pixels from
// (4x - 2, 4y - 2) on. A patch of 3 x 3 guide pixels has a hole of 2 x 2 in its corner.
class FullSizeTest : public ::testing::Test {
 protected:
  static constexpr MRect kPatch = {9, 8, 12, 11};
  static constexpr MRect kGuideHole = {10, 9, 12, 11};
  static constexpr MRect kArea = {34, 30, 46, 42};  // of the patch, in the picture
  static constexpr MRect kHole = {38, 34, 46, 42};
  static constexpr MPoint kOffset = {-6, 2};
  static constexpr MPoint kShift = {-24, 8};

  FullSizeTest() {
    across_.fill();
    down_.fill();
    guide_.mark(kGuideHole, retouch::kHole);
    guide_.paint([](int32_t x, int32_t y) {
      return Color{static_cast<uint8_t>(10 * x), static_cast<uint8_t>(10 * y), 7};
    });
    Random random(3);
    for (Color& color : noise_) color = {random.byte(), random.byte(), random.byte()};
    picture_.paint([&](int32_t x, int32_t y) { return noiseAt(x, y); });
  }

  const Color& noiseAt(int32_t x, int32_t y) const {
    return noise_[static_cast<size_t>(77 * y + x)];
  }

  // Repeats what belongs into the patch, and the pixels beside it, so far from the patch.
  void repeatAt(MPoint away) {
    const MRect with = grown(kArea, 1);
    picture_.paint([&](int32_t x, int32_t y) {
      const int32_t fromX = x - away.x, fromY = y - away.y;
      const bool copied =
          fromX >= with.left && fromX < with.right && fromY >= with.top && fromY < with.bottom;
      const bool hole = x >= kHole.left && x < kHole.right && y >= kHole.top && y < kHole.bottom;
      return copied ? noiseAt(fromX, fromY) : hole ? Color{} : noiseAt(x, y);
    });
  }

  void fill() {
    FullSize full(picture_.level(), across_, down_, 1);
    ASSERT_TRUE(full);
    full.start(guide_.level());
    before_.assign(picture_.level().mask, picture_.level().mask + 77 * 77);
    full.fill(guide_.level(), kPatch, kOffset);
  }

  // Pixels of the hole that are what the scene has there.
  int32_t countOf(const Scene& scene) const {
    int32_t count = 0;
    for (int32_t y = kHole.top; y < kHole.bottom; ++y) {
      for (int32_t x = kHole.left; x < kHole.right; ++x) {
        const Level& level = picture_.level();
        const uint8_t* const pixel = level.pixel(x, y);
        count +=
            scene(x, y) == Color{pixel[0], pixel[level.channelStep], pixel[2 * level.channelStep]};
      }
    }
    return count;
  }

  void expectMarks() const {
    for (int32_t y = 0; y < 77; ++y) {
      for (int32_t x = 0; x < 77; ++x) {
        const bool inside =
            x >= kHole.left && x < kHole.right && y >= kHole.top && y < kHole.bottom;
        const uint8_t before = before_[static_cast<size_t>(77 * y + x)];
        EXPECT_EQ(inside, before == 255);
        EXPECT_EQ(inside ? 0x20 : before, picture_.level().state(x, y)) << x << ", " << y;
      }
    }
  }

  static constexpr int32_t kPixels = 8 * 8;  // of the hole

  Cells across_{77, 20}, down_{77, 20};
  OwnLevel guide_{20, 20}, picture_{77, 77};
  std::vector<Color> noise_ = std::vector<Color>(77 * 77);
  std::vector<uint8_t> before_;
};

// As far as a pixel of the guide to each side, and no farther.
TEST_F(FullSizeTest, TheMatchIsSoughtWithinAPixelOfTheGuide) {
  const Scene truth = [this](int32_t x, int32_t y) { return noiseAt(x, y); };
  for (const MPoint& by :
       {MPoint{0, 0}, {1, 1}, {3, -3}, {-4, 2}, {4, 4}, {-4, -4}, {4, -4}, {-4, 4}}) {
    repeatAt({kShift.x + by.x, kShift.y + by.y});
    fill();
    EXPECT_EQ(kPixels, countOf(truth)) << by.x << ", " << by.y;
  }
  for (const MPoint& by : {MPoint{5, 0}, {-5, 0}, {0, 5}, {0, -5}}) {
    repeatAt({kShift.x + by.x, kShift.y + by.y});
    fill();
    EXPECT_LT(countOf(truth), kPixels / 2) << by.x << ", " << by.y;
  }
}

TEST_F(FullSizeTest, WhatIsFilledIsMarkedSo) {
  repeatAt(kShift);
  fill();
  expectMarks();
}

// Around the match nothing may be copied: the pixels are those of the guide.
TEST_F(FullSizeTest, WithoutASourceNearbyTheGuideFills) {
  repeatAt(kShift);
  guide_.mark({0, 6, 7, 16}, kDoubtful);
  fill();
  EXPECT_EQ(kPixels, countOf([](int32_t x, int32_t y) {
              return Color{static_cast<uint8_t>(10 * ((x + 2) / 4)),
                           static_cast<uint8_t>(10 * ((y + 2) / 4)), 7};
            }));
  expectMarks();
}

}  // namespace
}  // namespace qpx::testing
