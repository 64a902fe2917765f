#include "simd/row_bytes.h"

#include <random>

#include "simd/row_cases.h"

namespace qpx::simd {

Bytes randomBytes(size_t size, uint32_t seed) {
  std::mt19937 random(seed);
  Bytes bytes(size);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

Bytes noisyBytes(ptrdiff_t size, uint32_t seed) {
  Bytes bytes(static_cast<size_t>(size));
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = noise(static_cast<uint32_t>(i), seed);
  return bytes;
}

}  // namespace qpx::simd
