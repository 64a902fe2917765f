#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <array>
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

std::string framesLine(int64_t done, int64_t frames, double seconds, const std::string& label,
                       int columns, bool color) {
  std::string text = std::to_string(done);
  if (frames > 0) text += " of " + std::to_string(frames);
  text += done == 1 && frames == 0 ? " frame" : " frames";
  if (done > 0 && seconds > 0) {
    std::array<char, 32> rate{};
    std::snprintf(rate.data(), rate.size(), ", %.1f a second", static_cast<double>(done) / seconds);
    text += rate.data();
  }
  text += "  " + label;
  if (frames > 0) return progressLine(done, frames, text, columns, color);
  return fitted(text, static_cast<size_t>(std::max(columns, 0)));
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

void Progress::countFrames(int64_t frames) {
  done_ = 0;
  steps_ = frames;
  began_ = Clock::now();
}

void Progress::draw() const {
  const int columns = terminalColumns(STDERR_FILENO);
  const bool color = wantsColor(STDERR_FILENO);
  const Clock::time_point began = began_;
  const std::chrono::duration<double> since = Clock::now() - began;
  const std::string line = began == Clock::time_point{}
                               ? progressLine(done_, steps_, label_, columns, color)
                               : framesLine(done_, steps_, since.count(), label_, columns, color);
  std::fprintf(stderr, "%s%s", kClearLine, line.c_str());
  std::fflush(stderr);
}

}  // namespace qpx::tool
