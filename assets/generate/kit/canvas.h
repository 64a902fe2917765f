// A picture of floats to draw on, and how it becomes bytes.
#pragma once

#include <utility>
#include <vector>

#include "kit/maths.h"

namespace qpx::drawing {

/// Samples of a display, 0..1, not multiplied by alpha. While light is summed up they are amounts
/// of light and may exceed 1, until `develop`.
struct Color {
  float r = 0, g = 0, b = 0, a = 1;
};

/// From 0xRRGGBB.
constexpr Color rgb(uint32_t hex, float alpha = 1) {
  return {static_cast<float>(hex >> 16 & 255) / 255, static_cast<float>(hex >> 8 & 255) / 255,
          static_cast<float>(hex & 255) / 255, alpha};
}

constexpr Color grey(float level, float alpha = 1) { return {level, level, level, alpha}; }

inline Color operator+(Color a, Color b) { return {a.r + b.r, a.g + b.g, a.b + b.b, a.a}; }
inline Color operator*(Color a, float k) { return {a.r * k, a.g * k, a.b * k, a.a}; }
inline Color operator*(Color a, Color b) { return {a.r * b.r, a.g * b.g, a.b * b.b, a.a}; }

inline Color mix(Color a, Color b, float t) {
  return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t), mix(a.a, b.a, t)};
}

inline float brightest(Color c) { return std::max({c.r, c.g, c.b}); }

/// The colour at `t` in 0..1 of evenly spaced stops, joined by a smooth curve.
Color ramp(const Color* stops, int count, float t);

template <int N>
Color ramp(const Color (&stops)[N], float t) {
  return ramp(stops, N, t);
}

/// Fully saturated colour of a hue in turns (0 red, 1/3 green, 2/3 blue).
Color hue(float turns);

/// One pixel's place, in every measure that drawing needs.
struct Spot {
  float x, y;    ///< pixel centre
  float u, v;    ///< 0..1 across and down: for what follows the frame
  Point p;       ///< from the middle, half the short side being 1: for what keeps its shape
  float corner;  ///< 0 in the middle, 1 in every corner, an ellipse between
};

class Canvas {
 public:
  Canvas(int width, int height, Color fill = {0, 0, 0, 1});

  int width() const { return width_; }
  int height() const { return height_; }
  Color& at(int x, int y) { return pixels_[index(x, y)]; }
  const Color& at(int x, int y) const { return pixels_[index(x, y)]; }
  Spot spot(int x, int y) const;
  /// Half the short side: the pixels in one unit of `Spot::p`.
  float unit() const { return unit_; }
  /// The extent of `Spot::p`: it runs from -reach to reach.
  Point reach() const;

  /// Calls `draw(const Spot&, Color&)` for every pixel.
  template <typename Draw>
  void each(Draw draw) {
    eachWithin(0, 0, width_, height_, draw);
  }

  /// The same for the pixels of a disc in `Spot::p` units, clipped to the canvas.
  template <typename Draw>
  void eachNear(Point centre, float radius, Draw draw) {
    const Point c = centre + reach();
    eachWithin(static_cast<int>(std::floor((c.x - radius) * unit_)),
               static_cast<int>(std::floor((c.y - radius) * unit_)),
               static_cast<int>(std::ceil((c.x + radius) * unit_)) + 1,
               static_cast<int>(std::ceil((c.y + radius) * unit_)) + 1, draw);
  }

  /// Three box passes in each direction: near a Gaussian of this radius in pixels, alpha included.
  void blur(float radius);

  /// Light to display: every channel saturates as film does, so that a strong red turns orange,
  /// yellow, white at its core. A `gamma` above 1 keeps faint light faint.
  void develop(float exposure, float gamma = 0.8f);

  /// Rounds colours to every `step`-th level (a divisor of 255): for surfaces with a grain of their
  /// own, which hides it.
  void coarsen(int step);

  /// Light on black turned into colour and alpha whose product it is, alpha being the brightest
  /// channel to the power `share`. A half gives the finest steps, two factors of eight bits each; 1
  /// keeps colour at full strength, for a layer that is laid on as paint.
  void moveLightToAlpha(float share = 0.5f);

 private:
  template <typename Draw>
  void eachWithin(int left, int top, int right, int bottom, Draw draw) {
    for (int y = std::max(top, 0); y < std::min(bottom, height_); ++y) {
      for (int x = std::max(left, 0); x < std::min(right, width_); ++x) {
        draw(spot(x, y), pixels_[index(x, y)]);
      }
    }
  }
  size_t index(int x, int y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x);
  }

  int width_, height_;
  float unit_;
  std::vector<Color> pixels_;
};

/// Eight-bit samples, `channels` (1, 3 or 4) a pixel, row by row. Fractions are dithered, so that a
/// gradient of few levels does not show steps; whole levels stay as they are.
std::vector<uint8_t> toBytes(const Canvas& canvas, int channels);

}  // namespace qpx::drawing
