// Where the lines of a picture run: its grey's differences at every known pixel.
#pragma once

#include "retouch/level.h"

namespace qpx::retouch {

// The gradient of the grey, 0 to 1. A line of equal grey runs at a right angle to it.
struct Gradient {
  float x, y;
};

class Isophotes {
 public:
  explicit Isophotes(const Level& level);
  explicit operator bool() const { return bool(gradients_); }

  // For all pixels but those of the hole.
  void computeAll() const;
  void compute(int32_t x, int32_t y) const;

  const Gradient& at(int32_t x, int32_t y) const { return gradients_[level_.place(x, y)]; }

 private:
  float grey(int32_t x, int32_t y) const;
  bool isTrusted(int32_t x, int32_t y) const;

  const Level& level_;
  Buffer<Gradient> gradients_;
};

}  // namespace qpx::retouch
