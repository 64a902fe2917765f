// Wet and dry media: bristle strokes and washes.
#pragma once

#include "kit/canvas.h"
#include "kit/noise.h"

namespace qpx::drawing {

/// One stroke of a flat brush. It starts full, runs dry towards its end, and its bristles leave
/// streaks.
struct Stroke {
  Point from, to;
  float width;  ///< half, in `Spot::p` units
  Color color;
  uint32_t seed;
  float bend = 0;        ///< of the path's middle, in units
  float dryness = 0.5f;  ///< 0 a closed film of paint, 1 mostly bare streaks
  float opacity = 1;
  float relief = 0.12f;  ///< how much the ridges of the paint differ in lightness
};

/// Lays the stroke over colour and alpha: on a clear canvas alpha is the paint.
void drawStroke(Canvas& canvas, const Stroke& stroke);

/// What a wash of watercolour leaves at a place: `amount` of pigment 0..1, from the `depth` inside
/// the wet shape (in units, negative outside). Pigment gathers at the drying edge and in the
/// paper's hollows.
float washPigment(float depth, float edge, float tooth);

/// `under` seen through a glaze of pigment: as watercolour, it darkens by its colour.
Color glazed(Color under, Color pigment, float amount);

/// A blot with feathered, uneven outline: depth inside of it in units.
float blotDepth(Point p, Point centre, float radius, float roughness, uint32_t seed);

}  // namespace qpx::drawing
