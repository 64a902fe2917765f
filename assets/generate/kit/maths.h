// Arithmetic of the drawing kit. The transcendental functions are our own: the last bit of a C
// library's differs from one system to the next, and a texture must not.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qpx::drawing {

inline constexpr float kPi = 3.14159265f;

double exponential(double x);
double logarithm(double x);
double sine(double x);
double arcTangent(double y, double x);

inline double cosine(double x) { return sine(x + 1.57079632679489662); }

/// `x` to the power `y`; 0 for an `x` that is not positive.
inline float power(float x, float y) {
  return x > 0 ? static_cast<float>(exponential(double{y} * logarithm(x))) : 0.0f;
}

/// e to the power minus x squared: the bell that most soft things are made of.
inline float bell(float x) { return static_cast<float>(exponential(-double{x} * x)); }

inline float clamp01(float v) { return std::clamp(v, 0.0f, 1.0f); }
inline float mix(float a, float b, float t) { return a + (b - a) * t; }
inline float square(float v) { return v * v; }
inline float fract(float v) { return v - std::floor(v); }

/// 0 at and below `from`, 1 at and above `to`, level at both ends. `from` may be above `to`.
inline float smooth(float from, float to, float v) {
  const float t = clamp01((v - from) / (to - from));
  return t * t * (3 - 2 * t);
}

struct Point {
  float x = 0, y = 0;
};

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, float k) { return {a.x * k, a.y * k}; }
inline float dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
inline float cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
inline float length(Point a) { return std::sqrt(dot(a, a)); }

/// The unit vector at an angle in radians.
inline Point direction(float angle) {
  return {static_cast<float>(cosine(angle)), static_cast<float>(sine(angle))};
}

/// `p` turned by the angle whose unit vector is `axis`, backwards: its place along and across that
/// axis.
inline Point alongAxis(Point p, Point axis) { return {dot(p, axis), cross(axis, p)}; }

inline float angleOf(Point p) { return static_cast<float>(arcTangent(p.y, p.x)); }

}  // namespace qpx::drawing
