#include "platform/log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Line {
  int32_t priority;
  std::string tag;
  std::string message;
};

void keep(void* user, int32_t priority, const char* tag, const char* message) {
  static_cast<std::vector<Line>*>(user)->push_back({priority, tag, message});
}

class Log : public ::testing::Test {
 protected:
  ~Log() override { QPX_SetLogSink(nullptr, nullptr); }
  std::vector<Line> lines_;
};

TEST_F(Log, IsSilentWithoutASinkAndAfterANullSink) {
  qpx::log(QPX_LOG_INFO, "tag", "nobody %d", 1);
  QPX_SetLogSink(keep, &lines_);
  QPX_SetLogSink(nullptr, &lines_);
  qpx::log(QPX_LOG_INFO, "tag", "nobody %d", 2);
  EXPECT_TRUE(lines_.empty());
}

TEST_F(Log, HandsTheFormattedLineToTheSink) {
  QPX_SetLogSink(keep, &lines_);
  qpx::log(QPX_LOG_ERROR, "memchk", "%s_MEM %05d", "x", 42);
  ASSERT_EQ(lines_.size(), 1u);
  EXPECT_EQ(lines_[0].priority, 6);
  EXPECT_EQ(lines_[0].tag, "memchk");
  EXPECT_EQ(lines_[0].message, "x_MEM 00042");
}

TEST_F(Log, CutsLongLines) {
  QPX_SetLogSink(keep, &lines_);
  qpx::log(QPX_LOG_DEBUG, "t", "%s", std::string(5000, 'a').c_str());
  ASSERT_EQ(lines_.size(), 1u);
  EXPECT_EQ(lines_[0].message, std::string(1023, 'a'));
}

TEST_F(Log, TakesNullTagAndFormat) {
  QPX_SetLogSink(keep, &lines_);
  const char* volatile none = nullptr;
  qpx::log(QPX_LOG_DEBUG, none, "a");
  qpx::log(QPX_LOG_DEBUG, "t", none, 1);
  ASSERT_EQ(lines_.size(), 1u);
  EXPECT_EQ(lines_[0].tag, "");
}

void silenceFromInside(void* user, int32_t, const char*, const char*) {
  ++*static_cast<int*>(user);
  QPX_SetLogSink(nullptr, nullptr);
}

TEST_F(Log, SinkMayChangeTheSink) {
  int calls = 0;
  QPX_SetLogSink(silenceFromInside, &calls);
  qpx::log(QPX_LOG_INFO, "t", "a");
  qpx::log(QPX_LOG_INFO, "t", "b");
  EXPECT_EQ(calls, 1);
}

std::atomic<int> mismatches{0};
int ownerA;
int ownerB;

void expectA(void* user, int32_t, const char*, const char*) { mismatches += user != &ownerA; }
void expectB(void* user, int32_t, const char*, const char*) { mismatches += user != &ownerB; }

TEST_F(Log, SinkAndUserChangeAsAPair) {
  mismatches = 0;
  QPX_SetLogSink(expectA, &ownerA);
  std::atomic<bool> done{false};
  std::thread swapper([&done] {
    while (!done) {
      QPX_SetLogSink(expectB, &ownerB);
      QPX_SetLogSink(expectA, &ownerA);
    }
  });
  for (int i = 0; i < 20000; ++i) qpx::log(QPX_LOG_INFO, "t", "%d", i);
  done = true;
  swapper.join();
  EXPECT_EQ(mismatches, 0);
}

}  // namespace
