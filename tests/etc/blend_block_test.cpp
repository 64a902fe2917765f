// Two blocks into one, and the arithmetic for it.
#include <qpx/etc.h>

#include <gtest/gtest.h>

#include "etc/scenes.h"
#include "support/picture.h"

namespace qpx::etc {
namespace {

using qpx::testing::Random;
using reference::Words;

Words blended(const Words& overlay, const Words& base, int weight0, int weight1) {
  Words out;
  EXPECT_EQ(0, TEXPKABlock(overlay.word0, overlay.word1, base.word0, base.word1, &out.word0,
                           &out.word1, weight0, weight1));
  return out;
}

TEST(BlendBlocks, AnyTwoAtAnyWeights) {
  Random random(20);
  for (int i = 0; i < 40000; ++i) {
    const Words overlay = {random.next(), random.next()}, base = {random.next(), random.next()};
    const int weight0 = random.between(0, 1024);
    const int weight1 = random.between(0, 3) > 0 ? 1024 - weight0 + random.between(0, 1)
                                                 : random.between(0, 1024 - weight0);
    ASSERT_EQ(blended(overlay, base, weight0, std::min(weight1, 1024)),
              reference::blend(overlay, base, weight0, std::min(weight1, 1024)))
        << std::hex << overlay.word0 << " " << overlay.word1 << " over " << base.word0 << " "
        << base.word1 << std::dec << " at " << weight0;
  }
}

// Bases of 5 bits come back as they are; those of 4 may come back as 5, within 4, and a pair whose
// difference leaves the range as 4, within 8. Tables, indices and halves are the block's own.
TEST(BlendBlocks, WholeWeightGivesTheBlockUpToItsBaseColors) {
  Random random(21);
  for (int i = 0; i < 5000; ++i) {
    const Words other = {random.next(), random.next()};
    Words own = {random.next(), random.next()};
    for (const bool overlay : {true, false}) {
      const Words out = overlay ? blended(own, other, 1024, 0) : blended(other, own, 0, 1024);
      ASSERT_EQ(out.word0 & 0xFD, own.word0 & 0xFD);
      ASSERT_EQ(out.word1, own.word1);
      Image expected(4, 4), actual(4, 4);
      reference::decompress(own, expected, 0, 0);
      reference::decompress(out, actual, 0, 0);
      for (size_t k = 0; k < 48; ++k) ASSERT_NEAR(actual.rgb[k], expected.rgb[k], 8);
    }
  }
}

TEST(BlendBlocks, HalvesFollowTheHeavierBlock) {
  constexpr Words kUpright = {0x80808000, 0}, kFlipped = {0x80808001, 0};
  EXPECT_EQ(blended(kUpright, kFlipped, 600, 424).word0 & 1, 0u);
  EXPECT_EQ(blended(kFlipped, kUpright, 600, 424).word0 & 1, 1u);
  EXPECT_EQ(blended(kUpright, kFlipped, 400, 624).word0 & 1, 1u);
  EXPECT_EQ(blended(kUpright, kFlipped, 512, 512).word0 & 1, 1u);
  EXPECT_EQ(blended(kFlipped, kUpright, 512, 512).word0 & 1, 0u);
}

// Bases 0x44 and 0xCC, each for both halves, mix to 136; 136 * 31 / 255 gives 17 (16.5 rounded up)
// without a difference. Tables 1 and 4 mix to (512 * 2 + 512 * 8) >> 11 = 2. Indices 1 (17) and 3
// (-60) mix to -22, which is nearest to the table's -29: index 3.
TEST(BlendBlocks, OneByHand) {
  constexpr Words kOverlay = {0x44444424, 0x0000FFFF}, kBase = {0xCCCCCC90, 0xFFFFFFFF};
  EXPECT_EQ(blended(kOverlay, kBase, 512, 512), (Words{0x8888884A, 0xFFFFFFFF}));
}

TEST(BlendBlocks, RefusesWeightsOutOfRangeAndNulls) {
  uint32_t word0 = 7, word1 = 7;
  for (const auto& [weight0, weight1] : {std::pair{-1, 1024},
                                         {1025, 0},
                                         {0, 1025},
                                         {0, -1},
                                         {1024, 2},
                                         {513, 513},
                                         {INT32_MAX, 1},
                                         {INT32_MIN, INT32_MIN}}) {
    EXPECT_EQ(2, TEXPKABlock(0, 0, 0, 0, &word0, &word1, weight0, weight1));
  }
  EXPECT_EQ(2, TEXPKABlock(0, 0, 0, 0, nullptr, &word1, 512, 512));
  EXPECT_EQ(2, TEXPKABlock(0, 0, 0, 0, &word0, nullptr, 512, 512));
  EXPECT_EQ(7u, word0);
  EXPECT_EQ(7u, word1);
}

TEST(EtcArithmetic, IsThatOfItsFormulas) {
  for (int v = 0; v <= 255 * 255; ++v) {
    ASSERT_EQ(divideBy255(v), (v + v / 256 + 128) / 256);
    ASSERT_NEAR(divideBy255(v), v / 255.0, 0.51);
  }
  for (int x = 0; x < 256; ++x) {
    EXPECT_EQ(convert8To4(x), divideBy255(x * 15));
    EXPECT_EQ(convert8To5(x), divideBy255(x * 31));
  }
  EXPECT_EQ(15, convert8To4(255));
  EXPECT_EQ(31, convert8To5(255));
  for (int level = 0; level < 32; ++level) {
    EXPECT_EQ(level, convert8To5(level << 3 | level >> 2));
    EXPECT_EQ(level & 15, convert8To4((level & 15) * 17));
  }
  EXPECT_EQ(-1, divideBy255(-255));
  // Nothing traps; 2^31 - 1 + 2^23 - 1 + 128 wraps round.
  EXPECT_EQ((INT32_MIN + 8388734) >> 8, divideBy255(INT32_MAX));
  for (const int extreme : {INT32_MIN, INT32_MAX}) {
    convert8To4(extreme);
    convert8To5(extreme);
  }
}

TEST(EtcArithmetic, WordsAreBigEndian) {
  const uint8_t bytes[] = {0xFE, 0xDC, 0xBA, 0x98, 0x76};
  EXPECT_EQ(0xFEDCBA98u, read_big_endian_4byte_word(bytes));
  EXPECT_EQ(0xDCBA9876u, read_big_endian_4byte_word(bytes + 1));
  EXPECT_EQ(0u, read_big_endian_4byte_word(nullptr));
}

}  // namespace
}  // namespace qpx::etc
