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

}  // namespace qpx::etc
