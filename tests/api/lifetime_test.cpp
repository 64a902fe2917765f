// A process that makes and destroys engines for ever stays as large as it is, and small stacks do.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <fstream>

#include "properties/effect_run.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Freed blocks stay in the sanitizer's quarantine, and its frames are larger.
constexpr int64_t kMayGrow = int64_t{512} << 20;
constexpr size_t kStackBytes = 512 << 10;
#else
constexpr int64_t kMayGrow = int64_t{2} << 20;
constexpr size_t kStackBytes = 128 << 10;
#endif

int64_t residentBytes() {
  int64_t pages = 0;
  int64_t resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

// The i-th of a round over all effects.
void makeRunAndDestroy(size_t i) {
  const QPXEffectInfo& effect = builtEffects()[i % builtEffects().size()];
  const uint32_t formats[] = {QPX_FORMAT_RGBA32, QPX_FORMAT_NV21, QPX_FORMAT_BGR24};
  const FormatCase& format = formatCase(formats[i % std::size(formats)]);
  if (!takes(effect, format)) return;
  Picture source(format.format, 40, 30, Placement::exact);
  Picture out = blankLike(source);
  const Engine engine(source, effect, makeRecord(effect, "initial"));
  EXPECT_TRUE(engine.run(source, out)) << effect.name;
}

TEST(Lifetime, AThousandEnginesLeaveNothingBehind) {
  for (size_t i = 0; i < 200; ++i) makeRunAndDestroy(i);
  FailingMemory::reset();
  const int64_t before = residentBytes();
  for (size_t i = 0; i < 1000; ++i) makeRunAndDestroy(i);
  EXPECT_EQ(0, FailingMemory::liveBlocks());
  EXPECT_EQ(0, FailingMemory::liveBytes());
  EXPECT_GT(FailingMemory::allocations(), 1000);
  EXPECT_GT(before, 0);
  EXPECT_LT(residentBytes() - before, kMayGrow);
}

// Android gives threads of its own making little more than this.
TEST(Lifetime, EveryEffectRunsOnASmallStack) {
  pthread_attr_t attributes;
  ASSERT_EQ(0, pthread_attr_init(&attributes));
  ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, kStackBytes));
  pthread_t thread;
  const auto body = [](void*) -> void* {
    for (size_t i = 0; i < 3 * builtEffects().size(); ++i) makeRunAndDestroy(i);
    return nullptr;
  };
  ASSERT_EQ(0, pthread_create(&thread, &attributes, body, nullptr));
  EXPECT_EQ(0, pthread_join(thread, nullptr));
  pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace qpx::testing
