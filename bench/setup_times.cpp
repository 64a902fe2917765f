#include "setup_times.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "catalogue_effects.h"

namespace qpx::bench {
namespace {

constexpr double kGoal = 20.0;  // milliseconds
constexpr int kRepetitions = 7;
constexpr size_t kShown = 12;
constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGBA32, QPX_FORMAT_NV21,
                                 QPX_FORMAT_I420};

double cpuMilliseconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Of one create, destroy not counted; below 0 if the effect takes none of the formats.
double createMilliseconds(const QPXEffectInfo& effect) {
  std::vector<uint8_t> record = initialRecord(effect);
  const QPXEffectItem item = {effect.id, record.empty() ? nullptr : record.data(),
                              static_cast<uint32_t>(record.size())};
  const QPXEffectList list = {&item, 1, 0};
  for (const uint32_t format : kFormats) {
    const MBitmap image = {format, 4000, 3000, {}, {}};
    QPXEngine* engine = nullptr;
    const double start = cpuMilliseconds();
    const int32_t result = QPXCreate(&image, &image, &list, &engine);
    const double taken = cpuMilliseconds() - start;
    if (result != QPX_OK) continue;
    QPXDestroy(engine);
    return taken;
  }
  return -1.0;
}

struct SetupTime {
  std::string name;
  double milliseconds;
};

// Repetitions go round all effects, so that a slow moment of the machine falls on many of them
// once.
std::vector<SetupTime> measure() {
  const std::vector<QPXEffectInfo> effects = builtEffects();
  std::vector<std::vector<double>> taken(effects.size());
  for (int turn = 0; turn <= kRepetitions; ++turn) {
    for (size_t i = 0; i < effects.size(); ++i) {
      const double milliseconds = createMilliseconds(effects[i]);
      if (turn > 0) taken[i].push_back(milliseconds);
    }
  }
  std::vector<SetupTime> times;
  for (size_t i = 0; i < effects.size(); ++i) times.push_back({effects[i].name, median(taken[i])});
  return times;
}

}  // namespace

void printSetupTimes() {
  std::vector<SetupTime> times = measure();
  const auto refused = std::partition(times.begin(), times.end(),
                                      [](const SetupTime& t) { return t.milliseconds >= 0.0; });
  for (auto t = refused; t != times.end(); ++t) std::printf("  no engine: %s\n", t->name.c_str());
  times.erase(refused, times.end());
  std::sort(times.begin(), times.end(),
            [](const SetupTime& a, const SetupTime& b) { return a.milliseconds > b.milliseconds; });
  if (times.empty()) return;
  const auto slow = std::count_if(times.begin(), times.end(),
                                  [](const SetupTime& t) { return t.milliseconds > kGoal; });
  std::printf("\nSetup for 4000x3000, textures included, CPU time\n");
  std::printf("  %zu effects: median %.2f ms, worst %.2f ms, above %.0f ms: %d\n", times.size(),
              times[times.size() / 2].milliseconds, times.front().milliseconds, kGoal,
              static_cast<int>(slow));
  for (size_t i = 0; i < times.size() && (i < kShown || times[i].milliseconds > kGoal); ++i) {
    std::printf("  %-26s %9.2f ms%s\n", times[i].name.c_str(), times[i].milliseconds,
                times[i].milliseconds > kGoal ? "  above" : "");
  }
}

}  // namespace qpx::bench
