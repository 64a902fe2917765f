// Reciprocals with 20 fractional bits of all counts that lines of a length can come to, so that no
// pixel divides.
#pragma once

#include <cstdint>

#include "engine/stage.h"

namespace qpx {

class Reciprocals {
 public:
  // For lines of `half` steps each way. Entry n is 2^20 / n + rounding, cut to an integer; entry 0
  // is 0.
  Reciprocals(int64_t half, double rounding)
      : entries_(2 * half + 2), block_(blockBytes(entries_, sizeof(uint32_t))) {
    if (!block_) return;
    auto* const table = reinterpret_cast<uint32_t*>(block_.get());
    table[0] = 0;
    for (int64_t n = 1; n < entries_; ++n) {
      table[n] = static_cast<uint32_t>(1048576.0 / static_cast<double>(n) + rounding);
    }
  }

  // False when there is no memory.
  explicit operator bool() const { return bool(block_); }

  const uint32_t* table() const { return reinterpret_cast<const uint32_t*>(block_.get()); }

 private:
  int64_t entries_;
  Scratch block_;
};

}  // namespace qpx
