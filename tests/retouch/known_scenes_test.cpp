// Holes in pictures whose contents are known: what comes back is held against what was there.
#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "retouch/scenes.h"

namespace qpx::testing {
namespace {

Color grey(int32_t value) {
  const auto sample = static_cast<uint8_t>(value);
  return {sample, sample, sample};
}

// Soft on both sides of each stripe, as a lens would have it.
Color stripesAcross(int32_t x, int32_t) {
  constexpr uint8_t kProfile[] = {200, 200, 200, 150, 60, 60, 60, 60, 150, 200};
  const uint8_t light = kProfile[x % 10];
  return {light, static_cast<uint8_t>(light / 2), 40};
}

Color slantedStripes(int32_t x, int32_t y) { return stripesAcross(x + y + 1000, y); }

Color bricks(int32_t x, int32_t y) {
  const int32_t row = y / 8;
  const int32_t column = (x + (row % 2 == 0 ? 0 : 10)) % 20;
  const bool mortar = y % 8 == 0 || column == 0;
  return mortar ? Color{190, 195, 200} : Color{40, 60, 150};
}

Color edge(int32_t x, int32_t y) { return 2 * x + y < 130 ? grey(60) : Color{220, 160, 90}; }

Color gradient(int32_t x, int32_t y) {
  return {static_cast<uint8_t>(40 + x), static_cast<uint8_t>(200 - y),
          static_cast<uint8_t>(60 + (x + y) / 2)};
}

Color waves(int32_t x, int32_t y) {
  const double wave = std::sin(x * 0.7) + std::sin(y * 0.5 + x * 0.2);
  return {static_cast<uint8_t>(128 + 40 * wave), static_cast<uint8_t>(100 + 30 * wave), 80};
}

struct KnownScene {
  const char* name;
  Scene scene;
  float radius;
  double bound;         // of the mean difference in the hole
  float reducedRadius;  // with a guide of half the size
  double reducedBound;
};

class KnownScenes : public ::testing::TestWithParam<int> {
 protected:
  static const KnownScene& known() {
    static const KnownScene kScenes[] = {{"stripes", stripesAcross, 5, 0.01, 3, 0.5},
                                         {"slanted stripes", slantedStripes, 5, 0.01, 3, 0.5},
                                         {"bricks", bricks, 8, 3, 4, 3},
                                         {"edge", edge, 5, 1, 3, 3},
                                         {"gradient", gradient, 5, 0.2, 3, 1.5},
                                         {"waves", waves, 5, 0.5, 3, 2}};
    return kScenes[GetParam()];
  }
};
INSTANTIATE_TEST_SUITE_P(Scenes, KnownScenes, ::testing::Range(0, 6));

constexpr MRect kHole = {38, 36, 62, 60};

// Each pixel of the guide is the mean of what it stands for, as hosts make it.
void reduce(const Picture& from, const Picture& to) {
  const MBitmap big = from.bitmap(), small = to.bitmap();
  const double sx = (big.width - 1.0) / (small.width - 1);
  const double sy = (big.height - 1.0) / (small.height - 1);
  for (int32_t y = 0; y < small.height; ++y) {
    for (int32_t x = 0; x < small.width; ++x) {
      int32_t sums[3] = {}, count = 0;
      for (int32_t j = 0; j < big.height; ++j) {
        if (static_cast<int32_t>(j / sy + 0.5) != y) continue;
        for (int32_t i = 0; i < big.width; ++i) {
          if (static_cast<int32_t>(i / sx + 0.5) != x) continue;
          for (int c = 0; c < 3; ++c) sums[c] += big.plane[0][big.pitch[0] * j + 3 * i + c];
          ++count;
        }
      }
      for (int c = 0; c < 3; ++c) {
        small.plane[0][small.pitch[0] * y + 3 * x + c] = static_cast<uint8_t>(sums[c] / count);
      }
    }
  }
}

// The hole holds something else entirely: what the fill must not show.
Picture damaged(const Scene& scene) {
  Picture picture(QPX_FORMAT_BGR24, 101, 97, Placement::exact);
  paint(picture, [&](int32_t x, int32_t y) {
    const bool inside = x >= kHole.left && x < kHole.right && y >= kHole.top && y < kHole.bottom;
    return inside ? Color{255, 0, 255} : scene(x, y);
  });
  return picture;
}

TEST_P(KnownScenes, AreContinuedThroughTheHole) {
  const Picture source = damaged(known().scene);
  Picture mask(QPX_FORMAT_GREY8, 101, 97, Placement::exact);
  markHole(mask, kHole);
  Picture out(QPX_FORMAT_BGR24, 101, 97, Placement::exact);
  const MBitmap from = source.bitmap(), marks = mask.bitmap();
  MBitmap to = out.bitmap();
  const float settings[] = {known().radius, 0.5f};
  ASSERT_EQ(0, ReTouch(&from, &from, &marks, settings, &to));
  EXPECT_EQ(0, meanError(out, known().scene, {0, 0, 101, kHole.top})) << known().name;
  const double error = meanError(out, known().scene, kHole);
  RecordProperty("error", std::to_string(error));
  EXPECT_LE(error, known().bound) << known().name;
}

TEST_P(KnownScenes, AreContinuedByAReducedGuide) {
  const Picture source = damaged(known().scene);
  Picture guide(QPX_FORMAT_BGR24, 51, 49, Placement::exact);
  reduce(source, guide);
  Picture mask(QPX_FORMAT_GREY8, 51, 49, Placement::exact);
  markHole(mask, {19, 18, 32, 31});  // pixels 37 to 62 across, 35 to 60 down
  Picture out(QPX_FORMAT_BGR24, 101, 97, Placement::exact);
  const MBitmap from = source.bitmap(), plan = guide.bitmap(), marks = mask.bitmap();
  MBitmap to = out.bitmap();
  const float settings[] = {known().reducedRadius, 0.5f};
  ASSERT_EQ(0, ReTouch(&from, &plan, &marks, settings, &to));
  const double error = meanError(out, known().scene, kHole);
  RecordProperty("error", std::to_string(error));
  EXPECT_LE(error, known().reducedBound) << known().name;
}

}  // namespace
}  // namespace qpx::testing
