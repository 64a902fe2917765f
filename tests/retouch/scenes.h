// Pictures of known contents, levels to fill, and holes.
#pragma once

#include <qpx/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "retouch/level.h"
#include "support/picture.h"

namespace qpx::testing {

using Color = std::array<uint8_t, 3>;
using Scene = std::function<Color(int32_t x, int32_t y)>;

// Samples are in memory order; alpha, where there is any, is x + y.
void paint(Picture& picture, const Scene& scene);

// 255 inside the rectangle, else 0.
void markHole(Picture& mask, const MRect& hole);

// Mean difference of all samples in the rectangle.
double meanError(const Picture& picture, const Scene& scene, const MRect& area);

// A level of planes with memory of its own.
class OwnLevel {
 public:
  OwnLevel(int32_t width, int32_t height);
  OwnLevel(const OwnLevel&) = delete;
  OwnLevel& operator=(const OwnLevel&) = delete;

  const retouch::Level& level() const { return level_; }
  void paint(const Scene& scene);
  void mark(const MRect& area, uint8_t state);

 private:
  std::vector<uint8_t> samples_, mask_;
  retouch::Level level_;
};

}  // namespace qpx::testing
