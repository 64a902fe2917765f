#include "simd/plain_tap_rows.h"

#include "simd/rows.h"

namespace qpx::simd {

const TapRows& plainTapRows() {
  using namespace plain;
  static constexpr TapRows kRows = {
      .acrossFirst3 = tapRow<acrossFirstAt<3>>,
      .acrossFirst4 = tapRow<acrossFirstAt<4>>,
      .downFirst3 = tapRow<downFirstAt<3>>,
      .downFirst4 = tapRow<downFirstAt<4>>,
      .oneSum3 = tapRow<oneSumAt<3, false>>,
      .oneSum4 = tapRow<oneSumAt<4, false>>,
      .rounded3 = tapRow<oneSumAt<3, true>>,
      .rounded4 = tapRow<oneSumAt<4, true>>,
      .offsets = offsets,
  };
  return kRows;
}

const TapRows& tapRows() { return plainForms() ? plainTapRows() : vectorTapRows(); }

}  // namespace qpx::simd
