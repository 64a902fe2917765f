// How large turned pictures are.
#include <qpx/rotate.h>

#include <algorithm>
#include <cmath>

#include "geometry/packed_rgb.h"
#include "geometry/turn_math.h"

namespace qpx {
namespace {

struct HalfSize {
  int32_t width = 0;
  int32_t height = 0;
};

// The box has the picture's proportions: its half diagonals are the longest in the picture's own
// directions, phi off the axes, that end on the turned picture's nearest edge.
HalfSize halfOfTurned(double width, double height, int32_t degrees) {
  const double diagonal = std::sqrt(height * height + width * width);
  const double phi = std::atan(height / width);
  const double angle = radiansOf(degrees);
  const bool early = degrees < 91;
  double share = 0;
  if (width < height) {
    share = std::cos(phi) / std::fabs(std::cos(early ? phi - angle : phi + angle));
  } else {
    share = std::sin(phi) / std::fabs(std::sin(early ? phi + angle : phi - angle));
  }
  share *= diagonal;
  return {truncated(share * std::cos(phi)) / 2, truncated(share * std::sin(phi)) / 2};
}

// `degrees` is a remainder of 180.
HalfSize halfInside(const MBitmap& image, int32_t degrees) {
  if (degrees == 0) return {image.width / 2, image.height / 2};
  if (degrees == 90 || degrees == -90) return {image.height / 2, image.width / 2};
  if (degrees < 0) return {};
  return halfOfTurned(image.width, image.height, degrees);
}

// The ends of a span about the middle of a side, inside it.
void centre(int32_t half, int32_t side, int32_t* low, int32_t* high) {
  const int64_t middle = side / 2;
  *low = static_cast<int32_t>(std::clamp<int64_t>(middle - half, 0, side));
  *high = static_cast<int32_t>(std::clamp<int64_t>(middle + half, 0, side));
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPX_GetRotateDstSize(const MBitmap* image, int32_t degrees, int32_t* width,
                             int32_t* height) {
  if (image == nullptr || width == nullptr || height == nullptr) return QPX_BAD_PARAM;
  if (image->plane[0] == nullptr || !hasSize(*image)) return QPX_BAD_PARAM;
  const double sine = std::fabs(std::sin(radiansOf(degrees)));
  const double cosine = std::fabs(std::cos(radiansOf(degrees)));
  const double w = image->width;
  const double h = image->height;
  *width = truncated(std::ceil(h * sine + w * cosine));
  *height = truncated(std::ceil(h * cosine + w * sine));
  return QPX_OK;
}

int32_t QPXRotateCalcDstSize(const MBitmap* image, int32_t degrees, int32_t* width,
                             int32_t* height) {
  if (image == nullptr || width == nullptr || height == nullptr || !hasSize(*image)) {
    return QPX_BAD_PARAM;
  }
  const double sine = std::fabs(std::sin(radiansOf(-static_cast<double>(degrees))));
  const double cosine = std::fabs(std::cos(radiansOf(-static_cast<double>(degrees))));
  const int32_t centreX = image->width >> 1;
  const int32_t centreY = image->height >> 1;
  double least[2] = {INFINITY, INFINITY};
  double most[2] = {-INFINITY, -INFINITY};
  for (const double x : {double(-centreX), double(image->width - centreX)}) {
    for (const double y : {double(-centreY), double(image->height - centreY)}) {
      const double turned[2] = {x * cosine - y * sine, x * sine + y * cosine};
      for (int axis = 0; axis < 2; ++axis) {
        least[axis] = std::min(least[axis], turned[axis]);
        most[axis] = std::max(most[axis], turned[axis]);
      }
    }
  }
  *width = truncated(most[0] - least[0]);
  *height = truncated(most[1] - least[1]);
  return QPX_OK;
}

int32_t QPXRotateCalcInternalRect(const MBitmap* image, const MBitmap* target, int32_t degrees,
                                  MRect* rect) {
  if (image == nullptr || target == nullptr || rect == nullptr) return QPX_BAD_PARAM;
  if (!hasSize(*image) || !hasSize(*target)) return QPX_BAD_PARAM;
  const HalfSize half = halfInside(*image, degrees % 180);
  centre(half.width, target->width, &rect->left, &rect->right);
  centre(half.height, target->height, &rect->top, &rect->bottom);
  return QPX_OK;
}
