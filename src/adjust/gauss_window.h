// The Gaussian window of a blur, and pictures blurred by it.
#pragma once

#include <cstdint>

#include "engine/effect_row.h"

namespace qpx {

// Wider windows are not offered: they take longer than a blur of a reduced picture, which looks the
// same.
inline constexpr int32_t kMaxGaussRadius = 191;

// Fills the stage's working block, 32-bit weights of offsets -radius ... radius around entry 192
// that add up to 2^15, and reserves what blurFrame keeps. Returns 0 or 4.
int32_t setUpBlur(Stage& stage, int32_t radius);

// Makes what is stored of `count` samples of one plane and their blur, in place in `blurred`, by a
// table of 256 entries.
using BlurFinish = void (*)(const uint8_t* table, const uint8_t* source, uint8_t* blurred,
                            ptrdiff_t count);

struct BlurJob {
  int32_t radius;     // as tabulated; 0 leaves every sample as it is
  BlurFinish finish;  // may be null
  const uint8_t* table;
  bool kept;  // the stage keeps what the next band of the stream can use again
};

// Blurs the frame's rectangle, along rows first, each pass cut to bytes. Alpha is copied. Returns 0
// or 4.
int32_t blurFrame(const Frame& frame, const BlurJob& job);

}  // namespace qpx
