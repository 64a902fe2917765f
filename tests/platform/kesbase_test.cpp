#include <gtest/gtest.h>
#include <kesbase.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace {

TEST(Kesbase, BlocksAreAlignedForAnyType) {
  for (size_t size = 1; size < 70; ++size) {
    void* const block = MMemAlloc(nullptr, size);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0u);
    MMemFree(nullptr, block);
  }
}

TEST(Kesbase, SizeZeroGivesDistinctBlocks) {
  void* const a = MMemAlloc(nullptr, 0);
  void* const b = MMemAlloc(nullptr, 0);
  EXPECT_NE(a, nullptr);
  EXPECT_NE(b, nullptr);
  EXPECT_NE(a, b);
  MMemFree(nullptr, a);
  MMemFree(nullptr, b);
}

TEST(Kesbase, ImpossibleSizeIsRefused) {
  volatile size_t size = std::numeric_limits<size_t>::max() - 64;
  EXPECT_EQ(MMemAlloc(nullptr, size), nullptr);
}

TEST(Kesbase, FreeOfNullDoesNothing) { MMemFree(nullptr, nullptr); }

TEST(Kesbase, ReallocKeepsBytesAndAllocatesFromNull) {
  uint8_t* block = static_cast<uint8_t*>(MMemRealloc(nullptr, nullptr, 3));
  ASSERT_NE(block, nullptr);
  MMemCpy(block, "abc", 3);
  block = static_cast<uint8_t*>(MMemRealloc(nullptr, block, 100000));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block[0], 'a');
  EXPECT_EQ(block[2], 'c');
  block = static_cast<uint8_t*>(MMemRealloc(nullptr, block, 0));
  EXPECT_NE(block, nullptr) << "a size of 0 keeps a block";
  MMemFree(nullptr, block);
}

TEST(Kesbase, SetUsesTheLowByteAndStaysInItsSize) {
  uint8_t bytes[] = {1, 2, 3, 4};
  EXPECT_EQ(MMemSet(bytes + 1, 0x1FE, 2), bytes + 1);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(bytes[1], 0xFE);
  EXPECT_EQ(bytes[2], 0xFE);
  EXPECT_EQ(bytes[3], 4);
}

TEST(Kesbase, CopyStaysInItsSizeAndAnswersTheTarget) {
  uint8_t to[] = {9, 9, 9};
  const uint8_t from[] = {1, 2, 3};
  EXPECT_EQ(MMemCpy(to, from, 2), to);
  EXPECT_EQ(to[0], 1);
  EXPECT_EQ(to[1], 2);
  EXPECT_EQ(to[2], 9);
}

TEST(Kesbase, NullTargetsAndSourcesAreLeftAlone) {
  uint8_t byte = 7;
  EXPECT_EQ(MMemSet(nullptr, 1, 5), nullptr);
  EXPECT_EQ(MMemCpy(nullptr, &byte, 1), nullptr);
  EXPECT_EQ(MMemCpy(&byte, nullptr, 1), &byte);
  EXPECT_EQ(byte, 7);
}

}  // namespace
