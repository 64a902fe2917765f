#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "convert/parallel/pool.h"
#include "convert/parallel_support.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

void* countUp(void* counter) {
  ++*static_cast<std::atomic<int>*>(counter);
  return nullptr;
}

// A task that runs until it is let go.
class Gate {
 public:
  static void* pass(void* gate) {
    Gate& self = *static_cast<Gate*>(gate);
    ++self.arrived_;
    while (!self.open_) std::this_thread::yield();
    return nullptr;
  }
  void awaitArrivals(int count) const {
    while (arrived_ < count) std::this_thread::yield();
  }
  void open() { open_ = true; }

 private:
  std::atomic<int> arrived_{0};
  std::atomic<bool> open_{false};
};

class Pools : public ::testing::Test {
 protected:
  Pools() { setCpusForTest(sixteenCpus()); }
  ~Pools() override { setCpusForTest(systemCpus()); }
};

TEST_F(Pools, HaveAsManyThreadsAsWasAskedFor) {
  for (int32_t threads = 1; threads <= 16; ++threads) {
    McvParallel* const pool = mcvParallelInit(nullptr, threads);
    ASSERT_NE(nullptr, pool);
    EXPECT_EQ(threads, mcvParallelEngineCores(pool));
    std::vector<int32_t> ids;
    std::atomic<int> count{0};
    for (int i = 0; i < 32; ++i) ids.push_back(mcvAddTask(pool, countUp, &count));
    for (const int32_t id : ids) EXPECT_EQ(0, mcvWaitTask(pool, id));
    EXPECT_EQ(32, count);
    EXPECT_EQ(0, mcvParallelUninit(pool));
  }
}

TEST_F(Pools, AreCutDownToTheProcessors) {
  static int configured = 0, online = 0;
  setCpusForTest({[] { return configured; }, [] { return online; }, "/nowhere/%d"});
  const auto threadsOf = [](int32_t wanted) {
    McvParallel* const pool = mcvParallelInit(nullptr, wanted);
    const int32_t threads = mcvParallelEngineCores(pool);
    mcvParallelUninit(pool);
    return threads;
  };
  configured = 3;
  online = 2;
  EXPECT_EQ(3, threadsOf(4));
  EXPECT_EQ(1, threadsOf(1));
  EXPECT_EQ(2, threadsOf(0));
  configured = online = 40;
  EXPECT_EQ(16, threadsOf(40));
  EXPECT_EQ(40, threadsOf(0));
  configured = online = -1;
  EXPECT_EQ(1, threadsOf(4));
  EXPECT_EQ(1, threadsOf(0));
}

TEST_F(Pools, RefuseNullAndNegativeNumbers) {
  EXPECT_EQ(nullptr, mcvParallelInit(nullptr, -1));
  EXPECT_EQ(nullptr, mcvParallelInit(nullptr, INT32_MIN));
  EXPECT_EQ(-1, mcvParallelUninit(nullptr));
  EXPECT_EQ(0, mcvParallelEngineCores(nullptr));
  EXPECT_EQ(-1, mcvAddTask(nullptr, countUp, nullptr));
  EXPECT_EQ(-1, mcvWaitTask(nullptr, 0));
  mcvTryFireCpu(nullptr);
  mcvTryRestoreCpu(nullptr);
  McvParallel* const pool = mcvParallelInit(nullptr, 1);
  EXPECT_EQ(-1, mcvAddTask(pool, nullptr, nullptr));
  EXPECT_EQ(0, pool->nextId);
  EXPECT_EQ(0, mcvParallelUninit(pool));
}

// Sixteen on their way at a time, waited for in an order without pattern.
TEST_F(Pools, RunTenThousandTasks) {
  McvParallel* const pool = mcvParallelInit(nullptr, 4);
  std::atomic<int> count{0};
  uint32_t state = 1;
  for (int round = 0; round < 625; ++round) {
    int32_t ids[16];
    for (int32_t& id : ids) {
      id = mcvAddTask(pool, countUp, &count);
      ASSERT_EQ(&id - ids + 16 * round, id);
    }
    for (size_t left = 16; left > 0; --left) {
      state = state * 1664525 + 1013904223;
      std::swap(ids[(state >> 16) % left], ids[left - 1]);
      ASSERT_EQ(0, mcvWaitTask(pool, ids[left - 1]));
    }
    ASSERT_EQ(0, pool->doneCount);
  }
  EXPECT_EQ(10000, count);
  EXPECT_EQ(0, mcvParallelUninit(pool));
}

// Each waits for its own; none may be left sleeping while its id is there.
TEST_F(Pools, ServeSeveralThreads) {
  McvParallel* const pool = mcvParallelInit(nullptr, 3);
  std::atomic<int> count{0};
  std::vector<std::thread> clients;
  for (int c = 0; c < 4; ++c) {
    clients.emplace_back([&] {
      for (int round = 0; round < 150; ++round) {
        int32_t ids[8];
        for (int32_t& id : ids) id = mcvAddTask(pool, countUp, &count);
        std::reverse(ids, ids + 8);
        for (const int32_t id : ids) {
          ASSERT_LE(0, id);
          ASSERT_EQ(0, mcvWaitTask(pool, id));
        }
      }
    });
  }
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(4 * 150 * 8, count);
  EXPECT_EQ(0, mcvParallelUninit(pool));
}

TEST_F(Pools, HaveThirtyTwoPlacesForTasks) {
  McvParallel* const pool = mcvParallelInit(nullptr, 1);
  Gate gate, second;
  std::atomic<int> count{0};
  const int32_t first = mcvAddTask(pool, Gate::pass, &gate);
  gate.awaitArrivals(1);
  // Held back until the first is reaped, so that no more than 32 ids are there at a time.
  std::vector<int32_t> ids = {mcvAddTask(pool, Gate::pass, &second)};
  for (int i = 0; i < 31; ++i) ids.push_back(mcvAddTask(pool, countUp, &count));
  EXPECT_EQ(32, ids.back());
  const int32_t head = pool->taskHead;
  EXPECT_EQ(-4, mcvAddTask(pool, countUp, &count));
  EXPECT_EQ(-4, mcvAddTask(pool, countUp, &count));
  EXPECT_EQ(32, pool->taskCount);
  EXPECT_EQ(head, pool->taskHead);
  EXPECT_EQ(33, pool->nextId);
  gate.open();
  EXPECT_EQ(0, mcvWaitTask(pool, first));
  second.open();
  for (const int32_t id : ids) EXPECT_EQ(0, mcvWaitTask(pool, id));
  EXPECT_EQ(31, count);
  EXPECT_EQ(33, mcvAddTask(pool, countUp, &count));
  EXPECT_EQ(0, mcvWaitTask(pool, 33));
  EXPECT_EQ(0, mcvParallelUninit(pool));
}

void awaitDone(McvParallel* pool, int32_t count) {
  for (;;) {
    pthread_mutex_lock(&pool->doneLock);
    const int32_t done = pool->doneCount;
    pthread_mutex_unlock(&pool->doneLock);
    if (done >= count) return;
    std::this_thread::yield();
  }
}

// A wait that finds nothing turns the ring once, which keeps its order.
TEST_F(Pools, KeepDoneIdsInOrder) {
  McvParallel* const pool = mcvParallelInit(nullptr, 1);
  std::atomic<int> count{0};
  for (int i = 0; i < 5; ++i) mcvAddTask(pool, countUp, &count);
  awaitDone(pool, 5);
  EXPECT_EQ(0, mcvWaitTask(pool, 2));
  const auto idAt = [&](int32_t place) { return pool->doneIds[(pool->doneHead + place) % 32].id; };
  // Those before it went behind the others.
  EXPECT_EQ(3, idAt(0));
  EXPECT_EQ(4, idAt(1));
  EXPECT_EQ(0, idAt(2));
  EXPECT_EQ(1, idAt(3));
  std::thread waiter([&] { mcvWaitTask(pool, 5); });
  std::this_thread::yield();
  mcvAddTask(pool, countUp, &count);
  waiter.join();
  EXPECT_EQ(4, pool->doneCount);
  for (const int32_t id : {4, 1, 3, 0}) EXPECT_EQ(0, mcvWaitTask(pool, id));
  EXPECT_EQ(0, mcvParallelUninit(pool));
}

// The thirty-third that nobody waited for.
TEST_F(Pools, LoseWhatIsDoneWithoutAPlace) {
  McvParallel* const pool = mcvParallelInit(nullptr, 1);
  std::atomic<int> count{0};
  ::testing::internal::CaptureStdout();
  for (int i = 0; i < 32; ++i) mcvAddTask(pool, countUp, &count);
  awaitDone(pool, 32);
  mcvAddTask(pool, countUp, &count);
  Gate gate;
  const int32_t last = mcvAddTask(pool, Gate::pass, &gate);
  gate.awaitArrivals(1);
  EXPECT_EQ(33, count);
  EXPECT_EQ(32, pool->doneCount);
  for (int32_t id = 0; id < 32; ++id) EXPECT_EQ(0, mcvWaitTask(pool, id));
  gate.open();
  EXPECT_EQ(0, mcvWaitTask(pool, last));
  EXPECT_EQ(0, pool->doneCount);
  EXPECT_EQ(0, mcvParallelUninit(pool));
  EXPECT_EQ("Task lost\n", ::testing::internal::GetCapturedStdout());
}

TEST_F(Pools, BeginAgainBehindTheLastId) {
  McvParallel* const pool = mcvParallelInit(nullptr, 2);
  std::atomic<int> count{0};
  pool->nextId = 0x7FFFFFFD;
  for (const int32_t expected : {0x7FFFFFFD, 0x7FFFFFFE, 0, 1}) {
    const int32_t id = mcvAddTask(pool, countUp, &count);
    EXPECT_EQ(expected, id);
    EXPECT_EQ(0, mcvWaitTask(pool, id));
  }
  EXPECT_EQ(0, mcvParallelUninit(pool));
}

TEST_F(Pools, AreStoppedOnce) {
  McvParallel* const pool = mcvParallelInit(nullptr, 2);
  McvParallel* const other = mcvParallelInit(nullptr, 1);
  EXPECT_EQ(0, mcvParallelUninit(pool));
  EXPECT_EQ(-3, mcvParallelUninit(pool));
  EXPECT_EQ(-3, mcvParallelUninit(pool));
  EXPECT_EQ(0, mcvParallelUninit(other));
  EXPECT_EQ(-3, mcvParallelUninit(other));
}

// While the first call waits for a task that runs, the second finds the pool stopped; what waits in
// the queue is dropped.
TEST_F(Pools, AreBeingStoppedByOneThreadOnly) {
  McvParallel* const pool = mcvParallelInit(nullptr, 1);
  Gate gate;
  std::atomic<int> count{0};
  mcvAddTask(pool, Gate::pass, &gate);
  gate.awaitArrivals(1);
  for (int i = 0; i < 5; ++i) mcvAddTask(pool, countUp, &count);
  std::thread first([&] { EXPECT_EQ(0, mcvParallelUninit(pool)); });
  for (bool stopping = false; !stopping; std::this_thread::yield()) {
    pthread_mutex_lock(&pool->queueLock);
    stopping = pool->quit != 0;
    pthread_mutex_unlock(&pool->queueLock);
  }
  EXPECT_EQ(-3, mcvParallelUninit(pool));
  gate.open();
  first.join();
  EXPECT_EQ(0, count);
  EXPECT_EQ(-3, mcvParallelUninit(pool));
}

int g_context;

// Blocks are asked for from the memory services when there is a context.
TEST_F(Pools, ComeFromTheContextTheyAreGiven) {
  const int64_t before = FailingMemory::liveBlocks();
  McvParallel* pool = mcvParallelInit(&g_context, 3);
  EXPECT_EQ(before + 5, FailingMemory::liveBlocks());
  EXPECT_EQ(0, mcvParallelUninit(pool));
  EXPECT_EQ(before, FailingMemory::liveBlocks());
  pool = mcvParallelInit(nullptr, 3);
  EXPECT_EQ(before, FailingMemory::liveBlocks());
  EXPECT_EQ(0, mcvParallelUninit(pool));
  void* const block = mcvMemAlloc(&g_context, 10);
  EXPECT_EQ(before + 1, FailingMemory::liveBlocks());
  mcvMemFree(&g_context, block);
  mcvMemFree(&g_context, nullptr);
  mcvMemFree(nullptr, mcvMemAlloc(nullptr, 10));
  mcvMemFree(nullptr, nullptr);
  EXPECT_EQ(before, FailingMemory::liveBlocks());
}

// The block, the handles, the first worker: nothing runs yet, and everything is given back.
TEST_F(Pools, WithoutMemoryAreNot) {
  const int64_t before = FailingMemory::liveBlocks();
  for (int64_t n = 1; n <= 3; ++n) {
    FailingMemory::failOnly(n);
    EXPECT_EQ(nullptr, mcvParallelInit(&g_context, 2)) << n;
    EXPECT_EQ(1, FailingMemory::failures());
    EXPECT_EQ(before, FailingMemory::liveBlocks()) << n;
  }
  FailingMemory::reset();
}

// Threads that were started stay, and so does what they use.
TEST_F(Pools, ThatLackAThreadStayOutOfReach) {
  const int64_t before = FailingMemory::liveBlocks();
  FailingMemory::failOnly(4);
  EXPECT_EQ(nullptr, mcvParallelInit(&g_context, 2));
  FailingMemory::reset();
  EXPECT_EQ(before + 3, FailingMemory::liveBlocks());
}

}  // namespace
}  // namespace qpx::testing
