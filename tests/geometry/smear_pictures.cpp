#include "geometry/smear_pictures.h"

namespace qpx::testing {
namespace {

bool inside(MaskShape shape, int32_t x, int32_t y, const MBitmap& mask, Random& random) {
  const int32_t dx = 2 * x - mask.width, dy = 2 * y - mask.height;
  const int32_t side = std::min(mask.width, mask.height);
  const bool disc = dx * dx + dy * dy < side * side / 2;
  switch (shape) {
    case MaskShape::none:
      return false;
    case MaskShape::all:
      return true;
    case MaskShape::noise:
      return random.next() % 2 == 0;
    case MaskShape::dots:
      return random.next() % 37 == 0;
    case MaskShape::disc:
      return disc;
    case MaskShape::ragged:
      return disc && random.next() % 5 != 0;
  }
  return false;
}

}  // namespace

int32_t bytesOf(const MBitmap& bitmap) { return (bitmap.format >> 24 & 15) == 7 ? 4 : 3; }

uint8_t& sampleAt(const MBitmap& bitmap, int32_t x, int32_t y, int c) {
  return bitmap.plane[0][ptrdiff_t{bitmap.pitch[0]} * y + ptrdiff_t{bytesOf(bitmap)} * x + c];
}

void paintMask(Picture& picture, MaskShape shape, Random& random) {
  const MBitmap mask = picture.bitmap();
  for (int32_t y = 0; y < mask.height; ++y) {
    for (int32_t x = 0; x < mask.width; ++x) {
      const int32_t value = inside(shape, x, y, mask, random) ? random.between(1, 255) : 0;
      mask.plane[0][ptrdiff_t{mask.pitch[0]} * y + x] = static_cast<uint8_t>(value);
    }
  }
}

}  // namespace qpx::testing
