#include "retouch/isophotes.h"

namespace qpx::retouch {
namespace {

constexpr float kGreyUnit = 0.0013071896f;  // 1 / 765

// What is known of the neighbours before and behind decides: a central difference, one to one
// side, or none.
float difference(float before, float here, float behind, bool hasBefore, bool hasBehind) {
  if (hasBefore && hasBehind) return (behind - before) * 0.5f;
  if (hasBehind) return behind - here;
  if (hasBefore) return here - before;
  return 0;
}

}  // namespace

Isophotes::Isophotes(const Level& level)
    : level_(level), gradients_(int64_t{level.width} * level.height) {}

float Isophotes::grey(int32_t x, int32_t y) const {
  const uint8_t* const pixel = level_.pixel(x, y);
  const int32_t sum = pixel[0] + pixel[level_.channelStep] + pixel[2 * level_.channelStep];
  return static_cast<float>(sum) * kGreyUnit;
}

bool Isophotes::isTrusted(int32_t x, int32_t y) const {
  if (!level_.contains(x, y)) return false;
  const uint8_t state = level_.state(x, y);
  return state == kKnown || state == (kKnown | kSource);
}

void Isophotes::compute(int32_t x, int32_t y) const {
  const bool left = isTrusted(x - 1, y), right = isTrusted(x + 1, y);
  const bool above = isTrusted(x, y - 1), below = isTrusted(x, y + 1);
  const float here = grey(x, y);
  gradients_[level_.place(x, y)] = {
      difference(left ? grey(x - 1, y) : 0, here, right ? grey(x + 1, y) : 0, left, right),
      difference(above ? grey(x, y - 1) : 0, here, below ? grey(x, y + 1) : 0, above, below)};
}

void Isophotes::computeAll() const {
  for (int32_t y = 0; y < level_.height; ++y) {
    for (int32_t x = 0; x < level_.width; ++x) {
      if (!level_.isHole(x, y)) compute(x, y);
    }
  }
}

}  // namespace qpx::retouch
