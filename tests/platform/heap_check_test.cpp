// The memory checker over memory services of the test's own, which keep blocks readable after they
// were freed, so that also what no program may do can be tried.
#include <gtest/gtest.h>
#include <kesbase.h>
#include <qpx/heap_check.h>
#include <qpx/log.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

bool refuseAll = false;
void* lastContext = nullptr;
size_t lastSize = 0;
std::vector<void*> freedBlocks;

struct Line {
  int32_t priority;
  std::string tag;
  std::string message;
};

void keep(void* user, int32_t priority, const char* tag, const char* message) {
  static_cast<std::vector<Line>*>(user)->push_back({priority, tag, message});
}

std::string addressOf(const void* pointer) {
  char text[40];
  std::snprintf(text, sizeof text, "0X%p", pointer);
  return text;
}

class HeapCheck : public ::testing::Test {
 protected:
  HeapCheck() {
    freedBlocks.clear();
    QPX_SetLogSink(keep, &lines_);
  }
  ~HeapCheck() override {
    QPX_SetLogSink(nullptr, nullptr);
    for (void* block : freedBlocks) std::free(block);
    freedBlocks.clear();
  }

  static uint8_t* allocate(int32_t size, const char* file = "a/b.cpp", int32_t line = 7) {
    return static_cast<uint8_t*>(HEAPCK_MemAlloc(nullptr, size, file, line, "unit"));
  }

  std::string onlyLine() {
    if (lines_.size() != 1) return std::to_string(lines_.size()) + " lines";
    EXPECT_EQ(QPX_LOG_DEBUG, lines_[0].priority);
    EXPECT_EQ("memchk", lines_[0].tag);
    const std::string message = lines_[0].message;
    lines_.clear();
    return message;
  }

  std::vector<Line> lines_;
};

TEST_F(HeapCheck, BlocksStandBetweenGuards) {
  int context = 0;
  auto* const block = static_cast<uint8_t*>(HEAPCK_MemAlloc(&context, 10, "x.c", 1, "unit"));
  ASSERT_NE(nullptr, block);
  EXPECT_EQ(&context, lastContext);
  EXPECT_EQ(1010u, lastSize);
  for (int i = 1; i <= 500; ++i) {
    ASSERT_EQ(205, block[-i]);
    ASSERT_EQ(205, block[9 + i]);
  }
  std::memset(block, 0, 10);
  HEAPCK_MemFree(&context, block);
  ASSERT_EQ(1u, freedBlocks.size());
  EXPECT_EQ(block - 500, freedBlocks[0]);
  EXPECT_TRUE(lines_.empty());
}

TEST_F(HeapCheck, EveryByteOfTheGuardsIsWatched) {
  for (const int32_t size : {0, 1, 33}) {
    for (const int32_t at : {-500, -499, -1, size, size + 1, size + 499}) {
      uint8_t* const block = allocate(size);
      block[at] = 204;
      HEAPCK_MemFree(nullptr, block);
      EXPECT_EQ("unit_OVERWRITE, Memory Size = " + std::to_string(size) +
                    ", Pointer = " + addressOf(block) + ", Allocated at: b.cpp, Line:      7",
                onlyLine())
          << at;
      EXPECT_EQ(block - 500, freedBlocks.back());
    }
  }
}

TEST_F(HeapCheck, DamageIsReportedOnce) {
  uint8_t* const block = allocate(4);
  std::memset(block - 500, 0, 1004);
  HEAPCK_MemFree(nullptr, block);
  EXPECT_EQ(1u, lines_.size());
}

TEST_F(HeapCheck, FileIsTheBaseNameOfThePath) {
  const std::string longName(100, 'n');
  const std::string longPath = "/src/" + longName;
  const struct {
    const char* path;
    std::string shown;
  } kPaths[] = {{"/usr/src/one.cpp", "one.cpp"},
                {"C:\\src\\two.cpp", "two.cpp"},
                {"mixed\\a/three.cpp", "three.cpp"},
                {"/four.cpp", "four.cpp"},
                {"xfive.cpp", "five.cpp"},
                {"folder/", ""},
                {"", ""},
                {nullptr, ""},
                {longPath.c_str(), longName.substr(0, 63)}};
  for (const auto& [path, shown] : kPaths) {
    uint8_t* const block = allocate(3, path, 123456);
    HEAPCK_MemConclusion("end");
    EXPECT_EQ("end Memory Leak detected! Pointer = " + addressOf(block) +
                  ", Size = 3 bytes, Allocated at: " + shown + ", Line: 123456",
              onlyLine());
    HEAPCK_MemFree(nullptr, block);
  }
}

TEST_F(HeapCheck, LeaksAreListedInTheOrderOfAllocation) {
  uint8_t* const blocks[] = {allocate(1), allocate(2), allocate(3), allocate(4)};
  HEAPCK_MemFree(nullptr, blocks[1]);
  HEAPCK_MemConclusion("m");
  ASSERT_EQ(3u, lines_.size());
  EXPECT_NE(std::string::npos, lines_[0].message.find("Size = 1 bytes"));
  EXPECT_NE(std::string::npos, lines_[1].message.find("Size = 3 bytes"));
  EXPECT_NE(std::string::npos, lines_[2].message.find("Size = 4 bytes"));
  for (const int i : {3, 0, 2}) HEAPCK_MemFree(nullptr, blocks[i]);
  lines_.clear();
  HEAPCK_MemConclusion("m");
  EXPECT_EQ(0u, onlyLine().find("m_MEM_CHECK_OK! Max Entries = "));
}

// A block of another road, laid out like the checker's: freed, its guards checked about size 0.
TEST_F(HeapCheck, UnknownPointerIsFreedAllTheSame) {
  for (const bool damaged : {false, true}) {
    auto* const block = static_cast<uint8_t*>(MMemAlloc(nullptr, 1000));
    std::memset(block, 205, 1000);
    if (damaged) block[999] = 0;
    HEAPCK_MemFree(nullptr, block + 500);
    EXPECT_EQ(block, freedBlocks.back());
    if (damaged) {
      EXPECT_EQ("_OVERWRITE, Memory Size = 0, Pointer = " + addressOf(block + 500) +
                    ", Allocated at: , Line:      0",
                onlyLine());
    }
  }
  EXPECT_TRUE(lines_.empty());
}

// The table knows the block no more: what is left to see is its guard behind size 0.
TEST_F(HeapCheck, BlockFreedTwiceIsPassedOnTwice) {
  uint8_t* const block = allocate(8);
  std::memset(block, 1, 8);
  HEAPCK_MemFree(nullptr, block);
  HEAPCK_MemFree(nullptr, block);
  ASSERT_EQ(2u, freedBlocks.size());
  EXPECT_EQ(freedBlocks[0], freedBlocks[1]);
  freedBlocks.pop_back();
  EXPECT_EQ(0u, onlyLine().find("_OVERWRITE, Memory Size = 0"));
  HEAPCK_MemConclusion("m");
  EXPECT_EQ(0u, onlyLine().find("m_MEM_CHECK_OK!"));
}

TEST_F(HeapCheck, NullsAndBadSizesAreHarmless) {
  HEAPCK_MemFree(nullptr, nullptr);
  EXPECT_TRUE(freedBlocks.empty());
  for (const int32_t size : {-1, -1000, INT_MIN}) {
    EXPECT_EQ(nullptr, HEAPCK_MemAlloc(nullptr, size, "a", 1, "b"));
  }
  void* const block = HEAPCK_MemAlloc(nullptr, 1, nullptr, 0, nullptr);
  EXPECT_NE(nullptr, block);
  HEAPCK_MemFree(nullptr, block);
  HEAPCK_MemConclusion(nullptr);
  EXPECT_EQ(0u, onlyLine().find("_MEM_CHECK_OK!"));
}

TEST_F(HeapCheck, FailedAllocationLeavesNoEntry) {
  refuseAll = true;
  EXPECT_EQ(nullptr, allocate(5));
  refuseAll = false;
  HEAPCK_MemConclusion("m");
  EXPECT_EQ(0u, onlyLine().find("m_MEM_CHECK_OK!"));
}

// The last twenty entries are reported one by one, the one behind them is refused, and each block
// that is freed makes room for another. Peaks are those of the whole process.
TEST_F(HeapCheck, HoldsFortyThousandBlocks) {
  std::vector<uint8_t*> blocks;
  for (int i = 0; i < 39980; ++i) blocks.push_back(allocate(1));
  EXPECT_TRUE(lines_.empty());
  blocks.push_back(allocate(2, "dir/file.cpp", 42));
  char expected[300];
  std::snprintf(expected, sizeof expected,
                "unit_Alloc_OK,  Size = %8d bytes, Entries = %5d, Total Size = %10d bytes, "
                "Pointer = 0X%p, Allocated at: file.cpp, Line: %6d",
                2, 39980, 39980, static_cast<void*>(blocks.back()), 42);
  EXPECT_EQ(expected, onlyLine());
  const std::string longName(100, 'u');
  blocks.push_back(
      static_cast<uint8_t*>(HEAPCK_MemAlloc(nullptr, 1, "f.cpp", 1, longName.c_str())));
  EXPECT_EQ(0u, onlyLine().find(longName + "_Alloc_OK"));
  while (blocks.size() < 40000) blocks.push_back(allocate(1));
  EXPECT_EQ(18u, lines_.size());
  lines_.clear();
  EXPECT_EQ(nullptr, allocate(1));
  EXPECT_EQ("unit Alloc Fail entries over flow, max entries = 40000", onlyLine());
  HEAPCK_MemFree(nullptr, blocks[20000]);
  blocks[20000] = allocate(1);
  EXPECT_NE(nullptr, blocks[20000]);
  for (size_t i = blocks.size(); i-- > 0;) HEAPCK_MemFree(nullptr, blocks[i]);
  lines_.clear();
  HEAPCK_MemConclusion("all");
  EXPECT_EQ("all_MEM_CHECK_OK! Max Entries = 40000, Max Size = 40001 bytes", onlyLine());
}

}  // namespace

extern "C" {

void* MMemAlloc(void* context, size_t size) {
  lastContext = context;
  lastSize = size;
  return refuseAll ? nullptr : std::malloc(size);
}

void MMemFree(void* context, void* block) {
  lastContext = context;
  freedBlocks.push_back(block);
}

void* MMemRealloc(void* /*context*/, void* block, size_t size) { return std::realloc(block, size); }

void* MMemSet(void* block, int value, size_t size) { return std::memset(block, value, size); }

void* MMemCpy(void* to, const void* from, size_t size) { return std::memcpy(to, from, size); }
}
