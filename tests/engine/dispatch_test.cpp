// From a stage to its kernel: the two kinds of forms and what their answers become.
#include <gtest/gtest.h>

#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

// Row tables of a small picture, for calls that go around the pipeline.
struct Rows {
  Rows() {
    for (int32_t y = 0; y < 4; ++y) {
      in[y + 1] = source.at(0, y);
      out[y] = result.at(0, y);
    }
    in[0] = in[1];
    in[5] = in[4];
  }

  Picture source = Picture::random(4, 4, 3, 1);
  Picture result = Picture(4, 4, 3);
  Picture untouched = result;
  uint8_t* in[6];
  uint8_t* out[4];
  QPXRowTable inRows[3] = {in + 1, nullptr, nullptr};
  QPXRowTable outRows[3] = {out, nullptr, nullptr};
  MRect rect = {0, 0, 4, 4};
};

using Process = decltype(&QPXEffectProcess_C);

int32_t call(Process process, const Engine& engine, Rows& rows) {
  return process(&engine.head(), &rows.rect, rows.outRows, rows.inRows, nullptr, nullptr);
}

TEST(Dispatch, KernelOfTheFormatIsTakenFirst) {
  const Engine engine(formatOf(3), {4, 4}, {kBox1});
  for (const Process process : {QPXEffectProcess_C, QPXEffectProcess_C_Optimized}) {
    Rows rows;
    EXPECT_EQ(call(process, engine, rows), 0);
    EXPECT_EQ(difference(applyModel({kBox1}, rows.source), rows.result), "equal");
  }
}

TEST(Dispatch, OptimizedAnswersThreeForAFormatNotTaken) {
  const Engine taken(formatOf(3), {4, 4}, {kOnlyRgb24});
  Rows rows;
  EXPECT_EQ(call(QPXEffectProcess_C_Optimized, taken, rows), 0);
  EXPECT_EQ(difference(applyModel({kTone}, rows.source), rows.result), "equal");
  const Engine other(formatOf(4), {1, 4}, {kOnlyRgb24});
  Rows left;
  EXPECT_EQ(call(QPXEffectProcess_C_Optimized, other, left), 3);
  EXPECT_EQ(difference(left.untouched, left.result), "equal");
}

TEST(Dispatch, PairThatNoFormServesIsAnUntouchedOutputAndZero) {
  const Engine engine(formatOf(4), {3, 4}, {kOnlyRgb24});
  Rows rows;
  EXPECT_EQ(call(QPXEffectProcess_C, engine, rows), 0);
  EXPECT_EQ(call(QPXEffectProcess_C_Slow, engine, rows), 0);
  EXPECT_EQ(difference(rows.untouched, rows.result), "equal");
}

TEST(Dispatch, KernelThatFailsMakesTheGenericFormRunOverTheSameRows) {
  const Engine engine(formatOf(3), {4, 4}, {kFailingBox1});
  Rows rows;
  EXPECT_EQ(call(QPXEffectProcess_C_Optimized, engine, rows), 5);
  EXPECT_EQ(difference(rows.untouched, rows.result), "equal");
  rows.rect = {1, 1, 3, 3};
  EXPECT_EQ(call(QPXEffectProcess_C, engine, rows), 0);
  const Picture model = applyModel({kBox1}, rows.source);
  for (int32_t y = 0; y < 4; ++y) {
    for (int32_t x = 0; x < 4; ++x) {
      const bool inside = x >= 1 && x < 3 && y >= 1 && y < 3;
      const Picture& expected = inside ? model : rows.untouched;
      EXPECT_EQ(rows.result.at(x, y)[0], expected.at(x, y)[0]) << x << ", " << y;
    }
  }
}

TEST(Dispatch, FailureWithoutAGenericFormDoesNotReachTheHost) {
  Engine engine(formatOf(3), {4, 4}, {kFailing});
  Rows rows;
  EXPECT_EQ(call(QPXEffectProcess_C, engine, rows), 0);
  EXPECT_EQ(difference(rows.untouched, rows.result), "equal");
  Picture source = Picture::random(4, 4, 3, 1);
  const Picture result = runBands(engine.get(), source, {4});
  EXPECT_EQ(difference(rows.untouched, result), "equal");
}

TEST(Dispatch, SlowAlwaysAnswersZero) {
  for (const uint32_t effect : {kTone, kBox1, kFailing, kFailingBox1, kOnlyRgb24}) {
    const Engine engine(formatOf(3), {4, 4}, {effect});
    Rows rows;
    EXPECT_EQ(call(QPXEffectProcess_C_Slow, engine, rows), 0) << effect;
  }
}

TEST(Dispatch, NullArgumentsAreRefused) {
  const Engine engine(formatOf(3), {4, 4}, {kBox1});
  Rows r;
  QPXStage* stage = &engine.head();
  for (const Process process :
       {QPXEffectProcess_C_Optimized, QPXEffectProcess_C_Slow, QPXEffectProcess_C}) {
    EXPECT_EQ(process(nullptr, &r.rect, r.outRows, r.inRows, nullptr, nullptr), 2);
    EXPECT_EQ(process(stage, nullptr, r.outRows, r.inRows, nullptr, nullptr), 2);
    EXPECT_EQ(process(stage, &r.rect, nullptr, r.inRows, nullptr, nullptr), 2);
    EXPECT_EQ(process(stage, &r.rect, r.outRows, nullptr, nullptr, nullptr), 2);
  }
  EXPECT_EQ(difference(r.untouched, r.result), "equal");
}

}  // namespace
}  // namespace qpx::testing
