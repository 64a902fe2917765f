// Which rows each band has, who converts them, and pools without all their threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "convert/images_picture.h"
#include "convert/parallel/pool.h"
#include "convert/parallel_failures.h"
#include "convert/parallel_support.h"

namespace qpx::testing {
namespace {

constexpr int32_t kI420ToNv21 = 10;

// As hosts know a context, and what a band is given.
struct ContextWords {
  McvParallel* engine;
  int32_t ownsEngine;
  int32_t bandCount;
  McvTaskFunc bands[44];
};
struct BandWords {
  const McvImage* src;
  const McvImage* dst;
  int32_t rowStart, rowEnd;
  const uint8_t* param;
};

struct Rows {
  int32_t start, end;
  bool operator==(const Rows&) const = default;
};

std::mutex g_lock;
std::vector<Rows> g_rows;  // in the order in which bands were begun
std::vector<std::thread::id> g_threads;

void* noteRows(void* arg) {
  const BandWords& band = *static_cast<const BandWords*>(arg);
  const std::lock_guard lock(g_lock);
  g_rows.push_back({band.rowStart, band.rowEnd});
  g_threads.push_back(std::this_thread::get_id());
  return nullptr;
}

int g_processors = 16;

class BandRows : public ::testing::Test {
 protected:
  ~BandRows() override {
    stop();
    setCpusForTest(systemCpus());
  }

  void start(int processors) {
    g_processors = processors;
    setCpusForTest({[] { return g_processors; }, [] { return g_processors; }, "/nowhere/cpu%d"});
    context_ = mcvColorCvtInit_MultiThreads(nullptr);
    ASSERT_NE(nullptr, context_);
    convert_ = words()->bands[kI420ToNv21];
  }
  void stop() {
    if (context_ == nullptr) return;
    EXPECT_EQ(0, mcvColorCvtUnInit_MultiThreads(nullptr, context_));
    context_ = nullptr;
  }
  ContextWords* words() { return reinterpret_cast<ContextWords*>(context_); }

  // The rows of all bands, from the top; bands without rows are told by their places.
  std::vector<Rows> rowsOf(int32_t height) {
    words()->bands[kI420ToNv21] = noteRows;
    g_rows.clear();
    const McvPicture src(MCV_I420, 4, height, 1), dst(MCV_NV21, 4, height, 2);
    EXPECT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), dst.image(), nullptr));
    words()->bands[kI420ToNv21] = convert_;
    std::vector<Rows> rows = g_rows;
    std::sort(rows.begin(), rows.end(), [](const Rows& a, const Rows& b) {
      return a.start != b.start ? a.start < b.start : a.end < b.end;
    });
    return rows;
  }

  McvColorCvtContext* context_ = nullptr;
  McvTaskFunc convert_ = nullptr;
};

TEST_F(BandRows, ByHandOfOneThread) {
  start(1);
  EXPECT_EQ(4, words()->bandCount);
  // Ten pairs: 2, then 8 / 3 = 2, then 6 / 2 = 3, and what is left.
  EXPECT_EQ((std::vector<Rows>{{0, 4}, {4, 8}, {8, 14}, {14, 20}}), rowsOf(20));
  EXPECT_EQ((std::vector<Rows>{{0, 4}, {4, 8}, {8, 14}, {14, 21}}), rowsOf(21));
  // Three pairs: none, then 3 / 3 = 1, 2 / 2 = 1, and the last.
  EXPECT_EQ((std::vector<Rows>{{0, 0}, {0, 2}, {2, 4}, {4, 7}}), rowsOf(7));
  EXPECT_EQ((std::vector<Rows>{{0, 0}, {0, 0}, {0, 0}, {0, 3}}), rowsOf(3));
}

TEST_F(BandRows, ByHandOfTwoThreads) {
  start(2);
  EXPECT_EQ(8, words()->bandCount);
  // 30 pairs: 3, 27 / 7 = 3, 24 / 6 = 4, 20 / 5 = 4, 16 / 4 = 4, 12 / 3 = 4, 8 / 2 = 4, 4.
  EXPECT_EQ((std::vector<Rows>{
                {0, 6}, {6, 12}, {12, 20}, {20, 28}, {28, 36}, {36, 44}, {44, 52}, {52, 61}}),
            rowsOf(61));
}

TEST_F(BandRows, AreEvenPairsForEveryNumberOfThreads) {
  for (const int threads : {1, 2, 3, 4}) {
    start(threads);
    const int32_t count = words()->bandCount;
    EXPECT_EQ(4 * threads, count);
    for (int32_t height = 2; height < 150; ++height) {
      // Shares from the top, each of what is left by the bands that are left.
      std::vector<Rows> expected;
      int32_t left = height / 2, row = 0;
      for (int32_t bands = count; bands > 1; --bands) {
        const int32_t share = left / bands;
        expected.push_back({row, row + 2 * share});
        row += 2 * share;
        left -= share;
      }
      expected.push_back({row, height});
      ASSERT_EQ(expected, rowsOf(height)) << threads << " threads, height " << height;
    }
    stop();
  }
}

// Keeps a pool's threads busy until it is let go.
class Busy {
 public:
  explicit Busy(McvParallel* pool) : pool_(pool) {
    for (int32_t i = 0; i < mcvParallelEngineCores(pool); ++i) {
      ids_.push_back(mcvAddTask(pool, wait, this));
    }
    while (arrived_ < mcvParallelEngineCores(pool)) std::this_thread::yield();
  }
  ~Busy() {
    open_ = true;
    for (const int32_t id : ids_) EXPECT_EQ(0, mcvWaitTask(pool_, id));
  }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  static void* wait(void* busy) {
    Busy& self = *static_cast<Busy*>(busy);
    ++self.arrived_;
    while (!self.open_) std::this_thread::yield();
    return nullptr;
  }

  McvParallel* pool_;
  std::vector<int32_t> ids_;
  std::atomic<int32_t> arrived_{0};
  std::atomic<bool> open_{false};
};

void* countUp(void* counter) {
  ++*static_cast<std::atomic<int>*>(counter);
  return nullptr;
}

// While no thread of the pool gets to them the caller converts all, from the last one on.
TEST_F(BandRows, AreConvertedByTheCallerWhereThreadsAreBusy) {
  start(4);
  const Busy busy(words()->engine);
  const McvPicture src(MCV_I420, 34, 131, 1);
  const McvPicture actual(MCV_NV21, 34, 131, 2), expected = actual.copy();
  ASSERT_EQ(0, mcvColorCvt(src.image(), expected.image(), 0));
  ASSERT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), actual.image(), nullptr));
  EXPECT_EQ("", expected.differenceTo(actual));
  EXPECT_EQ(0, words()->engine->taskCount);
  g_threads.clear();
  rowsOf(64);
  ASSERT_EQ(16u, g_rows.size());
  for (size_t i = 0; i < 16; ++i) {
    EXPECT_EQ((Rows{60 - 4 * static_cast<int32_t>(i), 64 - 4 * static_cast<int32_t>(i)}),
              g_rows[i]);
    EXPECT_EQ(std::this_thread::get_id(), g_threads[i]);
  }
}

// Tasks of others stay in their order when bands between them are taken back.
TEST_F(BandRows, LeaveOthersTasksAlone) {
  start(2);
  McvParallel* const pool = words()->engine;
  static McvParallel* queue;
  static std::atomic<int> count;
  static int32_t behind;
  queue = pool;
  count = 0;
  behind = -1;
  std::vector<int32_t> before;
  {
    const Busy busy(pool);
    for (int i = 0; i < 3; ++i) before.push_back(mcvAddTask(pool, countUp, &count));
    words()->bands[kI420ToNv21] = [](void*) -> void* {
      if (behind < 0) behind = mcvAddTask(queue, countUp, &count);
      return nullptr;
    };
    const McvPicture src(MCV_I420, 4, 64, 1), dst(MCV_NV21, 4, 64, 2);
    EXPECT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), dst.image(), nullptr));
    EXPECT_EQ(0, count);
    ASSERT_EQ(4, pool->taskCount);
    for (int32_t i = 0; i < 3; ++i) {
      EXPECT_EQ(before[static_cast<size_t>(i)], pool->tasks[(pool->taskHead + i) % 32].id);
    }
    EXPECT_EQ(behind, pool->tasks[(pool->taskHead + 3) % 32].id);
  }
  for (const int32_t id : before) EXPECT_EQ(0, mcvWaitTask(pool, id));
  EXPECT_EQ(0, mcvWaitTask(pool, behind));
  EXPECT_EQ(4, count);
}

TEST_F(BandRows, AreConvertedByTheCallerWhereTheQueueIsFull) {
  start(4);
  McvParallel* const pool = words()->engine;
  std::atomic<int> count{0};
  std::vector<int32_t> ids;
  {
    const Busy busy(pool);
    // Places for four bands are left; with the busy tasks as many as there may be on their way.
    for (int i = 0; i < 28; ++i) ids.push_back(mcvAddTask(pool, countUp, &count));
    const int32_t next = pool->nextId;
    const McvPicture src(MCV_I420, 6, 64, 3);
    const McvPicture actual(MCV_NV21, 6, 64, 4), expected = actual.copy();
    ASSERT_EQ(0, mcvColorCvt(src.image(), expected.image(), 0));
    EXPECT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), actual.image(), nullptr));
    EXPECT_EQ("", expected.differenceTo(actual));
    EXPECT_EQ(next + 4, pool->nextId);
    EXPECT_EQ(28, pool->taskCount);
    EXPECT_EQ(0, pool->doneCount);
  }
  for (const int32_t id : ids) EXPECT_EQ(0, mcvWaitTask(pool, id));
  EXPECT_EQ(28, count);
}

// Many callers, each with more bands than there are threads: none is left waiting.
TEST_F(BandRows, OfManyCallersAreAllConverted) {
  start(3);
  std::vector<std::thread> callers;
  for (uint32_t seed = 0; seed < 2; ++seed) {
    callers.emplace_back([this, seed] {
      for (int32_t round = 0; round < 60; ++round) {
        const McvPicture src(MCV_I420, 10, 40 + round, seed);
        const McvPicture actual(MCV_NV21, 10, 40 + round, 9), expected = actual.copy();
        EXPECT_EQ(0, mcvColorCvt(src.image(), expected.image(), 0));
        EXPECT_EQ(0,
                  mcvColorCvtProcess_MultiThreads(context_, src.image(), actual.image(), nullptr));
        EXPECT_EQ("", expected.differenceTo(actual));
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(0, words()->engine->doneCount);
  EXPECT_EQ(0, words()->engine->taskCount);
}

TEST(PoolsWithoutThreads, AreNot) {
  setCpusForTest(sixteenCpus());
  for (const int n : {1, 3}) {
    failThreadsFrom(n);
    EXPECT_EQ(nullptr, mcvParallelInit(nullptr, 4)) << n;
  }
  failThreadsFrom(1);
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(nullptr, mcvColorCvtInit_MultiThreads(nullptr));
  EXPECT_EQ("[ERROR] Parallel engine init failed!!\n", ::testing::internal::GetCapturedStdout());
  failThreadsFrom(0);
  McvParallel* const pool = mcvParallelInit(nullptr, 4);
  ASSERT_NE(nullptr, pool);
  EXPECT_EQ(0, mcvParallelUninit(pool));
  setCpusForTest(systemCpus());
}

}  // namespace
}  // namespace qpx::testing
