#include <qpx/contours.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "geometry/packed_rgb.h"
#include "segment/edge_map.h"

namespace qpx {
namespace {

// Without branches, so that it runs in vectors. `to` is the row `here` in the mask, which still has
// the values of `here`. Counted in int: in bytes, GCC 12 for ARM gets sums of comparisons wrong.
void fillRow(const uint8_t* above, const uint8_t* here, const uint8_t* below, ptrdiff_t count,
             uint8_t* __restrict to) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int covered = (above[i - 1] != 0) + (above[i] != 0) + (above[i + 1] != 0) +
                        (here[i - 1] != 0) + (here[i + 1] != 0) + (below[i - 1] != 0) +
                        (below[i] != 0) + (below[i + 1] != 0);
    to[i] = ((here[i] == 0) & (covered > 4)) ? 255 : here[i];
  }
}

// Fills by the mask as it was: the rows that have been changed already are remembered.
class HoleFiller {
 public:
  explicit HoleFiller(const MBitmap& mask)
      : mask_(mask), width_(static_cast<size_t>(mask.width)), rows_(blockBytes(2, mask.width)) {}

  explicit operator bool() const { return bool(rows_); }

  void run() {
    uint8_t *above = rows_.get(), *here = above + width_;
    if (mask_.width < 3 || mask_.height < 3) return;
    std::memcpy(above, rowOf(mask_, 0), width_);
    for (int32_t y = 1; y < mask_.height - 1; ++y) {
      std::memcpy(here, rowOf(mask_, y), width_);
      fillRow(above + 1, here + 1, rowOf(mask_, y + 1) + 1, mask_.width - 2, rowOf(mask_, y) + 1);
      std::swap(above, here);
    }
  }

 private:
  const MBitmap& mask_;
  size_t width_;
  Scratch rows_;
};

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPX_ContourTracing(const MBitmap* mask, MPoint* points, int32_t* count) {
  if (mask == nullptr || points == nullptr || count == nullptr) return QPX_BAD_PARAM;
  if (mask->format != QPX_FORMAT_GREY8 || !hasRows(*mask, 1)) return QPX_BAD_PARAM;
  const int64_t pixels = int64_t{mask->width} * mask->height;
  if (pixels > INT32_MAX) return QPX_NO_MEMORY;
  EdgeMap edges(mask->width, mask->height);
  HoleFiller filler(*mask);
  if (!edges || !filler) return QPX_NO_MEMORY;
  filler.run();
  const MaskRows rows = {mask->plane[0], mask->pitch[0], mask->width, mask->height};
  const int64_t marked = edges.markAround(rows) + edges.markBorder(rows, true);
  edges.follow({1, pixels / 10000 / 4}, points);
  // Only of a mask that is all border can pixels be counted more often than there are numbers.
  *count = static_cast<int32_t>(std::min<int64_t>(marked, INT32_MAX));
  return QPX_OK;
}
