// Every row function in one shape: some input rows, some output rows, a count.
#pragma once

#include <array>
#include <vector>

#include "simd/rows.h"

namespace qpx::simd {

constexpr int32_t kMaxRows = 4;

struct RowCase {
  const char* name;
  int32_t inputs;
  int32_t inputBytes;  // of one sample or pixel
  int32_t outputs;
  int32_t outputBytes;
  bool inPlace;  // an output may be any of the inputs
  void (*call)(const Rows& rows, const uint8_t* const* in, uint8_t* const* out, ptrdiff_t count);
};

const std::vector<RowCase>& rowCases();

// Three tables without pattern, different from each other.
const std::array<std::array<uint8_t, 256>, 3>& testTables();

// A byte without pattern for a place and a seed.
inline uint8_t noise(uint32_t place, uint32_t seed) {
  uint32_t h = place * 0x9E3779B1u + seed * 0x85EBCA77u;
  h ^= h >> 15;
  h *= 0xC2B2AE3Du;
  return static_cast<uint8_t>(h >> 21);
}

}  // namespace qpx::simd
