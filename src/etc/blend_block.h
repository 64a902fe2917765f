// Two blocks into one without their pixels.
#pragma once

#include <cstdint>

#include "simd/etc_block.h"

namespace qpx::etc {

// Ten fractional bits, 0 ... 1024 each and at most 1025 together.
struct BlendWeights {
  int32_t overlay, base;
};

simd::EtcWords blendBlocks(simd::EtcWords overlay, simd::EtcWords base, BlendWeights weights);

constexpr int32_t dividedBy255(int32_t v) { return (v + (v >> 8) + 128) >> 8; }
constexpr int32_t to4Bits(int32_t sample) { return dividedBy255(sample * 15); }
constexpr int32_t to5Bits(int32_t sample) { return dividedBy255(sample * 31); }

}  // namespace qpx::etc
