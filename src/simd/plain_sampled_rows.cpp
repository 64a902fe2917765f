#include "simd/sampled_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

constexpr int32_t kMiddle = 0x8000;

uint8_t mix(int32_t p, int32_t q, int32_t fraction) {
  return static_cast<uint8_t>((p * 65536 + fraction * (q - p)) >> 16);
}

template <int kBytes>
void halve(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < count; ++i, top += 2 * kBytes, bottom += 2 * kBytes, dst += kBytes) {
    for (int c = 0; c < kBytes; ++c) {
      dst[c] = c == 3 ? top[c]
                      : mix(mix(top[c], top[kBytes + c], kMiddle),
                            mix(bottom[c], bottom[kBytes + c], kMiddle), kMiddle);
    }
  }
}

}  // namespace

void findWindows(const SampledRun&, SampledWindows* windows) { windows->found = false; }

void pick(const SampledRun& run, const SampledWindows&, const uint8_t* src, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < run.count; ++i, dst += run.bytes) {
    const uint8_t* const element = src + ptrdiff_t{run.place[i]} * run.stride;
    for (int32_t c = 0; c < run.bytes; ++c) dst[c] = element[c];
  }
}

void across(const SampledRun& run, const SampledWindows&, const uint8_t* src, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < run.count; ++i, dst += run.bytes) {
    const int32_t fraction = run.fraction[i];
    const uint8_t* const left = src + ptrdiff_t{run.place[i]} * run.stride;
    const uint8_t* const right = fraction != 0 ? left + run.stride : left;
    for (int32_t c = 0; c < run.bytes; ++c) {
      dst[c] = c == 3 ? left[c] : mix(left[c], right[c], fraction);
    }
  }
}

void down(const uint8_t* top, const uint8_t* bottom, int32_t fraction, ptrdiff_t count,
          bool keepsFourth, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = keepsFourth && i % 4 == 3 ? top[i] : mix(top[i], bottom[i], fraction);
  }
}

void blend(const SampledRun& run, const SampledWindows&, const uint8_t* top, const uint8_t* bottom,
           int32_t fraction, uint8_t* dst) {
  for (ptrdiff_t i = 0; i < run.count; ++i, dst += run.bytes) {
    const ptrdiff_t left = ptrdiff_t{run.place[i]} * run.stride;
    const ptrdiff_t right = run.fraction[i] != 0 ? left + run.stride : left;
    for (int32_t c = 0; c < run.bytes; ++c) {
      dst[c] = c == 3 ? top[left + c]
                      : mix(mix(top[left + c], top[right + c], run.fraction[i]),
                            mix(bottom[left + c], bottom[right + c], run.fraction[i]), fraction);
    }
  }
}

void halve1(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst) {
  halve<1>(top, bottom, count, dst);
}

void halve4(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst) {
  halve<4>(top, bottom, count, dst);
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(SampledRows, QPX_SAMPLED_ROWS)

}  // namespace qpx::simd
