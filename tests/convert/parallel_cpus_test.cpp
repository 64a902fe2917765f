// Waking processors, in a folder of the test's own.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "convert/images_picture.h"
#include "convert/parallel/cpus.h"
#include "convert/parallel/pool.h"
#include "convert/parallel_failures.h"
#include "platform/temporary_folder.h"

namespace qpx::testing {
namespace {

int g_configured;
int g_online;

class Cpus : public TemporaryFolder {
 protected:
  Cpus() {
    g_configured = 4;
    g_online = 4;
    format_ = path("cpu%d");
    setCpusForTest({[] { return g_configured; }, [] { return g_online; }, format_.c_str()});
    pool_ = mcvParallelInit(nullptr, 1);
  }
  ~Cpus() override {
    mcvParallelUninit(pool_);
    setCpusForTest(systemCpus());
  }

  // A letter for each processor's file.
  void write(const std::string& states) const {
    for (size_t i = 0; i < states.size(); ++i) {
      fileWith("cpu" + std::to_string(i), std::string(1, states[i]) + "\n");
    }
  }
  // What the files hold; what was written by the pool has no line end.
  std::string read(int count) const {
    std::string all;
    for (int i = 0; i < count; ++i) all += contents(path("cpu" + std::to_string(i)));
    return all;
  }

  std::string format_;
  McvParallel* pool_ = nullptr;
};

TEST_F(Cpus, ThatAreMissingAreWoken) {
  write("1010");
  g_online = 2;
  mcvTryFireCpu(pool_);
  EXPECT_EQ("1\n11\n1", read(4));
  EXPECT_EQ(1, pool_->cpuFired);
  EXPECT_EQ(1, pool_->cpuState[0]);
  EXPECT_EQ(0, pool_->cpuState[1]);
  EXPECT_EQ(0, pool_->cpuState[3]);
  mcvTryRestoreCpu(pool_);
  EXPECT_EQ("1010", read(4));
  EXPECT_EQ(0, pool_->cpuFired);
  write("1111");
  mcvTryRestoreCpu(pool_);
  EXPECT_EQ("1\n1\n1\n1\n", read(4));
}

// No more than the system says are missing.
TEST_F(Cpus, AreWokenFromTheFirstOn) {
  write("1000");
  g_online = 2;
  mcvTryFireCpu(pool_);
  EXPECT_EQ("1\n110\n", read(4));
}

TEST_F(Cpus, ThatAreOnlineAreLeftAlone) {
  write("1011");
  mcvTryFireCpu(pool_);
  EXPECT_EQ("1\n0\n1\n1\n", read(4));
  EXPECT_EQ(0, pool_->cpuFired);
  EXPECT_EQ(0, pool_->cpuState[1]);
  mcvTryRestoreCpu(pool_);
  EXPECT_EQ("1\n0\n1\n1\n", read(4));
}

TEST_F(Cpus, ThatCannotBeReadEndTheAttempt) {
  write("10");
  g_online = 1;
  mcvTryFireCpu(pool_);
  EXPECT_EQ("1\n0\n", read(2));
  EXPECT_EQ(0, pool_->cpuFired);
  fileWith("cpu2", "");
  fileWith("cpu3", "0");
  mcvTryFireCpu(pool_);
  EXPECT_EQ("1\n0\n", read(2));
  EXPECT_EQ(0, pool_->cpuState[0]);
}

// What was woken before stays so, the rest is not tried.
TEST_F(Cpus, ThatCannotBeWrittenEndTheAttempt) {
  write("00010");
  g_configured = 5;
  g_online = 1;
  failWritesFrom(2);
  mcvTryFireCpu(pool_);
  EXPECT_EQ((std::vector{path("cpu0"), path("cpu1")}), openedForWriting());
  failWritesFrom(0);
  EXPECT_EQ("10\n0\n1\n0\n", read(5));
  EXPECT_EQ(1, pool_->cpuFired);
  EXPECT_EQ(0, pool_->cpuState[0]);
  EXPECT_EQ(1, pool_->cpuState[3]);
}

TEST_F(Cpus, ThatCannotBeRestoredEndTheAttempt) {
  write("1010");
  g_online = 2;
  mcvTryFireCpu(pool_);
  write("1111");
  failWritesFrom(3);
  mcvTryRestoreCpu(pool_);
  EXPECT_EQ((std::vector{path("cpu0"), path("cpu1"), path("cpu2")}), openedForWriting());
  failWritesFrom(0);
  EXPECT_EQ("101\n1\n", read(4));
  EXPECT_EQ(0, pool_->cpuFired);
}

// Once for a context, and never for a conversion.
TEST_F(Cpus, AreWokenWhenAContextIsStarted) {
  write("1000");
  g_online = 1;
  failWritesFrom(0);
  McvColorCvtContext* const context = mcvColorCvtInit_MultiThreads(nullptr);
  ASSERT_NE(nullptr, context);
  EXPECT_EQ(3u, openedForWriting().size());
  const McvPicture src(MCV_NV21, 6, 40, 1), dst(MCV_I420, 6, 40, 2);
  EXPECT_EQ(0, mcvColorCvtProcess_MultiThreads(context, src.image(), dst.image(), nullptr));
  EXPECT_EQ(3u, openedForWriting().size());
  EXPECT_EQ(0, mcvColorCvtUnInit_MultiThreads(nullptr, context));
  EXPECT_EQ(7u, openedForWriting().size());
  EXPECT_EQ("1000", read(4));
}

TEST_F(Cpus, OfAnUnknownNumber) {
  pool_->cpuState[2] = 1;
  g_configured = 0;
  mcvTryFireCpu(pool_);
  EXPECT_EQ(0, pool_->cpuState[2]);
  EXPECT_EQ(0, pool_->cpuFired);
  g_online = -1;
  mcvTryFireCpu(pool_);
  EXPECT_EQ(1, pool_->cpuFired);
}

TEST_F(Cpus, BehindTheSixteenthAreNotLookedAt) {
  g_configured = 40;
  g_online = 3;
  write("11111111111111111111");
  mcvTryFireCpu(pool_);
  EXPECT_EQ(1, pool_->cpuFired);
  EXPECT_EQ(1, pool_->cpuState[15]);
  EXPECT_EQ(pool_->threadCount, 1);
}

TEST(CpuSource, IsTheSystem) {
  EXPECT_LE(1, systemCpus().configured());
  EXPECT_LE(1, systemCpus().online());
  EXPECT_STREQ("/sys/devices/system/cpu/cpu%d/online", systemCpus().pathFormat);
}

}  // namespace
}  // namespace qpx::testing
