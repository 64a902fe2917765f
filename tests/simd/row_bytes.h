// Bytes for rows, and plain and vector forms that are to agree on them.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simd/row_forms.h"

namespace qpx::simd {

using Bytes = std::vector<uint8_t>;

// Evenly spread over all values.
Bytes randomBytes(size_t size, uint32_t seed);

// noise() of every place. The block ends with the last byte, so that the address sanitizer sees
// what lies behind.
Bytes noisyBytes(ptrdiff_t size, uint32_t seed);

// The next 32 bits of a sequence without pattern.
inline uint32_t next(uint64_t& state) {
  state = state * 6364136223846793005u + 1442695040888963407u;
  return static_cast<uint32_t>(state >> 32);
}

// Runs convert(rows, dst) in both forms of a table, on buffers of noise one byte longer than may be
// written.
template <typename Rows, typename Convert>
void expectSameForms(ptrdiff_t bytes, const Convert& convert) {
  const Bytes noise = randomBytes(static_cast<size_t>(bytes) + 1, 5);
  Bytes plain = noise, vector = noise;
  convert(plainForm<Rows>(), plain.data());
  convert(vectorForm<Rows>(), vector.data());
  ASSERT_EQ(plain, vector);
  ASSERT_EQ(noise.back(), plain.back());
}

}  // namespace qpx::simd
