// The waterfall in steps of any size against the call that does all at once.
#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <cstring>
#include <optional>

#include "geometry/waterfall_model.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

class WaterfallSteps : public ::testing::Test {
 protected:
  ~WaterfallSteps() override {
    QPX_UsePlainForms(0);
    QPX_WaterFall_Destroy(whole_);
    QPX_WaterFall_Destroy(steps_);
  }

  void create(int32_t width, int32_t height) {
    Picture picture(QPX_FORMAT_BGR24, width, height, Placement::exact);
    picture.paint(5);
    const MBitmap image = picture.bitmap();
    ASSERT_EQ(QPX_OK, QPX_WaterFall_Create(&whole_, &image, &wholeRecord_));
    ASSERT_EQ(QPX_OK, QPX_WaterFall_Create(&steps_, &image, &stepsRecord_));
    model_.emplace(image);
  }

  void expectSamePicture() const {
    const size_t bytes =
        static_cast<size_t>(wholeRecord_->pitch[0]) * static_cast<size_t>(wholeRecord_->height);
    EXPECT_EQ(0, std::memcmp(wholeRecord_->plane[0], stepsRecord_->plane[0], bytes));
  }

  void expectModelPicture() const {
    for (int32_t y = 0; y < stepsRecord_->height; ++y) {
      for (int32_t x = 0; x < stepsRecord_->width; ++x) {
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(model_->value(x, y, c), sampleAt(*stepsRecord_, x, y, c)) << x << ", " << y;
        }
      }
    }
  }

  // Prepares the segment in one handle and draws it in the other; returns whether there was one.
  bool start(const MPoint& point, bool finish) {
    MBitmap* shown = nullptr;
    int32_t started = -1;
    EXPECT_EQ(0, QPX_WaterFall_Process(whole_, &point, finish, &shown, area_));
    EXPECT_EQ(0, QPX_WaterFall_ProcessAsync(steps_, &point, finish, &started));
    EXPECT_EQ(shown != nullptr ? 1 : 0, started);
    return started == 1;
  }

  // Steps until the end; returns how many calls it took.
  int finish(uint32_t milliseconds) {
    for (int calls = 1;; ++calls) {
      MBitmap* shown = wholeRecord_;
      int32_t area[4] = {-9, -9, -9, -9};
      EXPECT_EQ(0, QPX_WaterFall_Dostep(steps_, milliseconds, &shown, area));
      if (shown == nullptr) {
        EXPECT_EQ(-9, area[0]);
        if (calls > 100000) return -1;
        continue;
      }
      EXPECT_EQ(stepsRecord_, shown);
      EXPECT_EQ(0, std::memcmp(area_, area, sizeof area));
      return calls;
    }
  }

  QPXWaterFallHandle* whole_ = nullptr;
  QPXWaterFallHandle* steps_ = nullptr;
  MBitmap* wholeRecord_ = nullptr;
  MBitmap* stepsRecord_ = nullptr;
  std::optional<WaterfallModel> model_;
  int32_t area_[4] = {};
};

TEST_F(WaterfallSteps, GiveTheSamePicture) {
  create(300, 200);
  Random random(6);
  for (const uint32_t milliseconds : {0u, 1u, 2u, 1000u, 0xFFFFFFFFu}) {
    for (int i = 0; i < 6; ++i) {
      const MPoint point = {random.between(-30, 330), random.between(-30, 230)};
      if (start(point, i == 5)) {
        const int calls = finish(milliseconds);
        EXPECT_GE(calls, 1);
        if (milliseconds == 0 || milliseconds == 0xFFFFFFFFu) {
          EXPECT_EQ(1, calls);
        }
      }
      expectSamePicture();
    }
  }
}

// A row that takes longer than the limit would otherwise be filtered for ever.
TEST_F(WaterfallSteps, GetOnWithRowsSlowerThanTheLimit) {
  create(2400, 40);
  const int32_t radius = 15, length = 600;
  QPX_UsePlainForms(1);
  for (QPXWaterFallHandle* handle : {whole_, steps_}) {
    ASSERT_EQ(0, QPX_WaterFall_SetProp(handle, QPX_WATERFALL_RADIUS, &radius, 4));
    ASSERT_EQ(0, QPX_WaterFall_SetProp(handle, QPX_WATERFALL_LENGTH, &length, 4));
  }
  start({5, 20}, false);
  ASSERT_TRUE(start({2390, 21}, false));
  const int calls = finish(1);
  EXPECT_GT(calls, 1);
  EXPECT_LE(calls, 40);
  expectSamePicture();
}

TEST_F(WaterfallSteps, OfAnIdleHandleDoNothing) {
  create(60, 40);
  MBitmap* shown = wholeRecord_;
  int32_t area[4] = {-9, -9, -9, -9};
  EXPECT_EQ(0, QPX_WaterFall_Dostep(steps_, 0, &shown, area));
  EXPECT_EQ(nullptr, shown);
  EXPECT_EQ(-9, area[0]);
  start({10, 10}, false);
  EXPECT_EQ(0, QPX_WaterFall_Dostep(steps_, 5, &shown, area));
  EXPECT_EQ(nullptr, shown);
  ASSERT_TRUE(start({50, 30}, true));
  finish(0);
  EXPECT_EQ(0, QPX_WaterFall_Dostep(steps_, 0, &shown, area));
  EXPECT_EQ(nullptr, shown);
  EXPECT_EQ(0, QPX_WaterFall_Dostep(steps_, 0, nullptr, nullptr));
  expectSamePicture();
}

TEST_F(WaterfallSteps, RefuseASegmentBeforeTheLastIsDone) {
  create(60, 40);
  start({10, 10}, false);
  ASSERT_TRUE(start({50, 30}, false));
  const MPoint next = {5, 35};
  int32_t started = 7;
  EXPECT_EQ(12, QPX_WaterFall_ProcessAsync(steps_, &next, 0, &started));
  EXPECT_EQ(12, QPX_WaterFall_ProcessAsync(steps_, &next, 1, &started));
  EXPECT_EQ(7, started);
  finish(0);
  ASSERT_TRUE(start(next, true));
  EXPECT_EQ(1, finish(0));
  expectSamePicture();
}

// Process does not look: a new segment goes on from what the unfinished one has become.
TEST_F(WaterfallSteps, AreGivenUpForASegmentAtOnce) {
  create(60, 40);
  MBitmap* shown = nullptr;
  int32_t started = 0;
  const MPoint points[] = {{10, 10}, {50, 30}, {5, 35}};
  EXPECT_EQ(0, QPX_WaterFall_ProcessAsync(steps_, &points[0], 0, &started));
  EXPECT_EQ(0, QPX_WaterFall_ProcessAsync(steps_, &points[1], 0, &started));
  EXPECT_EQ(1, started);
  EXPECT_EQ(0, QPX_WaterFall_Process(steps_, &points[2], 1, &shown, nullptr));
  EXPECT_EQ(stepsRecord_, shown);
  model_->touch(points[0], false);
  model_->touch(points[1], false, false);
  model_->touch(points[2], true);
  expectModelPicture();
  EXPECT_EQ(0, QPX_WaterFall_Dostep(steps_, 0, &shown, nullptr));
  EXPECT_EQ(nullptr, shown);
  EXPECT_EQ(0, QPX_WaterFall_ProcessAsync(steps_, &points[0], 0, &started));
  EXPECT_EQ(0, started);
}

TEST_F(WaterfallSteps, MayBeDestroyedInTheMiddle) {
  create(60, 40);
  start({10, 10}, false);
  start({50, 30}, false);
  EXPECT_EQ(0, QPX_WaterFall_Destroy(steps_));
  steps_ = nullptr;
}

}  // namespace
}  // namespace qpx::testing
