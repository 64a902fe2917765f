#include <gtest/gtest.h>
#include <kesbase.h>

#include <cstring>

#include "support/failing_memory.h"
#include "support/picture.h"
#include "toolkit/curve.h"

namespace qpx {
namespace {

using testing::FailingMemory;
using testing::Random;

constexpr uint32_t kOne = 5;
constexpr uint32_t kThree = 9;

// A block of 768 random bytes; one that holds one table has noise behind it.
uint8_t* randomBlock(uint64_t seed) {
  Random random(seed);
  uint8_t* block = static_cast<uint8_t*>(MMemAlloc(nullptr, 768));
  for (int i = 0; i < 768; ++i) block[i] = random.byte();
  return block;
}

uint32_t sizeOf(uint32_t flags) { return flags == kThree ? 768 : 256; }

class StageLut : public ::testing::Test {
 protected:
  void SetUp() override { FailingMemory::reset(); }
  void TearDown() override { MMemFree(nullptr, stage_.lut); }

  // Chains two random tables; the table of channel c is then second after first.
  void expectChain(uint32_t first, uint32_t second, uint32_t flags, uint32_t size) {
    uint8_t a[768], b[768];
    uint8_t* firstBlock = randomBlock(first);
    uint8_t* secondBlock = randomBlock(second + 100);
    std::memcpy(a, firstBlock, 768);
    std::memcpy(b, secondBlock, 768);
    const int64_t blocks = FailingMemory::liveBlocks();
    ASSERT_EQ(ComposeStageLut(&stage_, firstBlock, first, sizeOf(first)), QPX_OK);
    EXPECT_EQ(stage_.lut, firstBlock);
    ASSERT_EQ(ComposeStageLut(&stage_, secondBlock, second, sizeOf(second)), QPX_OK);
    EXPECT_EQ(FailingMemory::liveBlocks(), blocks - 1);  // the second block is gone

    EXPECT_EQ(stage_.lut, firstBlock);
    EXPECT_EQ(stage_.lutFlags, flags);
    EXPECT_EQ(stage_.lutSize, size);
    const int channels = flags == kThree ? 3 : 1;
    for (int c = 0; c < channels; ++c) {
      for (int i = 0; i < 256; ++i) {
        const uint8_t old = first == kThree ? a[256 * c + i] : a[i];
        const uint8_t expected = second == kThree ? b[256 * c + old] : b[old];
        ASSERT_EQ(stage_.lut[256 * c + i], expected) << "channel " << c << ", entry " << i;
      }
    }
  }

  Stage stage_ = {};
};

TEST_F(StageLut, FirstTableIsAdoptedWithoutACopy) {
  uint8_t* block = randomBlock(1);
  ASSERT_EQ(ComposeStageLut(&stage_, block, kOne, 256), QPX_OK);
  EXPECT_EQ(stage_.lut, block);
  EXPECT_EQ(stage_.lutFlags, kOne);
  EXPECT_EQ(stage_.lutSize, 256u);
}

TEST_F(StageLut, OneAfterOne) { expectChain(kOne, kOne, kOne, 256); }
TEST_F(StageLut, OneAfterThreeKeepsThree) { expectChain(kThree, kOne, kThree, 768); }
TEST_F(StageLut, ThreeAfterOneGrowsToThree) { expectChain(kOne, kThree, kThree, 768); }
TEST_F(StageLut, ThreeAfterThree) { expectChain(kThree, kThree, kThree, 768); }

TEST_F(StageLut, NullTableChangesNothing) {
  EXPECT_EQ(ComposeStageLut(&stage_, nullptr, kThree, 768), QPX_OK);
  EXPECT_EQ(stage_.lut, nullptr);
  EXPECT_EQ(stage_.lutFlags, 0u);
  EXPECT_EQ(ComposeStageLut(nullptr, nullptr, kThree, 768), QPX_OK);
}

TEST_F(StageLut, NullStageLeavesTheTableToTheCaller) {
  uint8_t* block = randomBlock(1);
  EXPECT_EQ(ComposeStageLut(nullptr, block, kOne, 256), QPX_BAD_PARAM);
  MMemFree(nullptr, block);
  EXPECT_EQ(FailingMemory::doubleFrees(), 0);
}

TEST_F(StageLut, ComputedTablesHaveRoomToGrow) {
  const ToneTable negative = tabulate([](int32_t i) { return 255 - i; });
  const ToneTable lighter = tabulate([](int32_t i) { return i + 40; });
  ASSERT_EQ(composeTable(stage_, negative), QPX_OK);
  EXPECT_EQ(stage_.lutFlags, kOne);
  EXPECT_EQ(stage_.lutSize, 256u);
  EXPECT_EQ(FailingMemory::peakBytes(), 768);
  ASSERT_EQ(composeTables(stage_, negative, lighter, lighter), QPX_OK);
  EXPECT_EQ(stage_.lutFlags, kThree);
  const StageTables tables = stageTables(stage_);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(tables.red[i], i);
    EXPECT_EQ(tables.green[i], std::min(255 - i + 40, 255));
    EXPECT_EQ(tables.blue[i], tables.green[i]);
  }
}

TEST_F(StageLut, NoMemoryLeavesTheStage) {
  FailingMemory::failFrom(1);
  EXPECT_EQ(composeTable(stage_, ToneTable{}), QPX_NO_MEMORY);
  EXPECT_EQ(composeTables(stage_, ToneTable{}, ToneTable{}, ToneTable{}), QPX_NO_MEMORY);
  FailingMemory::reset();
  EXPECT_EQ(stage_.lut, nullptr);
}

TEST(ToneTables, FormulasAreClampedToBytes) {
  const ToneTable table = tabulate([](int32_t i) { return int64_t{i} * 1'000'000'000'000 - 5; });
  EXPECT_EQ(table[0], 0);
  EXPECT_EQ(table[1], 255);
}

}  // namespace
}  // namespace qpx
