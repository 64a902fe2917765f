// How much memory a chain takes, and what happens when there is none.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/test_effects.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

const std::vector<uint32_t> kChain = {kBox1, kBox2, kTone, kBox3};

int64_t peakOf(int32_t width, int32_t height) {
  std::vector<uint8_t> row(static_cast<size_t>(width) * 3);
  FailingMemory::reset();
  const int64_t before = FailingMemory::liveBytes();
  {
    Engine engine(formatOf(3), {width, height}, kChain);
    EXPECT_EQ(engine.result(), 0);
    // One row of pixels serves as every row of input and of output.
    const QPXPlaneSet planes = {{row.data(), nullptr, nullptr}, {0, 0, 0}};
    for (int32_t top = 0; top < height; top += 2000) {
      MRect rect = {0, top, width, std::min(top + 2000, height)};
      EXPECT_EQ(QPXProcess(engine.get(), &planes, &planes, &rect), 0);
    }
  }
  const int64_t peak = FailingMemory::peakBytes() - before;
  EXPECT_EQ(FailingMemory::liveBytes(), before);
  return peak;
}

TEST(ChainMemory, BeyondTheRowTablesDoesNotDependOnTheHeight) {
  // A table of input and one of output rows for each stage.
  const int64_t perRow = 2 * static_cast<int64_t>(kChain.size() * sizeof(void*));
  const int64_t small = peakOf(7, 100) - 100 * perRow;
  EXPECT_EQ(peakOf(7, 10000) - 10000 * perRow, small);
  EXPECT_EQ(peakOf(7, 100000) - 100000 * perRow, small);
}

TEST(ChainMemory, GrowsWithTheWidthByTheRowsOfTheRings) {
  // Behind the head the stages have rings of 5, 1 and 7 rows.
  EXPECT_EQ(peakOf(1008, 100) - peakOf(8, 100), 13 * 1000 * 3);
}

TEST(ChainMemory, ProcessingAllocatesNothingOnceTheRingsAreThere) {
  Picture source = Picture::random(20, 40, 3, 1);
  Picture result(20, 60, 3);
  for (const auto& effects : {std::vector<uint32_t>{kBox2}, kChain}) {
    Engine engine(formatOf(3), {20, 40}, effects);
    runBands(engine.get(), source, {8, 16, 40});
    FailingMemory::reset();
    runBands(engine.get(), source, {8, 16, 40});
    EXPECT_EQ(FailingMemory::allocations(), 0);
  }
}

TEST(ChainMemory, RingsThatCannotBeMadeAnswerFourAndLeaveTheEngineWell) {
  Picture source = Picture::random(20, 40, 3, 1);
  const Picture model = applyModel(kChain, source);
  Engine engine(formatOf(3), {20, 40}, kChain);
  Picture result(20, 40, 3);
  const Picture untouched = result;
  const QPXPlaneSet in = source.planes(0, 0);
  const QPXPlaneSet out = result.planes(0, 0);
  MRect rect = {0, 0, 20, 40};
  FailingMemory::failFrom(1);
  EXPECT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 4);
  FailingMemory::reset();
  EXPECT_EQ(difference(untouched, result), "equal");
  EXPECT_EQ(rect.right, 20);
  EXPECT_EQ(rect.bottom, 40);
  EXPECT_EQ(difference(model, runBands(engine.get(), source, {7, 40})), "equal");

  rect = {0, 0, 11, 40};  // another width: the rings are made anew
  FailingMemory::failFrom(1);
  EXPECT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 4);
  FailingMemory::reset();
  EXPECT_EQ(difference(model, runBands(engine.get(), source, {7, 40})), "equal");
}

TEST(ChainMemory, CreateSurvivesEveryFailedAllocation) {
  const PlanesRecord planes = {12, 1, {0, 128, 128, 0}};
  const RotatedRecord rotated = {20.0};
  const std::vector<std::vector<QPXEffectItem>> lists = {
      {{kBox1, nullptr, 0}},
      {{kBox1, nullptr, 0}, {kBox3, nullptr, 0}, {kTone, nullptr, 0}},
      {{kSharesTable, nullptr, 0}, {kSharesTable, nullptr, 0}, {kBox1, nullptr, 0}},
      {{kResources, nullptr, 0}, {kResources, nullptr, 0}},
      {{kRotated, &rotated, sizeof rotated}},
      {{kPlanes, &planes, sizeof planes}}};
  for (const bool firstOnly : {true, false}) {
    for (const auto& items : lists) {
      FailingMemory::reset();
      const int64_t before = FailingMemory::liveBlocks();
      const int64_t failed = FailingMemory::forEachFailure(firstOnly, [&] {
        Engine engine(formatOf(3), {16, 16}, {16, 16}, items);
        if (FailingMemory::failures() == 0) {
          EXPECT_EQ(engine.result(), 0);
        } else {
          EXPECT_EQ(engine.result(), 4);
          EXPECT_EQ(engine.get(), nullptr);
        }
      });
      EXPECT_GE(failed, static_cast<int64_t>(items.size()) + 2);
      EXPECT_EQ(FailingMemory::liveBlocks(), before);
      EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
    }
  }
}

TEST(ChainMemory, DestroyReleasesEverything) {
  FailingMemory::reset();
  const int64_t before = FailingMemory::liveBlocks();
  {
    Picture source = Picture::random(16, 16, 3, 1);
    Engine engine(formatOf(3), {16, 16},
                  {kResources, kSharesTable, kSharesTable, kBox2, kResources});
    ASSERT_EQ(engine.result(), 0);
    runBands(engine.get(), source, {5, 16});
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), before);
  EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
}

TEST(ChainMemory, FreeMemoryGivesTheLargeBuffersBackAndLeavesTheEngineToBeDestroyed) {
  FailingMemory::reset();
  const int64_t before = FailingMemory::liveBlocks();
  for (const auto& effects : {std::vector<uint32_t>{kResources}, {kResources, kBox2, kBox1}}) {
    Engine engine(formatOf(3), {16, 16}, effects);
    Picture source = Picture::random(16, 16, 3, 1);
    Picture result(16, 24, 3);
    runBands(engine.get(), source, {5, 16});
    const int64_t blocks = FailingMemory::liveBlocks();
    EXPECT_EQ(QPXFreeMemory(engine.get()), 0);
    // Row tables, lut and scratch2, and for a chain the rings; the pictures stay.
    EXPECT_EQ(blocks - FailingMemory::liveBlocks(), effects.size() > 1 ? 4 : 3);
    EXPECT_EQ(QPXFreeMemory(engine.get()), 0);
    const QPXPlaneSet in = source.planes(0, 0);
    const QPXPlaneSet out = result.planes(0, 0);
    MRect rect = {0, 0, 16, 16};
    EXPECT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 2);
    QPXBandRect band = {0, 0, 16, 16, 0, 0, 0, 0};
    EXPECT_EQ(QPXMerge(engine.get(), &out, &in, nullptr, nullptr, &band), 2);
    MRect other = {};
    EXPECT_EQ(QPXCalcRect(engine.get(), &other, &rect), 0);
    EXPECT_EQ(QPXCalcRectReset(engine.get()), 0);
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), before);
  EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
}

}  // namespace
}  // namespace qpx::testing
