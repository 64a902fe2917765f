#include "adjust/skin_map.h"

#include <algorithm>

namespace qpx {
namespace {

// The ellipse of R.-L. Hsu, M. Abdel-Mottaleb and A. K. Jain, "Face detection in color images",
// IEEE Transactions on Pattern Analysis and Machine Intelligence 24 (2002), at lumas where chroma
// needs no correction. Its chroma is of video range; the axes are turned by 2.53 radians.
constexpr double kCentreCb = 109.38, kCentreCr = 152.02;
constexpr double kOffsetX = 1.60, kOffsetY = 2.41;
constexpr double kHalfWidth = 25.39, kHalfHeight = 14.03;
constexpr double kCos = -0.8187345992773816, kSin = 0.5741721483545726;

double videoRange(int32_t chroma) { return 128.0 + (chroma - 128) * (224.0 / 255.0); }

// 1 on the ellipse.
double distanceOf(double cb, double cr) {
  const double u = cb - kCentreCb, v = cr - kCentreCr;
  const double x = (kCos * u + kSin * v - kOffsetX) / kHalfWidth;
  const double y = (kCos * v - kSin * u - kOffsetY) / kHalfHeight;
  return x * x + y * y;
}

}  // namespace

void fillSkinMap(SkinMap& map) {
  for (int32_t cb = 0; cb < 256; ++cb) {
    for (int32_t cr = 0; cr < 256; ++cr) {
      const double distance = 1024.0 * distanceOf(videoRange(cb), videoRange(cr));
      map[static_cast<size_t>(cb)][static_cast<size_t>(cr)] =
          static_cast<uint16_t>(std::min(distance, 65535.0));
    }
  }
}

SkinSpans skinSpans(const SkinMap& map) {
  SkinSpans spans;
  for (size_t cb = 0; cb < 256; ++cb) {
    int32_t lowest = 255, highest = 0;
    for (int32_t cr = 0; cr < 256; ++cr) {
      if (map[cb][static_cast<size_t>(cr)] > kSkinBorder) continue;
      lowest = std::min(lowest, cr);
      highest = cr;
    }
    spans.lowest[cb] = static_cast<uint8_t>(lowest);
    spans.highest[cb] = static_cast<uint8_t>(highest);
  }
  return spans;
}

}  // namespace qpx
