// Compression of images and of single blocks.
#include <qpx/engine.h>
#include <qpx/etc.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "etc/scenes.h"
#include "support/failing_memory.h"

namespace qpx::etc {
namespace {

using qpx::testing::FailingMemory;
using reference::Words;

// Both forms of the vector code.
void inBothForms(const std::function<void(const char*)>& body) {
  body("vector forms");
  QPX_UsePlainForms(1);
  body("plain forms");
  QPX_UsePlainForms(0);
}

// Wider than two batches of blocks, and no multiple of one.
constexpr int kWidth = 300;
constexpr int kHeight = 40;

void expectEveryBlock(const Scene& scene, int quality, Words (*expected)(const Image&, int, int)) {
  const Image image = scene.draw(kWidth, kHeight);
  inBothForms([&](const char* form) {
    const std::vector<uint8_t> blocks = compressed(image, quality);
    for (int y = 0; y < kHeight; y += 4) {
      for (int x = 0; x < kWidth; x += 4) {
        ASSERT_EQ(wordsAt(blocks, kWidth, x, y), expected(image, x, y))
            << scene.name << " at " << x << ", " << y << ", " << form;
      }
    }
  });
}

TEST(CompressEtc, FastBlocksAreThoseOfTheDefinition) {
  for (const Scene& scene : scenes()) {
    expectEveryBlock(scene, QPX_ETC_FAST, reference::compressFast);
  }
}

TEST(CompressEtc, SlowBlocksAreThoseOfTheDefinition) {
  for (const Scene& scene : scenes()) {
    expectEveryBlock(scene, QPX_ETC_SLOW, reference::compressSlow);
  }
}

using BlockForm = int32_t (*)(const uint8_t*, int32_t, int32_t, int32_t, int32_t, uint32_t*,
                              uint32_t*);

struct NamedForm {
  BlockForm compress;
  Words (*expected)(const Image&, int, int);
};

constexpr NamedForm kForms[] = {
    {TEXPKcompressBlockDiffAveragePerceptual, reference::compressFast},
    {TEXPKcompressBlockDiffFlipAveragePerceptual, reference::compressFlipMean},
    {TEXPKcompressBlockDiffFlipCombinedPerceptual, reference::compressFlipNearest},
    {TEXPKcompressBlockDiffFlipSlowPerceptual, reference::compressSlow}};

TEST(CompressEtc, SingleBlocksAtAnyPlace) {
  for (const Scene& scene : scenes()) {
    const Image image = scene.draw(37, 23);
    for (const NamedForm& form : kForms) {
      for (int y = 0; y + 4 <= image.height; y += 3) {
        for (int x = 0; x + 4 <= image.width; x += 3) {
          Words words;
          ASSERT_EQ(QPX_OK, form.compress(image.rgb.data(), image.width, image.height, x, y,
                                          &words.word0, &words.word1));
          ASSERT_EQ(words, form.expected(image, x, y)) << scene.name << " at " << x << ", " << y;
        }
      }
    }
  }
}

TEST(CompressEtc, TheFormsDiffer) {
  Image image = scenes()[1].draw(64, 64);
  const Image calm = photograph(64, 32);
  std::copy(calm.rgb.begin(), calm.rgb.end(), image.rgb.begin());
  const std::vector<uint8_t> fast = compressed(image, QPX_ETC_FAST);
  const std::vector<uint8_t> slow = compressed(image, QPX_ETC_SLOW);
  int flipped = 0, individual = 0, nearest = 0;
  for (int y = 0; y < 64; y += 4) {
    for (int x = 0; x < 64; x += 4) {
      const Words words = wordsAt(slow, 64, x, y);
      flipped += words.word0 & 1;
      individual += (words.word0 & 2) == 0;
      nearest += words != reference::compressFlipMean(image, x, y);
      EXPECT_EQ(wordsAt(fast, 64, x, y).word0 & 1, 0u);
    }
  }
  EXPECT_GT(flipped, 20);
  EXPECT_GT(individual, 5);
  EXPECT_GT(nearest, 5);
}

// 200 is level 24, which is expanded to 198: the pixels take the small offset of the first table.
TEST(CompressEtc, AFlatBlockIsDifferentialWithoutADifferenceAndHasTheFirstTable) {
  Image image(4, 4);
  std::fill(image.rgb.begin(), image.rgb.end(), uint8_t{200});
  for (const int quality : {QPX_ETC_FAST, QPX_ETC_SLOW}) {
    const std::vector<uint8_t> blocks = compressed(image, quality);
    EXPECT_EQ(wordsAt(blocks, 4, 0, 0), (Words{0xC0C0C002, 0})) << quality;
    EXPECT_EQ(decompressed(blocks, 4, 4), image) << quality;
  }
}

// Where the nearest level is 4 away, the second table's offset of 5 comes nearer than the first's
// of 2.
TEST(CompressEtc, EveryFlatGreyHasTheTableThatComesNearest) {
  for (int grey = 0; grey < 256; ++grey) {
    Image image(4, 4);
    std::fill(image.rgb.begin(), image.rgb.end(), static_cast<uint8_t>(grey));
    const std::vector<uint8_t> blocks = compressed(image, QPX_ETC_FAST);
    const int level = static_cast<int>(std::round(grey * 31 / 255.0));
    const int away = std::abs(grey - (level * 8 + level / 4));
    const uint32_t table = away <= 3 ? 0 : 1;
    EXPECT_EQ(wordsAt(blocks, 4, 0, 0).word0 & 0x070707FF, 2 | table << 5 | table << 2) << grey;
    EXPECT_NEAR(decompressed(blocks, 4, 4).rgb[0], grey, 2) << grey;
  }
}

TEST(CompressEtc, FillsInTheRecordAndNothingElse) {
  Image image = photograph(8, 12);
  MBitmap source = recordOf(image);
  std::vector<uint8_t> blocks(48 + 16, 0xEE);
  MBitmap target = {77, -5, 9, {1, 2, 3}, {}};
  target.plane[0] = blocks.data();
  ASSERT_EQ(QPX_OK, TEXPK_Compress_ETC(&source, &target, QPX_ETC_FAST));
  EXPECT_EQ(target.format, QPX_FORMAT_ETC1);
  EXPECT_EQ(target.width, 8);
  EXPECT_EQ(target.height, 12);
  EXPECT_EQ(target.pitch[0], 48);
  EXPECT_EQ(target.plane[0], blocks.data());
  EXPECT_EQ(std::vector<uint8_t>(blocks.begin() + 48, blocks.end()),
            std::vector<uint8_t>(16, 0xEE));
}

TEST(CompressEtc, TakesPaddedRowsAndEitherOrder) {
  const Image image = photograph(20, 8);
  Image padded(29, 8);
  for (int y = 0; y < 8; ++y) std::copy_n(image.at(0, y), 60, padded.at(0, y));
  for (const int quality : {QPX_ETC_FAST, QPX_ETC_SLOW}) {
    for (const uint32_t format : {QPX_FORMAT_RGB24, QPX_FORMAT_BGR24}) {
      MBitmap source = recordOf(padded, format);
      source.width = 20;
      std::vector<uint8_t> blocks(80);
      MBitmap target = {};
      target.plane[0] = blocks.data();
      ASSERT_EQ(QPX_OK, TEXPK_Compress_ETC(&source, &target, quality));
      EXPECT_EQ(blocks, compressed(image, quality));
    }
  }
}

class CompressRefusal : public ::testing::Test {
 protected:
  void expect(int32_t code, const MBitmap& source, int32_t quality = QPX_ETC_FAST) {
    MBitmap target = {7, 7, 7, {7, 7, 7}, {}};
    target.plane[0] = blocks_.data();
    EXPECT_EQ(code, TEXPK_Compress_ETC(&source, &target, quality));
    EXPECT_EQ(target.format, 7u);
    EXPECT_EQ(target.width, 7);
    EXPECT_EQ(blocks_, std::vector<uint8_t>(blocks_.size(), 0x11));
  }

  Image image_ = photograph(16, 16);
  MBitmap source_ = recordOf(image_);
  std::vector<uint8_t> blocks_ = std::vector<uint8_t>(128, 0x11);
};

TEST_F(CompressRefusal, OfSidesThatAreNoMultiplesOfABlock) {
  for (const int side : {0, -4, 1, 2, 3, 5, 15, -16, INT32_MIN, INT32_MAX}) {
    MBitmap source = source_;
    source.width = side;
    expect(2, source);
    source = source_;
    source.height = side;
    expect(2, source);
  }
  // Sizes whose products leave 32 bits.
  MBitmap source = source_;
  source.width = 1 << 30;
  source.pitch[0] = INT32_MAX;
  expect(2, source);
  source.width = source.height = 1 << 20;
  expect(2, source);
}

TEST_F(CompressRefusal, OfOtherFormatsPitchesAndNulls) {
  for (const uint32_t format :
       {uint32_t{QPX_FORMAT_BGRA32}, uint32_t{QPX_FORMAT_GREY8}, QPX_FORMAT_ETC1, 0u}) {
    MBitmap source = source_;
    source.format = format;
    expect(2, source);
  }
  for (const int pitch : {47, 0, -48}) {
    MBitmap source = source_;
    source.pitch[0] = pitch;
    expect(2, source);
  }
  MBitmap source = source_;
  source.plane[0] = nullptr;
  expect(2, source);
  MBitmap target = {};
  EXPECT_EQ(2, TEXPK_Compress_ETC(&source_, &target, QPX_ETC_FAST));
  EXPECT_EQ(2, TEXPK_Compress_ETC(&source_, nullptr, QPX_ETC_FAST));
  EXPECT_EQ(2, TEXPK_Compress_ETC(nullptr, &target, QPX_ETC_FAST));
}

TEST_F(CompressRefusal, OfOtherQualitiesAnswersThree) {
  for (const int quality : {-1, 2, 100, INT32_MIN}) expect(3, source_, quality);
  MBitmap source = source_;
  source.width = 15;
  expect(2, source, 5);
}

TEST_F(CompressRefusal, WithoutMemoryWhereAnyIsNeeded) {
  for (const bool firstOnly : {true, false}) {
    FailingMemory::reset();
    const int64_t live = FailingMemory::liveBlocks();
    int refused = 0;
    const int64_t failed = FailingMemory::forEachFailure(firstOnly, [&] {
      std::vector<uint8_t> blocks(128, 0x11);
      MBitmap target = {};
      target.plane[0] = blocks.data();
      const int32_t result = TEXPK_Compress_ETC(&source_, &target, QPX_ETC_SLOW);
      EXPECT_EQ(result, FailingMemory::failures() > 0 ? 4 : 0);
      EXPECT_EQ(target.format, result == 0 ? QPX_FORMAT_ETC1 : 0u);
      refused += result == 4;
      EXPECT_EQ(FailingMemory::liveBlocks(), live);
    });
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(refused, 1);
  }
  FailingMemory::failFrom(1);
  MBitmap target = {};
  target.plane[0] = blocks_.data();
  EXPECT_EQ(QPX_OK, TEXPK_Compress_ETC(&source_, &target, QPX_ETC_FAST));
  FailingMemory::reset();
}

TEST(CompressEtc, BlocksThatAreNotInsideAreRefused) {
  const Image image = photograph(9, 8);
  constexpr int kPlaces[][4] = {{9, 8, 6, 0},
                                {9, 8, 0, 5},
                                {9, 8, -1, 0},
                                {9, 8, 0, -1},
                                {3, 8, 0, 0},
                                {9, 3, 0, 0},
                                {0, 8, 0, 0},
                                {9, -8, 0, 0},
                                {-9, 8, 0, 0},
                                {9, 8, 99, 0},
                                {9, 8, INT32_MAX, 0},
                                {9, 8, 0, INT32_MAX},
                                {9, 8, INT32_MIN, INT32_MIN}};
  for (const NamedForm& form : kForms) {
    Words words = {1, 2};
    for (const auto& [width, height, x, y] : kPlaces) {
      EXPECT_EQ(2, form.compress(image.rgb.data(), width, height, x, y, &words.word0, &words.word1))
          << width << " x " << height << " at " << x << ", " << y;
    }
    EXPECT_EQ(2, form.compress(nullptr, 9, 8, 0, 0, &words.word0, &words.word1));
    EXPECT_EQ(2, form.compress(image.rgb.data(), 9, 8, 0, 0, nullptr, &words.word1));
    EXPECT_EQ(2, form.compress(image.rgb.data(), 9, 8, 0, 0, &words.word0, nullptr));
    EXPECT_EQ(words, (Words{1, 2}));
    EXPECT_EQ(0, form.compress(image.rgb.data(), 9, 8, 5, 4, &words.word0, &words.word1));
  }
}

}  // namespace
}  // namespace qpx::etc
