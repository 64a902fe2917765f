// Which output an input rectangle gives and the other way round.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

constexpr Size kSize = {100, 80};

void expectRect(const MRect& rect, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  EXPECT_EQ(rect.left, left);
  EXPECT_EQ(rect.top, top);
  EXPECT_EQ(rect.right, right);
  EXPECT_EQ(rect.bottom, bottom);
}

MRect outputOf(const Engine& engine, MRect in) {
  const MRect before = in;
  MRect out = {};
  EXPECT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
  expectRect(in, before.left, before.top, before.right, before.bottom);
  return out;
}

struct Pair {
  MRect out;
  MRect in;
};

Pair inputFor(const Engine& engine, MRect out) {
  MRect in = {-1, -2, -3, -4};
  EXPECT_EQ(QPXCalcRect(engine.get(), &out, &in), 0);
  return {out, in};
}

TEST(CalcRect, WholePictureGivesWholePicture) {
  for (const auto& effects : {std::vector<uint32_t>{kTone}, {kBox3}, {kBox1, kBox2, kBox3}}) {
    const Engine engine(formatOf(3), kSize, effects);
    expectRect(outputOf(engine, {0, 0, 100, 80}), 0, 0, 100, 80);
    const Pair back = inputFor(engine, {0, 0, 100, 80});
    expectRect(back.in, 0, 0, 100, 80);
    expectRect(back.out, 0, 0, 100, 80);
  }
}

TEST(CalcRect, ForwardsLosesTheSumOfTheMarginsInsideThePicture) {
  const Engine engine(formatOf(3), kSize, {kBox1, kTone, kBox2});
  expectRect(outputOf(engine, {10, 20, 60, 70}), 13, 23, 57, 67);
  expectRect(outputOf(engine, {0, 20, 60, 70}), 0, 23, 57, 67);
  expectRect(outputOf(engine, {10, 0, 60, 70}), 13, 0, 57, 67);
  expectRect(outputOf(engine, {10, 20, 100, 70}), 13, 23, 100, 67);
  expectRect(outputOf(engine, {10, 20, 60, 80}), 13, 23, 57, 80);
  expectRect(outputOf(engine, {10, 20, 16, 26}), 13, 23, 13, 23);
}

TEST(CalcRect, ForwardsInvertedOutputIsCleared) {
  const Engine engine(formatOf(3), kSize, {kBox1, kBox2});
  expectRect(outputOf(engine, {10, 20, 15, 70}), 0, 0, 0, 0);
  expectRect(outputOf(engine, {10, 20, 60, 25}), 0, 0, 0, 0);
  // What was cleared is still drawn to the edges of the picture.
  expectRect(outputOf(engine, {97, 20, 100, 25}), 0, 0, 100, 0);
}

TEST(CalcRect, BackwardsWidensInsideThePicture) {
  const Engine engine(formatOf(3), kSize, {kBox1, kBox2});
  const Pair inside = inputFor(engine, {10, 20, 60, 70});
  expectRect(inside.in, 7, 17, 63, 73);
  expectRect(inside.out, 10, 20, 60, 70);
  const Pair cut = inputFor(engine, {1, 1, 99, 79});
  expectRect(cut.in, 0, 0, 100, 80);
}

TEST(CalcRect, BackwardsSnapsToTheEdgesThatTheInputReaches) {
  const Engine engine(formatOf(3), kSize, {kBox1, kBox2});
  const Pair topLeft = inputFor(engine, {2, 3, 50, 40});
  expectRect(topLeft.in, 0, 0, 53, 43);
  expectRect(topLeft.out, 0, 0, 50, 40);
  const Pair bottomRight = inputFor(engine, {20, 30, 98, 77});
  expectRect(bottomRight.in, 17, 27, 100, 80);
  expectRect(bottomRight.out, 20, 30, 100, 80);
  const Pair near = inputFor(engine, {4, 4, 96, 76});
  expectRect(near.in, 1, 1, 99, 79);
  expectRect(near.out, 4, 4, 96, 76);
}

TEST(CalcRect, PromiseOfTheForwardRectangleHolds) {
  const std::vector<uint32_t> effects = {kBox2};
  const Engine engine(formatOf(3), {30, 30}, effects);
  Picture source = Picture::random(30, 30, 3, 1);
  const Picture model = applyModel(effects, source);
  MRect band = {5, 0, 25, 30};
  const MRect promised = outputOf(engine, band);
  Picture result(30, 40, 3);
  const QPXPlaneSet in = source.planes(5, 0);
  const QPXPlaneSet out = result.planes(0, 0);
  ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &band), 0);
  expectRect(band, promised.left, promised.top, promised.right, promised.bottom);
}

TEST(CalcRect, FarRectanglesSaturate) {
  const Engine engine(formatOf(3), kSize, {kBox3, kBox3});
  outputOf(engine, {INT_MAX, INT_MAX, INT_MIN, INT_MIN});
  outputOf(engine, {INT_MIN, INT_MIN, INT_MAX, INT_MAX});
  inputFor(engine, {INT_MIN, INT_MIN, INT_MAX, INT_MAX});
  inputFor(engine, {INT_MAX, INT_MAX, INT_MIN, INT_MIN});
}

TEST(CalcRect, RefusesNullArguments) {
  const Engine engine(formatOf(3), kSize, {kBox1});
  MRect rect = {0, 0, 10, 10};
  EXPECT_EQ(QPXCalcRect(nullptr, &rect, &rect), 2);
  EXPECT_EQ(QPXCalcRect(engine.get(), nullptr, &rect), 2);
  EXPECT_EQ(QPXCalcRect(engine.get(), &rect, nullptr), 2);
  EXPECT_EQ(QPXCalcRectReset(nullptr), 2);
  EXPECT_EQ(QPXCalcRectReset(engine.get()), 0);
}

TEST(MaxOutLine, AddsTheLowerMarginsUpToTheOutputHeight) {
  const Engine engine(formatOf(3), kSize, {kBox1, kBox2, kTone});
  int32_t rows = -1;
  EXPECT_EQ(QPXGetMaxOutLine(engine.get(), 16, &rows), 0);
  EXPECT_EQ(rows, 19);
  EXPECT_EQ(QPXGetMaxOutLine(engine.get(), 77, &rows), 0);
  EXPECT_EQ(rows, 80);
  EXPECT_EQ(QPXGetMaxOutLine(engine.get(), 78, &rows), 0);
  EXPECT_EQ(rows, 80);
  EXPECT_EQ(QPXGetMaxOutLine(engine.get(), INT_MAX, &rows), 0);
  EXPECT_EQ(rows, 80);
  EXPECT_EQ(QPXGetMaxOutLine(engine.get(), INT_MIN, &rows), 0);
  EXPECT_EQ(rows, INT_MIN + 3);
  EXPECT_EQ(QPXGetMaxOutLine(engine.get(), 16, nullptr), 2);
  EXPECT_EQ(QPXGetMaxOutLine(nullptr, 16, &rows), 2);
}

TEST(MaxOutLine, NoBandGivesMore) {
  const std::vector<uint32_t> effects = {kBox3, kBox2};
  const Engine engine(formatOf(3), {5, 60}, effects);
  Picture source = Picture::random(5, 60, 3, 1);
  Picture result(5, 80, 3);
  for (const int32_t rows : {1, 2, 7, 16}) {
    int32_t most = 0;
    ASSERT_EQ(QPXGetMaxOutLine(engine.get(), rows, &most), 0);
    for (int32_t top = 0; top < 60; top += rows) {
      MRect rect = {0, top, 5, std::min(top + rows, 60)};
      const QPXPlaneSet in = source.planes(0, top);
      const QPXPlaneSet out = result.planes(0, 0);
      ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
      EXPECT_LE(rect.bottom - rect.top, most);
    }
  }
}

}  // namespace
}  // namespace qpx::testing
