#include <gtest/gtest.h>
#include <qpx/contours.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <set>
#include <vector>

#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

using Bytes = std::vector<uint8_t>;

// Once more, word for word; empty where it takes more rounds than any that ends.
Bytes model(const Bytes& colors, int n, int k) {
  std::vector<std::array<int, 3>> centres(static_cast<size_t>(k));
  for (int i = 0; i < k; ++i) {
    const int from = std::min(static_cast<int>(i * (static_cast<double>(n) / k) + 0.5), n - 1);
    for (int c = 0; c < 3; ++c) {
      centres[static_cast<size_t>(i)][static_cast<size_t>(c)] =
          colors[static_cast<size_t>(3 * from + c)];
    }
  }
  std::vector<int> current(static_cast<size_t>(n), 0), previous(static_cast<size_t>(n), 1);
  const int limit = static_cast<int>(n * 0.10000002384185791);
  for (int round = 0;; ++round) {
    int changed = 0;
    for (size_t i = 0; i < current.size(); ++i) changed += current[i] != previous[i];
    if (changed < limit || (round > 0 && limit == 0 && changed == 0)) break;
    if (round > 2000) return {};
    for (size_t i = 0; i < current.size(); ++i) {
      int best = 0x7F7F7F7F;
      current[i] = 0;
      for (size_t j = 0; j < centres.size(); ++j) {
        int distance = 0;
        for (size_t c = 0; c < 3; ++c) {
          distance += (colors[3 * i + c] - centres[j][c]) * (colors[3 * i + c] - centres[j][c]);
        }
        if (distance >= best) continue;
        best = distance;
        current[i] = static_cast<int>(j);
      }
    }
    for (size_t j = 0; j < centres.size(); ++j) {
      std::array<int, 3> sum = {};
      int members = 0;
      for (size_t i = 0; i < current.size(); ++i) {
        if (current[i] != static_cast<int>(j)) continue;
        ++members;
        for (size_t c = 0; c < 3; ++c) sum[c] += colors[3 * i + c];
      }
      for (size_t c = 0; c < 3; ++c) centres[j][c] = members > 0 ? sum[c] / members : 0;
    }
    std::swap(current, previous);
  }
  Bytes palette;
  for (const auto& centre : centres) {
    for (const int channel : centre) palette.push_back(static_cast<uint8_t>(channel));
  }
  return palette;
}

Bytes paletteOf(const Bytes& colors, int n, int k) {
  Bytes palette(3 * static_cast<size_t>(k), 0xEE);
  EXPECT_EQ(QPX_OK, KmeansSegColor(colors.data(), n, k, palette.data()));
  return palette;
}

Bytes randomColors(int n, int spread, Random& random) {
  Bytes colors(3 * static_cast<size_t>(n));
  for (uint8_t& byte : colors) byte = static_cast<uint8_t>(random.between(0, spread));
  return colors;
}

TEST(KmeansSegColor, FollowsTheModel) {
  Random random(1);
  for (const int n : {1, 2, 3, 5, 9, 10, 11, 19, 20, 40, 100, 257, 600}) {
    for (const int k : {1, 2, 3, 8, 64, 256}) {
      for (const int spread : {3, 40, 255}) {
        const Bytes colors = randomColors(n, spread, random);
        const Bytes expected = model(colors, n, k);
        ASSERT_FALSE(expected.empty());
        EXPECT_EQ(expected, paletteOf(colors, n, k)) << n << " into " << k << " of " << spread;
      }
    }
  }
}

TEST(KmeansSegColor, AsManyDistinctColorsAsCentresStay) {
  Bytes colors;
  for (int i = 0; i < 64; ++i) {
    for (const int c : {i * 4, 255 - i, (i * 37) % 256}) colors.push_back(static_cast<uint8_t>(c));
  }
  EXPECT_EQ(colors, paletteOf(colors, 64, 64));
}

// A centre that no colour is nearest to is black, and so may win colours in the next round.
TEST(KmeansSegColor, EmptyClustersAreBlack) {
  const Bytes colors(3 * 30, 200);
  const Bytes palette = paletteOf(colors, 30, 4);
  EXPECT_EQ(Bytes(3, 200), Bytes(palette.begin(), palette.begin() + 3));
  EXPECT_EQ(Bytes(9, 0), Bytes(palette.begin() + 3, palette.end()));
}

TEST(KmeansSegColor, NothingGivesBlack) {
  EXPECT_EQ(Bytes(15, 0), paletteOf({}, 0, 5));
  Bytes palette(3, 9);
  EXPECT_EQ(QPX_OK, KmeansSegColor(nullptr, 0, 1, palette.data()));
  EXPECT_EQ(Bytes(3, 0), palette);
}

// Cut means and black centres keep rounds from always getting better, so few colours of few values
// are where they might go in circles.
TEST(KmeansSegColor, AlwaysEnds) {
  Random random(2);
  for (int turn = 0; turn < 3000; ++turn) {
    const int n = random.between(1, 25), k = random.between(1, 12);
    const Bytes colors = randomColors(n, random.between(1, 12), random);
    const Bytes expected = model(colors, n, k);
    const Bytes palette = paletteOf(colors, n, k);
    if (!expected.empty()) {
      ASSERT_EQ(expected, palette) << turn;
    }
  }
}

// These rounds never settle by themselves.
TEST(KmeansSegColor, RoundsThatGoInACircleEnd) {
  const Bytes colors = {0, 0, 1, 2, 2, 1, 0, 2, 1, 2, 1, 2, 2, 0, 0, 2, 1, 1,
                        2, 1, 0, 2, 0, 2, 2, 2, 2, 2, 1, 0, 0, 2, 0, 1, 2, 2};
  EXPECT_TRUE(model(colors, 12, 6).empty());
  EXPECT_EQ((Bytes{0, 0, 1, 0, 2, 1, 2, 0, 1, 2, 1, 0, 2, 2, 2, 0, 2, 0}),
            paletteOf(colors, 12, 6));
}

TEST(KmeansSegColor, RefusesBadArguments) {
  const Bytes colors(30, 5);
  Bytes palette(3 * 300, 7);
  EXPECT_EQ(2, KmeansSegColor(nullptr, 1, 1, palette.data()));
  EXPECT_EQ(2, KmeansSegColor(colors.data(), 10, 2, nullptr));
  for (const int n : {-1, INT_MIN})
    EXPECT_EQ(2, KmeansSegColor(colors.data(), n, 2, palette.data()));
  for (const int k : {0, -1, 257, INT_MAX, INT_MIN}) {
    EXPECT_EQ(2, KmeansSegColor(colors.data(), 10, k, palette.data()));
  }
  EXPECT_EQ(Bytes(3 * 300, 7), palette);
}

TEST(KmeansSegColor, AnswersFourWithoutMemory) {
  FailingMemory::reset();
  Random random(5);
  const Bytes colors = randomColors(100, 255, random);
  Bytes palette(24, 7);
  EXPECT_EQ(2, FailingMemory::forEachFailure(true, [&] {
              const int32_t result = KmeansSegColor(colors.data(), 100, 8, palette.data());
              EXPECT_EQ(0, FailingMemory::liveBlocks());
              if (FailingMemory::failures() == 0) return;
              EXPECT_EQ(4, result);
              EXPECT_EQ(Bytes(24, 7), palette);
            }));
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
