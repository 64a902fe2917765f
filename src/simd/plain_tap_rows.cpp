#include "simd/plain_tap_rows.h"

namespace qpx::simd {
namespace plain {

void acrossFirst3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<acrossFirstAt<3>>(taps, dst, count);
}

void acrossFirst4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<acrossFirstAt<4>>(taps, dst, count);
}

void downFirst3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<downFirstAt<3>>(taps, dst, count);
}

void downFirst4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<downFirstAt<4>>(taps, dst, count);
}

void oneSum3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<oneSumAt<3, false>>(taps, dst, count);
}

void oneSum4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<oneSumAt<4, false>>(taps, dst, count);
}

void rounded3(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<oneSumAt<3, true>>(taps, dst, count);
}

void rounded4(const Taps& taps, uint32_t* dst, ptrdiff_t count) {
  tapRow<oneSumAt<4, true>>(taps, dst, count);
}

void offsets(const int32_t* u, const int32_t* v, int32_t* dst, ptrdiff_t count, int fraction,
             int32_t pitch, int32_t bytes) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = (v[i] >> fraction) * pitch + (u[i] >> fraction) * bytes;
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(TapRows, QPX_TAP_ROWS)

}  // namespace qpx::simd
