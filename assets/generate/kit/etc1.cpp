#include "kit/etc1.h"

#include <qpx/etc.h>

#include <cstdio>
#include <cstdlib>

namespace qpx::drawing {

std::vector<uint8_t> toEtc1(const Canvas& canvas) {
  std::vector<uint8_t> samples = toBytes(canvas, 3);
  std::vector<uint8_t> blocks(samples.size() / 6);
  const MBitmap source = {QPX_FORMAT_RGB24,
                          canvas.width(),
                          canvas.height(),
                          {canvas.width() * 3, 0, 0},
                          {samples.data(), nullptr, nullptr}};
  MBitmap target = {};
  target.plane[0] = blocks.data();
  if (const int32_t result = TEXPK_Compress_ETC(&source, &target, QPX_ETC_SLOW); result != QPX_OK) {
    std::fprintf(stderr, "the texture codec answered %d\n", static_cast<int>(result));
    std::exit(1);
  }
  return blocks;
}

}  // namespace qpx::drawing
