#include "segment/watershed_pairs.h"

#include <kesbase.h>

#include <bit>

#include "engine/stage.h"

namespace qpx {
namespace {

constexpr uint64_t kFewestSlots = 1024;

}  // namespace

PairSet::PairSet(int64_t expected) {
  const uint64_t wanted = std::bit_ceil(2 * static_cast<uint64_t>(expected) + 1);
  if (!resize(std::max(wanted, kFewestSlots))) resize(kFewestSlots);
}

PairSet::~PairSet() { MMemFree(nullptr, slots_); }

PairSet::Answer PairSet::add(uint64_t key) {
  if (slots_ == nullptr) return Answer::full;
  if (slotOf(key) == key) return Answer::known;
  // Without memory the last slots are used up too, but for one, where searches end.
  if (2 * used_ >= mask_ && !resize(2 * (mask_ + 1)) && used_ == mask_) return Answer::full;
  slotOf(key) = key;
  ++used_;
  return Answer::added;
}

// The slot that holds a pair, or the empty one where it belongs.
uint64_t& PairSet::slotOf(uint64_t key) const {
  uint64_t place = firstPlace(key);
  while (slots_[place] != 0 && slots_[place] != key) place = (place + 1) & mask_;
  return slots_[place];
}

bool PairSet::resize(uint64_t slots) {
  const size_t bytes = blockBytes(static_cast<int64_t>(slots), sizeof *slots_);
  auto* const fresh = static_cast<uint64_t*>(MMemAlloc(nullptr, bytes));
  if (fresh == nullptr) return false;
  std::fill_n(fresh, slots, 0);
  uint64_t* const old = slots_;
  const uint64_t* const oldEnd = old == nullptr ? old : old + mask_ + 1;
  slots_ = fresh;
  mask_ = slots - 1;
  for (const uint64_t* key = old; key != oldEnd; ++key) {
    if (*key != 0) slotOf(*key) = *key;
  }
  MMemFree(nullptr, old);
  return true;
}

}  // namespace qpx
