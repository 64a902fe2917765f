// The double must stand in for libkesbase inside the shared library too.

#include <gtest/gtest.h>
#include <qpx/streams.h>

#include "support/failing_memory.h"

namespace {

using qpx::testing::FailingMemory;

TEST(Interposition, SharedLibraryAllocatesFromTheDouble) {
  FailingMemory::reset();
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 0);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(FailingMemory::allocations(), 2);
  EXPECT_EQ(FailingMemory::liveBlocks(), 2);
  EXPECT_EQ(MStreamClose(stream), 1);
  EXPECT_EQ(FailingMemory::liveBlocks(), 0);
}

TEST(Interposition, SharedLibrarySeesItsFailures) {
  FailingMemory::failOnly(1);
  EXPECT_EQ(MStreamOpenFromMemoryBlock(nullptr, 0), nullptr);
  FailingMemory::reset();
}

}  // namespace
