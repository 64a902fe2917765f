// Strokes of a finger: the line between two touch points, and the band that it covers.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

namespace qpx {

// Two points in the order that fixes the direction: the higher one first, of two at the same
// height the one to the right.
struct Stroke {
  MPoint first, second;
  double degrees;  // 0 to below 180, anticlockwise from the row's direction
  double length;
};

// `pi` turns radians into degrees; callers keep to the precision that their results are known in.
Stroke strokeBetween(const MPoint& p, const MPoint& q, double pi);

// Sine and cosine with 8 fractional bits, halves away from zero.
struct Direction {
  int32_t sin, cos;
};
Direction directionOf(double degrees, double pi);

// Steps with 8 fractional bits to whole pixels, to the nearest.
inline int64_t roundedWay(int64_t steps, int32_t step) { return (steps * step + 128) >> 8; }

// Rows and columns first and last, both inside; empty where a last one is before its first.
struct Area {
  int32_t left, top, right, bottom;

  bool empty() const { return left > right || top > bottom; }
};

inline constexpr Area kNoArea = {1, 1, 0, 0};

// The part of a picture within `reach` pixels of the box about both points.
Area areaAbout(const Stroke& stroke, int64_t reach, int32_t width, int32_t height);

// The band of a brush: full up to inner, fading to nothing at outer.
struct Brush {
  int64_t inner, outer, feather;

  Brush(int32_t radius, int32_t edge)
      : inner(int64_t{radius} - edge), outer(int64_t{radius} + edge), feather(edge) {}
};

// A mask of one byte a pixel of which only `area` is painted.
struct StrokeMask {
  uint8_t* bytes;
  ptrdiff_t pitch;
  Area area;

  uint8_t* row(int32_t y) const { return bytes + pitch * y; }

  // The pixel, where it lies in the area, and its neighbour to the right, likewise.
  void putTwo(int64_t x, int64_t y, uint8_t value) const;
};

// A round cap. It goes over what was painted before, with its fading edge too.
void paintDisc(const StrokeMask& mask, const MPoint& centre, const Brush& brush);

// Lines across the stroke at every step from the first point. Later lines go over earlier ones.
void paintBand(const StrokeMask& mask, const Stroke& stroke, const Direction& direction,
               const Brush& brush);

// Steps of a stroke and distances from it, to one side or the other, between which all of an area
// lies.
struct StrokeRange {
  int64_t firstStep, lastStep;
  int64_t nearest, farthest;
};
StrokeRange rangeOver(const Area& area, const MPoint& origin, const Direction& direction);

}  // namespace qpx
