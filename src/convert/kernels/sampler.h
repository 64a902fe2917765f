// A run of a resampled row, taken from one row of the source or from two.
#pragma once

#include <cstddef>
#include <cstdint>

#include "convert/kernels/call.h"
#include "simd/sampled_rows.h"

namespace qpx::convert::fast {

class Sampler {
 public:
  // Source elements lie `stride` bytes apart and `bytes` of each are taken.
  void open(int32_t stride, int32_t bytes);

  // The run that begins at `x` takes its elements at these places and, where they are mixed, this
  // far from each to the next. What is found out about a run is kept for as long as it is located.
  void locate(int32_t x, int32_t count, const int32_t* place, const int32_t* fraction);

  // Nearest: the elements of a row.
  void pick(const uint8_t* row, uint8_t* dst);

  // Bilinear: across both rows, then `fraction` of the way down from the first to the second.
  void blend(const uint8_t* top, const uint8_t* bottom, int32_t fraction, uint8_t* dst);

 private:
  static constexpr ptrdiff_t kMost = ptrdiff_t{4} * kRun;
  static_assert(kMost <= simd::SampledWindows::kMost);

  bool isHalving() const;
  const simd::SampledWindows& windows();
  bool sharesRows(const uint8_t* top, const uint8_t* bottom);
  const uint8_t* across(const uint8_t* row, const uint8_t* other);

  const simd::SampledRows* rows_ = nullptr;
  simd::SampledRun run_ = {};
  int32_t x_ = 0;
  bool halves_ = false;
  bool hasWindows_ = false;
  simd::SampledWindows windows_;
  const uint8_t* last_[2] = {};  // the rows that were asked for last
  // Rows of the source as they were mixed across, for rows of the destination that share them.
  const uint8_t* mixed_[2] = {};
  uint8_t room_[2][kMost];
};

}  // namespace qpx::convert::fast
