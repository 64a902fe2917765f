#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include "console.h"

namespace qpx::tool {

Progress::Progress(std::string label, int64_t steps) : label_(std::move(label)), steps_(steps) {
  if (isatty(STDERR_FILENO)) ticker_ = std::thread(&Progress::run, this);
}

Progress::~Progress() { stop(); }

void Progress::stop() {
  if (!ticker_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_all();
  ticker_.join();
}

void Progress::run() {
  using namespace std::chrono_literals;
  std::unique_lock lock(mutex_);
  if (wake_.wait_for(lock, 1s, [this] { return stopping_; })) return;
  do {
    draw();
  } while (!wake_.wait_for(lock, 200ms, [this] { return stopping_; }));
  std::fputs("\r\033[K", stderr);
}

void Progress::draw() const {
  constexpr int kWidth = 30;
  const int64_t done = std::clamp<int64_t>(done_, 0, steps_);
  const int filled = steps_ > 0 ? static_cast<int>(done * kWidth / steps_) : 0;
  const std::string bar = std::string(static_cast<size_t>(filled), '#') +
                          std::string(static_cast<size_t>(kWidth - filled), '.');
  const int percent = steps_ > 0 ? static_cast<int>(done * 100 / steps_) : 0;
  const bool color = wantsColor(STDERR_FILENO);
  std::fprintf(stderr, "\r\033[K[%s%s%s] %3d%% %s", color ? "\033[32m" : "", bar.c_str(),
               color ? "\033[0m" : "", percent, label_.c_str());
  std::fflush(stderr);
}

}  // namespace qpx::tool
