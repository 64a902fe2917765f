#include <gtest/gtest.h>
#include <qpx/curves.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/failing_memory.h"
#include "support/picture.h"
#include "toolkit/curve.h"

namespace qpx {
namespace {

using testing::FailingMemory;
using testing::Random;

constexpr uint8_t kUntouched = 0xEE;

struct Points {
  std::vector<uint8_t> x, y;
};

struct Result {
  int32_t code;
  std::vector<uint8_t> table;
};

Result build(const Points& points) {
  Result result{0, std::vector<uint8_t>(256, kUntouched)};
  result.code = BuildSplineCurve(points.x.data(), points.y.data(),
                                 static_cast<int32_t>(points.x.size()), result.table.data());
  return result;
}

// The spline once more, step by step as a textbook lists them, with arrays that start at 0.
// `volatile` forbids the compiler any arithmetic wider than single precision.
std::vector<uint8_t> textbookSpline(const Points& p) {
  const int n = static_cast<int>(p.x.size());
  using Floats = std::vector<float>;
  Floats h(256), s(256), mu(256), d(256), b(256), z(256), m(256);
  for (int i = 0; i <= n - 2; ++i) {
    h[i] = static_cast<float>(p.x[i + 1]) - static_cast<float>(p.x[i]);
    s[i] = (static_cast<float>(p.y[i + 1]) - static_cast<float>(p.y[i])) / h[i];
  }
  for (int i = 1; i <= n - 2; ++i) {
    mu[i] = h[i - 1] / (h[i - 1] + h[i]);
    const volatile float six = 6.0f * (s[i] - s[i - 1]);
    d[i] = six / static_cast<float>(p.x[i + 1] - p.x[i - 1]);
  }
  if (n > 2) {
    b[1] = 2.0f;
    z[1] = d[1];
    for (int i = 2; i <= n - 2; ++i) {
      const volatile float l = mu[i] / b[i - 1];
      const volatile float taken = l * (1.0f - mu[i - 1]);
      const volatile float product = z[i - 1] * l;
      b[i] = 2.0f - taken;
      z[i] = d[i] - product;
    }
    m[n - 2] = z[n - 2] / b[n - 2];
    for (int i = n - 3; i >= 1; --i) {
      const volatile float product = (1.0f - mu[i]) * m[i + 1];
      m[i] = (z[i] - product) / b[i];
    }
  }
  m[0] = m[n - 1] = 0.0f;

  std::vector<uint8_t> table(256, kUntouched);
  for (int t = 0; t < p.x[0]; ++t) table[t] = p.y[0];
  for (int i = 0; i <= n - 2; ++i) {
    for (int t = p.x[i]; t < p.x[i + 1]; ++t) {
      const float u = static_cast<float>(t - p.x[i]);
      const volatile float sum = m[i] / 3.0f + m[i + 1] / 6.0f;
      const volatile float bend = sum * h[i];
      const volatile float line = (s[i] - bend) * u;
      const volatile float linear = static_cast<float>(p.y[i]) + line;
      const double quadratic = double{u} * (double{m[i]} * 0.5 * double{u});
      const volatile float cube = u * u * u;
      const volatile float cubicTop = (m[i + 1] - m[i]) * cube;
      const volatile float cubic = cubicTop / (6.0f * h[i]);
      const double v = double{linear} + quadratic + double{cubic};
      table[t] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
  }
  for (int t = p.x[n - 1]; t < 256; ++t) table[t] = p.y[n - 1];
  return table;
}

Points randomPoints(Random& random) {
  const int32_t count = random.between(2, 12);
  std::vector<uint8_t> all(256);
  for (size_t i = 0; i < 256; ++i) all[i] = static_cast<uint8_t>(i);
  Points points;
  for (int32_t i = 0; i < count; ++i) {
    std::swap(all[static_cast<size_t>(i)], all[static_cast<size_t>(random.between(i, 255))]);
    points.x.push_back(all[static_cast<size_t>(i)]);
    points.y.push_back(random.byte());
  }
  std::sort(points.x.begin(), points.x.end());
  return points;
}

TEST(SplineCurve, RandomPointsGiveTheTextbookSpline) {
  Random random(1);
  for (int round = 0; round < 5000; ++round) {
    const Points points = randomPoints(random);
    const Result result = build(points);
    ASSERT_EQ(result.code, QPX_OK);
    ASSERT_EQ(result.table, textbookSpline(points)) << "round " << round;
  }
}

TEST(SplineCurve, TwoEndPointsGiveTheIdentity) {
  const Result result = build({{0, 255}, {0, 255}});
  ASSERT_EQ(result.code, QPX_OK);
  for (size_t i = 0; i < 256; ++i) EXPECT_EQ(result.table[i], i);
}

TEST(SplineCurve, FlatOutsideItsPoints) {
  const Result result = build({{64, 192}, {10, 200}});
  ASSERT_EQ(result.code, QPX_OK);
  for (size_t i = 0; i <= 63; ++i) EXPECT_EQ(result.table[i], 10);
  for (size_t i = 192; i <= 255; ++i) EXPECT_EQ(result.table[i], 200);
  EXPECT_EQ(result.table[128], 105);  // half way
}

TEST(SplineCurve, ValuesAreTruncatedNotRounded) {
  // A rise of 3 in 4 steps: 0, 0.75, 1.5, 2.25.
  const Result result = build({{0, 4}, {0, 3}});
  EXPECT_EQ(result.table[1], 0);
  EXPECT_EQ(result.table[2], 1);
  EXPECT_EQ(result.table[3], 2);
}

TEST(SplineCurve, PassesThroughItsPoints) {
  const Result result = build({{0, 40, 128, 200, 255}, {12, 80, 120, 230, 240}});
  EXPECT_EQ(result.table[0], 12);
  EXPECT_EQ(result.table[40], 80);
  EXPECT_EQ(result.table[128], 120);
  EXPECT_EQ(result.table[200], 230);
  EXPECT_EQ(result.table[255], 240);
}

TEST(SplineCurve, OvershootIsClampedAtBothEnds) {
  const Result high = build({{0, 100, 110, 255}, {0, 250, 255, 255}});
  EXPECT_EQ(*std::max_element(high.table.begin(), high.table.end()), 255);
  EXPECT_EQ(high.table[180], 255);
  const Result low = build({{0, 100, 110, 255}, {255, 5, 0, 0}});
  EXPECT_EQ(low.table[180], 0);
}

TEST(SplineCurve, FewerThanTwoPointsAreRefused) {
  for (const int32_t count : {1, 0, -1, INT32_MIN}) {
    const uint8_t xs[] = {3, 9}, ys[] = {3, 9};
    std::vector<uint8_t> table(256, kUntouched);
    EXPECT_EQ(BuildSplineCurve(xs, ys, count, table.data()), QPX_BAD_PARAM);
    EXPECT_EQ(table, std::vector<uint8_t>(256, kUntouched));
  }
}

TEST(SplineCurve, DecreasingXIsRefusedAndLeavesTheTable) {
  const Result result = build({{0, 90, 89, 255}, {0, 80, 90, 255}});
  EXPECT_EQ(result.code, QPX_BAD_PARAM);
  EXPECT_EQ(result.table, std::vector<uint8_t>(256, kUntouched));
}

TEST(SplineCurve, NullArgumentsAreRefused) {
  const uint8_t xs[] = {0, 255}, ys[] = {0, 255};
  uint8_t table[256];
  EXPECT_EQ(BuildSplineCurve(nullptr, ys, 2, table), QPX_BAD_PARAM);
  EXPECT_EQ(BuildSplineCurve(xs, nullptr, 2, table), QPX_BAD_PARAM);
  EXPECT_EQ(BuildSplineCurve(xs, ys, 2, nullptr), QPX_BAD_PARAM);
}

TEST(SplineCurve, EqualNeighboursPassAndWriteEveryEntry) {
  const Result result = build({{0, 100, 100, 255}, {0, 50, 150, 255}});
  EXPECT_EQ(result.code, QPX_OK);
  EXPECT_EQ(result.table[255], 255);
  // Twice the same point: an undefined slope, which counts as black rather than as anything.
  const Result twice = build({{0, 100, 100, 255}, {0, 50, 50, 255}});
  EXPECT_EQ(twice.code, QPX_OK);
  EXPECT_EQ(twice.table[50], 0);
  EXPECT_EQ(twice.table[255], 255);
}

TEST(SplineCurve, AllPointsAtOnePlaceMakeAStep) {
  const Result result = build({{77, 77}, {20, 220}});
  EXPECT_EQ(result.code, QPX_OK);
  EXPECT_EQ(result.table[76], 20);
  EXPECT_EQ(result.table[77], 220);
}

TEST(SplineCurve, PointAtTheLastEntryIsWritten) {
  const Result result = build({{255, 255}, {20, 220}});
  EXPECT_EQ(result.table[254], 20);
  EXPECT_EQ(result.table[255], 220);
}

TEST(SplineCurve, NoMemoryLeavesTheTableAndLosesNothing) {
  FailingMemory::reset();
  const int64_t before = FailingMemory::liveBlocks();
  FailingMemory::failOnly(1);
  const Result result = build({{0, 255}, {0, 255}});
  EXPECT_EQ(FailingMemory::failures(), 1);
  FailingMemory::reset();
  EXPECT_EQ(result.code, QPX_NO_MEMORY);
  EXPECT_EQ(result.table, std::vector<uint8_t>(256, kUntouched));
  EXPECT_EQ(build({{0, 255}, {0, 255}}).code, QPX_OK);
  EXPECT_EQ(FailingMemory::liveBlocks(), before);
}

TEST(SplineCurve, LiteralPointsAreDrawnAsGiven) {
  constexpr CurvePoint kPoints[] = {{10, 5}, {128, 140}, {240, 250}};
  ToneTable table;
  ASSERT_EQ(drawCurve(kPoints, table), QPX_OK);
  const Result expected = build({{10, 128, 240}, {5, 140, 250}});
  EXPECT_TRUE(std::equal(table.begin(), table.end(), expected.table.begin()));
}

}  // namespace
}  // namespace qpx
