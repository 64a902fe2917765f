// The steps for half blocks, one by one.
#include <qpx/etc.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "etc/scenes.h"
#include "support/picture.h"

namespace qpx::etc {
namespace {

using qpx::testing::Random;
using reference::Half;

struct Shape {
  int across, down;
  decltype(&TEXPKcomputeAverageColor2x4noQuantFloat) average;
  decltype(&TEXPKcompressBlockWithTable2x4percep) withTable;
  decltype(&TEXPKtryalltables_3bittable2x4percep) withBestTable;
};

constexpr Shape kShapes[] = {
    {2, 4, TEXPKcomputeAverageColor2x4noQuantFloat, TEXPKcompressBlockWithTable2x4percep,
     TEXPKtryalltables_3bittable2x4percep},
    {4, 2, TEXPKcomputeAverageColor4x2noQuantFloat, TEXPKcompressBlockWithTable4x2percep,
     TEXPKtryalltables_3bittable4x2percep}};

TEST(HalfBlocks, MeansAreExact) {
  const Image image = photograph(11, 9);
  for (const Shape& shape : kShapes) {
    for (int y = 0; y + shape.down <= 9; ++y) {
      for (int x = 0; x + shape.across <= 11; ++x) {
        reference::Mean mean;
        ASSERT_EQ(0, shape.average(image.rgb.data(), 11, 9, x, y, mean.data()));
        EXPECT_EQ(mean, reference::average(image, {x, y, shape.across, shape.down}));
      }
    }
  }
}

TEST(HalfBlocks, TablesAndIndicesAreThoseOfTheDefinition) {
  Random random(12);
  for (const Scene& scene : scenes()) {
    const Image image = scene.draw(24, 24);
    for (int i = 0; i < 200; ++i) {
      const Shape& shape = kShapes[i % 2];
      const Half half = {random.between(0, 24 - shape.across), random.between(0, 24 - shape.down),
                         shape.across, shape.down};
      const uint8_t base[3] = {random.byte(), random.byte(), random.byte()};
      const int table = random.between(0, 7);
      std::array<uint8_t, 8> indices;
      const auto expect = [&](const reference::Choice& choice, int32_t error) {
        EXPECT_EQ(choice.error, error) << scene.name;
        for (size_t k = 0; k < 8; ++k) EXPECT_EQ(choice.indices[k], indices[k]) << scene.name;
      };
      const reference::Color color = {base[0], base[1], base[2]};
      expect(
          reference::withTable(image, half, color, table),
          shape.withTable(image.rgb.data(), 24, 24, half.x, half.y, base, table, indices.data()));
      const reference::Choice best = reference::withBestTable(image, half, color);
      int32_t found = -1;
      expect(best, shape.withBestTable(image.rgb.data(), 24, 24, half.x, half.y, base, &found,
                                       indices.data()));
      EXPECT_EQ(best.table, found);
    }
  }
}

// 64 * d^2 >> 6 is d^2: pixels of 100 against 102 - 2 and 98 + 2 are equally well met, and the
// darker offset of the table, index 2, is tried first.
TEST(HalfBlocks, OfTwoOffsetsThatAreEquallyNearTheDarkerIsTaken) {
  Image image(2, 4);
  std::fill(image.rgb.begin(), image.rgb.end(), uint8_t{100});
  const uint8_t base[3] = {100, 100, 100};
  std::array<uint8_t, 8> indices;
  int32_t table = -1;
  EXPECT_EQ(8 * 4, TEXPKtryalltables_3bittable2x4percep(image.rgb.data(), 2, 4, 0, 0, base, &table,
                                                        indices.data()));
  EXPECT_EQ(0, table);
  for (const uint8_t index : indices) EXPECT_EQ(2, index);
}

TEST(HalfBlocks, LevelsAreTheNearestOfTheirNeighbours) {
  Random random(13);
  for (int i = 0; i < 20000; ++i) {
    reference::Mean mean;
    for (float& m : mean) m = static_cast<float>(random.between(0, 2040)) / 8;
    for (const int bits : {5, 4}) {
      uint8_t levels[3];
      const auto quantize = bits == 5 ? TEXPKquantize555ColorCombinedPerceptual
                                      : TEXPKquantize444ColorCombinedPerceptual;
      ASSERT_EQ(0, quantize(mean.data(), levels));
      ASSERT_EQ((reference::Color{levels[0], levels[1], levels[2]}),
                reference::nearestLevels(mean, bits));
    }
  }
}

TEST(HalfBlocks, LevelsOfNumbersThatAreNoColorsStayInRange) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const float high[3] = {kInfinity, 1e30f, 256};
  const float low[3] = {-kInfinity, -1e30f, -3};
  const float none[3] = {std::nanf(""), -0.0f, -8.3f};
  uint8_t levels[3];
  const auto expect = [&](const float* mean, int bits, int value) {
    ASSERT_EQ(0, bits == 5 ? TEXPKquantize555ColorCombinedPerceptual(mean, levels)
                           : TEXPKquantize444ColorCombinedPerceptual(mean, levels));
    for (const uint8_t level : levels) EXPECT_EQ(value, level);
  };
  for (const int bits : {4, 5}) {
    expect(high, bits, bits == 5 ? 31 : 15);
    expect(low, bits, 0);
    expect(none, bits, 0);
  }
}

TEST(HalfBlocks, RefuseWhatIsNotInsideAndNulls) {
  const Image image = photograph(8, 8);
  const uint8_t* const rgb = image.rgb.data();
  const uint8_t base[3] = {};
  for (const Shape& shape : kShapes) {
    float mean[3] = {-1, -1, -1};
    uint8_t indices[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    int32_t table = 9;
    const int right = 8 - shape.across + 1, below = 8 - shape.down + 1;
    for (const auto& [x, y] : {std::pair{right, 0}, {0, below}, {-1, 0}, {0, -1}, {INT32_MAX, 0}}) {
      EXPECT_EQ(2, shape.average(rgb, 8, 8, x, y, mean));
      EXPECT_EQ(-1, shape.withTable(rgb, 8, 8, x, y, base, 0, indices));
      EXPECT_EQ(-1, shape.withBestTable(rgb, 8, 8, x, y, base, &table, indices));
    }
    EXPECT_EQ(2, shape.average(nullptr, 8, 8, 0, 0, mean));
    EXPECT_EQ(2, shape.average(rgb, 8, 8, 0, 0, nullptr));
    EXPECT_EQ(-1, shape.withTable(nullptr, 8, 8, 0, 0, base, 0, indices));
    EXPECT_EQ(-1, shape.withTable(rgb, 8, 8, 0, 0, nullptr, 0, indices));
    EXPECT_EQ(-1, shape.withTable(rgb, 8, 8, 0, 0, base, 0, nullptr));
    EXPECT_EQ(-1, shape.withTable(rgb, 8, 8, 0, 0, base, 8, indices));
    EXPECT_EQ(-1, shape.withTable(rgb, 8, 8, 0, 0, base, -1, indices));
    EXPECT_EQ(-1, shape.withBestTable(rgb, 8, 8, 0, 0, base, nullptr, indices));
    EXPECT_EQ(-1, shape.withBestTable(rgb, 8, 8, 0, 0, nullptr, &table, indices));
    EXPECT_EQ(-1, shape.withBestTable(rgb, 8, 8, 0, 0, base, &table, nullptr));
    EXPECT_EQ(-1.0f, mean[0]);
    EXPECT_EQ(9, indices[0]);
    EXPECT_EQ(9, table);
  }
  uint8_t levels[3] = {9, 9, 9};
  const float mean[3] = {};
  EXPECT_EQ(2, TEXPKquantize555ColorCombinedPerceptual(nullptr, levels));
  EXPECT_EQ(2, TEXPKquantize555ColorCombinedPerceptual(mean, nullptr));
  EXPECT_EQ(2, TEXPKquantize444ColorCombinedPerceptual(nullptr, levels));
  EXPECT_EQ(2, TEXPKquantize444ColorCombinedPerceptual(mean, nullptr));
  EXPECT_EQ(9, levels[0]);
}

}  // namespace
}  // namespace qpx::etc
