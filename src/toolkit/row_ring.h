// The last rows of a stream, each made once: filters that read several rows keep here what they
// made of them.
//
// Kernels that the engine calls keep their ring in the stage, from band to band, so that a picture
// that comes row by row is not worked several times over; it starts anew with every stream. Kernels
// that hosts call by name may be given other pictures from call to call and have one for each call.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/stage.h"

namespace qpx {

// The head of a ring's block: rows begin ... next - 1 are held.
struct RingHead {
  size_t bytes;  // of the block
  int32_t begin;
  int32_t next;
  int64_t extra;  // for the filter's own use; 0 when a stream begins
};

class RowRing {
 public:
  // False if so much cannot be addressed.
  static bool bytesFor(size_t rowBytes, size_t capacity, size_t* bytes) {
    if (rowBytes > (SIZE_MAX / 2 - sizeof(RingHead)) / capacity) return false;
    *bytes = sizeof(RingHead) + rowBytes * capacity;
    return true;
  }

  RowRing(RingHead* head, size_t rowBytes, int32_t capacity)
      : head_(head),
        rows_(reinterpret_cast<uint8_t*>(head + 1)),
        rowBytes_(rowBytes),
        capacity_(capacity) {}

  // Makes sure of rows first ... last, no more than the capacity, by make(y, bytes of the row).
  template <class Make>
  void hold(int32_t first, int32_t last, const Make& make) {
    if (first < head_->begin || first > head_->next) head_->begin = head_->next = first;
    for (; head_->next <= last; ++head_->next) make(head_->next, row(head_->next));
    head_->begin = std::max(head_->begin, head_->next - capacity_);
  }

  bool holds(int32_t y) const { return y >= head_->begin && y < head_->next; }
  uint8_t* row(int32_t y) const { return rows_ + static_cast<size_t>(y % capacity_) * rowBytes_; }

 private:
  RingHead* head_;
  uint8_t* rows_;
  size_t rowBytes_;
  int32_t capacity_;
};

// Setup gives the stage the block of a ring that it keeps, so that no kernel runs out of memory
// half-way down a picture. Returns 0 or 4.
int32_t reserveRing(Stage& stage, size_t bytes);

// What effects with a kept ring have as EffectRow::resetStream.
void forgetRing(Stage& stage, const QPXBand& band);

// Begins a ring in a block.
RingHead* beginRing(uint8_t* block, size_t bytes);

// Calls run(head) with the ring that the stage keeps if `kept`, otherwise with one of this call
// alone. Returns 0, or 4 for no memory.
template <class Run>
int32_t withRing(Stage& stage, size_t bytes, bool kept, const Run& run) {
  if (kept) {
    auto* head = reinterpret_cast<RingHead*>(stage.scratch2);
    if (head == nullptr || head->bytes < bytes) return QPX_NO_MEMORY;
    run(head);
    return QPX_OK;
  }
  const Scratch block(bytes);
  if (!block) return QPX_NO_MEMORY;
  run(beginRing(block.get(), bytes));
  return QPX_OK;
}

}  // namespace qpx
