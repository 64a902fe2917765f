// The pixels that outline a mask, and the chains that neighbours among them make.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

#include "engine/stage.h"

namespace qpx {

// Rows of one byte a pixel: 0 is outside, every other value inside.
struct MaskRows {
  const uint8_t* pixels;
  ptrdiff_t pitch;
  int32_t width, height;

  const uint8_t* row(int32_t y) const { return pixels + pitch * y; }
};

// Which chains stay.
struct ChainRule {
  int64_t fewestPoints;
  int64_t widestGap;  // between its ends, in x and in y, where it does not close
};

// A walk along marked pixels. It closes where a step leads back to its first pixel, which is
// written once.
struct Chain {
  int64_t length;
  bool closed;
};

class EdgeMap {
 public:
  EdgeMap(int32_t width, int32_t height);

  // False when there is no memory.
  explicit operator bool() const { return bool(block_); }

  // Marks what lies outside within the picture's border and touches the inside, and nothing else.
  // Returns how many pixels that are.
  int64_t markAround(const MaskRows& mask);

  // Marks each inner pixel of the border with its neighbours along the border, corners alone, and
  // where `outsideToo` each outer one that touches the inside. Returns 3 for each of the former and
  // 1 for each of the latter.
  int64_t markBorder(const MaskRows& mask, bool outsideToo);

  // Writes the chains that the rule keeps one behind the other, zeros over those it does not, and
  // returns how many points stay. Takes no more room than there are marked pixels, each of which it
  // clears.
  int32_t follow(const ChainRule& rule, MPoint* points);

 private:
  uint8_t* row(int32_t y) const;
  Chain walk(int32_t x, int32_t y, MPoint* points);

  int32_t width_, height_;
  ptrdiff_t pitch_;
  Scratch block_;  // with an empty pixel on every side, so that walks need not look for the end
  int32_t direction_ = 0;
};

}  // namespace qpx
