#include "support/failing_memory.h"

#include <kesbase.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

namespace qpx::testing {
namespace {

constexpr int64_t kNever = std::numeric_limits<int64_t>::max();
constexpr int kFresh = 0xA5;

struct State {
  std::mutex lock;
  std::unordered_map<void*, size_t> live;
  std::unordered_set<void*> freed;  // addresses that were blocks and have not been handed out again
  int64_t firstRefused = kNever;
  int64_t lastRefused = kNever;
  int64_t allocations = 0;
  int64_t failures = 0;
  int64_t liveBytes = 0;
  int64_t peakBytes = 0;
  int64_t doubleFrees = 0;
  int64_t foreignFrees = 0;

  void plan(int64_t first, int64_t last) {
    firstRefused = first;
    lastRefused = last;
    allocations = 0;
    failures = 0;
    peakBytes = liveBytes;
  }

  // Counts a request; false when it is to be refused.
  bool admit() {
    ++allocations;
    const bool refused = allocations >= firstRefused && allocations <= lastRefused;
    failures += refused;
    return !refused;
  }

  void adopt(void* block, size_t size) {
    live[block] = size;
    freed.erase(block);
    liveBytes += static_cast<int64_t>(size);
    peakBytes = std::max(peakBytes, liveBytes);
  }

  // Forgets a block before it goes back to the system; false, and counted, when it is not one.
  bool disown(void* block) {
    const auto entry = live.find(block);
    if (entry == live.end()) {
      ++(freed.count(block) != 0 ? doubleFrees : foreignFrees);
      return false;
    }
    liveBytes -= static_cast<int64_t>(entry->second);
    live.erase(entry);
    freed.insert(block);
    return true;
  }
};

// Never destroyed: blocks may come back from destructors that run after main.
State& state() {
  static State* const instance = new State;
  return *instance;
}

template <typename Member>
int64_t read(Member member) {
  State& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  return s.*member;
}

void* allocate(State& s, size_t size) {
  if (!s.admit()) return nullptr;
  void* const block = std::malloc(std::max<size_t>(size, 1));
  if (block == nullptr) return nullptr;
  std::memset(block, kFresh, size);
  s.adopt(block, size);
  return block;
}

// Always moves, so that a pointer kept from before the call is found out.
void* reallocate(State& s, void* block, size_t size) {
  const auto entry = s.live.find(block);
  if (entry == s.live.end()) {
    s.disown(block);
    return nullptr;
  }
  const size_t kept = std::min(size, entry->second);
  void* const moved = allocate(s, size);
  if (moved == nullptr) return nullptr;
  std::memcpy(moved, block, kept);
  s.disown(block);
  std::free(block);
  return moved;
}

}  // namespace

void FailingMemory::failOnly(int64_t n) {
  State& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  s.plan(n, n);
}

void FailingMemory::failFrom(int64_t n) {
  State& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  s.plan(n, kNever);
}

void FailingMemory::reset() {
  State& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  s.plan(kNever, kNever);
  s.doubleFrees = 0;
  s.foreignFrees = 0;
  s.freed.clear();
}

void FailingMemory::stopFailing() {
  State& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  s.firstRefused = kNever;
  s.lastRefused = kNever;
}

int64_t FailingMemory::liveBlocks() {
  State& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  return static_cast<int64_t>(s.live.size());
}

int64_t FailingMemory::liveBytes() { return read(&State::liveBytes); }
int64_t FailingMemory::allocations() { return read(&State::allocations); }
int64_t FailingMemory::failures() { return read(&State::failures); }
int64_t FailingMemory::peakBytes() { return read(&State::peakBytes); }
int64_t FailingMemory::doubleFrees() { return read(&State::doubleFrees); }
int64_t FailingMemory::foreignFrees() { return read(&State::foreignFrees); }

}  // namespace qpx::testing

using qpx::testing::state;

void* MMemAlloc(void* /*context*/, size_t size) {
  auto& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  return qpx::testing::allocate(s, size);
}

void MMemFree(void* /*context*/, void* block) {
  if (block == nullptr) return;
  auto& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  if (s.disown(block)) std::free(block);
}

void* MMemRealloc(void* /*context*/, void* block, size_t size) {
  auto& s = state();
  const std::lock_guard<std::mutex> guard(s.lock);
  return block == nullptr ? qpx::testing::allocate(s, size)
                          : qpx::testing::reallocate(s, block, size);
}

void* MMemSet(void* block, int value, size_t size) {
  return block == nullptr ? block : std::memset(block, value, size);
}

void* MMemCpy(void* to, const void* from, size_t size) {
  return to == nullptr || from == nullptr ? to : std::memcpy(to, from, size);
}
