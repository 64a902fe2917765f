// Where destination pixels lie in the source: the rule of convert/position.h, run by run.
#pragma once

#include <cstdint>

#include "convert/kernels/call.h"
#include "convert/position.h"

namespace qpx::convert::fast {

// The positions of one call.
class Positions {
 public:
  explicit Positions(const Call& call);

  // Pixels correspond one to one and all of the rectangle lies inside the clip: column x of the
  // destination is column x + shiftX() of the source, without any test.
  bool isDirect() const { return direct_; }
  int32_t shiftX() const { return shiftX_; }
  int32_t shiftY() const { return shiftY_; }

  SourcePair row(int32_t y) const {
    return direct_ ? SourcePair{y + shiftY_, y + shiftY_, 0} : sampledRow(y);
  }

  // Columns x..x + count - 1, and the 16 bits behind each (zeros for nearest).
  void columns(int32_t x, int32_t count, int32_t* place, int32_t* fraction) const;

 private:
  SourcePair sampledRow(int32_t y) const;

  const ConvRecord& record_;
  bool bilinear_;
  bool direct_;
  int32_t shiftX_;
  int32_t shiftY_;
  int32_t top_;
  int64_t leastSy_;  // of positions that are not held to the first row
  int32_t firstRow_;
  int32_t lastRow_;
  int64_t firstSy_;
  uint32_t stepX_;
  uint32_t stepY_;
};

// The 16.16 row that kernels are handed: one step before that of row `top`.
int32_t rowBefore(const ConvRecord& record, int32_t top);

}  // namespace qpx::convert::fast
