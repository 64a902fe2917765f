// Independent pieces of work, several at once.
#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace qpx::tool {

// One for each processor.
inline int defaultThreads() {
  const unsigned processors = std::thread::hardware_concurrency();
  return processors > 0 ? static_cast<int>(processors) : 1;
}

// Calls work(0) ... work(count - 1), each once, in up to `threads` threads, the calling one among
// them. `work` throws nothing.
template <typename Work>
void forEachInThreads(size_t count, int threads, const Work& work) {
  std::atomic<size_t> next{0};
  const auto run = [&] {
    for (size_t i = next++; i < count; i = next++) work(i);
  };
  std::vector<std::jthread> others;  // joined at the end of the scope
  for (int i = 1; i < threads && static_cast<size_t>(i) < count; ++i) others.emplace_back(run);
  run();
}

}  // namespace qpx::tool
