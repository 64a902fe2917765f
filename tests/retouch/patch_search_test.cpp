#include "retouch/patch_search.h"

#include <gtest/gtest.h>
#include <qpx/engine.h>

#include <cstdlib>
#include <vector>

#include "retouch/patch_means.h"
#include "retouch/scenes.h"
#include "retouch/source_map.h"

namespace qpx::testing {
namespace {

using namespace qpx::retouch;

struct Found {
  MPoint at;
  int32_t score;
};

// The search as a window that grows by one pixel at a time, over a map of what it has seen.
std::optional<Found> searchByRings(const Level& level, const MRect& patch, MPoint pixel,
                                   int32_t radius, int32_t meanWeight, MPoint last) {
  int32_t table[767];
  for (int32_t i = 0; i < 767; ++i) table[i] = std::abs(i - 383);
  std::vector<bool> visited(static_cast<size_t>(level.width * level.height));
  int32_t sum = 0, known = 0;
  for (int32_t y = patch.top; y < patch.bottom; ++y) {
    for (int32_t x = patch.left; x < patch.right; ++x) {
      if (level.isHole(x, y)) continue;
      ++known;
      for (int c = 0; c < 3; ++c) sum += level.pixel(x, y)[level.channelStep * c];
    }
  }
  const int32_t mean = sum / (3 * known);
  std::optional<Found> best;
  int32_t lowest = 1000000;
  MRect window = {last.x - radius - 1, last.y - radius - 1, last.x + radius + 1,
                  last.y + radius + 1};
  for (;; window = grown(window, 1)) {
    const MRect inside = intersection(window, level.all());
    for (int32_t y = inside.top; y < inside.bottom; ++y) {
      for (int32_t x = inside.left; x < inside.right; ++x) {
        const auto place = static_cast<size_t>(y * level.width + x);
        if (visited[place]) continue;
        visited[place] = true;
        if (level.state(x, y) != kSource) continue;
        int32_t score = 0, all = 0;
        for (int32_t dy = -radius; dy <= radius; ++dy) {
          for (int32_t dx = -radius; dx <= radius; ++dx) {
            for (int c = 0; c < 3; ++c) {
              const int32_t there = level.pixel(x + dx, y + dy)[level.channelStep * c];
              all += there;
              const int32_t i = pixel.x + dx, j = pixel.y + dy;
              if (!level.contains(i, j) || level.isHole(i, j)) continue;
              score += table[383 + there - level.pixel(i, j)[level.channelStep * c]];
            }
          }
        }
        const int32_t side = 2 * radius + 1;
        score += meanWeight * table[383 + all / (3 * side * side) - mean];
        if (score >= lowest) continue;
        lowest = score;
        best = Found{{x, y}, score};
        if (score == 0) return best;
      }
    }
    if (inside.left == 0 && inside.top == 0 && inside.right == level.width &&
        inside.bottom == level.height) {
      return best;
    }
  }
}

class PatchSearchTest : public ::testing::Test {
 protected:
  static void expectSame(const Level& level, int32_t radius, MPoint pixel, int32_t meanWeight,
                         MPoint last) {
    const MRect patch = intersection(squareAround(pixel, radius), level.all());
    const auto pixels = static_cast<size_t>(level.width * level.height);
    std::vector<uint8_t> means(pixels);
    std::vector<int32_t> columns(static_cast<size_t>(level.width));
    patchMeans(level, radius, columns.data(), means.data());
    PatchTarget target(int64_t{2 * radius + 1} * (2 * radius + 1));
    ASSERT_TRUE(target);
    target.load(level, patch, pixel, {level.pitch, level.channelStep});
    const PatchField field = {.level = level,
                              .corner = {0, 0},
                              .samples = level.samples,
                              .pitch = level.pitch,
                              .means = means.data(),
                              .meanWeight = meanWeight,
                              .origins = grown(level.all(), -radius),
                              .spare = 0};
    const MRect window = {last.x - radius - 1, last.y - radius - 1, last.x + radius + 1,
                          last.y + radius + 1};
    const std::optional<Found> expected =
        searchByRings(level, patch, pixel, radius, meanWeight, last);
    for (const int32_t plain : {0, 1}) {
      QPX_UsePlainForms(plain);
      const std::optional<MPoint> found = findPatch(target, field, window);
      QPX_UsePlainForms(0);
      ASSERT_EQ(expected.has_value(), found.has_value());
      if (!found) continue;
      EXPECT_EQ(expected->at.x, found->x) << "score " << expected->score;
      EXPECT_EQ(expected->at.y, found->y) << "score " << expected->score;
    }
  }
};

// Few colours, so that many patches are equally good; sizes beyond the steps in which rings are
// taken together.
TEST_F(PatchSearchTest, FindsWhatAWindowThatGrowsByOneFinds) {
  Random random(5);
  for (const int32_t colors : {2, 3, 200}) {
    for (const int32_t radius : {1, 2, 3}) {
      OwnLevel own(150, 40);
      const Level& level = own.level();
      own.paint([&](int32_t, int32_t) {
        const auto color = static_cast<uint8_t>(random.between(0, colors - 1));
        return Color{color, static_cast<uint8_t>(color / 2), 7};
      });
      own.mark({60, 10, 75, 25}, kHole);
      own.mark({100, 0, 150, 9}, kDoubtful);
      std::vector<int32_t> row(150);
      ASSERT_TRUE(markSources(level, 2 * radius + 1, 2 * radius + 1, {radius, radius}, row.data()));
      for (const MPoint last : {MPoint{0, 0}, MPoint{60, 12}, MPoint{149, 39}, MPoint{90, 33}}) {
        for (const MPoint pixel : {MPoint{60, 10}, MPoint{74, 20}, MPoint{66, 24}}) {
          expectSame(level, radius, pixel, 0, last);
          expectSame(level, radius, pixel, 5, last);
        }
      }
    }
  }
}

// A cost that lifts every patch over a million leaves none; one below, the others.
TEST_F(PatchSearchTest, AMillionIsNoMatch) {
  OwnLevel own(30, 12);
  const Level& level = own.level();
  own.paint([](int32_t x, int32_t) {
    return x < 10 ? Color{0, 0, 0} : x < 20 ? Color{100, 100, 100} : Color{101, 101, 101};
  });
  own.mark({0, 0, 10, 12}, kDoubtful);
  own.mark({3, 3, 6, 6}, kHole);
  std::vector<int32_t> row(30);
  ASSERT_TRUE(markSources(level, 3, 3, {1, 1}, row.data()));
  expectSame(level, 1, {3, 3}, 9000, {15, 5});
  expectSame(level, 1, {3, 3}, 10000, {15, 5});
}

TEST_F(PatchSearchTest, NothingIsFoundWhereThereIsNothing) {
  OwnLevel own(20, 12);
  own.mark({4, 4, 6, 6}, kHole);
  expectSame(own.level(), 2, {4, 4}, 0, {4, 4});
}

TEST(PatchMeans, AreThoseOfAllSamples) {
  Random random(2);
  OwnLevel own(13, 9);
  const Level& level = own.level();
  own.paint([&](int32_t, int32_t) { return Color{random.byte(), random.byte(), random.byte()}; });
  for (const int32_t radius : {1, 3, 4, 5}) {
    std::vector<uint8_t> means(13 * 9);
    std::vector<int32_t> columns(13);
    patchMeans(level, radius, columns.data(), means.data());
    for (int32_t y = radius; y < 9 - radius; ++y) {
      for (int32_t x = radius; x < 13 - radius; ++x) {
        int32_t sum = 0, count = 0;
        for (int32_t j = y - radius; j <= y + radius; ++j) {
          for (int32_t i = x - radius; i <= x + radius; ++i) {
            for (int c = 0; c < 3; ++c, ++count) sum += level.pixel(i, j)[level.channelStep * c];
          }
        }
        EXPECT_EQ(sum / count, means[static_cast<size_t>(level.place(x, y))]);
      }
    }
  }
}

}  // namespace
}  // namespace qpx::testing
