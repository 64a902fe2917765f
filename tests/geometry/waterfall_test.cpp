#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "geometry/waterfall_model.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

class Waterfall : public ::testing::Test {
 protected:
  ~Waterfall() override {
    QPX_UsePlainForms(0);
    QPX_WaterFall_Destroy(handle_);
  }

  void create(uint32_t format, int32_t width, int32_t height, uint64_t seed = 1) {
    source_ = std::make_unique<Picture>(format, width, height, Placement::exact);
    source_->paint(seed);
    image_ = source_->bitmap();
    QPX_WaterFall_Destroy(handle_);
    ASSERT_EQ(QPX_OK, QPX_WaterFall_Create(&handle_, &image_, &record_));
    model_ = std::make_unique<WaterfallModel>(image_);
  }

  void set(int32_t id, int32_t value) const {
    ASSERT_EQ(QPX_OK, QPX_WaterFall_SetProp(handle_, id, &value, 4));
    if (id == QPX_WATERFALL_LENGTH) {
      model_->blurLength = value;
    } else {
      model_->radius = value;
      model_->feather = std::max(1, value / 5);
    }
  }

  void expectModelPicture(const std::string& what) const {
    for (int32_t y = 0; y < image_.height; ++y) {
      for (int32_t x = 0; x < image_.width; ++x) {
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(model_->value(x, y, c), sampleAt(*record_, x, y, c))
              << what << ", " << x << ", " << y << ", channel " << c;
        }
        if (bytesOf(image_) == 4) {
          ASSERT_EQ(sampleAt(image_, x, y, 3), sampleAt(*record_, x, y, 3)) << what;
        }
      }
    }
  }

  // Touches both and compares them.
  void touch(const MPoint& point, bool finish) const {
    const std::string what = "touch " + std::to_string(point.x) + ", " + std::to_string(point.y);
    MBitmap* shown = record_;
    ModelArea area;
    const bool draws = model_->touch(point, finish);
    ASSERT_EQ(QPX_OK, QPX_WaterFall_Process(handle_, &point, finish, &shown, &area.left)) << what;
    ASSERT_EQ(draws ? record_ : nullptr, shown) << what;
    if (draws) {
      ASSERT_EQ(model_->dirty(), area) << what;
    }
    expectModelPicture(what);
  }

  QPXWaterFallHandle* handle_ = nullptr;
  std::unique_ptr<Picture> source_;
  MBitmap image_ = {};
  MBitmap* record_ = nullptr;
  std::unique_ptr<WaterfallModel> model_;
};

TEST_F(Waterfall, EqualsTheModelAlongRandomStrokes) {
  constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGBA32, QPX_FORMAT_RGB24,
                                   QPX_FORMAT_BGRX32};
  Random random(9);
  for (uint64_t round = 0; round < 40; ++round) {
    create(kFormats[round % 4], random.between(1, 120), random.between(1, 90), round);
    QPX_UsePlainForms(round % 5 == 0 ? 1 : 0);
    if (round % 3 != 0) set(QPX_WATERFALL_RADIUS, random.between(1, 30));
    if (round % 4 != 0) set(QPX_WATERFALL_LENGTH, random.between(2, 90));
    for (int i = 0; i < 9; ++i) {
      const MPoint point = {random.between(-20, 140), random.between(-20, 110)};
      touch(point, i % 5 == 4);
    }
  }
}

TEST_F(Waterfall, EqualsTheModelInEveryDirection) {
  create(QPX_FORMAT_BGR24, 100, 100);
  constexpr MPoint kEnds[] = {{90, 50}, {10, 50}, {50, 90}, {50, 10}, {80, 80}, {20, 20}, {80, 20},
                              {20, 80}, {90, 51}, {51, 90}, {10, 49}, {49, 10}, {70, 90}, {30, 10}};
  for (const MPoint& end : kEnds) {
    touch({50, 50}, false);
    touch(end, true);
  }
}

TEST_F(Waterfall, EqualsTheModelInAWidePictureWithLongStrokes) {
  create(QPX_FORMAT_BGR24, 1500, 40);
  touch({20, 30}, false);
  touch({1400, 12}, false);
  touch({700, 25}, false);
  set(QPX_WATERFALL_LENGTH, 3000);
  touch({90, 5}, true);
}

TEST_F(Waterfall, DrawsNothingWithinAThirdOfTheRadius) {
  create(QPX_FORMAT_BGR24, 60, 60);
  touch({30, 30}, false);
  touch({36, 30}, false);  // 6 = 20 / 3
  touch({30, 24}, false);
  touch({34, 34}, false);
  MBitmap* shown = nullptr;
  const MPoint beyond = {37, 30};
  ASSERT_EQ(QPX_OK, QPX_WaterFall_Process(handle_, &beyond, 0, &shown, nullptr));
  EXPECT_EQ(record_, shown);
}

TEST_F(Waterfall, FinishWithoutMovingEndsTheStroke) {
  create(QPX_FORMAT_BGR24, 60, 60);
  touch({30, 30}, false);
  touch({31, 30}, true);
  MBitmap* shown = record_;
  const MPoint point = {10, 10};
  EXPECT_EQ(4, QPX_WaterFall_Process(handle_, &point, 1, &shown, nullptr));
}

// The record shows a copy with the same bytes, and the host's own picture is never written.
TEST_F(Waterfall, WorksOnACopy) {
  create(QPX_FORMAT_BGRA32, 50, 40);
  const Picture before(*source_);
  EXPECT_NE(image_.plane[0], record_->plane[0]);
  EXPECT_EQ(image_.format, record_->format);
  EXPECT_EQ(image_.pitch[0], record_->pitch[0]);
  expectModelPicture("copy");
  touch({10, 10}, false);
  touch({40, 30}, true);
  EXPECT_FALSE(before.firstDifference(*source_));
}

// A smear of a picture of one colour is that colour but for the cut of partial coverage.
TEST_F(Waterfall, OfOneColorStaysNearIt) {
  source_ = std::make_unique<Picture>(QPX_FORMAT_BGR24, 80, 80, Placement::exact);
  source_->fill(200);
  image_ = source_->bitmap();
  ASSERT_EQ(QPX_OK, QPX_WaterFall_Create(&handle_, &image_, &record_));
  MBitmap* shown = nullptr;
  const MPoint a = {20, 20}, b = {60, 50};
  ASSERT_EQ(QPX_OK, QPX_WaterFall_Process(handle_, &a, 0, &shown, nullptr));
  ASSERT_EQ(QPX_OK, QPX_WaterFall_Process(handle_, &b, 1, &shown, nullptr));
  EXPECT_EQ(200, sampleAt(*shown, 40, 35, 0));
  for (int32_t y = 0; y < 80; ++y) {
    for (int32_t x = 0; x < 80; ++x) EXPECT_NEAR(200, sampleAt(*shown, x, y, 1), 1);
  }
}

TEST_F(Waterfall, TakesTouchesAnywhere) {
  constexpr int32_t kFar[] = {INT_MIN, INT_MIN + 1, -100000, -1, 0, 5, 63, 64, 100000, INT_MAX};
  Random random(3);
  for (const int32_t radius : {1, 20, 1000, INT_MAX}) {
    create(QPX_FORMAT_BGR24, 64, 48);
    const int32_t length = radius == 20 ? INT_MAX : 40;
    ASSERT_EQ(QPX_OK, QPX_WaterFall_SetProp(handle_, QPX_WATERFALL_RADIUS, &radius, 4));
    ASSERT_EQ(QPX_OK, QPX_WaterFall_SetProp(handle_, QPX_WATERFALL_LENGTH, &length, 4));
    for (int i = 0; i < 60; ++i) {
      const MPoint point = {kFar[random.next() % 10], kFar[random.next() % 10]};
      MBitmap* shown = nullptr;
      int32_t area[4] = {1, 1, 0, 0};
      ASSERT_EQ(QPX_OK, QPX_WaterFall_Process(handle_, &point, 0, &shown, area));
      const bool empty = area[0] == 1 && area[1] == 1 && area[2] == 0 && area[3] == 0;
      const bool inside = area[0] >= 0 && area[1] >= 0 && area[2] < 64 && area[3] < 48 &&
                          area[0] <= area[2] && area[1] <= area[3];
      EXPECT_TRUE(empty || inside);
    }
  }
}

// Far points, but near enough for the model to walk all of the way.
TEST_F(Waterfall, EqualsTheModelFarOutsideThePicture) {
  for (const int32_t radius : {3, 20, 150}) {
    create(QPX_FORMAT_RGB24, 70, 50);
    set(QPX_WATERFALL_RADIUS, radius);
    touch({-900, -700}, false);
    touch({1000, 800}, false);
    touch({1000, -300}, false);
    touch({35, 25}, false);
    touch({-2000, 30}, false);
    touch({35, 900}, false);
    touch({200, 20}, true);
  }
}

TEST_F(Waterfall, RefusesBadArguments) {
  create(QPX_FORMAT_BGR24, 40, 30);
  const MPoint point = {3, 4};
  MBitmap* shown = record_;
  int32_t started = 7;
  EXPECT_EQ(2, QPX_WaterFall_Process(nullptr, &point, 0, &shown, nullptr));
  EXPECT_EQ(3, QPX_WaterFall_Process(handle_, nullptr, 0, &shown, nullptr));
  EXPECT_EQ(5, QPX_WaterFall_Process(handle_, &point, 0, nullptr, nullptr));
  EXPECT_EQ(4, QPX_WaterFall_Process(handle_, &point, 1, &shown, nullptr));
  EXPECT_EQ(2, QPX_WaterFall_ProcessAsync(nullptr, &point, 0, &started));
  EXPECT_EQ(3, QPX_WaterFall_ProcessAsync(handle_, nullptr, 0, &started));
  EXPECT_EQ(5, QPX_WaterFall_ProcessAsync(handle_, &point, 0, nullptr));
  EXPECT_EQ(4, QPX_WaterFall_ProcessAsync(handle_, &point, 1, &started));
  EXPECT_EQ(record_, shown);
  EXPECT_EQ(7, started);
  // None of these was taken for the first point.
  EXPECT_EQ(4, QPX_WaterFall_Process(handle_, &point, 1, &shown, nullptr));
  EXPECT_EQ(2, QPX_WaterFall_Dostep(nullptr, 0, &shown, nullptr));
  EXPECT_EQ(2, QPX_WaterFall_Destroy(nullptr));
}

TEST_F(Waterfall, FirstPointIsKeptAndShowsNothing) {
  create(QPX_FORMAT_BGR24, 40, 30);
  const MPoint point = {3, 4};
  MBitmap* shown = record_;
  int32_t area[4] = {9, 9, 9, 9};
  EXPECT_EQ(0, QPX_WaterFall_Process(handle_, &point, 0, &shown, area));
  EXPECT_EQ(nullptr, shown);
  EXPECT_EQ(9, area[0]);
  const MPoint other = {30, 4};
  EXPECT_EQ(0, QPX_WaterFall_Process(handle_, &other, 1, &shown, area));
  EXPECT_EQ(record_, shown);
  EXPECT_EQ(0, area[0]);
}

TEST_F(Waterfall, CreateRefusesBadPictures) {
  QPXWaterFallHandle* const stale = reinterpret_cast<QPXWaterFallHandle*>(&image_);
  Picture picture(QPX_FORMAT_BGR24, 8, 6, Placement::exact);
  const auto code = [&](const auto& change) {
    MBitmap image = picture.bitmap();
    change(image);
    QPXWaterFallHandle* made = stale;
    MBitmap* record = &image;
    const int32_t result = QPX_WaterFall_Create(&made, &image, &record);
    EXPECT_EQ(nullptr, made);
    EXPECT_EQ(&image, record);
    return result;
  };
  for (const uint32_t format : {0u, uint32_t{QPX_FORMAT_RGB565}, uint32_t{QPX_FORMAT_GREY8},
                                uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_BGR666}}) {
    EXPECT_EQ(5, code([=](MBitmap& image) { image.format = format; }));
  }
  EXPECT_EQ(2, code([](MBitmap& image) { image.width = 0; }));
  EXPECT_EQ(2, code([](MBitmap& image) { image.height = -3; }));
  EXPECT_EQ(2, code([](MBitmap& image) { image.plane[0] = nullptr; }));
  EXPECT_EQ(2, code([](MBitmap& image) { image.pitch[0] = 23; }));
  EXPECT_EQ(2, code([](MBitmap& image) {
              image.height = INT_MAX;
              image.pitch[0] = INT_MAX;
            }));
  const MBitmap image = picture.bitmap();
  QPXWaterFallHandle* made = stale;
  EXPECT_EQ(2, QPX_WaterFall_Create(nullptr, &image, nullptr));
  EXPECT_EQ(2, QPX_WaterFall_Create(&made, nullptr, nullptr));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(0, QPX_WaterFall_Create(&made, &image, nullptr));
  EXPECT_EQ(0, QPX_WaterFall_Destroy(made));
}

TEST_F(Waterfall, Properties) {
  create(QPX_FORMAT_BGR24, 40, 30);
  const auto get = [&](int32_t id) {
    int32_t value = -1;
    EXPECT_EQ(0, QPX_WaterFall_GetProp(handle_, id, &value, 4));
    return value;
  };
  const auto setTo = [&](int32_t id, int32_t value) {
    return QPX_WaterFall_SetProp(handle_, id, &value, 4);
  };
  EXPECT_EQ(40, get(1));
  EXPECT_EQ(20, get(2));
  EXPECT_EQ(0, setTo(1, 2));
  EXPECT_EQ(0, setTo(2, 1));
  for (const int32_t value : {1, 0, -5, INT_MIN}) EXPECT_EQ(12, setTo(1, value));
  for (const int32_t value : {0, -1, INT_MIN}) EXPECT_EQ(12, setTo(2, value));
  EXPECT_EQ(2, get(1));
  EXPECT_EQ(1, get(2));
  EXPECT_EQ(0, setTo(1, INT_MAX));
  EXPECT_EQ(INT_MAX, get(1));
  for (const int32_t id : {0, 3, -1}) {
    int32_t value = 9;
    EXPECT_EQ(3, setTo(id, 5));
    EXPECT_EQ(3, QPX_WaterFall_GetProp(handle_, id, &value, 4));
    EXPECT_EQ(9, value);
  }
  for (const int32_t size : {0, 1, 8, -4}) {
    int32_t values[2] = {9, 9};
    EXPECT_EQ(5, QPX_WaterFall_SetProp(handle_, 1, values, size));
    EXPECT_EQ(5, QPX_WaterFall_GetProp(handle_, 1, values, size));
    EXPECT_EQ(9, values[0]);
  }
  int32_t value = 5;
  EXPECT_EQ(2, QPX_WaterFall_SetProp(nullptr, 1, &value, 4));
  EXPECT_EQ(2, QPX_WaterFall_SetProp(handle_, 1, nullptr, 4));
  EXPECT_EQ(2, QPX_WaterFall_GetProp(nullptr, 1, &value, 4));
  EXPECT_EQ(2, QPX_WaterFall_GetProp(handle_, 1, nullptr, 4));
}

// Radius 3 has a feather of 1: the band is full up to 2 and faded at 3, where a feather of 0 would
// divide by nothing.
TEST_F(Waterfall, SmallRadiusKeepsAFeather) {
  for (const int32_t radius : {1, 2, 3, 4, 5, 9, 10}) {
    create(QPX_FORMAT_BGR24, 40, 30);
    set(QPX_WATERFALL_RADIUS, radius);
    touch({10, 10}, false);
    touch({30, 20}, true);
  }
}

TEST(WaterfallMemory, FailuresLoseNothing) {
  FailingMemory::reset();
  Picture picture(QPX_FORMAT_BGR24, 40, 30, Placement::exact);
  picture.paint(2);
  const MBitmap image = picture.bitmap();
  for (const bool firstOnly : {true, false}) {
    const int64_t runs = FailingMemory::forEachFailure(firstOnly, [&] {
      QPXWaterFallHandle* handle = nullptr;
      MBitmap* record = nullptr;
      const int32_t result = QPX_WaterFall_Create(&handle, &image, &record);
      EXPECT_EQ(FailingMemory::failures() > 0 ? 2 : 0, result);
      EXPECT_EQ(result == 0, handle != nullptr);
      EXPECT_EQ(result == 0, record != nullptr);
      if (handle != nullptr) {
        // Nothing is allocated behind create.
        const int64_t allocations = FailingMemory::allocations();
        const MPoint points[] = {{5, 5}, {35, 20}, {3, 25}};
        for (const MPoint& point : points) {
          EXPECT_EQ(0, QPX_WaterFall_Process(handle, &point, 0, &record, nullptr));
        }
        EXPECT_EQ(allocations, FailingMemory::allocations());
        EXPECT_EQ(0, QPX_WaterFall_Destroy(handle));
      }
      EXPECT_EQ(0, FailingMemory::liveBlocks());
    });
    EXPECT_EQ(4, runs);
  }
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
