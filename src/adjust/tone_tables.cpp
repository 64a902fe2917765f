#include "adjust/tone_tables.h"

#include <cmath>

namespace qpx {
namespace {

// The table of a function from 0 ... 1 to 0 ... 1, rounded.
template <typename Curve>
ToneTable tabulateUnit(const Curve& curve) {
  return tabulate([&curve](int32_t i) {
    return static_cast<int64_t>(std::floor(255.0 * curve(i / 255.0) + 0.5));
  });
}

// An S through black, middle and white: tanh, whose slope falls off evenly to both sides.
double steepen(double x, double steepness) {
  return 0.5 + std::tanh(steepness * (x - 0.5)) / (2.0 * std::tanh(0.5 * steepness));
}

double flatten(double x, double steepness) {
  return 0.5 + std::atanh((2.0 * x - 1.0) * std::tanh(0.5 * steepness)) / steepness;
}

// IEC 61966-2-1, sRGB.
double toLight(double sample) {
  return sample <= 0.04045 ? sample / 12.92 : std::pow((sample + 0.055) / 1.055, 2.4);
}

double fromLight(double light) {
  return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
}

// Light grows by `factor` from black on and ever less towards white, which stays: the curve of film
// that saturates, (1 - exp(-k x)) / (1 - exp(-k)). Its slope at black is k / (1 - exp(-k)).
class Shoulder {
 public:
  explicit Shoulder(double factor) {
    double low = 0.0, high = 64.0;
    for (int i = 0; i < 60; ++i) {
      strength_ = 0.5 * (low + high);
      (slope(strength_) < factor ? low : high) = strength_;
    }
  }

  double operator()(double light) const {
    if (strength_ < 1e-9) return light;
    return std::expm1(-strength_ * light) / std::expm1(-strength_);
  }

 private:
  static double slope(double k) { return k < 1e-9 ? 1.0 : -k / std::expm1(-k); }

  double strength_ = 0.0;
};

double powerOf(double x, int exponent) {
  double result = 1.0;
  for (int i = 0; i < exponent; ++i) result *= x;
  return result;
}

// Bernstein's polynomials of degree 5: smooth, 0 at both ends, and 1 to 4 have their summits at
// 0.2, 0.4, 0.6 and 0.8.
double bump(int i, double x) {
  constexpr double kBinomial[] = {1, 5, 10, 10, 5, 1};
  return kBinomial[i] * powerOf(x, i) * powerOf(1.0 - x, 5 - i);
}

}  // namespace

ToneTable levelsTable(const QPXLevelRange& range) {
  const int32_t white = range.white == 0 ? 255 : std::max(range.white, range.black + 1);
  const double gamma = range.gamma > 0.0 ? range.gamma : 1.0;
  return tabulateUnit([&](double x) {
    const double share = (255.0 * x - range.black) / (white - range.black);
    return std::pow(std::clamp(share, 0.0, 1.0), 1.0 / gamma);
  });
}

ToneTable outputTable(int32_t black, int32_t white) {
  const int32_t top = white == 0 ? 255 : std::max(white, black);
  return tabulate([&](int32_t i) { return black + (i * (top - black) + 127) / 255; });
}

int32_t pointsTable(const QPXCurvePoints& points, ToneTable& table) {
  table = tabulate([](int32_t i) { return i; });
  if (points.count < 2) return QPX_OK;
  uint8_t xs[7], ys[7];
  for (int32_t i = 0; i < points.count; ++i) {
    xs[i] = points.point[i][0];
    ys[i] = points.point[i][1];
    // Points above each other have no curve between them.
    if (i > 0 && xs[i] <= xs[i - 1]) return QPX_OK;
  }
  return BuildSplineCurve(xs, ys, points.count, table.data());
}

ToneTable contrastTable(int32_t brightness, int32_t contrast) {
  const double gamma = std::exp2(-brightness / 100.0);
  const double steepness = std::abs(contrast) * 0.04;
  return tabulateUnit([&](double x) {
    const double lit = std::pow(x, gamma);
    if (contrast == 0) return lit;
    return contrast > 0 ? steepen(lit, steepness) : flatten(lit, steepness);
  });
}

// Amounts that pull neighbouring ranges apart could turn the curve round: its slope has a floor,
// and the whole is drawn out to white again.
ToneTable tonalRangesTable(const QPXTonalRangesParam& param) {
  constexpr double kReach = 0.3, kLeastSlope = 0.15;
  const auto moved = [&](double x) {
    return x + kReach / 100.0 *
                   (param.shadows * bump(1, x) + param.darks * bump(2, x) +
                    param.brights * bump(3, x) + param.highlights * bump(4, x));
  };
  double height[256] = {};
  for (int i = 1; i < 256; ++i) {
    const double rise = moved(i / 255.0) - moved((i - 1) / 255.0);
    height[i] = height[i - 1] + std::max(rise, kLeastSlope / 255.0);
  }
  return tabulate([&](int32_t i) {
    return static_cast<int64_t>(std::floor(255.0 * height[i] / height[255] + 0.5));
  });
}

ToneTable exposureTable(double stops) {
  const double factor = std::exp2(stops);
  if (stops < 0.0) return tabulateUnit([&](double x) { return fromLight(factor * toLight(x)); });
  const Shoulder shoulder(factor);
  return tabulateUnit([&](double x) { return fromLight(shoulder(toLight(x))); });
}

}  // namespace qpx
