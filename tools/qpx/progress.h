// A bar on standard error for work that takes long.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace qpx::tool {

// Shows nothing in the first second, and nothing at all where standard error is no terminal. Any
// thread may report.
class Progress {
 public:
  Progress(std::string label, int64_t steps);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void advance(int64_t steps = 1) { done_ += steps; }

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

}  // namespace qpx::tool
