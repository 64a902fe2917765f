#include <algorithm>
#include <cstdlib>

#include "simd/clamp_byte.h"
#include "simd/window_rows.h"

namespace qpx::simd {
namespace plain {

void weighRows(const uint8_t* const* rows, const int16_t* weights, int32_t radius, uint8_t* dst,
               ptrdiff_t count) {
  const uint8_t* const* middle = rows + radius;
  for (ptrdiff_t i = 0; i < count; ++i) {
    int32_t sum = weights[0] * middle[0][i];
    for (int32_t k = 1; k <= radius; ++k) sum += weights[k] * (middle[-k][i] + middle[k][i]);
    dst[i] = static_cast<uint8_t>(sum >> kWindowWeightBits);
  }
}

void distance(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>(std::abs(a[i] - b[i]));
}

void moveAway(const uint8_t* src, const uint8_t* from, const uint8_t* step, uint8_t* dst,
              ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = clampByte(src[i] >= from[i] ? src[i] + step[i] : src[i] - step[i]);
  }
}

void slideDown(int32_t* sums, const uint8_t* in, const uint8_t* out, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) sums[i] += in[i] - out[i];
}

void windowSums(const int32_t* const (&src)[3], int32_t* const (&dst)[3], int32_t size,
                ptrdiff_t count) {
  for (int p = 0; p < 3; ++p) {
    int32_t sum = 0;
    for (int32_t i = 0; i < size - 1; ++i) sum += src[p][i];
    for (ptrdiff_t i = 0; i < count; ++i) {
      sum += src[p][i + size - 1];
      dst[p][i] = sum;
      sum -= src[p][i];
    }
  }
}

void moveToMean(const uint8_t* src, const int32_t* sums, uint8_t* dst, ptrdiff_t count, int32_t q,
                int32_t amount) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int32_t mean = (q * ((sums[i] * q) >> 10)) >> 10;
    const int32_t move =
        amount >= 0 ? (amount * (mean - src[i])) >> 8 : (-amount * (src[i] - mean)) >> 8;
    dst[i] = clampByte(src[i] + move);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(WindowRows, QPX_WINDOW_ROWS)

}  // namespace qpx::simd
