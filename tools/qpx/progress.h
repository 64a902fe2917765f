// A bar on standard error for work that takes long.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace qpx::tool {

// The bar with its percentage and label, in no more than `columns` characters.
std::string progressLine(int64_t done, int64_t steps, const std::string& label, int columns,
                         bool color);

// Shows nothing in the first second, and nothing at all where standard error is no terminal. Any
// thread may report.
class Progress {
 public:
  Progress(std::string label, int64_t steps);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void advance(int64_t steps = 1) { done_ += steps; }
  int64_t done() const { return done_; }

  // Takes the bar away, so that other lines can be written.
  void stop();

 private:
  void run();
  void draw() const;

  std::string label_;
  int64_t steps_;
  std::atomic<int64_t> done_{0};
  std::mutex mutex_;
  std::condition_variable wake_;
  bool stopping_ = false;
  std::thread ticker_;
};

// The steps of a bar that one piece of work takes row by row, in one thread. One that is made
// without a bar counts nothing.
class ProgressShare {
 public:
  ProgressShare() = default;
  ProgressShare(Progress& progress, int64_t steps) : progress_(&progress), steps_(steps) {}

  // How many rows there will be. Call before the first.
  void expect(int64_t rows) { rows_ = rows; }

  // One row is done.
  void advance() {
    if (!progress_ || done_ >= rows_) return;
    ++done_;
    // As a difference, so that rounding adds up to all steps in the end.
    progress_->advance(steps_ * done_ / rows_ - steps_ * (done_ - 1) / rows_);
  }

 private:
  Progress* progress_ = nullptr;
  int64_t steps_ = 0;
  int64_t rows_ = 0;
  int64_t done_ = 0;
};

}  // namespace qpx::tool
