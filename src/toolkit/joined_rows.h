// Rows of a plane as few long rows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qpx {

// Rows of bytes that follow one another without a gap in input and output alike, handed on as one:
// a whole plane at once is faster than row by row, because long rows go past the caches.
template <typename Action>
class JoinedRows {
 public:
  explicit JoinedRows(const Action& action) : action_(action) {}
  ~JoinedRows() { flush(); }
  JoinedRows(const JoinedRows&) = delete;
  JoinedRows& operator=(const JoinedRows&) = delete;

  void add(const uint8_t* from, uint8_t* to, ptrdiff_t bytes) {
    if (from == from_ + bytes_ && to == to_ + bytes_) {
      bytes_ += bytes;
      return;
    }
    flush();
    from_ = from;
    to_ = to;
    bytes_ = bytes;
  }

 private:
  void flush() {
    if (bytes_ > 0) action_(from_, to_, bytes_);
  }

  const Action& action_;
  const uint8_t* from_ = nullptr;
  uint8_t* to_ = nullptr;
  ptrdiff_t bytes_ = 0;
};

}  // namespace qpx
