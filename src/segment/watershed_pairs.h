// Pairs of labels that have been met.
#pragma once

#include <algorithm>
#include <cstdint>

namespace qpx {

// Two labels in either order, not negative and not the same. Never 0, since the larger is above it.
inline uint64_t pairKey(int32_t a, int32_t b) {
  return static_cast<uint64_t>(std::max(a, b)) << 32 | static_cast<uint64_t>(std::min(a, b));
}

// A hash table that grows with its contents. Without memory it stays as large as it is.
class PairSet {
 public:
  // With room for so many pairs, if there is memory.
  explicit PairSet(int64_t expected);
  ~PairSet();
  PairSet(const PairSet&) = delete;
  PairSet& operator=(const PairSet&) = delete;

  // `full`: the pair is not there, and there is no place for it.
  enum class Answer { added, known, full };
  Answer add(uint64_t key);

  // Has the processor fetch what add(key) will need.
  void prefetch(uint64_t key) const { __builtin_prefetch(slots_ + firstPlace(key), 1); }

 private:
  // Times 2^64 over the golden ratio, after Knuth; the middle bits depend on both labels.
  uint64_t firstPlace(uint64_t key) const { return (key * 0x9E3779B97F4A7C15u) >> 32 & mask_; }

  uint64_t& slotOf(uint64_t key) const;
  bool resize(uint64_t slots);

  uint64_t* slots_ = nullptr;  // 0: empty
  uint64_t mask_ = 0;
  uint64_t used_ = 0;
};

}  // namespace qpx
