// A bar on standard error for work that takes long.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace qpx::tool {

// The bar with its percentage and label, in no more than `columns` characters.
std::string progressLine(int64_t done, int64_t steps, const std::string& label, int columns,
                         bool color);

// Frames that are done, of how many where that is known (else `frames` is 0), and how fast.
std::string framesLine(int64_t done, int64_t frames, double seconds, const std::string& label,
                       int columns, bool color);

// Shows nothing in the first second, and nothing at all where standard error is no terminal. Any
// thread may report.
class Progress {
 public:
  Progress(std::string label, int64_t steps);
  Progress() = default;  // is never shown
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void advance(int64_t steps = 1) { done_ += steps; }
  int64_t done() const { return done_; }

  // From now on steps are frames, of which there are so many; 0: nobody knows.
  void countFrames(int64_t frames);

  // Takes the bar away, so that other lines can be written.
  void stop();

 private:
  void run();
  void draw() const;

  using Clock = std::chrono::steady_clock;

  std::string label_;
  std::atomic<int64_t> steps_{0};
  std::atomic<Clock::time_point> began_{};  // to count frames
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
