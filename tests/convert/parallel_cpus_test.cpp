// Waking processors, in a folder of the test's own.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "convert/parallel/cpus.h"
#include "convert/parallel/pool.h"
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
