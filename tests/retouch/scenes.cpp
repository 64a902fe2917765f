#include "retouch/scenes.h"

#include <cstdlib>

namespace qpx::testing {
namespace {

int bytesOf(const Picture& picture) { return picture.format() >> 24 == 0x37 ? 4 : 3; }

}  // namespace

void paint(Picture& picture, const Scene& scene) {
  const MBitmap to = picture.bitmap();
  const int bytes = bytesOf(picture);
  for (int32_t y = 0; y < to.height; ++y) {
    for (int32_t x = 0; x < to.width; ++x) {
      uint8_t* const pixel = to.plane[0] + ptrdiff_t{to.pitch[0]} * y + ptrdiff_t{bytes} * x;
      const Color color = scene(x, y);
      for (size_t c = 0; c < 3; ++c) pixel[c] = color[c];
      if (bytes == 4) pixel[3] = static_cast<uint8_t>(x + y);
    }
  }
}

void markHole(Picture& mask, const MRect& hole) {
  const MBitmap to = mask.bitmap();
  for (int32_t y = 0; y < to.height; ++y) {
    for (int32_t x = 0; x < to.width; ++x) {
      const bool inside = x >= hole.left && x < hole.right && y >= hole.top && y < hole.bottom;
      to.plane[0][ptrdiff_t{to.pitch[0]} * y + x] = inside ? 255 : 0;
    }
  }
}

double meanError(const Picture& picture, const Scene& scene, const MRect& area) {
  const MBitmap from = picture.bitmap();
  const int bytes = bytesOf(picture);
  double sum = 0;
  for (int32_t y = area.top; y < area.bottom; ++y) {
    for (int32_t x = area.left; x < area.right; ++x) {
      const uint8_t* const pixel =
          from.plane[0] + ptrdiff_t{from.pitch[0]} * y + ptrdiff_t{bytes} * x;
      const Color color = scene(x, y);
      for (size_t c = 0; c < 3; ++c) sum += std::abs(pixel[c] - color[c]);
    }
  }
  return sum / (3.0 * (area.right - area.left) * (area.bottom - area.top));
}

OwnLevel::OwnLevel(int32_t width, int32_t height)
    : samples_(static_cast<size_t>(3 * width * height)),
      mask_(static_cast<size_t>(width * height)),
      level_{samples_.data(), width, 1, width * height, mask_.data(), width, height} {}

void OwnLevel::paint(const Scene& scene) {
  for (int32_t y = 0; y < level_.height; ++y) {
    for (int32_t x = 0; x < level_.width; ++x) {
      const Color color = scene(x, y);
      for (size_t c = 0; c < 3; ++c) {
        level_.pixel(x, y)[level_.channelStep * static_cast<ptrdiff_t>(c)] = color[c];
      }
    }
  }
}

void OwnLevel::mark(const MRect& area, uint8_t state) {
  for (int32_t y = area.top; y < area.bottom; ++y) {
    for (int32_t x = area.left; x < area.right; ++x) level_.state(x, y) = state;
  }
}

}  // namespace qpx::testing
