// A picture that is being filled, at the guide's size or at full size, and what its mask says.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

#include "engine/stage.h"

namespace qpx::retouch {

// Bytes of a working mask. Sources are known pixels where a patch without a hole lies.
inline constexpr uint8_t kKnown = 0;
inline constexpr uint8_t kDoubtful = 1;     // known, but no source of anything
inline constexpr uint8_t kFromFill = 0x20;  // known since it was filled
inline constexpr uint8_t kSource = 0x40;    // as a sum with kKnown
inline constexpr uint8_t kHole = 255;

// The byte of a host's mask.
constexpr uint8_t stateOf(uint8_t mask) {
  return mask == 255 ? kHole : mask == 0 ? kKnown : kDoubtful;
}

// So many records from the memory services, not constructed; false when there is no memory.
template <typename Record>
class Buffer {
 public:
  explicit Buffer(int64_t count) : bytes_(blockBytes(count, sizeof(Record))), block_(bytes_) {}

  explicit operator bool() const { return bool(block_); }
  Record* get() const { return reinterpret_cast<Record*>(block_.get()); }
  Record& operator[](ptrdiff_t i) const { return get()[i]; }
  size_t bytes() const { return bytes_; }

 private:
  size_t bytes_;
  Scratch block_;
};

// Samples at any distance from one another, so that planes of one channel and a host's packed
// pixels are filled by the same code.
struct Level {
  uint8_t* samples;
  ptrdiff_t pitch;
  ptrdiff_t pixelStep;    // from a pixel to the next
  ptrdiff_t channelStep;  // from a channel to the next
  uint8_t* mask;          // as many bytes a row as there are pixels
  int32_t width, height;

  ptrdiff_t place(int32_t x, int32_t y) const { return ptrdiff_t{width} * y + x; }
  uint8_t* pixel(int32_t x, int32_t y) const { return samples + pitch * y + pixelStep * x; }
  uint8_t& state(int32_t x, int32_t y) const { return mask[place(x, y)]; }
  bool isHole(int32_t x, int32_t y) const { return state(x, y) == kHole; }
  bool contains(int32_t x, int32_t y) const { return x >= 0 && x < width && y >= 0 && y < height; }
  MRect all() const { return {0, 0, width, height}; }
};

constexpr bool isEmpty(const MRect& rect) {
  return rect.left >= rect.right || rect.top >= rect.bottom;
}

constexpr MRect intersection(const MRect& a, const MRect& b) {
  return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top,
          a.right < b.right ? a.right : b.right, a.bottom < b.bottom ? a.bottom : b.bottom};
}

constexpr MRect grown(const MRect& rect, int32_t by) {
  return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

constexpr MRect squareAround(MPoint middle, int32_t radius) {
  return {middle.x - radius, middle.y - radius, middle.x + radius + 1, middle.y + radius + 1};
}

}  // namespace qpx::retouch
