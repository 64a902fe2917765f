#include "canvas.h"

#include <algorithm>

namespace qpx::tool {

void fill(Picture& picture, const MRect& area, Ink ink) {
  const int32_t left = std::max(area.left, 0), right = std::min(area.right, picture.width());
  const int32_t bottom = std::min(area.bottom, picture.height());
  for (int32_t y = std::max(area.top, 0); y < bottom; ++y) {
    uint8_t* out = picture.row(y) + ptrdiff_t{left} * 3;
    for (int32_t x = left; x < right; ++x) {
      *out++ = ink.r;
      *out++ = ink.g;
      *out++ = ink.b;
    }
  }
}

void paste(Picture& picture, const Picture& piece, int32_t left, int32_t top) {
  for (int32_t y = 0; y < piece.height(); ++y) {
    std::copy_n(piece.row(y), piece.pitch(),
                picture.row(top + y) + ptrdiff_t{left} * picture.channels());
  }
}

}  // namespace qpx::tool
