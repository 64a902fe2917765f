#include "convert/kernels/lane.h"

#include <algorithm>
#include <cstring>

#include "engine/address.h"

namespace qpx::convert::fast {

Stride strideOf(const Call& call, int32_t component, int32_t plane) {
  const ptrdiff_t step = call.record->dstStep[component], pitch = call.dstPitch[plane];
  return call.record->swapXY != 0 ? Stride{pitch, step} : Stride{step, pitch};
}

void Lane::open(uint8_t* base, const Stride& stride, int32_t bytes, bool turned) {
  const auto [along, across] = stride;
  rows_ = &simd::convertRows();
  base_ = base;
  along_ = along;
  across_ = across;
  bytes_ = bytes;
  if (along == bytes) {
    way_ = Way::forward;
  } else if (along == -bytes) {
    way_ = Way::backward;
  } else {
    way_ = turned && (across == bytes || across == -bytes) ? Way::tiled : Way::scattered;
  }
}

void Lane::forbidTiles() {
  if (way_ == Way::tiled) way_ = Way::scattered;
}

void Lane::begin(int32_t x, int32_t count, int32_t y) {
  x_ = x;
  count_ = count;
  y_ = y;
}

uint8_t* Lane::at(int32_t index) const {
  return advance(advance(base_, along_, x_), across_, y_ + index);
}

uint8_t* Lane::room(int32_t index) {
  if (way_ == Way::forward) return at(index);
  return way_ == Way::tiled ? room_ + ptrdiff_t{index} * kTilePitch : room_;
}

void Lane::put(int32_t index, const uint8_t* elements) {
  switch (way_) {
    case Way::forward:
      if (elements != at(index)) {
        memmove(at(index), elements, static_cast<size_t>(count_) * static_cast<size_t>(bytes_));
      }
      break;
    case Way::backward:
      reverse(elements, advance(at(index), along_, count_ - 1));
      break;
    case Way::tiled:
      put_[index] = elements;
      break;
    case Way::scattered:
      scatter(elements, at(index));
      break;
  }
}

void Lane::reverse(const uint8_t* elements, uint8_t* dst) const {
  switch (bytes_) {
    case 1:
      rows_->reverse1(elements, count_, dst);
      break;
    case 2:
      rows_->reverse2(elements, count_, dst);
      break;
    case 3:
      rows_->reverse3(elements, count_, dst);
      break;
    default:
      rows_->reverse4(elements, count_, dst);
      break;
  }
}

void Lane::scatter(const uint8_t* elements, uint8_t* dst) const {
  for (int32_t i = 0; i < count_; ++i, elements += bytes_) {
    uint8_t* const to = advance(dst, along_, i);
    for (int32_t b = 0; b < bytes_; ++b) to[b] = elements[b];
  }
}

void Lane::transpose(const uint8_t* src, ptrdiff_t pitch, int32_t rows, uint8_t* dst) const {
  switch (bytes_) {
    case 1:
      rows_->transpose1(src, pitch, count_, rows, dst, along_);
      break;
    case 2:
      rows_->transpose2(src, pitch, count_, rows, dst, along_);
      break;
    case 3:
      rows_->transpose3(src, pitch, count_, rows, dst, along_);
      break;
    default:
      rows_->transpose4(src, pitch, count_, rows, dst, along_);
      break;
  }
}

// Rows that lie evenly spaced, as those of a source that is only turned, are not copied before.
void Lane::end(int32_t rows) {
  if (way_ != Way::tiled || rows <= 0) return;
  const auto address = [this](int32_t i) { return reinterpret_cast<uintptr_t>(put_[i]); };
  const uintptr_t pitch = rows > 1 ? address(1) - address(0) : 0;
  bool even = true;
  for (int32_t i = 2; i < rows; ++i) even = even && address(i) - address(i - 1) == pitch;
  if (!even) {
    const size_t size = static_cast<size_t>(count_) * static_cast<size_t>(bytes_);
    for (int32_t i = 0; i < rows; ++i) {
      uint8_t* const row = room_ + ptrdiff_t{i} * kTilePitch;
      if (put_[i] != row) memcpy(row, put_[i], size);
      put_[i] = row;
    }
  }
  turn(put_[0], even ? static_cast<ptrdiff_t>(pitch) : kTilePitch, rows);
}

// Rows that run against the plane are handed over from the last one.
void Lane::turn(const uint8_t* first, ptrdiff_t pitch, int32_t rows) {
  if (across_ > 0) {
    transpose(first, pitch, rows, at(0));
  } else {
    transpose(first + pitch * (rows - 1), -pitch, rows, at(rows - 1));
  }
}

void Lane::take(const uint8_t* elements, ptrdiff_t pitch, int32_t columns, int32_t rows) {
  if (way_ != Way::tiled) {
    for (int32_t y = 0; y < rows; ++y, elements += pitch) {
      begin(0, columns, y);
      put(0, elements);
    }
    return;
  }
  // Columns become rows: few enough of them to stay in reach of the processor's page tables.
  for (int32_t x = 0; x < columns; x += kTileColumns) {
    begin(x, std::min(kTileColumns, columns - x), 0);
    turn(elements + ptrdiff_t{x} * bytes_, pitch, rows);
  }
}

}  // namespace qpx::convert::fast
