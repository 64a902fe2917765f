#include "frame_pipeline.h"

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace qpx::tool {

namespace {

void runInThisThread(const FrameReader& read, FrameLane& lane, const FrameWriter& write) {
  std::optional<Frame> frame;
  while (const std::optional<std::string> parameters = read(frame)) {
    write(lane.run(*frame), *parameters);
  }
}

// Frame k goes through lane k modulo their number: frames take about the same time, so that more
// would not be gained by handing them to whoever is free.
class Pipeline {
 public:
  Pipeline(const FrameReader& read, int lanes, const LaneMaker& makeLane, const FrameWriter& write)
      : read_(read), makeLane_(makeLane), write_(write), slots_(static_cast<size_t>(lanes)) {}

  void run() {
    std::exception_ptr readFailure;
    {
      std::vector<std::jthread> threads;  // joined at the end of the scope
      for (size_t i = 0; i < slots_.size(); ++i) threads.emplace_back([this, i] { runLane(i); });
      try {
        readAll();
      } catch (...) {
        readFailure = std::current_exception();
      }
      const std::lock_guard lock(mutex_);
      ended_ = true;
      changed_.notify_all();
    }
    // A lane's frame comes before the one that could not be read.
    if (failure_) std::rethrow_exception(failure_);
    if (readFailure) std::rethrow_exception(readFailure);
  }

 private:
  struct Slot {
    std::optional<Frame> frame;
    std::string parameters;
    bool full = false;
  };

  void readAll() {
    for (size_t i = 0;; i = (i + 1) % slots_.size()) {
      Slot& slot = slots_[i];
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !slot.full || failure_; });
        if (failure_) return;
      }
      std::optional<std::string> parameters = read_(slot.frame);
      if (!parameters) return;
      slot.parameters = std::move(*parameters);
      const std::lock_guard lock(mutex_);
      slot.full = true;
      changed_.notify_all();
    }
  }

  void runLane(size_t index) {
    Slot& slot = slots_[index];
    std::unique_ptr<FrameLane> lane;
    for (uint64_t number = index;; number += slots_.size()) {
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return slot.full || ended_ || failure_; });
        if (!slot.full || failure_) return;
      }
      const Frame* result = nullptr;
      std::exception_ptr failure;
      try {
        if (!lane) lane = makeLane_();
        result = &lane->run(*slot.frame);
      } catch (...) {
        failure = std::current_exception();
      }
      if (!writeInTurn(number, result, failure, slot)) return;
    }
  }

  bool writeInTurn(uint64_t number, const Frame* result, std::exception_ptr failure, Slot& slot) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return written_ == number || failure_; });
    if (failure_) return false;
    if (!failure) {
      lock.unlock();
      try {
        write_(*result, slot.parameters);
      } catch (...) {
        failure = std::current_exception();
      }
      lock.lock();
    }
    failure_ = failure;
    ++written_;
    slot.full = false;
    changed_.notify_all();
    return !failure_;
  }

  const FrameReader& read_;
  const LaneMaker& makeLane_;
  const FrameWriter& write_;
  std::vector<Slot> slots_;
  std::mutex mutex_;
  std::condition_variable changed_;
  uint64_t written_ = 0;
  bool ended_ = false;
  std::exception_ptr failure_;
};

}  // namespace

void runFramePipeline(const FrameReader& read, int lanes, const LaneMaker& makeLane,
                      const FrameWriter& write) {
  if (lanes > 1) {
    Pipeline(read, lanes, makeLane, write).run();
  } else {
    runInThisThread(read, *makeLane(), write);
  }
}

}  // namespace qpx::tool
