// Natural cubic splines through control points, sampled at 0..255.
#include <algorithm>
#include <cstring>

#include "toolkit/curve.h"

namespace qpx {
namespace {

// The control points and what the spline needs of them, in the caller's one block of memory. All of
// it is single precision: tables are compared byte for byte, so neither the precision nor the order
// of operations is free.
struct Spline {
  static constexpr size_t kArrays = 8;

  Spline(float* block, const uint8_t* xs, const uint8_t* ys, int32_t points)
      : n(points),
        x(block),
        y(x + points),
        h(y + points),
        slope(h + points),
        mu(slope + points),
        z(mu + points),
        pivot(z + points),
        moment(pivot + points) {
    std::copy_n(xs, n, x);
    std::copy_n(ys, n, y);
  }

  int32_t n;
  float* x;
  float* y;
  float* h;       // widths of the intervals
  float* slope;   // of the chord of each interval
  float* mu;      // share of the interval before a point in both beside it
  float* z;       // right side, eliminated in place
  float* pivot;   // diagonal after elimination
  float* moment;  // second derivatives at the points
};

// Neighbours of equal x make an infinite or undefined slope here, which spoils the intervals beside
// them but no other memory.
void measureIntervals(Spline& s) {
  for (int32_t i = 0; i + 1 < s.n; ++i) {
    s.h[i] = s.x[i + 1] - s.x[i];
    s.slope[i] = (s.y[i + 1] - s.y[i]) / s.h[i];
  }
  for (int32_t i = 1; i + 1 < s.n; ++i) {
    s.mu[i] = s.h[i - 1] / (s.h[i - 1] + s.h[i]);
    s.z[i] = 6.0f * (s.slope[i] - s.slope[i - 1]) / (s.x[i + 1] - s.x[i - 1]);
  }
}

// Solves the tridiagonal system for the inner points; the ends of a natural spline have no
// curvature.
void solveMoments(Spline& s) {
  if (s.n < 3) return;
  s.pivot[1] = 2.0f;
  for (int32_t i = 2; i + 1 < s.n; ++i) {
    const float l = s.mu[i] / s.pivot[i - 1];
    s.pivot[i] = 2.0f - l * (1.0f - s.mu[i - 1]);
    s.z[i] = s.z[i] - s.z[i - 1] * l;
  }
  const int32_t last = s.n - 2;
  s.moment[last] = s.z[last] / s.pivot[last];
  for (int32_t i = last - 1; i >= 1; --i) {
    s.moment[i] = (s.z[i] - (1.0f - s.mu[i]) * s.moment[i + 1]) / s.pivot[i];
  }
}

uint8_t truncateToByte(double value) {
  if (!(value > 0.0)) return 0;  // an undefined value too
  return value > 255.0 ? 255 : static_cast<uint8_t>(value);
}

// The cubic of interval i, u behind its left point. The linear and the cubic term are rounded to
// single precision, the quadratic term and the sum are not.
uint8_t sampleInterval(const Spline& s, int32_t i, int32_t offset) {
  const float u = static_cast<float>(offset);
  const float bend = s.moment[i] / 3.0f + s.moment[i + 1] / 6.0f;
  const float linear = s.y[i] + (s.slope[i] - bend * s.h[i]) * u;
  const double wideU = u;
  const double quadratic = wideU * (static_cast<double>(s.moment[i]) * 0.5 * wideU);
  const float cubic = (s.moment[i + 1] - s.moment[i]) * (u * u * u) / (6.0f * s.h[i]);
  return truncateToByte(static_cast<double>(linear) + quadratic + static_cast<double>(cubic));
}

void sample(const Spline& s, const uint8_t* xs, const uint8_t* ys, uint8_t* table) {
  std::memset(table, ys[0], xs[0]);
  for (int32_t i = 0; i + 1 < s.n; ++i) {
    for (int32_t t = xs[i]; t < xs[i + 1]; ++t) table[t] = sampleInterval(s, i, t - xs[i]);
  }
  const int32_t lastX = xs[s.n - 1];
  std::memset(table + lastX, ys[s.n - 1], static_cast<size_t>(256 - lastX));
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t BuildSplineCurve(const uint8_t* xs, const uint8_t* ys, int32_t count, uint8_t* table) {
  if (xs == nullptr || ys == nullptr || table == nullptr || count < 2) return QPX_BAD_PARAM;
  if (!std::is_sorted(xs, xs + count)) return QPX_BAD_PARAM;

  constexpr size_t kBytesPerPoint = Spline::kArrays * sizeof(float);
  const size_t points = static_cast<size_t>(count);
  if (points > SIZE_MAX / kBytesPerPoint) return QPX_NO_MEMORY;
  const Scratch block(points * kBytesPerPoint);
  if (!block) return QPX_NO_MEMORY;
  MMemSet(block.get(), 0, points * kBytesPerPoint);

  Spline spline(reinterpret_cast<float*>(block.get()), xs, ys, count);
  measureIntervals(spline);
  solveMoments(spline);
  sample(spline, xs, ys, table);
  return QPX_OK;
}
