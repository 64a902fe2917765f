// The road of rotated effects: tables, rectangles, and pictures by the rectangle that was fixed.
#include "engine/warp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include "engine/address.h"
#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

QPXEffectItem rotation(const RotatedRecord& record) { return {kRotated, &record, sizeof record}; }

Picture rotatedWhole(QPXEngine* engine, Picture& source, Size outSize) {
  MRect out = {};
  MRect in = {};
  EXPECT_EQ(QPXCalcRect(engine, &out, &in), 0);
  Picture result(outSize.width, outSize.height, 3);
  const QPXPlaneSet inPlanes = source.planes(0, 0);
  const QPXPlaneSet outPlanes = result.planes(0, 0);
  MRect rect = {0, 0, source.width, source.height};
  EXPECT_EQ(QPXProcess(engine, &outPlanes, &inPlanes, &rect), 0);
  EXPECT_EQ(rect.right, outSize.width);
  EXPECT_EQ(rect.bottom, outSize.height);
  return result;
}

TEST(Warp, NoRotationIsACopy) {
  const RotatedRecord record = {0.0};
  Engine engine(formatOf(3), {13, 9}, {13, 9}, {rotation(record)});
  ASSERT_EQ(engine.result(), 0);
  Picture source = Picture::random(13, 9, 3, 1);
  EXPECT_EQ(difference(source, rotatedWhole(engine.get(), source, {13, 9})), "equal");
}

// A source turned clockwise: the output's right half shows the source's upper half.
TEST(Warp, QuarterTurnMovesEveryPixel) {
  const RotatedRecord record = {90.0};
  for (const auto& [width, height] : {std::pair{9, 9}, {8, 8}, {9, 5}, {12, 6}, {7, 4}}) {
    Engine engine(formatOf(3), {height, width}, {width, height}, {rotation(record)});
    Picture source = Picture::random(width, height, 3, 1);
    const Picture result = rotatedWhole(engine.get(), source, {height, width});
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        for (int c = 0; c < 3; ++c) ASSERT_EQ(result.at(height - 1 - y, x)[c], source.at(x, y)[c]);
      }
    }
  }
}

TEST(Warp, ProcessMakesTheRectangleThatWasFixedWhateverTheBand) {
  const RotatedRecord record = {25.0};
  Engine engine(formatOf(3), {30, 20}, {30, 20}, {rotation(record)});
  Picture source = Picture::random(30, 20, 3, 1);
  const Picture whole = rotatedWhole(engine.get(), source, {30, 20});
  MRect out = {7, 3, 19, 14};
  MRect in = {};
  ASSERT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
  for (const MRect& band : {MRect{0, 0, 30, 20}, in, MRect{5, 6, 7, 8}, MRect{0, 5, 30, 6}}) {
    Picture result(12, 11, 3);
    const QPXPlaneSet inPlanes = source.planes(band.left, band.top);
    const QPXPlaneSet outPlanes = result.planes(0, 0);
    MRect rect = band;
    ASSERT_EQ(QPXProcess(engine.get(), &outPlanes, &inPlanes, &rect), 0);
    EXPECT_EQ(rect.left, 7);
    EXPECT_EQ(rect.top, 3);
    EXPECT_EQ(rect.right, 19);
    EXPECT_EQ(rect.bottom, 14);
    for (int32_t y = 0; y < 11; ++y) {
      for (int32_t i = 0; i < 36; ++i) ASSERT_EQ(result.at(0, y)[i], whole.at(7, 3 + y)[i]);
    }
  }
}

TEST(Warp, FarBandsDoNotTrap) {
  const RotatedRecord record = {10.0};
  Engine engine(formatOf(3), {8, 8}, {8, 8}, {rotation(record)});
  Picture source = Picture::random(8, 8, 3, 1);
  Picture result(8, 8, 3);
  MRect out = {2, 2, 6, 6};
  MRect in = {};
  ASSERT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
  for (const int32_t far : {INT_MIN, INT_MIN + 1, INT_MAX}) {
    QPXPlaneSet inPlanes = source.planes(0, 0);
    inPlanes.plane[0] = advance(advance(inPlanes.plane[0], 24, far), 3, far);
    const QPXPlaneSet outPlanes = result.planes(0, 0);
    MRect rect = {far, far, far, far};
    EXPECT_EQ(QPXProcess(engine.get(), &outPlanes, &inPlanes, &rect), 0);
    EXPECT_EQ(rect.left, 2);
    EXPECT_EQ(rect.bottom, 6);
  }
}

TEST(Warp, WithoutARectangleNothingIsMade) {
  const RotatedRecord record = {10.0};
  Engine engine(formatOf(3), {8, 8}, {8, 8}, {rotation(record)});
  Picture source = Picture::random(8, 8, 3, 1);
  Picture result(8, 8, 3);
  const Picture untouched = result;
  const QPXPlaneSet in = source.planes(0, 0);
  const QPXPlaneSet out = result.planes(0, 0);
  MRect rect = {0, 0, 8, 8};
  EXPECT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
  EXPECT_EQ(difference(untouched, result), "equal");
}

// The corners of the rectangle in double precision, widened by 2; a pixel of rounding is allowed
// for.
TEST(Warp, CalcRectBoundsTheSourceOfTheRectangle) {
  for (const double degrees : {0.0, 10.0, 45.0, 90.0, 133.0, 180.0, -30.0}) {
    const RotatedRecord record = {degrees};
    Engine engine(formatOf(3), {40, 30}, {40, 30}, {rotation(record)});
    const Stage& stage = static_cast<const Stage&>(engine.head());
    const WarpTables tables = warpTables(stage);
    for (const MRect& asked : {MRect{0, 0, 40, 30}, MRect{5, 6, 25, 16}, MRect{12, 9, 13, 10},
                               MRect{39, 29, 40, 30}, MRect{3, 4, 30, 5}}) {
      MRect out = asked;
      MRect in = {};
      ASSERT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
      EXPECT_EQ(out.left, asked.left);
      EXPECT_EQ(out.bottom, asked.bottom);
      const double sine = std::sin(degrees * 3.14159265358979323846 / 180.0);
      const double cosine = std::cos(degrees * 3.14159265358979323846 / 180.0);
      double box[4] = {1e9, 1e9, -1e9, -1e9};
      for (const int32_t x : {asked.left, asked.right - 1}) {
        for (const int32_t y : {asked.top, asked.bottom - 1}) {
          const double sourceX = 19.5 + (x - 19.5) * cosine + (y - 14.5) * sine;
          const double sourceY = 14.5 - (x - 19.5) * sine + (y - 14.5) * cosine;
          box[0] = std::min(box[0], sourceX);
          box[1] = std::min(box[1], sourceY);
          box[2] = std::max(box[2], sourceX);
          box[3] = std::max(box[3], sourceY);
        }
      }
      EXPECT_NEAR(in.left, std::clamp(box[0] - 2, 0.0, 40.0), 2);
      EXPECT_NEAR(in.top, std::clamp(box[1] - 2, 0.0, 30.0), 2);
      EXPECT_NEAR(in.right, std::clamp(box[2] + 2, 0.0, 40.0), 2);
      EXPECT_NEAR(in.bottom, std::clamp(box[3] + 2, 0.0, 30.0), 2);
      for (int32_t y = asked.top; y < asked.bottom; ++y) {
        for (int32_t x = asked.left; x < asked.right; ++x) {
          const WarpPoint source = warpSource(stage, tables, x, y);
          const int64_t column = source.x >> 16;
          const int64_t row = source.y >> 16;
          if (column < 0 || row < 0 || column >= 40 || row >= 30) continue;
          ASSERT_TRUE(column >= in.left && column < in.right && row >= in.top && row < in.bottom);
        }
      }
    }
  }
}

// The middle of the input starts at (10, 8). Its rectangle is cut to the output's 10 x 8 pixels, so
// the host hands over the whole input.
TEST(Warp, OutputSmallerThanTheInputShowsItsMiddle) {
  const RotatedRecord record = {0.0};
  Engine engine(formatOf(3), {10, 8}, {30, 24}, {rotation(record)});
  ASSERT_EQ(engine.result(), 0);
  MRect out = {};
  MRect in = {};
  ASSERT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
  EXPECT_EQ(out.right, 10);
  EXPECT_EQ(out.bottom, 8);
  EXPECT_EQ(in.left, 8);
  EXPECT_EQ(in.top, 6);
  EXPECT_EQ(in.right, 10);
  EXPECT_EQ(in.bottom, 8);
  Picture source = Picture::random(30, 24, 3, 1);
  const Picture result = rotatedWhole(engine.get(), source, {10, 8});
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t i = 0; i < 30; ++i) ASSERT_EQ(result.at(0, y)[i], source.at(10, 8 + y)[i]);
  }
}

TEST(Warp, SenselessRectanglesAreRefused) {
  const RotatedRecord record = {10.0};
  Engine engine(formatOf(3), {8, 8}, {8, 8}, {rotation(record)});
  for (MRect out : {MRect{8, 0, 9, 8}, MRect{0, 8, 8, 9}, MRect{5, 5, 4, 6}, MRect{-4, 0, 0, 8}}) {
    MRect in = {1, 2, 3, 4};
    EXPECT_EQ(QPXCalcRect(engine.get(), &out, &in), 2);
    EXPECT_EQ(in.bottom, 4);
  }
  MRect out = {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
  MRect in = {};
  EXPECT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
}

TEST(Warp, SizesWithoutFixedPointCoordinatesAreRefused) {
  const RotatedRecord record = {10.0};
  Engine wide(formatOf(3), {65536, 8}, {65536, 8}, {rotation(record)});
  EXPECT_EQ(wide.result(), 3);
  Engine widest(formatOf(3), {65535, 1}, {65535, 1}, {rotation(record)});
  EXPECT_EQ(widest.result(), 0);
  Engine tall(formatOf(3), {8, 8}, {8, INT_MAX}, {rotation(record)});
  EXPECT_EQ(tall.result(), 3);
}

TEST(Warp, HasNoPlaceInAChain) {
  const RotatedRecord record = {10.0};
  Engine first(formatOf(3), {8, 8}, {8, 8}, {rotation(record), {kTone, nullptr, 0}});
  EXPECT_EQ(first.result(), 3);
  Engine second(formatOf(3), {8, 8}, {8, 8}, {{kTone, nullptr, 0}, rotation(record)});
  EXPECT_EQ(second.result(), 3);
  Engine alone(formatOf(3), {8, 8}, {8, 8}, {rotation(record)});
  std::vector<uint8_t> bytes(24 * 8);
  MBitmap image = {};
  image.plane[0] = bytes.data();
  image.pitch[0] = 24;
  QPXBandRect rect = {0, 0, 8, 8, 0, 0, 0, 0};
  EXPECT_EQ(QPXMultProcessIn(alone.get(), &image, &image, nullptr, nullptr, &rect), 3);
}

}  // namespace
}  // namespace qpx::testing
