// Light: everything here adds amounts of light to a canvas that begins black and ends in
// `Canvas::develop`. Places and sizes are in `Spot::p` units.
#pragma once

#include "kit/canvas.h"
#include "kit/noise.h"

namespace qpx::drawing {

/// What a lens makes of a point source: a core and a skirt that falls as a power of the distance.
void addGlow(Canvas& canvas, Point centre, float radius, Color light, float falloff = 1.5f);

/// A glow stretched along `angle`: `stretch` times as long as wide.
void addStreak(Canvas& canvas, Point centre, float radius, float stretch, float angle, Color light,
               float falloff = 1.6f);

/// Fine irregular rays about a source, fading over `radius`.
void addRays(Canvas& canvas, Point centre, float radius, Color light, int count, uint32_t seed);

/// The star of an aperture of `blades` blades.
void addStar(Canvas& canvas, Point centre, float radius, float width, Color light, int blades,
             float turn);

/// A reflection of the aperture: `blades` sides (0: round), brighter towards its rim by `rim` 0..1,
/// split into colours by `fringe`, edge `softness` wide.
struct Ghost {
  Point centre;
  float radius;
  Color light;
  int blades = 0;
  float rim = 0.4f;
  float fringe = 0.03f;
  float softness = 0.08f;
  float turn = 0.3f;
};
void addGhost(Canvas& canvas, const Ghost& ghost);

/// A ring with a spectrum across it, red outside; `span` of the circle in 0..1 round `facing`.
void addRing(Canvas& canvas, Point centre, float radius, float width, float light, float facing,
             float span);

/// A chain of ghosts from the source through the middle of the picture and beyond.
void addGhostChain(Canvas& canvas, Point source, const Color* tints, int tintCount, int count,
                   float light, uint32_t seed);

/// Discs out of focus, scattered, lit by one of `tints` each.
struct Bokeh {
  int count;
  float smallest, largest;
  float light;
  uint32_t seed;
  int blades = 0;
  float softness = 0.05f;
};
template <typename Density>
void addBokeh(Canvas& canvas, const Bokeh& bokeh, const Color* tints, int tintCount,
              Density density) {
  Random random(bokeh.seed);
  const Point reach = canvas.reach();
  for (int i = 0; i < bokeh.count; ++i) {
    const Point p{random.between(-reach.x, reach.x), random.between(-reach.y, reach.y)};
    const float size = mix(bokeh.smallest, bokeh.largest, square(random.unit()));
    const Color tint = tints[random.below(tintCount)];
    const float strength = random.between(0.4f, 1.0f);
    if (random.unit() < density(p)) {
      addGhost(canvas, {.centre = p,
                        .radius = size,
                        .light = tint * (bokeh.light * strength),
                        .blades = bokeh.blades,
                        .rim = 0.35f,
                        .fringe = 0.02f,
                        .softness = bokeh.softness});
    }
  }
}

/// Light that came through a gap of the camera's back: strongest on a line through `edge` facing
/// `inward`, `depth` deep, with uneven tongues.
struct Leak {
  Point edge;
  float inward;  ///< angle in radians
  float depth;
  float light;
  Color tint;
  uint32_t seed;
  float tongues = 0.5f;     ///< how uneven, 0..1
  float wavelength = 0.8f;  ///< of the tongues
  float span = 9;           ///< half length along the edge
};
void addLeak(Canvas& canvas, const Leak& leak);

/// The trace of a moving lamp across the whole picture, along `angle` and off the middle by
/// `offset`.
struct Trail {
  float angle, offset;
  float sway;  ///< how far it wanders sideways
  float width;
  Color light;
  uint32_t seed;
};
void addTrail(Canvas& canvas, const Trail& trail);

/// Colours of light through film: deep red where weak, orange and yellow as `develop` saturates.
inline constexpr Color kFilmLeak{1.0f, 0.28f, 0.05f, 1};

}  // namespace qpx::drawing
