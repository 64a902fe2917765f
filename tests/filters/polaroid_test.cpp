// Instant film: its frame, its corners and its modes. Its colours are held against their rule among
// the native looks.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <vector>

#include "filters/look_rules.h"
#include "support/kernel_frame.h"

namespace qpx {
namespace {

using testing::KernelFrame;
using testing::Picture;
using testing::Placement;
using testing::polaroidColumnTerm;
using testing::polaroidRowTerm;
using testing::polaroidWindow;
using testing::Rgba;
using testing::wholeOf;

constexpr uint32_t kPolaroidId = 0x5B00;

struct Film : KernelFrame {
  Film(uint32_t format, int32_t width, int32_t height, const QPXPolaroidParam& param)
      : KernelFrame(format) {
    stage().inWidth = stage().outWidth = width;
    stage().inHeight = stage().outHeight = height;
    EXPECT_EQ(setUp(kPolaroidId, param), QPX_OK);
  }
};

void expectWindow(int32_t width, int32_t height, int32_t frameMode, const MRect& expected) {
  SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
  Film film(QPX_FORMAT_BGR24, width, height, {frameMode, 0, 0, 0, 0, 0});
  const MRect window = polaroidWindow(film.stage());
  EXPECT_EQ(window.left, expected.left);
  EXPECT_EQ(window.top, expected.top);
  EXPECT_EQ(window.right, expected.right);
  EXPECT_EQ(window.bottom, expected.bottom);
}

// Borders of an eighteenth and a foot of a fifth of the shorter side, cut.
TEST(Polaroid, FrameGoesByTheShorterSide) {
  expectWindow(180, 360, 1, {10, 10, 170, 324});
  expectWindow(360, 180, 1, {10, 10, 350, 144});
  expectWindow(359, 179, 1, {9, 9, 350, 144});
  expectWindow(3, 2, 1, {0, 0, 3, 2});
  expectWindow(1, 1, 1, {0, 0, 1, 1});
  expectWindow(0, -3, 1, {0, 0, 0, 0});
  expectWindow(180, 360, 0, {0, 0, 180, 360});
}

TEST(Polaroid, PaperSurroundsThePictureOnAllSides) {
  Picture in(QPX_FORMAT_RGB24, 600, 180, Placement::exact);
  in.fill(90);
  Picture out(in);
  Film film(QPX_FORMAT_RGB24, 600, 180, {1, 0, 0, 0, 0, 0});
  ASSERT_EQ(film.run(in, out, wholeOf(in)), QPX_OK);
  const Rgba paper = out.rgb(0, 0), middle = out.rgb(300, 70);
  EXPECT_GT(paper.b, 225);
  EXPECT_GT(paper.r, paper.b);
  EXPECT_LT(middle.g, 130);
  for (int32_t x = 0; x < 600; ++x) {
    const bool within = x >= 10 && x < 590;
    ASSERT_EQ(out.rgb(x, 9), paper) << x;
    ASSERT_EQ(out.rgb(x, 10), within ? middle : paper) << x;
    ASSERT_EQ(out.rgb(x, 143), within ? middle : paper) << x;
    ASSERT_EQ(out.rgb(x, 144), paper) << x;
    ASSERT_EQ(out.rgb(x, 179), paper) << x;
  }
}

TEST(Polaroid, OtherFrameModesWriteNothing) {
  for (const int32_t mode : {-1, 2, 256, INT32_MIN, INT32_MAX}) {
    for (const uint32_t format :
         {QPX_FORMAT_RGB24, QPX_FORMAT_RGB565, QPX_FORMAT_NV21, QPX_FORMAT_I420}) {
      Picture in(format, 16, 16, Placement::exact);
      in.paint(1);
      Picture out(format, 16, 16, Placement::guarded);
      const Picture before(out);
      Film film(format, 16, 16, {mode, 1, 0, 0, 0, 0});
      EXPECT_EQ(film.run(in, out, wholeOf(in)), QPX_OK);
      EXPECT_FALSE(before.firstDifference(out)) << mode;
    }
  }
}

int sumAt(const Stage& stage, int32_t x, int32_t y) {
  return polaroidRowTerm(stage, y) + polaroidColumnTerm(stage, x);
}

// Clear in the middle of what the frame leaves, alike in the corners of that.
TEST(Polaroid, CornersAreThoseOfTheWindow) {
  for (const auto& [width, height] : {std::pair{180, 360}, {640, 481}, {33, 47}}) {
    Film film(QPX_FORMAT_BGR24, width, height, {1, 1, 0, 0, 0, 0});
    const Stage& stage = film.stage();
    const MRect w = polaroidWindow(stage);
    EXPECT_LT(sumAt(stage, (w.left + w.right) / 2, (w.top + w.bottom) / 2), 100);
    EXPECT_EQ(sumAt(stage, w.left, w.top), sumAt(stage, w.right - 1, w.bottom - 1));
    EXPECT_EQ(sumAt(stage, w.left, w.bottom - 1), sumAt(stage, w.right - 1, w.top));
    EXPECT_NEAR(sumAt(stage, w.left, w.top), 128 + 380, 50) << "less half a pixel on each side";
    for (int32_t x = w.left; x < (w.left + w.right) / 2; ++x) {
      ASSERT_EQ(polaroidColumnTerm(stage, x), polaroidColumnTerm(stage, w.left + w.right - 1 - x));
    }
  }
}

TEST(Polaroid, VignetteModesOtherThanZeroAndOneAreTheNearerOfThem) {
  const auto cornerOf = [](int32_t mode) {
    Picture in(QPX_FORMAT_BGR24, 40, 40, Placement::exact);
    in.fill(200);
    Picture out(in);
    Film film(QPX_FORMAT_BGR24, 40, 40, {0, mode, 0, 0, 0, 0});
    EXPECT_EQ(film.run(in, out, wholeOf(in)), QPX_OK);
    return out.rgb(0, 0).g - out.rgb(20, 20).g;
  };
  EXPECT_EQ(cornerOf(0), 0);
  EXPECT_EQ(cornerOf(-9), 0);
  EXPECT_LT(cornerOf(1), -30);
  EXPECT_EQ(cornerOf(7), cornerOf(1));
}

TEST(Polaroid, GreysRunFromBlueBlackToCream) {
  Picture in(QPX_FORMAT_RGB24, 256, 1, Placement::exact);
  for (int i = 0; i < 256; ++i) std::memset(in.bitmap().plane[0] + 3 * i, i, 3);
  Picture out(in);
  Film film(QPX_FORMAT_RGB24, 256, 1, {});
  ASSERT_EQ(film.run(in, out, wholeOf(in)), QPX_OK);
  const Rgba black = out.rgb(0, 0), grey = out.rgb(128, 0), white = out.rgb(255, 0);
  EXPECT_GT(black.b, black.r);
  EXPECT_GT(black.g, 15) << "blacks are soft";
  EXPECT_GT(grey.r, grey.b);
  EXPECT_NEAR(grey.g, 139, 8);
  EXPECT_GT(white.r, white.b + 15);
  EXPECT_GT(white.g, 225);
}

TEST(Polaroid, ParametersMoveCorners) {
  const auto sumsOf = [](const QPXPolaroidParam& param, int32_t x, int32_t y) {
    Film film(QPX_FORMAT_BGR24, 200, 100, param);
    return sumAt(film.stage(), x, y);
  };
  EXPECT_GT(sumsOf({0, 1, 0, 0, 50, 0}, 0, 50), sumsOf({0, 1, 0, 0, 50, 0}, 199, 50));
  EXPECT_GT(sumsOf({0, 1, 0, 0, 0, 50}, 100, 0), sumsOf({0, 1, 0, 0, 0, 50}, 100, 99));
  EXPECT_EQ(sumsOf({0, 1, -100, 0, 0, 0}, 0, 0), 128) << "without any darkening";
  EXPECT_GT(sumsOf({0, 1, 0, 100, 0, 0}, 60, 50), sumsOf({0, 1, 0, 0, 0, 0}, 60, 50));
}

}  // namespace
}  // namespace qpx
