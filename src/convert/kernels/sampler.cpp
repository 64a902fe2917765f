#include "convert/kernels/sampler.h"

#include "convert/position.h"

namespace qpx::convert::fast {
void Sampler::open(int32_t stride, int32_t bytes) {
  rows_ = &simd::sampledRows();
  run_ = {nullptr, nullptr, 0, stride, bytes};
}

void Sampler::locate(int32_t x, int32_t count, const int32_t* place, const int32_t* fraction) {
  if (x == x_ && count == run_.count) return;
  x_ = x;
  run_.place = place;
  run_.fraction = fraction;
  run_.count = count;
  halves_ = isHalving();
  hasWindows_ = false;
  mixed_[0] = mixed_[1] = nullptr;
  last_[0] = last_[1] = nullptr;
}

// Not all runs need them.
const simd::SampledWindows& Sampler::windows() {
  if (!hasWindows_) rows_->findWindows(run_, &windows_);
  hasWindows_ = true;
  return windows_;
}

// Every element is mixed from two that no other takes, half way.
bool Sampler::isHalving() const {
  if (run_.fraction == nullptr) return false;
  if ((run_.bytes != 1 && run_.bytes != 4) || run_.stride != run_.bytes) return false;
  for (ptrdiff_t i = 0; i < run_.count; ++i) {
    if (run_.place[i] != run_.place[0] + 2 * i || run_.fraction[i] != kFixedHalf) return false;
  }
  return true;
}

void Sampler::pick(const uint8_t* row, uint8_t* dst) { rows_->pick(run_, windows(), row, dst); }

void Sampler::blend(const uint8_t* top, const uint8_t* bottom, int32_t fraction, uint8_t* dst) {
  if (halves_ && fraction == kFixedHalf) {
    const ptrdiff_t first = ptrdiff_t{run_.place[0]} * run_.stride;
    const auto halve = run_.bytes == 1 ? rows_->halve1 : rows_->halve4;
    halve(top + first, bottom + first, run_.count, dst);
  } else if (fraction == 0) {
    rows_->across(run_, windows(), top, dst);
  } else if (!sharesRows(top, bottom) && windows().found) {
    rows_->blend(run_, windows(), top, bottom, fraction, dst);
  } else {
    const uint8_t* const upper = across(top, bottom);
    const uint8_t* const lower = across(bottom, top);
    rows_->down(upper, lower, fraction, run_.made(), run_.bytes == 4, dst);
  }
}

// Whether the rows before these were the same or one of them, as they are likely to be again.
bool Sampler::sharesRows(const uint8_t* top, const uint8_t* bottom) {
  const bool shares = top == last_[0] || top == last_[1] || bottom == last_[0];
  last_[0] = top;
  last_[1] = bottom;
  return shares;
}

// A row mixed across. `other` is needed as well.
const uint8_t* Sampler::across(const uint8_t* row, const uint8_t* other) {
  for (int i = 0; i < 2; ++i) {
    if (mixed_[i] == row) return room_[i];
  }
  const int i = mixed_[0] == other ? 1 : 0;
  rows_->across(run_, windows(), row, room_[i]);
  mixed_[i] = row;
  return room_[i];
}

}  // namespace qpx::convert::fast
