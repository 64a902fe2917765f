// Decompression of images and of single blocks, and the measure of their errors.
#include <qpx/engine.h>
#include <qpx/etc.h>

#include <gtest/gtest.h>

#include "etc/scenes.h"
#include "support/picture.h"

namespace qpx::etc {
namespace {

using qpx::testing::Random;
using reference::Words;

// Any words at all: both modes, both flips, differences that leave 5 bits.
TEST(DecompressEtc, EveryBlockIsThatOfTheFormat) {
  for (const int width : {4, 8, 12, 68, 260}) {
    const std::vector<uint8_t> blocks = randomBlocks(width, 64, static_cast<uint64_t>(width));
    Image expected(width, 64);
    for (int y = 0; y < 64; y += 4) {
      for (int x = 0; x < width; x += 4) {
        reference::decompress(wordsAt(blocks, width, x, y), expected, x, y);
      }
    }
    for (const int32_t plain : {0, 1}) {
      QPX_UsePlainForms(plain);
      EXPECT_EQ(decompressed(blocks, width, 64), expected) << width << ", plain " << plain;
    }
    QPX_UsePlainForms(0);
  }
}

// Worked by hand. Individual, left and right: bases (0x11, 0x22, 0x33) and (0xCC, 0xDD, 0xEE),
// tables 0 (2, 8) and 7 (47, 183); pixels 0 to 3, the first column, have the indices 0 to 3, pixels
// 8 to 11 of the right half too, all others 0.
TEST(DecompressEtc, AnIndividualBlockByHand) {
  Image image(4, 4);
  ASSERT_EQ(0, TEXPKdecompressBlockDiffFlip(0x1C2D3E1C, 0x0C0C0A0A, image.rgb.data(), 4, 4, 0, 0));
  const auto expect = [&](int x, int y, int r, int g, int b) {
    EXPECT_EQ((reference::Color{image.at(x, y)[0], image.at(x, y)[1], image.at(x, y)[2]}),
              (reference::Color{r, g, b}))
        << x << ", " << y;
  };
  expect(0, 0, 19, 36, 53);
  expect(0, 1, 25, 42, 59);
  expect(0, 2, 15, 32, 49);
  expect(0, 3, 9, 26, 43);
  expect(1, 0, 19, 36, 53);
  expect(2, 0, 251, 255, 255);
  expect(2, 1, 255, 255, 255);
  expect(2, 2, 157, 174, 191);
  expect(2, 3, 21, 38, 55);
  expect(3, 3, 251, 255, 255);
}

// Differential, upper and lower: levels (16, 31, 0) and, by (-4, 0, 3), (12, 31, 3), expanded to
// (132, 255, 0) and (99, 255, 24). Table 1 (5, 17) above, 2 (9, 29) below; all indices 2.
TEST(DecompressEtc, ADifferentialFlippedBlockByHand) {
  Image image(4, 4);
  ASSERT_EQ(0, TEXPKdecompressBlockDiffFlip(0x84F8032B, 0xFFFF0000, image.rgb.data(), 4, 4, 0, 0));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) {
      const std::vector<uint8_t> color(image.at(x, y), image.at(x, y) + 3);
      EXPECT_EQ(color,
                y < 2 ? (std::vector<uint8_t>{127, 250, 0}) : (std::vector<uint8_t>{90, 246, 15}));
    }
  }
}

TEST(DecompressEtc, FillsInTheRecordAndNothingElse) {
  std::vector<uint8_t> blocks = randomBlocks(12, 8, 3);
  MBitmap source = recordOf(blocks, 12, 8);
  source.pitch[0] = 768;  // not looked at
  for (const uint32_t format : {QPX_FORMAT_RGB24, QPX_FORMAT_BGR24}) {
    std::vector<uint8_t> pixels(12 * 8 * 3 + 16, 0xEE);
    MBitmap target = {format, 0, 0, {}, {}};
    target.plane[0] = pixels.data();
    ASSERT_EQ(QPX_OK, TEXPK_Uncompress_ETC(&source, &target));
    EXPECT_EQ(target.format, format);
    EXPECT_EQ(target.width, 12);
    EXPECT_EQ(target.height, 8);
    EXPECT_EQ(target.pitch[0], 36);
    EXPECT_EQ(std::vector<uint8_t>(pixels.end() - 16, pixels.end()),
              std::vector<uint8_t>(16, 0xEE));
    pixels.resize(288);
    EXPECT_EQ(pixels, decompressed(blocks, 12, 8).rgb);
  }
}

TEST(DecompressEtc, RefusesWhatItCannotRead) {
  std::vector<uint8_t> blocks = randomBlocks(16, 16, 4);
  Image image(16, 16);
  const auto answer = [&](const MBitmap& source, const MBitmap& target) {
    MBitmap copy = target;
    const int32_t result = TEXPK_Uncompress_ETC(&source, &copy);
    if (result != QPX_OK) {
      EXPECT_EQ(image, Image(16, 16));
      EXPECT_EQ(copy.pitch[0], target.pitch[0]);
    }
    return result;
  };
  const MBitmap goodSource = recordOf(blocks, 16, 16), goodTarget = recordOf(image);
  for (const int side : {0, -16, 1, 14, 15, INT32_MAX, INT32_MIN, 1 << 30}) {
    MBitmap source = goodSource;
    source.width = side;
    EXPECT_EQ(2, answer(source, goodTarget)) << side;
    source = goodSource;
    source.height = side;
    EXPECT_EQ(2, answer(source, goodTarget)) << side;
  }
  MBitmap source = goodSource, target = goodTarget;
  source.format = QPX_FORMAT_RGB24;
  EXPECT_EQ(2, answer(source, target));
  source = goodSource;
  source.plane[0] = nullptr;
  EXPECT_EQ(2, answer(source, target));
  for (const uint32_t format : {uint32_t{QPX_FORMAT_RGBA32}, QPX_FORMAT_ETC1}) {
    target.format = format;
    EXPECT_EQ(2, answer(goodSource, target));
  }
  target = goodTarget;
  target.plane[0] = nullptr;
  EXPECT_EQ(2, answer(goodSource, target));
  EXPECT_EQ(2, TEXPK_Uncompress_ETC(nullptr, &target));
  EXPECT_EQ(2, TEXPK_Uncompress_ETC(&goodSource, nullptr));
}

// A record that tells its size is believed.
TEST(DecompressEtc, RefusesATargetThatIsTooSmall) {
  std::vector<uint8_t> blocks = randomBlocks(16, 16, 5);
  const MBitmap source = recordOf(blocks, 16, 16);
  Image image(16, 16);
  for (const auto& [width, height, pitch, result] : {std::array{16, 15, 48, 2},
                                                     {15, 16, 45, 2},
                                                     {15, 16, 0, 2},
                                                     {12, 16, 48, 0},
                                                     {32, 8, 96, 0},
                                                     {16, 16, 0, 0},
                                                     {0, 16, 1, 0}}) {
    MBitmap target = recordOf(image);
    target.width = width;
    target.height = height;
    target.pitch[0] = pitch;
    EXPECT_EQ(result, TEXPK_Uncompress_ETC(&source, &target)) << width << " x " << height;
  }
}

TEST(DecompressEtc, SingleBlocksGoToAnyPlaceAndNowhereElse) {
  Random random(6);
  for (int y = 0; y + 4 <= 11; ++y) {
    for (int x = 0; x + 4 <= 13; ++x) {
      const Words words = {random.next(), random.next()};
      Image expected = photograph(13, 11);
      Image actual = expected;
      reference::decompress(words, expected, x, y);
      ASSERT_EQ(0, TEXPKdecompressBlockDiffFlip(words.word0, words.word1, actual.rgb.data(), 13, 11,
                                                x, y));
      ASSERT_EQ(actual, expected) << x << ", " << y;
    }
  }
  Image image(8, 8);
  EXPECT_EQ(2, TEXPKdecompressBlockDiffFlip(~0u, 0, image.rgb.data(), 8, 8, 5, 0));
  EXPECT_EQ(2, TEXPKdecompressBlockDiffFlip(~0u, 0, image.rgb.data(), 8, 8, 0, 5));
  EXPECT_EQ(2, TEXPKdecompressBlockDiffFlip(~0u, 0, image.rgb.data(), 8, 8, -1, 0));
  EXPECT_EQ(2, TEXPKdecompressBlockDiffFlip(~0u, 0, nullptr, 8, 8, 0, 0));
  EXPECT_EQ(image, Image(8, 8));
}

TEST(DecompressEtc, ErrorsOfBlocksAreWeighed) {
  Image a(8, 8), b(8, 8);
  b.at(3, 4)[0] = 2;
  b.at(4, 5)[1] = 3;
  b.at(6, 7)[2] = 10;
  b.at(7, 7)[1] = 200;  // outside
  const auto error = [&](int x, int y) {
    return TEXPKcalcBlockPerceptualErrorRGB(a.rgb.data(), b.rgb.data(), 8, 8, x, y);
  };
  EXPECT_EQ(19 * 4 + 38 * 9 + 7 * 100, error(3, 4));
  EXPECT_EQ(0, error(0, 0));
  std::fill(b.rgb.begin(), b.rgb.end(), uint8_t{255});
  EXPECT_EQ(66585600, error(4, 4));
  EXPECT_EQ(-1, error(5, 4));
  EXPECT_EQ(-1, error(0, -1));
  EXPECT_EQ(-1, TEXPKcalcBlockPerceptualErrorRGB(nullptr, b.rgb.data(), 8, 8, 0, 0));
  EXPECT_EQ(-1, TEXPKcalcBlockPerceptualErrorRGB(a.rgb.data(), nullptr, 8, 8, 0, 0));
}

}  // namespace
}  // namespace qpx::etc
