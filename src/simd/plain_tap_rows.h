// The definitions of TapRows, for one place and for rows of them.
#pragma once

#include "simd/tap_rows.h"

namespace qpx::simd::plain {

inline constexpr int32_t kFull16 = 1 << 16;
inline constexpr int32_t kFull10 = 1 << 10;
inline constexpr uint32_t kFourthByte = 0xFF000000;

// Byte `channel` of the pixel that begins `distance` bytes behind the first.
inline int32_t tapOf(uint64_t pair, int distance, int channel) {
  return static_cast<int32_t>(pair >> (8 * (distance + channel)) & 255);
}

inline int32_t mix16(int32_t p, int32_t q, int32_t f) {
  return static_cast<int32_t>((static_cast<uint32_t>(p) * static_cast<uint32_t>(kFull16 - f) +
                               static_cast<uint32_t>(q) * static_cast<uint32_t>(f)) >>
                              16);
}

template <int kBytes>
uint32_t acrossFirstAt(uint64_t top, uint64_t bottom, int32_t u, int32_t v) {
  const int32_t fx = u & (kFull16 - 1);
  const int32_t fy = v & (kFull16 - 1);
  uint32_t word = static_cast<uint32_t>(top) & kFourthByte;
  for (int c = 0; c < 3; ++c) {
    const int32_t upper = mix16(tapOf(top, 0, c), tapOf(top, kBytes, c), fx);
    const int32_t lower = mix16(tapOf(bottom, 0, c), tapOf(bottom, kBytes, c), fx);
    word |= static_cast<uint32_t>(mix16(upper, lower, fy)) << (8 * c);
  }
  return word;
}

template <int kBytes>
uint32_t downFirstAt(uint64_t top, uint64_t bottom, int32_t u, int32_t v) {
  const int32_t fx = u & (kFull16 - 1);
  const int32_t fy = v & (kFull16 - 1);
  uint32_t word = static_cast<uint32_t>(top) & kFourthByte;
  for (int c = 0; c < 3; ++c) {
    const int32_t left = mix16(tapOf(top, 0, c), tapOf(bottom, 0, c), fy);
    const int32_t right = mix16(tapOf(top, kBytes, c), tapOf(bottom, kBytes, c), fy);
    word |= static_cast<uint32_t>(mix16(left, right, fx)) << (8 * c);
  }
  return word;
}

// Four taps by their weights of 20 bits. The largest sum is 255 << 20, so 32 bits do.
inline int32_t sumOfTaps(int32_t a, int32_t b, int32_t c, int32_t d, int32_t fx, int32_t fy) {
  return a * (kFull10 - fx) * (kFull10 - fy) + b * fx * (kFull10 - fy) + c * (kFull10 - fx) * fy +
         d * fx * fy;
}

template <int kBytes, bool kRounded>
uint32_t oneSumAt(uint64_t top, uint64_t bottom, int32_t u, int32_t v) {
  constexpr int kChannels = kRounded ? 4 : 3;
  constexpr int32_t kHalf = kRounded ? 1 << 19 : 0;
  const int32_t fx = u & (kFull10 - 1);
  const int32_t fy = v & (kFull10 - 1);
  uint32_t word = kRounded ? 0 : kFourthByte;
  for (int c = 0; c < kChannels; ++c) {
    const int32_t sum = sumOfTaps(tapOf(top, 0, c), tapOf(top, kBytes, c), tapOf(bottom, 0, c),
                                  tapOf(bottom, kBytes, c), fx, fy);
    word |= static_cast<uint32_t>((sum + kHalf) >> 20) << (8 * c);
  }
  return word;
}

using TapFunction = uint32_t (*)(uint64_t top, uint64_t bottom, int32_t u, int32_t v);

template <TapFunction at>
void tapRow(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = at(taps.top[i], taps.bottom[i], taps.u[i], taps.v[i]);
  }
}

}  // namespace qpx::simd::plain
