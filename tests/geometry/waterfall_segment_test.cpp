// The waterfall's one segment in one call.
#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "geometry/smear_pictures.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

constexpr double kPi = 3.1415926535;

using Mask = std::vector<uint8_t>;

// A plain model, step by step.
class Model {
 public:
  Model(const MBitmap& src, MPoint& p0, MPoint& p1, int32_t radius, int32_t blurLength)
      : src_(src), width_(src.width), height_(src.height), radius_(radius) {
    if (p1.y < p0.y || (p1.y == p0.y && p1.x > p0.x)) std::swap(p0, p1);
    const double run = static_cast<double>(p0.x) - p1.x, rise = static_cast<double>(p1.y) - p0.y;
    angle_ = run == 0    ? 90
             : rise == 0 ? 0
             : run > 0   ? std::atan(rise / run) * 180 / kPi
                         : 180 - std::atan(rise / -run) * 180 / kPi;
    distance_ = std::sqrt(run * run + rise * rise);
    const double w = width_, h = height_;
    const int32_t size = static_cast<int32_t>(std::sqrt(w * w + h * h) + 10.0);
    half_ = std::min(size - 10, blurLength) >> 1;
    const Mask painted = paint(p0);
    soft_ = smooth(smooth(closed(painted), 1, 0), 0, 1);
  }

  int32_t value(int32_t x, int32_t y, int c) const {
    const int32_t m = at(soft_, x, y);
    const int32_t source = sampleAt(src_, x, y, c);
    if (m == 0) return source;
    const int32_t degrees = static_cast<int32_t>(angle_);
    const int32_t sin = step(std::sin(degrees * kPi / 180)),
                  cos = step(std::cos(degrees * kPi / 180));
    int64_t sum = 0, n = 0;
    for (int32_t t = -half_; t <= half_; ++t) {
      const int32_t dx = (t * cos) >> 8, dy = (t * sin) >> 8;
      const int32_t px = degrees < 90 ? x + dx : x - dx, py = y - dy;
      if (!inside(px, py) || at(soft_, px, py) == 0) continue;
      sum += sampleAt(src_, px, py, c);
      ++n;
    }
    const int64_t mean = ((0x100000 / n) * sum) >> 20;
    return static_cast<int32_t>(std::clamp<int64_t>(((255 - m) * source + m * mean) >> 8, 0, 255));
  }

  bool touched(int32_t x, int32_t y) const { return at(soft_, x, y) != 0; }

 private:
  static int32_t step(double value) { return static_cast<int32_t>(0.5 + std::fabs(value) * 256); }
  bool inside(int64_t x, int64_t y) const { return x >= 0 && x < width_ && y >= 0 && y < height_; }
  int32_t at(const Mask& mask, int32_t x, int32_t y) const {
    return mask[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
  }
  void put(Mask& mask, int64_t x, int64_t y) const {
    if (inside(x, y)) mask[static_cast<size_t>(y * width_ + x)] = 255;
  }

  Mask paint(const MPoint& p0) const {
    Mask mask(static_cast<size_t>(width_) * static_cast<size_t>(height_));
    const int64_t cos = step(std::cos(angle_ * kPi / 180)),
                  sin = step(std::sin(angle_ * kPi / 180));
    for (int64_t k = 0; k < static_cast<int64_t>(distance_ + 0.5); ++k) {
      const int64_t way = (cos * k + 128) >> 8;
      const int64_t cx = angle_ < 90 ? p0.x - way : p0.x + way;
      const int64_t cy = p0.y + ((sin * k + 128) >> 8);
      for (int64_t j = 0; j <= radius_; ++j) {
        const int64_t a = (sin * j + 128) >> 8, b = (cos * j + 128) >> 8;
        if (angle_ < 90) {
          put(mask, cx - a, cy - b);
          put(mask, cx + a, cy + b);
        } else {
          put(mask, cx + a, cy - b);
          put(mask, cx - a, cy + b);
        }
      }
    }
    return mask;
  }

  Mask closed(const Mask& from) const {
    Mask to = from;
    for (int32_t y = 1; y < height_ - 1; ++y) {
      for (int32_t x = 1; x < width_ - 1; ++x) {
        int32_t neighbours = 0;
        for (int32_t dy = -1; dy <= 1; ++dy) {
          for (int32_t dx = -1; dx <= 1; ++dx) {
            neighbours += (dx != 0 || dy != 0) && at(from, x + dx, y + dy) != 0;
          }
        }
        if (at(from, x, y) == 0 && neighbours > 3) put(to, x, y);
      }
    }
    return to;
  }

  Mask smooth(const Mask& from, int32_t across, int32_t down) const {
    double weights[19], total = 0;
    for (int i = 0; i < 19; ++i) total += weights[i] = std::exp(-(i - 9) * (i - 9) / 18.0);
    Mask to(from.size());
    for (int32_t y = 0; y < height_; ++y) {
      for (int32_t x = 0; x < width_; ++x) {
        int64_t sum = 0;
        for (int i = 0; i < 19; ++i) {
          const int32_t px = std::clamp(x + across * (i - 9), 0, width_ - 1);
          const int32_t py = std::clamp(y + down * (i - 9), 0, height_ - 1);
          sum += static_cast<int64_t>(weights[i] / total * 65536) * at(from, px, py);
        }
        to[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)] =
            static_cast<uint8_t>(std::clamp<int64_t>(sum >> 16, 0, 255));
      }
    }
    return to;
  }

  const MBitmap& src_;
  int32_t width_, height_, radius_, half_ = 0;
  double angle_ = 0, distance_ = 0;
  Mask soft_;
};

class WaterfallSegment : public ::testing::Test {
 protected:
  ~WaterfallSegment() override { QPX_UsePlainForms(0); }

  static void expectModel(uint32_t format, int32_t width, int32_t height, MPoint p0, MPoint p1,
                          int32_t radius, int32_t length) {
    Picture src(format, width, height, Placement::exact);
    src.paint(static_cast<uint64_t>(width));
    Picture dst(format, width, height, Placement::guarded);
    dst.fill(0xEE);
    const Picture before(dst);
    const MBitmap from = src.bitmap();
    MBitmap to = dst.bitmap();
    MPoint first = p0, second = p1;
    const Model expected(from, first, second, radius, length);
    ASSERT_EQ(QPX_OK, QPX_Waterfall(&from, &p0, &p1, radius, length, &to));
    const std::string what = std::to_string(width) + "x" + std::to_string(height) + ", " +
                             std::to_string(p0.x) + "," + std::to_string(p0.y) + " to " +
                             std::to_string(p1.x) + "," + std::to_string(p1.y) + ", radius " +
                             std::to_string(radius) + ", length " + std::to_string(length);
    EXPECT_EQ(first.x, p0.x) << what;
    EXPECT_EQ(first.y, p0.y) << what;
    EXPECT_EQ(second.x, p1.x) << what;
    EXPECT_EQ(second.y, p1.y) << what;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(expected.value(x, y, c), sampleAt(to, x, y, c))
              << what << " at " << x << ", " << y << ", channel " << c;
        }
        if (bytesOf(from) == 4) {
          ASSERT_EQ(sampleAt(from, x, y, 3), sampleAt(to, x, y, 3)) << what;
        }
      }
    }
    EXPECT_FALSE(dst.firstWriteOutside(before, {0, 0, width, height})) << what;
  }
};

TEST_F(WaterfallSegment, EqualsTheModel) {
  constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGBA32, QPX_FORMAT_RGB24,
                                   QPX_FORMAT_BGRX32};
  Random random(8);
  for (uint64_t i = 0; i < 120; ++i) {
    QPX_UsePlainForms(i % 4 == 0 ? 1 : 0);
    const int32_t width = random.between(1, 70), height = random.between(1, 60);
    const MPoint p0 = {random.between(-15, 80), random.between(-15, 70)};
    const MPoint p1 = {random.between(-15, 80), random.between(-15, 70)};
    expectModel(kFormats[i % 4], width, height, p0, p1, random.between(1, 20),
                random.between(1, 60));
  }
}

TEST_F(WaterfallSegment, EqualsTheModelInEveryDirection) {
  constexpr MPoint kEnds[] = {{90, 50}, {10, 50}, {50, 90}, {50, 10}, {80, 80}, {20, 20}, {80, 20},
                              {20, 80}, {90, 51}, {51, 90}, {10, 49}, {49, 10}, {50, 50}};
  for (const MPoint& end : kEnds) {
    expectModel(QPX_FORMAT_BGR24, 100, 100, {50, 50}, end, 7, 31);
  }
}

TEST_F(WaterfallSegment, EqualsTheModelInLargePicturesAndFarAway) {
  expectModel(QPX_FORMAT_BGR24, 1200, 30, {10, 20}, {1190, 9}, 5, 900);
  expectModel(QPX_FORMAT_BGR24, 1200, 12, {0, 5}, {1199, 5}, 3, 4000);
  expectModel(QPX_FORMAT_BGR24, 12, 700, {5, 0}, {5, 699}, 3, 4000);
  expectModel(QPX_FORMAT_BGR24, 50, 40, {-3000, -2500}, {3000, 2600}, 9, 30);
  expectModel(QPX_FORMAT_BGR24, 50, 40, {-3000, 2500}, {3000, -2400}, 9, 30);
  expectModel(QPX_FORMAT_BGR24, 50, 40, {-500, 20}, {-300, 25}, 9, 30);
  expectModel(QPX_FORMAT_BGR24, 50, 40, {5, 20}, {45, 25}, 400, INT_MAX);
}

TEST_F(WaterfallSegment, TakesPointsAndSizesWithoutLimit) {
  constexpr int32_t kFar[] = {INT_MIN, -70000, 0, 20, INT_MAX};
  Picture src(QPX_FORMAT_BGR24, 40, 30, Placement::exact);
  src.paint(1);
  Picture dst(QPX_FORMAT_BGR24, 40, 30, Placement::guarded);
  const Picture before(dst);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  for (const int32_t x0 : kFar) {
    for (const int32_t y0 : kFar) {
      for (const int32_t x1 : kFar) {
        for (const int32_t radius : {1, INT_MAX}) {
          MPoint p0 = {x0, y0}, p1 = {x1, 7};
          ASSERT_EQ(QPX_OK, QPX_Waterfall(&from, &p0, &p1, radius, INT_MAX, &to));
          ASSERT_TRUE(p0.y < p1.y || (p0.y == p1.y && p0.x >= p1.x));
        }
      }
    }
  }
  EXPECT_FALSE(dst.firstWriteOutside(before, {0, 0, 40, 30}));
}

TEST_F(WaterfallSegment, RefusesWhatItCannotServe) {
  Picture src(QPX_FORMAT_BGR24, 12, 9, Placement::guarded);
  Picture dst(QPX_FORMAT_BGR24, 12, 9, Placement::guarded);
  const Picture before(dst);
  const MBitmap from = src.bitmap(), to = dst.bitmap();
  const MPoint start = {2, 8}, end = {9, 1};
  const auto code = [&](const auto& change, int32_t radius = 3, int32_t length = 5) {
    MBitmap s = from, d = to;
    MPoint p0 = start, p1 = end;
    change(s, d);
    const int32_t result = QPX_Waterfall(&s, &p0, &p1, radius, length, &d);
    EXPECT_EQ(start.y, p0.y);
    return result;
  };
  const auto nothing = [](MBitmap&, MBitmap&) {};
  for (const int32_t value : {0, -1, INT_MIN}) {
    EXPECT_EQ(2, code(nothing, value));
    EXPECT_EQ(2, code(nothing, 3, value));
    EXPECT_EQ(2, code([=](MBitmap& s, MBitmap& d) { s.width = d.width = value; }));
    EXPECT_EQ(2, code([=](MBitmap& s, MBitmap& d) { s.height = d.height = value; }));
  }
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& d) { --d.width; }));
  EXPECT_EQ(2, code([](MBitmap& s, MBitmap&) { --s.height; }));
  EXPECT_EQ(2, code([](MBitmap& s, MBitmap&) { s.plane[0] = nullptr; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& d) { d.plane[0] = nullptr; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& d) { d.pitch[0] = 35; }));
  EXPECT_EQ(2, code([](MBitmap& s, MBitmap&) { s.format = QPX_FORMAT_RGBA32; }));
  EXPECT_EQ(3, code([](MBitmap& s, MBitmap& d) { s.format = d.format = QPX_FORMAT_RGB565; }));
  EXPECT_EQ(3, code([](MBitmap&, MBitmap& d) { d.format = QPX_FORMAT_NV21; }));
  EXPECT_FALSE(dst.firstWriteOutside(before, {}));
}

TEST_F(WaterfallSegment, AnswersFourWithoutMemory) {
  FailingMemory::reset();
  Picture src(QPX_FORMAT_BGR24, 40, 30, Placement::exact);
  src.paint(1);
  Picture dst(QPX_FORMAT_BGR24, 40, 30, Placement::guarded);
  const Picture before(dst);
  const int64_t runs = FailingMemory::forEachFailure(true, [&] {
    const MBitmap from = src.bitmap();
    MBitmap to = dst.bitmap();
    MPoint p0 = {5, 25}, p1 = {35, 5};
    const int32_t result = QPX_Waterfall(&from, &p0, &p1, 4, 20, &to);
    const bool failed = FailingMemory::failures() > 0;
    EXPECT_EQ(failed ? QPX_NO_MEMORY : QPX_OK, result);
    EXPECT_EQ(failed ? 25 : 5, p0.y);
    EXPECT_EQ(0, FailingMemory::liveBlocks());
    if (failed) {
      EXPECT_FALSE(dst.firstWriteOutside(before, {}));
    }
  });
  EXPECT_EQ(3, runs);
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
