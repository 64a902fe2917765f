#include "retouch/banded_cholesky.h"

#include <algorithm>
#include <cmath>

namespace qpx::retouch {
namespace {

// to -= factor * from. Lanes do not meet, so that the order of sums is the same on every target.
void takeAway(const float* __restrict from, float factor, float* __restrict to, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) to[i] -= factor * from[i];
}

}  // namespace

// Column by column, each taken from all that follow within the band.
bool factorise(const BandedMatrix& matrix) {
  for (ptrdiff_t k = 0; k < matrix.size; ++k) {
    float* const column = matrix.column(k);
    if (!(column[0] > 0)) return false;
    const float pivot = std::sqrt(column[0]);
    column[0] = pivot;
    const ptrdiff_t rows = std::min(matrix.band, matrix.size - k);
    for (ptrdiff_t i = 1; i < rows; ++i) column[i] /= pivot;
    for (ptrdiff_t i = 1; i < rows; ++i) {
      if (column[i] != 0) takeAway(column + i, column[i], matrix.column(k + i), rows - i);
    }
  }
  return true;
}

void solve(const BandedMatrix& factor, float* sides) {
  for (ptrdiff_t k = 0; k < factor.size; ++k) {
    const float* const column = factor.column(k);
    float* const here = sides + kSystems * k;
    const ptrdiff_t rows = std::min(factor.band, factor.size - k);
    for (ptrdiff_t s = 0; s < kSystems; ++s) here[s] /= column[0];
    for (ptrdiff_t i = 1; i < rows; ++i) {
      for (ptrdiff_t s = 0; s < kSystems; ++s) here[kSystems * i + s] -= column[i] * here[s];
    }
  }
  for (ptrdiff_t k = factor.size - 1; k >= 0; --k) {
    const float* const column = factor.column(k);
    float* const here = sides + kSystems * k;
    const ptrdiff_t rows = std::min(factor.band, factor.size - k);
    for (ptrdiff_t i = 1; i < rows; ++i) {
      for (ptrdiff_t s = 0; s < kSystems; ++s) here[s] -= column[i] * here[kSystems * i + s];
    }
    for (ptrdiff_t s = 0; s < kSystems; ++s) here[s] /= column[0];
  }
}

}  // namespace qpx::retouch
