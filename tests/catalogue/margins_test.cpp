// Neighbourhoods that depend on a stage's record, format or size.
#include <gtest/gtest.h>

#include <cstring>

#include "engine/stage.h"
#include "engine/warp.h"

namespace qpx {
namespace {

int32_t marginOf(uint32_t id, const Stage& stage) {
  const EffectRow* row = findEffect(id);
  if (row == nullptr || row->margin.measure == nullptr) return -1;
  return row->margin.measure(stage);
}

Stage stageOf(uint32_t format, int32_t width, int32_t height) {
  Stage stage = {};
  EXPECT_EQ(mbf_GetPixInfo(format, &stage.pix), QPX_OK);
  stage.inWidth = stage.outWidth = width;
  stage.inHeight = stage.outHeight = height;
  stage.record = stage.param.bytes;
  return stage;
}

TEST(Margins, OfTheFixGoByItsSwitch) {
  Stage stage = stageOf(QPX_FORMAT_BGR24, 64, 64);
  EXPECT_EQ(marginOf(0x5400, stage), 1);
  for (const int32_t on : {1, -1, 256}) {
    editRecord<FixParam>(stage).wideWindow = on;
    EXPECT_EQ(marginOf(0x5400, stage), 16);
  }
}

TEST(Margins, OfTheSmootherGoByTheFormat) {
  for (const uint32_t format : {QPX_FORMAT_RGB565, QPX_FORMAT_BGR24, QPX_FORMAT_RGBA32}) {
    EXPECT_EQ(marginOf(0x5700, stageOf(format, 64, 64)), 3);
  }
  EXPECT_EQ(marginOf(0x5700, stageOf(QPX_FORMAT_I444, 64, 64)), 5);
  EXPECT_EQ(marginOf(0x5700, stageOf(QPX_FORMAT_I420, 64, 64)), 0);
  EXPECT_EQ(marginOf(0x5700, stageOf(QPX_FORMAT_GREY8, 64, 64)), 0);
}

// Half the diagonal less half of the shorter side, cut.
TEST(Margins, OfTheFishEyeGoByTheSize) {
  const auto margin = [](int32_t width, int32_t height) {
    return marginOf(0x5A00, stageOf(QPX_FORMAT_BGR24, width, height));
  };
  EXPECT_EQ(margin(600, 800), 200);  // 500 - 300
  EXPECT_EQ(margin(800, 600), 200);
  EXPECT_EQ(margin(100, 100), 20);  // 70.7 - 50
  EXPECT_EQ(margin(601, 801), 200);
  EXPECT_EQ(margin(1, 1), 0);
  EXPECT_EQ(margin(1, 200), 100);
  EXPECT_EQ(margin(0, -5), 0);
  EXPECT_EQ(margin(INT32_MAX, INT32_MAX), 444758425);  // (sqrt(2) - 1) * (2^30 - 1)
}

// A rotation with a scale declares none: hosts ask QPXCalcRect for either.
TEST(Margins, OfTheRotatedEffectsAreTheDisplacementOfOneOfThem) {
  ASSERT_NE(findEffect(0x4400), nullptr);
  EXPECT_EQ(findEffect(0x4400)->margin.measure, &greatestDisplacement);
  ASSERT_NE(findEffect(0xA200), nullptr);
  EXPECT_EQ(findEffect(0xA200)->margin.measure, nullptr);
  EXPECT_EQ(findEffect(0xA200)->margin.fixed, 0);
}

}  // namespace
}  // namespace qpx
