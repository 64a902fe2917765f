#include "support/failing_memory.h"

#include <gtest/gtest.h>
#include <kesbase.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using qpx::testing::FailingMemory;

class FailingMemoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    FailingMemory::reset();
    before_ = FailingMemory::liveBlocks();
  }
  void TearDown() override {
    FailingMemory::reset();
    EXPECT_EQ(FailingMemory::liveBlocks(), before_);
  }

 private:
  int64_t before_ = 0;
};

TEST_F(FailingMemoryTest, FailOnlyRefusesOneRequest) {
  FailingMemory::failOnly(2);
  void* const first = MMemAlloc(nullptr, 1);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(MMemAlloc(nullptr, 1), nullptr);
  void* const third = MMemAlloc(nullptr, 1);
  EXPECT_NE(third, nullptr);
  EXPECT_EQ(FailingMemory::allocations(), 3);
  EXPECT_EQ(FailingMemory::failures(), 1);
  MMemFree(nullptr, first);
  MMemFree(nullptr, third);
}

TEST_F(FailingMemoryTest, FailFromRefusesAllThatFollow) {
  FailingMemory::failFrom(2);
  void* const first = MMemAlloc(nullptr, 1);
  EXPECT_NE(first, nullptr);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(MMemAlloc(nullptr, 1), nullptr);
  EXPECT_EQ(FailingMemory::failures(), 3);
  FailingMemory::reset();
  void* const after = MMemAlloc(nullptr, 1);
  EXPECT_NE(after, nullptr);
  MMemFree(nullptr, first);
  MMemFree(nullptr, after);
}

TEST_F(FailingMemoryTest, CountsBlocksBytesAndPeak) {
  const int64_t blocks = FailingMemory::liveBlocks();
  const int64_t bytes = FailingMemory::liveBytes();
  void* const a = MMemAlloc(nullptr, 100);
  void* const b = MMemAlloc(nullptr, 50);
  EXPECT_EQ(FailingMemory::liveBlocks() - blocks, 2);
  EXPECT_EQ(FailingMemory::liveBytes() - bytes, 150);
  MMemFree(nullptr, a);
  EXPECT_EQ(FailingMemory::liveBytes() - bytes, 50);
  EXPECT_EQ(FailingMemory::peakBytes() - bytes, 150);
  FailingMemory::reset();
  EXPECT_EQ(FailingMemory::peakBytes() - bytes, 50);
  MMemFree(nullptr, b);
}

TEST_F(FailingMemoryTest, ReallocIsARequestAndKeepsTheOldBlockWhenRefused) {
  char* block = static_cast<char*>(MMemAlloc(nullptr, 4));
  std::memcpy(block, "abc", 4);
  FailingMemory::failOnly(1);
  EXPECT_EQ(MMemRealloc(nullptr, block, 400), nullptr);
  EXPECT_STREQ(block, "abc");
  block = static_cast<char*>(MMemRealloc(nullptr, block, 400));
  EXPECT_STREQ(block, "abc");
  EXPECT_EQ(FailingMemory::allocations(), 2);
  EXPECT_EQ(static_cast<uint8_t>(block[399]), 0xA5) << "fresh bytes are recognisable";
  MMemFree(nullptr, block);
}

TEST_F(FailingMemoryTest, FindsDoubleAndForeignFrees) {
  void* const block = MMemAlloc(nullptr, 8);
  MMemFree(nullptr, block);
  MMemFree(nullptr, block);
  EXPECT_EQ(FailingMemory::doubleFrees(), 1);
  EXPECT_EQ(FailingMemory::foreignFrees(), 0);
  int local = 0;
  MMemFree(nullptr, &local);
  EXPECT_EQ(MMemRealloc(nullptr, &local, 8), nullptr);
  EXPECT_EQ(FailingMemory::doubleFrees(), 1);
  EXPECT_EQ(FailingMemory::foreignFrees(), 2);
}

TEST_F(FailingMemoryTest, ForEachFailureTriesEveryRequestOnce) {
  int runs = 0;
  const auto threeBlocks = [&runs] {
    ++runs;
    for (int i = 0; i < 3; ++i) MMemFree(nullptr, MMemAlloc(nullptr, 1));
  };
  EXPECT_EQ(FailingMemory::forEachFailure(true, threeBlocks), 3);
  EXPECT_EQ(runs, 4);
  EXPECT_EQ(FailingMemory::forEachFailure(false, threeBlocks), 3);
  void* const after = MMemAlloc(nullptr, 1);
  EXPECT_NE(after, nullptr);
  MMemFree(nullptr, after);
}

TEST_F(FailingMemoryTest, CountsExactlyOverThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 2000;
  FailingMemory::reset();
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < kRounds; ++i) MMemFree(nullptr, MMemAlloc(nullptr, 16));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(FailingMemory::allocations(), kThreads * kRounds);
  EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
}

}  // namespace
