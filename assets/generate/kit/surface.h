// Surfaces: paper, cloth, film, dust and wear. Levels are about 0 unless said otherwise and are
// added to or multiplied into a canvas by the texture that uses them.
#pragma once

#include "kit/canvas.h"
#include "kit/noise.h"

namespace qpx::drawing {

/// A light falloff for vignettes: 1 to `clear` of the way to the corner, 0 just outside the corner.
/// It is steepest there, as a lens's is: a curve that levels out again would draw a disc.
inline float vignette(const Spot& s, float clear = 0.25f, float shape = 1.0f) {
  return power(1 - square(clamp01((s.corner - clear) / (1.04f - clear))), shape);
}

/// Height of paper's tooth at a place, -1..1: felted bumps `grain` pixels wide.
float paperTooth(float x, float y, float grain, uint32_t seed);

/// Height of a plain weave of threads `pitch` pixels apart, 0..1.
float weave(float x, float y, float pitch, uint32_t seed);

/// Silver grain in `steps` levels, -1..1: few levels pack well and look no worse.
float grain(float x, float y, float size, int steps, uint32_t seed);

/// Cloudy stains, 0..1, most of the surface near 0; larger `wavelength` in `Spot::p` units, larger
/// stains.
float stains(Point p, float wavelength, float amount, uint32_t seed);

/// Hair-thin lines as long as the picture or shorter, drawn with `mark(Color&, amount)`.
struct Scratches {
  int count;
  float angle;      ///< of the lines, radians
  float spread;     ///< by how much they differ
  float longest;    ///< in units
  float thickness;  ///< in pixels
  uint32_t seed;
  float curl = 0.05f;
};
void drawScratches(Canvas& canvas, const Scratches& scratches, Color ink, float opacity);

/// Specks and short hairs of dust.
void drawDust(Canvas& canvas, int specks, int hairs, float largest, Color ink, float opacity,
              uint32_t seed);

/// Distance to the frame in `Spot::p` units, roughened; for torn, worn and burnt edges.
float raggedFrame(const Canvas& canvas, const Spot& s, float roughness, float wavelength,
                  uint32_t seed);

}  // namespace qpx::drawing
