// Engines in several threads know nothing of one another.
#include <thread>

#include "properties/effect_run.h"

namespace qpx::testing {
namespace {

constexpr Size kSize = {53, 37};
constexpr size_t kThreads = 4;
constexpr int kRounds = 20;

struct Task {
  EffectCase effectCase;
  Picture source;
  Record record;
  Picture expected;
};

std::vector<Task> makeTasks() {
  std::vector<Task> tasks;
  for (const QPXEffectInfo& effect : builtEffects()) {
    for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_RGBA32, QPX_FORMAT_BGR565,
                                  QPX_FORMAT_NV21, QPX_FORMAT_I444, QPX_FORMAT_GREY8}) {
      if (!takes(effect, formatCase(format))) continue;
      const EffectCase effectCase = {&effect, &formatCase(format), kSize.width, kSize.height};
      Picture source = effectCase.picture(Placement::exact);
      Picture expected = blankLike(source);
      const Record record = makeRecord(effect, "initial");
      EXPECT_TRUE(Engine(source, effect, record).run(source, expected));
      tasks.push_back({effectCase, std::move(source), record, std::move(expected)});
    }
  }
  return tasks;
}

// Each thread starts elsewhere, so that different effects meet.
std::string runAll(const std::vector<Task>& tasks, size_t start) {
  for (size_t i = 0; i < tasks.size(); ++i) {
    const Task& task = tasks[(start + i) % tasks.size()];
    const Engine engine(task.source, *task.effectCase.effect, task.record);
    Picture actual = blankLike(task.source);
    const int32_t heights[] = {wantsOneCall(task.effectCase) ? kSize.height : 5};
    const auto ran = engine.run(task.source, actual, heights);
    const auto same = samePicture(task.expected, actual);
    if (!ran || !same) {
      return ::testing::PrintToString(task.effectCase) + ": " + ran.message() + same.message();
    }
  }
  return "";
}

TEST(Threads, EnginesDoNotDisturbEachOther) {
  const std::vector<Task> tasks = makeTasks();
  ASSERT_FALSE(tasks.empty());
  std::vector<std::string> failures(kThreads);
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds && failures[t].empty(); ++round) {
        failures[t] = runAll(tasks, t * tasks.size() / kThreads + static_cast<size_t>(round));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& failure : failures) EXPECT_EQ("", failure);
}

}  // namespace
}  // namespace qpx::testing
