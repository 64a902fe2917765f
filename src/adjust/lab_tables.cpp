#include "adjust/lab_tables.h"

#include <algorithm>
#include <cmath>

namespace qpx {
namespace {

int32_t rounded(double value) { return static_cast<int32_t>(std::floor(value + 0.5)); }

// The straight part of sRGB ends at 10.3 of 255; it is cut, the curve is rounded.
int32_t linearOf(int32_t sample) {
  const int32_t fixed = sample << 10;
  if (fixed < 10563) return (79 * fixed) >> 18;
  return rounded(1024 * std::pow((sample / 255.0 + 0.055) / 1.055, 2.4));
}

double rootOf(double light) {
  return light > 216.0 / 24389.0 ? std::cbrt(light) : light * 841.0 / 108.0 + 4.0 / 29.0;
}

double lightOf(double root) {
  return root > 6.0 / 29.0 ? root * root * root : (root - 4.0 / 29.0) * 108.0 / 841.0;
}

// Roots come back as 9 times a lightness that was cut, for 1024/116 times it. The table undoes
// that, or tones would rise by up to five levels; towards white it gives way, so that white stays.
double meantRoot(int32_t root) {
  constexpr double kGivesWayFrom = 800;
  const double meant = (root / 9.0 + 0.5) * 1024 / 116;
  const double way = std::clamp((root - kGivesWayFrom) / (1024 - kGivesWayFrom), 0.0, 1.0);
  return meant + (root - meant) * way;
}

// How far apart the channels of a grey of this light come out: X and Z are cut on their way, which
// in shadows leaves whole levels of linear light between them.
int32_t castOf(int32_t light) {
  const int32_t x = (light * 987) >> 10, z = (light * 845) >> 10;
  const auto [least, most] = std::minmax({(102698 * x - 52986 * light - 16079 * z) >> 17,
                                          (-32073 * x + 62787 * light + 1094 * z) >> 17,
                                          (2356 * x - 7504 * light + 46046 * z) >> 17});
  return most - least;
}

// In shadows, a light near the one given of which greys are grey.
int32_t neutralLight(double light) {
  constexpr double kShadows = 100;
  constexpr int32_t kNear = 6;
  const int32_t nearest = rounded(light);
  if (light <= 0 || light >= kShadows) return nearest;
  const auto costOf = [light](int32_t tried) {
    return std::abs(tried - light) + 3 * castOf(tried);
  };
  int32_t best = nearest;
  for (int32_t tried = std::max(0, nearest - kNear); tried <= nearest + kNear; ++tried) {
    if (costOf(tried) < costOf(best)) best = tried;
  }
  return best;
}

}  // namespace

void fillLabTables(simd::LabTables& tables) {
  for (int32_t i = 0; i < 256; ++i) tables.linear[i] = linearOf(i);
  for (int32_t i = 0; i <= 1024; ++i) tables.root[i] = rounded(1024 * rootOf(i / 1024.0));
  for (int32_t i = -1024; i <= 1024; ++i) {
    tables.square[i + 1024] = std::min(neutralLight(1024 * lightOf(meantRoot(i) / 1024)), 1024);
  }
}

// In ten bits, of which the last two go; the straight part of sRGB is black alone.
ToneTable gammaTable() {
  return tabulate([](int32_t light) {
    if (light * 4096 < 3284) return ((3308 * light) >> 6) >> 2;
    const double sample = 1.055 * std::pow(light / 256.0, 1 / 2.4) - 0.055;
    return (rounded(1024 * sample) + 2) >> 2;
  });
}

}  // namespace qpx
