#include "retouch/patch_means.h"

namespace qpx::retouch {
namespace {

int32_t sumOf(const Level& level, int32_t x, int32_t y) {
  const uint8_t* const pixel = level.pixel(x, y);
  return pixel[0] + pixel[level.channelStep] + pixel[2 * level.channelStep];
}

}  // namespace

// Sums of columns slide down, the sum of a row of them across.
void patchMeans(const Level& level, int32_t radius, int32_t* columns, uint8_t* means) {
  const int32_t side = 2 * radius + 1;
  if (level.width < side || level.height < side) return;
  for (int32_t x = 0; x < level.width; ++x) columns[x] = 0;
  for (int32_t y = 0; y < level.height; ++y) {
    for (int32_t x = 0; x < level.width; ++x) {
      columns[x] += sumOf(level, x, y);
      if (y >= side) columns[x] -= sumOf(level, x, y - side);
    }
    if (y < side - 1) continue;
    int32_t sum = 0;
    for (int32_t x = 0; x < level.width; ++x) {
      sum += columns[x];
      if (x >= side) sum -= columns[x - side];
      if (x < side - 1) continue;
      means[level.place(x - radius, y - radius)] = static_cast<uint8_t>(sum / (3 * side * side));
    }
  }
}

}  // namespace qpx::retouch
