// Symmetric positive definite systems whose entries lie near the diagonal.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qpx::retouch {

// A matrix by the columns of its lower triangle: column k has `band` entries from the diagonal
// down, of which those below the last row mean nothing.
struct BandedMatrix {
  float* entries;
  ptrdiff_t size;
  ptrdiff_t band;

  float* column(ptrdiff_t k) const { return entries + k * band; }
  // Row `row` of column `k`, from the diagonal down to the end of the band.
  float& at(ptrdiff_t row, ptrdiff_t k) const { return column(k)[row - k]; }
};

// Right sides of four systems, side by side, which become the solutions.
inline constexpr ptrdiff_t kSystems = 4;

// A = L * L^T, in place. False where a pivot is not positive: columns before it are done.
bool factorise(const BandedMatrix& matrix);

// Solves with the factor: forwards, then backwards.
void solve(const BandedMatrix& factor, float* sides);

}  // namespace qpx::retouch
