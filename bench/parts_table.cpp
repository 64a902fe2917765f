#include "parts_table.h"

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

namespace qpx::bench {
namespace {

// Rounds of a work, each with some turns of every form behind each other: the first only warms up.
constexpr int kRounds = 15;
constexpr int kTurns = 4;

// A thread that waits for its half without sleeping.
class Twin {
 public:
  explicit Twin(const std::function<void(int)>& halves)
      : halves_(halves), thread_([this] { serve(); }) {}
  ~Twin() {
    stop_ = true;
    thread_.join();
  }
  Twin(const Twin&) = delete;
  Twin& operator=(const Twin&) = delete;

  void run() {
    const int turn = wanted_.fetch_add(1, std::memory_order_release) + 1;
    halves_(0);
    while (done_.load(std::memory_order_acquire) != turn) sched_yield();
  }

 private:
  void serve() {
    for (int turn = 0; !stop_;) {
      if (wanted_.load(std::memory_order_acquire) == turn) {
        sched_yield();
        continue;
      }
      halves_(1);
      done_.store(++turn, std::memory_order_release);
    }
  }

  const std::function<void(int)>& halves_;
  std::atomic<int> wanted_{0}, done_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

class Times {
 public:
  void measure(const std::function<void()>& body) {
    for (int turn = 0; turn <= kTurns; ++turn) {
      const auto start = std::chrono::steady_clock::now();
      body();
      const std::chrono::duration<double, std::milli> time =
          std::chrono::steady_clock::now() - start;
      if (turn > 0) milliseconds_.push_back(time.count());
    }
  }
  bool empty() const { return milliseconds_.empty(); }
  double median() const {
    std::vector<double> sorted = milliseconds_;
    std::sort(sorted.begin(), sorted.end());
    return sorted[sorted.size() / 2];
  }
  double least() const { return *std::min_element(milliseconds_.begin(), milliseconds_.end()); }

 private:
  std::vector<double> milliseconds_;
};

void printTimes(const Times& one, const Times& many) {
  if (many.empty()) {
    std::printf(" %9s %7s %7s", "-", "-", "-");
    return;
  }
  std::printf(" %9.3f %7.2f %7.2f", many.median(), one.median() / many.median(),
              one.least() / many.least());
}

void printWork(const InParts& work) {
  Times one, bands, halves;
  for (int round = 0; round < kRounds; ++round) {
    one.measure(work.whole);
    if (work.bands) bands.measure(work.bands);
    Twin twin(work.halves);
    halves.measure([&twin] { twin.run(); });
  }
  std::printf("  %-28s %-10s %9.3f", work.work.c_str(), work.size.c_str(), one.median());
  printTimes(one, bands);
  printTimes(one, halves);
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

void printParts(const std::vector<InParts>& works) {
  std::printf(
      "\nIn parts, wall time in milliseconds, and how many times as fast as one call: by medians, "
      "and by the least times\n  %-28s %-10s %9s %9s %7s %7s %9s %7s %7s\n",
      "work", "size", "one call", "bands", "times", "least", "halves", "times", "least");
  for (const InParts& work : works) printWork(work);
}

}  // namespace qpx::bench
