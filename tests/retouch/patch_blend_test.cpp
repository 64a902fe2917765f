#include "retouch/patch_blend.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "retouch/banded_cholesky.h"
#include "retouch/scenes.h"

namespace qpx::testing {
namespace {

using namespace qpx::retouch;

// A = B * B^T of a random lower band is positive definite; the solution is put in and comes out.
TEST(BandedCholesky, SolvesWhatItFactorises) {
  Random random(4);
  for (const ptrdiff_t size : {1, 2, 5, 40}) {
    for (const ptrdiff_t band : {1, 2, 4, 9}) {
      const auto n = static_cast<size_t>(size);
      std::vector<double> lower(n * n), full(n * n);
      for (size_t i = 0; i < n; ++i) {
        for (size_t j = i + 1 > static_cast<size_t>(band) ? i + 1 - static_cast<size_t>(band) : 0;
             j <= i; ++j) {
          lower[i * n + j] = i == j ? 2 + random.between(0, 9) / 8.0 : random.between(-4, 4) / 8.0;
        }
      }
      for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < n; ++j) {
          for (size_t k = 0; k < n; ++k) full[i * n + j] += lower[i * n + k] * lower[j * n + k];
        }
      }
      std::vector<float> entries(static_cast<size_t>(size * band)), sides(4 * n);
      const BandedMatrix matrix = {entries.data(), size, band};
      std::vector<double> solution(4 * n);
      for (double& value : solution) value = random.between(-100, 100);
      for (ptrdiff_t k = 0; k < size; ++k) {
        for (ptrdiff_t row = k; row < std::min(size, k + band); ++row) {
          matrix.at(row, k) =
              static_cast<float>(full[static_cast<size_t>(row) * n + static_cast<size_t>(k)]);
        }
      }
      for (size_t i = 0; i < n; ++i) {
        for (size_t s = 0; s < 4; ++s) {
          double sum = 0;
          for (size_t k = 0; k < n; ++k) sum += full[i * n + k] * solution[4 * k + s];
          sides[4 * i + s] = static_cast<float>(sum);
        }
      }
      ASSERT_TRUE(factorise(matrix));
      solve(matrix, sides.data());
      for (size_t i = 0; i < 4 * n; ++i) EXPECT_NEAR(solution[i], sides[i], 0.01);
    }
  }
}

// By hand: the factor of [[4, 2], [2, 2]] is [[2, 0], [1, 1]].
TEST(BandedCholesky, ByHandAndStopsAtAPivotThatIsNotPositive) {
  float entries[] = {4, 2, 2, 0};
  EXPECT_TRUE(factorise({entries, 2, 2}));
  EXPECT_EQ(2, entries[0]);
  EXPECT_EQ(1, entries[1]);
  EXPECT_EQ(1, entries[2]);
  float singular[] = {4, 2, 1, 0};
  EXPECT_FALSE(factorise({singular, 2, 2}));
  EXPECT_EQ(2, singular[0]);  // the column before is done
  EXPECT_EQ(1, singular[1]);
  float negative[] = {-1};
  EXPECT_FALSE(factorise({negative, 1, 1}));
  float none[] = {NAN};
  EXPECT_FALSE(factorise({none, 1, 1}));
}

// What is pasted is twenty darker than what is there: the hole continues what is there.
TEST(PatchBlend, TakesAwayAConstantDifference) {
  OwnLevel own(24, 10);
  const Level& level = own.level();
  const auto there = [](int32_t x, int32_t y) {
    const int32_t light = x < 12 ? 0 : 20;
    return Color{static_cast<uint8_t>(60 + 9 * (x % 12) + light),
                 static_cast<uint8_t>(40 + 10 * y + light),
                 static_cast<uint8_t>(50 + (x % 12) * y % 7 + light)};
  };
  own.paint(there);
  own.mark({16, 2, 21, 7}, kHole);
  for (int32_t y = 2; y < 7; ++y) {
    for (int32_t x = 16; x < 21; ++x) level.pixel(x, y)[0] = 255;
  }
  PatchBlend blend(9, 9);
  ASSERT_TRUE(blend);
  blend.fill(level, {15, 1, 24, 10}, {-12, 0});
  EXPECT_EQ(25u, blend.filled().size());
  for (int32_t y = 0; y < 10; ++y) {
    for (int32_t x = 0; x < 24; ++x) {
      for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(there(x, y)[static_cast<size_t>(c)], level.pixel(x, y)[level.channelStep * c]);
      }
    }
  }
}

// The membrane by relaxation in double precision.
TEST(PatchBlend, SolvesThePoissonEquation) {
  Random random(9);
  for (int round = 0; round < 20; ++round) {
    OwnLevel own(40, 20);
    const Level& level = own.level();
    // Both halves in the middle of the range, so that nothing is clamped.
    own.paint([&](int32_t, int32_t) {
      return Color{static_cast<uint8_t>(random.between(100, 104)),
                   static_cast<uint8_t>(random.between(100, 104)), 100};
    });
    for (int k = 0; k < 12; ++k) {
      const int32_t x = random.between(20, 36), y = random.between(0, 16);
      own.mark({x, y, x + random.between(1, 4), y + random.between(1, 4)}, kHole);
    }
    const MPoint middle = {random.between(22, 38), random.between(0, 19)};
    const MRect patch = intersection(squareAround(middle, random.between(1, 6)), {20, 0, 40, 20});
    const MPoint offset = {-20, 0};
    std::vector<double> extra(40 * 20);
    const auto hole = [&](int32_t x, int32_t y) {
      return x >= patch.left && x < patch.right && y >= patch.top && y < patch.bottom &&
             level.isHole(x, y);
    };
    bool anyKnown = false;
    for (int32_t y = patch.top; y < patch.bottom; ++y) {
      for (int32_t x = patch.left; x < patch.right; ++x) anyKnown |= !level.isHole(x, y);
    }
    for (int sweep = 0; anyKnown && sweep < 3000; ++sweep) {
      for (int32_t y = patch.top; y < patch.bottom; ++y) {
        for (int32_t x = patch.left; x < patch.right; ++x) {
          if (!hole(x, y)) continue;
          double sum = 0;
          int count = 0;
          for (const MPoint step : {MPoint{-1, 0}, MPoint{1, 0}, MPoint{0, -1}, MPoint{0, 1}}) {
            const int32_t i = x + step.x, j = y + step.y;
            if (!level.contains(i, j) || (!hole(i, j) && level.isHole(i, j))) continue;
            if (!level.contains(i + offset.x, j)) continue;
            if (!hole(i, j) && level.isHole(i + offset.x, j)) continue;
            sum += hole(i, j) ? extra[static_cast<size_t>(level.place(i, j))]
                              : level.pixel(i, j)[0] - level.pixel(i + offset.x, j)[0];
            ++count;
          }
          extra[static_cast<size_t>(level.place(x, y))] = sum / count;
        }
      }
    }
    std::vector<double> expected(40 * 20);
    for (int32_t y = patch.top; y < patch.bottom; ++y) {
      for (int32_t x = patch.left; x < patch.right; ++x) {
        const auto place = static_cast<size_t>(level.place(x, y));
        expected[place] = level.pixel(x, y)[0];
        if (hole(x, y)) expected[place] = level.pixel(x + offset.x, y)[0] + extra[place];
      }
    }
    PatchBlend blend(13, 13);
    blend.fill(level, patch, offset);
    for (int32_t y = patch.top; y < patch.bottom; ++y) {
      for (int32_t x = patch.left; x < patch.right; ++x) {
        EXPECT_NEAR(expected[static_cast<size_t>(level.place(x, y))], level.pixel(x, y)[0], 0.51)
            << x << ", " << y << " of round " << round;
      }
    }
  }
}

// A row of known 250, three holes, known 250, pasted from 200 and 200 with a peak and a pit
// between.
TEST(PatchBlend, ClampsWhatLeavesTheRange) {
  OwnLevel own(10, 1);
  const Level& level = own.level();
  const uint8_t row[] = {200, 230, 100, 205, 200, 250, 0, 0, 0, 250};
  own.paint([&](int32_t x, int32_t) {
    const auto negative = static_cast<uint8_t>(255 - row[x]);
    return Color{row[x], negative, 0};
  });
  own.mark({6, 0, 9, 1}, kHole);
  PatchBlend blend(5, 5);
  blend.fill(level, {5, 0, 10, 1}, {-5, 0});
  const uint8_t expected[] = {255, 150, 255};  // 230 + 50, 100 + 50, 205 + 50
  for (int32_t x = 0; x < 3; ++x) {
    EXPECT_EQ(expected[x], level.pixel(6 + x, 0)[0]);
    EXPECT_EQ(255 - expected[x], level.pixel(6 + x, 0)[level.channelStep]);
  }
}

// By hand: the differences at the border are 10, 10 and 90, of which the last is an edge that ends
// and counts as 26. The middle of a cross of four neighbours, one of them beyond the picture.
TEST(PatchBlend, AnEdgeThatEndsDoesNotSpread) {
  OwnLevel own(6, 2);
  const Level& level = own.level();
  own.paint([](int32_t x, int32_t y) {
    if (x < 3) return Color{100, 100, 100};
    return x == 5 && y == 0 ? Color{190, 100, 100} : Color{110, 100, 100};
  });
  own.mark({4, 0, 5, 1}, kHole);
  PatchBlend blend(3, 3);
  blend.fill(level, {3, 0, 6, 2}, {-3, 0});
  EXPECT_EQ(115, level.pixel(4, 0)[0]);  // 100 + (10 + 10 + 26) / 3, rounded
  EXPECT_EQ(100, level.pixel(4, 0)[level.channelStep]);
}

}  // namespace
}  // namespace qpx::testing
