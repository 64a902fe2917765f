#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "console.h"
#include "text.h"

namespace qpx::tool {

std::string progressLine(int64_t done, int64_t steps, const std::string& label, int columns,
                         bool color) {
  constexpr int kFrame = 7;  // brackets and " 100%"
  const int width = std::clamp(columns - kFrame, 0, 30);
  done = std::clamp<int64_t>(done, 0, steps);
  const auto filled = static_cast<size_t>(steps > 0 ? done * width / steps : 0);
  const auto percent = static_cast<int>(steps > 0 ? done * 100 / steps : 0);
  std::string line = color ? "[\033[32m" : "[";
  line += std::string(filled, '#') + std::string(static_cast<size_t>(width) - filled, '.');
  line += color ? "\033[0m]" : "]";
  const std::string number = std::to_string(percent);
  line += std::string(4 - number.size(), ' ') + number + "%";
  const int left = columns - kFrame - width - 1;
  return left > 0 ? line + " " + fitted(label, static_cast<size_t>(left)) : line;
}

Progress::Progress(std::string label, int64_t steps) : label_(printable(label)), steps_(steps) {
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
  std::fputs(kClearLine, stderr);
}

void Progress::draw() const {
  const std::string line = progressLine(done_, steps_, label_, terminalColumns(STDERR_FILENO),
                                        wantsColor(STDERR_FILENO));
  std::fprintf(stderr, "%s%s", kClearLine, line.c_str());
  std::fflush(stderr);
}

}  // namespace qpx::tool
