#include <gtest/gtest.h>
#include <qpx/contours.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

#include "segment/chain_model.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr MPoint kUntouched = {-77, -78};

Plane randomMask(int32_t width, int32_t height, int density, Random& random) {
  Plane mask(width, height);
  for (uint8_t& byte : mask.bytes) {
    byte = random.between(0, 9) < density ? static_cast<uint8_t>(random.between(1, 255)) : 0;
  }
  return mask;
}

Plane filled(const Plane& mask) {
  Plane result = mask;
  for (int32_t y = 1; y < mask.height - 1; ++y) {
    for (int32_t x = 1; x < mask.width - 1; ++x) {
      if (mask.get(x, y) == 0 && mask.coveredAround(x, y) > 4) result.set(x, y, 255);
    }
  }
  return result;
}

struct Traced {
  Plane mask;
  std::vector<MPoint> points;
  int32_t count = -5;
};

// Into room that ends with its last point, from a mask among bytes of its own.
Traced trace(const Plane& mask) {
  Picture picture(QPX_FORMAT_GREY8, mask.width, mask.height, Placement::guarded);
  const MBitmap bitmap = picture.bitmap();
  const auto row = [&](int32_t y) { return bitmap.plane[0] + ptrdiff_t{bitmap.pitch[0]} * y; };
  const auto width = static_cast<size_t>(mask.width);
  for (int32_t y = 0; y < mask.height; ++y) {
    std::memcpy(row(y), mask.bytes.data() + static_cast<size_t>(y) * width, width);
  }
  const Picture before(picture);
  Traced result = {mask, std::vector<MPoint>(mask.bytes.size(), kUntouched), -5};
  EXPECT_EQ(QPX_OK, QPX_ContourTracing(&bitmap, result.points.data(), &result.count));
  EXPECT_FALSE(picture.firstWriteOutside(before, {0, 0, mask.width, mask.height}));
  for (int32_t y = 0; y < mask.height; ++y) {
    std::memcpy(result.mask.bytes.data() + static_cast<size_t>(y) * width, row(y), width);
  }
  return result;
}

std::vector<MPoint> closedChains(const Plane& edges) {
  const int64_t limit = int64_t{edges.width} * edges.height / 10000 / 4;
  std::vector<MPoint> points;
  for (const auto& [chain, closed] : chainsOf(edges)) {
    const MPoint &first = chain.front(), &last = chain.back();
    const bool near = std::abs(first.x - last.x) <= limit && std::abs(first.y - last.y) <= limit;
    if (closed || near) points.insert(points.end(), chain.begin(), chain.end());
  }
  return points;
}

void expectModel(const Plane& mask) {
  SCOPED_TRACE(std::to_string(mask.width) + "x" + std::to_string(mask.height));
  const Traced traced = trace(mask);
  const Plane tidy = filled(mask);
  EXPECT_EQ(tidy.bytes, traced.mask.bytes);
  const EdgeModel model = edgesOf(tidy, true);
  EXPECT_EQ(model.count, traced.count);
  const std::vector<MPoint> expected = closedChains(model.edges);
  for (size_t i = 0; i < traced.points.size(); ++i) {
    const MPoint& point = traced.points[i];
    if (i < expected.size()) {
      ASSERT_TRUE(same(expected[i], point)) << i << ": " << point.x << ", " << point.y;
    } else {
      ASSERT_TRUE(same({0, 0}, point) || same(kUntouched, point)) << i;
    }
  }
}

TEST(ContourTracing, FollowsTheModelOnSmallMasks) {
  Random random(3);
  for (int32_t height = 1; height <= 12; ++height) {
    for (int32_t width = 1; width <= 12; ++width) {
      for (const int density : {0, 1, 3, 5, 8, 10}) {
        expectModel(randomMask(width, height, density, random));
      }
    }
  }
}

TEST(ContourTracing, FollowsTheModelOnLargerMasks) {
  Random random(4);
  for (const int density : {1, 3, 7}) expectModel(randomMask(203, 119, density, random));
  Plane discs(260, 240);
  for (int32_t y = 0; y < discs.height; ++y) {
    for (int32_t x = 0; x < discs.width; ++x) {
      const bool in = (x - 70) * (x - 70) + (y - 80) * (y - 80) < 2500 ||
                      (x - 190) * (x - 190) + (y - 200) * (y - 200) < 4000;
      discs.set(x, y, in ? 9 : 0);
    }
  }
  expectModel(discs);
}

// By hand: 18 pixels of border, each counted three times.
TEST(ContourTracing, CoveredMaskHasItsBorderAsOutline) {
  Plane mask(6, 5);
  std::fill(mask.bytes.begin(), mask.bytes.end(), 255);
  const Traced traced = trace(mask);
  EXPECT_EQ(3 * 18, traced.count);
  EXPECT_FALSE(same(kUntouched, traced.points[17]));
  EXPECT_TRUE(same(kUntouched, traced.points[18]));
}

Plane squareIn(int32_t size, int32_t from, int32_t to) {
  Plane mask(size, size);
  for (int32_t y = from; y < to; ++y) {
    for (int32_t x = from; x < to; ++x) mask.set(x, y, 255);
  }
  return mask;
}

// A way over neighbours that comes back to its start and is all that was written.
void expectOneLoop(const Traced& traced, size_t length) {
  SCOPED_TRACE(std::to_string(traced.mask.width) + "x" + std::to_string(traced.mask.height));
  for (size_t i = 0; i < length; ++i) {
    ASSERT_TRUE(neighbours(traced.points[i], traced.points[(i + 1) % length])) << i;
    for (size_t j = 0; j < i; ++j) ASSERT_FALSE(same(traced.points[i], traced.points[j])) << i;
  }
  ASSERT_TRUE(length == traced.points.size() || same(kUntouched, traced.points[length]));
}

TEST(ContourTracing, SquaresHaveClosedOutlines) {
  const Traced traced = trace(squareIn(100, 25, 75));
  EXPECT_EQ(4 * 51, traced.count);
  expectOneLoop(traced, 4 * 51);
  EXPECT_TRUE(same({24, 24}, traced.points[0]));
  EXPECT_TRUE(same({24, 75}, traced.points[51]));
  EXPECT_TRUE(same({75, 75}, traced.points[102]));
  EXPECT_TRUE(same({75, 24}, traced.points[153]));
}

// The limit is 0 up to 39999 pixels, and still the border closes.
TEST(ContourTracing, CoveredMasksOfAnySizeHaveClosedOutlines) {
  for (int32_t size = 2; size < 200; ++size) {
    if (size > 20 && size % 17 != 0 && size != 199) continue;
    const auto border = static_cast<size_t>(4 * (size - 1));
    expectOneLoop(trace(squareIn(size, 0, size)), border);
    for (const auto& [width, height] : {std::pair{2, size}, {size, 2}}) {
      Plane narrow(width, height);
      std::fill(narrow.bytes.begin(), narrow.bytes.end(), 255);
      expectOneLoop(trace(narrow), narrow.bytes.size());
    }
  }
}

// Steps of the slopes leave pixels aside; the way itself goes all round.
TEST(ContourTracing, DiscsHaveClosedOutlines) {
  Plane disc(100, 100);
  for (int32_t y = 0; y < 100; ++y) {
    for (int32_t x = 0; x < 100; ++x) {
      disc.set(x, y, (x - 50) * (x - 50) + (y - 50) * (y - 50) <= 900 ? 255 : 0);
    }
  }
  const std::vector<MPoint> points = trace(disc).points;
  size_t length = 1;
  while (neighbours(points[length - 1], points[length])) ++length;
  EXPECT_TRUE(neighbours(points[0], points[length - 1]));
  for (size_t i = 0; i < length; ++i) {
    const int32_t x = points[i].x - 50, y = points[i].y - 50;
    EXPECT_TRUE(x * x + y * y > 900 && x * x + y * y < 33 * 33) << i;
  }
  for (const MPoint& pole : {MPoint{50, 19}, MPoint{50, 81}, MPoint{19, 50}, MPoint{81, 50}}) {
    EXPECT_TRUE(std::any_of(points.begin(), points.begin() + static_cast<ptrdiff_t>(length),
                            [&](const MPoint& point) { return same(pole, point); }));
  }
}

TEST(ContourTracing, FillsASinglePixel) {
  Plane mask(9, 9);
  std::fill(mask.bytes.begin(), mask.bytes.end(), 200);
  mask.set(4, 4, 0);
  const Traced traced = trace(mask);
  EXPECT_EQ(255, traced.mask.get(4, 4));
  for (const MPoint& point : traced.points) EXPECT_FALSE(same({4, 4}, point));
}

TEST(ContourTracing, ARingAroundADotCloses) {
  Plane mask(200, 200);
  mask.set(100, 100, 1);
  const Traced traced = trace(mask);
  EXPECT_EQ(8, traced.count);
  EXPECT_FALSE(same(kUntouched, traced.points[7]));
  EXPECT_TRUE(same(kUntouched, traced.points[8]));
}

TEST(ContourTracing, RefusesBadArguments) {
  Picture mask(QPX_FORMAT_GREY8, 5, 4, Placement::guarded);
  mask.fill(1);
  const Picture before(mask);
  const MBitmap good = mask.bitmap();
  MPoint points[20] = {};
  points[0] = kUntouched;
  int32_t count = -3;
  const auto code = [&](const auto& change) {
    MBitmap bitmap = good;
    change(bitmap);
    return QPX_ContourTracing(&bitmap, points, &count);
  };
  EXPECT_EQ(2, QPX_ContourTracing(nullptr, points, &count));
  EXPECT_EQ(2, QPX_ContourTracing(&good, nullptr, &count));
  EXPECT_EQ(2, QPX_ContourTracing(&good, points, nullptr));
  EXPECT_EQ(2, code([](MBitmap& b) { b.format = QPX_FORMAT_BGR24; }));
  EXPECT_EQ(2, code([](MBitmap& b) { b.plane[0] = nullptr; }));
  for (const int32_t size : {0, -1, INT_MIN}) {
    EXPECT_EQ(2, code([=](MBitmap& b) { b.width = size; }));
    EXPECT_EQ(2, code([=](MBitmap& b) { b.height = size; }));
  }
  EXPECT_EQ(2, code([](MBitmap& b) { b.pitch[0] = 4; }));
  EXPECT_EQ(4, code([](MBitmap& b) { b.height = INT_MAX; }));
  EXPECT_EQ(-3, count);
  EXPECT_TRUE(same(kUntouched, points[0]));
  EXPECT_FALSE(mask.firstWriteOutside(before, {}));
}

TEST(ContourTracing, AnswersFourWithoutMemory) {
  FailingMemory::reset();
  Picture mask(QPX_FORMAT_GREY8, 30, 20, Placement::guarded);
  mask.paint(5);
  const Picture before(mask);
  const MBitmap bitmap = mask.bitmap();
  std::vector<MPoint> points(600, kUntouched);
  int32_t count = -3;
  EXPECT_EQ(2, FailingMemory::forEachFailure(true, [&] {
              const int32_t result = QPX_ContourTracing(&bitmap, points.data(), &count);
              EXPECT_EQ(0, FailingMemory::liveBlocks());
              if (FailingMemory::failures() == 0) return;
              EXPECT_EQ(4, result);
              EXPECT_EQ(-3, count);
              EXPECT_TRUE(same(kUntouched, points[0]));
              EXPECT_FALSE(mask.firstWriteOutside(before, {}));
            }));
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
