#pragma once

#include <algorithm>
#include <cstdint>

namespace qpx::simd {

constexpr uint8_t clampByte(int32_t value) {
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

}  // namespace qpx::simd
