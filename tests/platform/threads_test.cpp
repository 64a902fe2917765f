#include <gtest/gtest.h>
#include <pthread.h>
#include <qpx/threads.h>
#include <sys/time.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include "support/failing_memory.h"

namespace {

using qpx::testing::FailingMemory;
using Clock = std::chrono::steady_clock;

int64_t millisecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// Waits until the clock's fraction of a second leaves room for waits of so many milliseconds, which
// are refused where both together are a second.
void awaitRoomInTheSecond(int32_t milliseconds) {
  timeval now = {};
  do {
    gettimeofday(&now, nullptr);
  } while (now.tv_usec / 1000 + milliseconds > 990);
}

void* addOne(void* argument) {
  ++*static_cast<std::atomic<int>*>(argument);
  return nullptr;
}

TEST(Threads, RunTheirRoutineAndAreJoined) {
  std::atomic<int> runs = 0;
  MThreadHandle threads[8];
  for (MThreadHandle& thread : threads) {
    thread = MThreadCreate(addOne, &runs);
    EXPECT_NE(0u, thread);
  }
  for (int i = 0; i < 4; ++i) EXPECT_EQ(0, MThreadExit(threads[i]));
  for (int i = 4; i < 8; ++i) EXPECT_EQ(0, MThreadDestory(threads[i]));
  EXPECT_EQ(8, runs);
}

TEST(Threads, NullIsNoThread) {
  EXPECT_EQ(0u, MThreadCreate(nullptr, nullptr));
  EXPECT_EQ(0, MThreadExit(0));
  EXPECT_EQ(0, MThreadDestory(0));
}

TEST(Threads, WhatDoesNothingAnswersZero) {
  EXPECT_EQ(0, MThreadResume(0));
  EXPECT_EQ(0, MThreadSuspend(0));
  EXPECT_EQ(0, MThreadSetPriority(0, 99));
}

TEST(Threads, SleepAsLongAsTheyShould) {
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(0, MThreadSleep(0, 0));
  EXPECT_EQ(0, MThreadSleep(12345, 30));
  EXPECT_GE(millisecondsSince(start), 30);
}

TEST(Mutexes, AreRecursive) {
  MMutexHandle mutex = MMutexCreate();
  ASSERT_NE(nullptr, mutex);
  EXPECT_EQ(0, MMutexLock(mutex));
  EXPECT_EQ(0, MMutexLock(mutex));
  EXPECT_EQ(0, MMutexUnlock(mutex));
  EXPECT_EQ(0, MMutexUnlock(mutex));
  EXPECT_EQ(0, MMutexDestroy(mutex));
}

TEST(Mutexes, RefuseNull) {
  EXPECT_EQ(0, MMutexDestroy(nullptr));
  EXPECT_EQ(2, MMutexLock(nullptr));
  EXPECT_EQ(2, MMutexUnlock(nullptr));
}

struct Counter {
  MMutexHandle mutex;
  int value = 0;
};

void* countTo5000(void* argument) {
  auto* const counter = static_cast<Counter*>(argument);
  for (int i = 0; i < 5000; ++i) {
    MMutexLock(counter->mutex);
    MMutexLock(counter->mutex);
    ++counter->value;
    MMutexUnlock(counter->mutex);
    MMutexUnlock(counter->mutex);
  }
  return nullptr;
}

TEST(Mutexes, KeepOthersOut) {
  Counter counter = {MMutexCreate()};
  MThreadHandle threads[4];
  for (MThreadHandle& thread : threads) thread = MThreadCreate(countTo5000, &counter);
  for (const MThreadHandle thread : threads) MThreadExit(thread);
  EXPECT_EQ(20000, counter.value);
  MMutexDestroy(counter.mutex);
}

class Events : public ::testing::Test {
 protected:
  Events() : event_(MEventCreate()) {}
  ~Events() override { MEventDestroy(event_); }
  MEventHandle event_;
};

TEST_F(Events, SignalIsKeptForOneWait) {
  EXPECT_EQ(0, MEventSignal(event_));
  EXPECT_EQ(0, MEventSignal(event_));
  EXPECT_EQ(0, MEventWait(event_, 0));
  awaitRoomInTheSecond(20);
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(1, MEventWait(event_, 20));
  EXPECT_GE(millisecondsSince(start), 15);
}

TEST_F(Events, ResetTakesTheSignalBack) {
  EXPECT_EQ(0, MEventSignal(event_));
  EXPECT_EQ(0, MEventReset(event_));
  EXPECT_EQ(1, MEventWait(event_, 0));
}

TEST_F(Events, ZeroTimeWithoutASignalAnswersOne) { EXPECT_EQ(1, MEventWait(event_, 0)); }

TEST_F(Events, SetEventNeedsNoTime) {
  EXPECT_EQ(0, MEventSignal(event_));
  EXPECT_EQ(0, MEventWait(event_, 999));
  EXPECT_EQ(0, MEventSignal(event_));
  EXPECT_EQ(0, MEventWait(event_, QPX_WAIT_FOREVER));
}

// The clock's fraction of a second and the wait's are not carried into the seconds: at most places
// in a second 999 milliseconds are refused at once.
TEST_F(Events, SumsOfASecondAreRefusedAtOnce) {
  timeval now = {};
  do {
    gettimeofday(&now, nullptr);
  } while (now.tv_usec < 100000 || now.tv_usec > 900000);
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(1, MEventWait(event_, 999));
  EXPECT_EQ(1, MEventWait(event_, 3600999));
  EXPECT_LT(millisecondsSince(start), 500);
}

TEST_F(Events, WholeSecondsAreWaitedFor) {
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(1, MEventWait(event_, 1000));
  EXPECT_GE(millisecondsSince(start), 900);
}

TEST_F(Events, NullIsRefused) {
  EXPECT_EQ(2, MEventDestroy(nullptr));
  EXPECT_EQ(2, MEventSignal(nullptr));
  EXPECT_EQ(2, MEventReset(nullptr));
  EXPECT_EQ(2, MEventWait(nullptr, 0));
}

// One signal, one waiter: each of the three takes its own.
TEST_F(Events, OneSignalReleasesOneWaiter) {
  std::atomic<int> through = 0;
  std::thread waiters[3];
  for (std::thread& waiter : waiters) {
    waiter = std::thread([&] {
      // A wait that the system ended early would count as one that was released.
      if (MEventWait(event_, QPX_WAIT_FOREVER) == 0) ++through;
    });
  }
  for (int i = 1; i <= 3; ++i) {
    MThreadSleep(0, 30);
    EXPECT_EQ(i - 1, through);
    EXPECT_EQ(0, MEventSignal(event_));
    for (int spins = 0; through < i && spins < 5000; ++spins) MThreadSleep(0, 1);
    EXPECT_EQ(i, through);
  }
  for (std::thread& waiter : waiters) waiter.join();
}

TEST(ThreadMemory, FailuresGiveNull) {
  FailingMemory::reset();
  EXPECT_EQ(1, FailingMemory::forEachFailure(true, [] {
              MMutexHandle mutex = MMutexCreate();
              EXPECT_EQ(FailingMemory::failures() == 0, mutex != nullptr);
              MMutexDestroy(mutex);
            }));
  EXPECT_EQ(1, FailingMemory::forEachFailure(true, [] {
              MEventHandle event = MEventCreate();
              EXPECT_EQ(FailingMemory::failures() == 0, event != nullptr);
              MEventDestroy(event);
            }));
  EXPECT_EQ(0, FailingMemory::liveBlocks());
}

// Milliseconds of the same clock, rounded: at most half a millisecond beside it.
TEST(TimeStamp, IsTheSystemsClock) {
  const auto microseconds = [] {
    timeval now = {};
    gettimeofday(&now, nullptr);
    return static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_usec);
  };
  const uint64_t before = microseconds();
  const uint32_t stamp = MGetCurTimeStamp();
  const uint64_t after = microseconds();
  const auto least = static_cast<uint32_t>((before + 500) / 1000);
  const auto most = static_cast<uint32_t>((after + 500) / 1000);
  EXPECT_LE(stamp - least, most - least);
}

}  // namespace
