// Unlocks that the system refuses. The thread sanitizer takes them for faults of the caller, which
// they are, so that they stand apart from the tests that it runs.
#include <gtest/gtest.h>
#include <qpx/threads.h>

#include <thread>

namespace {

TEST(LockFaults, UnlockByAnotherThreadAnswersOne) {
  MMutexHandle mutex = MMutexCreate();
  ASSERT_EQ(0, MMutexLock(mutex));
  int32_t result = 0;
  std::thread([&] { result = MMutexUnlock(mutex); }).join();
  EXPECT_EQ(1, result);
  EXPECT_EQ(0, MMutexUnlock(mutex));
  EXPECT_EQ(1, MMutexUnlock(mutex));
  EXPECT_EQ(0, MMutexDestroy(mutex));
}

}  // namespace
