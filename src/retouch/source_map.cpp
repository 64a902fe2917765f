#include "retouch/source_map.h"

#include <algorithm>

namespace qpx::retouch {

// clear[x] is how many rows up to here are known in column x, and a run of columns that have enough
// of them is a patch, whose last row and column are here. Marks lie within the patch, and do not
// take from a pixel that it is known.
bool markSources(const Level& level, int32_t patchWidth, int32_t patchHeight, MPoint anchor,
                 int32_t* clear) {
  bool any = false;
  std::fill_n(clear, level.width, 0);
  const MPoint back = {anchor.x - patchWidth + 1, anchor.y - patchHeight + 1};
  for (int32_t y = 0; y < level.height; ++y) {
    int32_t run = 0;
    for (int32_t x = 0; x < level.width; ++x) {
      const uint8_t state = level.state(x, y);
      clear[x] = state == kKnown || state == (kKnown | kSource) ? clear[x] + 1 : 0;
      run = clear[x] >= patchHeight ? run + 1 : 0;
      if (run < patchWidth) continue;
      level.state(x + back.x, y + back.y) |= kSource;
      any = true;
    }
  }
  return any;
}

}  // namespace qpx::retouch
