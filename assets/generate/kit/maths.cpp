#include "kit/maths.h"

#include <bit>
#include <iterator>

namespace qpx::drawing {
namespace {

constexpr double kLn2 = 0.693147180559945309;
constexpr double kTurn = 6.28318530717958648;
constexpr double kHalfTurn = kTurn / 2;

// Coefficients of the power series, highest power first: enough of them for a float and a half.
constexpr double kExponential[] = {
    1.0 / 39916800, 1.0 / 3628800, 1.0 / 362880, 1.0 / 40320, 1.0 / 5040, 1.0 / 720,
    1.0 / 120,      1.0 / 24,      1.0 / 6,      1.0 / 2,     1,          1};
constexpr double kLogarithm[] = {1.0 / 13, 1.0 / 11, 1.0 / 9, 1.0 / 7, 1.0 / 5, 1.0 / 3, 1};

double powerOfTwo(int n) {
  return std::bit_cast<double>(static_cast<uint64_t>(std::clamp(n, -1022, 1023) + 1023) << 52);
}

// For t in 0..1. One half-angle step brings it below 0.42, where the series is short.
double arcTangentOfUnit(double t) {
  const double h = t / (1 + std::sqrt(1 + t * t));
  double sum = 0;
  for (int k = 33; k >= 1; k -= 2) {
    sum = (k % 4 == 1 ? 1.0 : -1.0) / k + sum * h * h;
  }
  return 2 * h * sum;
}

}  // namespace

double exponential(double x) {
  if (x < -700) {
    return 0;
  }
  const int n = static_cast<int>(std::floor(x / kLn2 + 0.5));
  const double r = x - n * kLn2;
  double sum = kExponential[0];
  for (size_t k = 1; k < std::size(kExponential); ++k) {
    sum = sum * r + kExponential[k];
  }
  return sum * powerOfTwo(n);
}

double logarithm(double x) {
  const uint64_t bits = std::bit_cast<uint64_t>(x);
  const int exponent = static_cast<int>(bits >> 52) - 1023;
  const double mantissa = std::bit_cast<double>((bits & 0xFFFFFFFFFFFFF) | (uint64_t{1023} << 52));
  const double z = (mantissa - 1.4142135623730951) / (mantissa + 1.4142135623730951);
  const double zz = z * z;
  double sum = kLogarithm[0];
  for (size_t k = 1; k < std::size(kLogarithm); ++k) {
    sum = sum * zz + kLogarithm[k];
  }
  return (exponent + 0.5) * kLn2 + 2 * z * sum;
}

double sine(double x) {
  double r = x - kTurn * std::floor(x / kTurn + 0.5);
  if (r > kHalfTurn / 2) {
    r = kHalfTurn - r;
  } else if (r < -kHalfTurn / 2) {
    r = -kHalfTurn - r;
  }
  double sum = 1;
  for (int k = 18; k >= 2; k -= 2) {
    sum = 1 - sum * r * r / (k * (k + 1));
  }
  return r * sum;
}

double arcTangent(double y, double x) {
  const double ax = std::abs(x);
  const double ay = std::abs(y);
  if (ax == 0 && ay == 0) {
    return 0;
  }
  double angle = ay <= ax ? arcTangentOfUnit(ay / ax) : kHalfTurn / 2 - arcTangentOfUnit(ax / ay);
  if (x < 0) {
    angle = kHalfTurn - angle;
  }
  return y < 0 ? -angle : angle;
}

}  // namespace qpx::drawing
