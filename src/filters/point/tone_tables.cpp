#include "filters/point/tone_tables.h"

#include <algorithm>
#include <cmath>

#include "filters/point/table_kernel.h"
#include "toolkit/curve.h"

namespace qpx {
namespace {

constexpr int32_t kUnityGain = 256;  // gains are 8.8 fixed point
constexpr int32_t kLeastExposure = kUnityGain / 16;
constexpr int32_t kMostExposure = kUnityGain * 16;

constexpr CurvePoint kContrast[] = {{0, 0}, {64, 46}, {128, 128}, {192, 210}, {255, 255}};

constexpr CurvePoint kWarmRed[] = {{0, 0}, {64, 74}, {128, 146}, {192, 210}, {255, 255}};
constexpr CurvePoint kWarmGreen[] = {{0, 0}, {128, 131}, {255, 253}};
constexpr CurvePoint kWarmBlue[] = {{0, 2}, {64, 56}, {128, 112}, {192, 178}, {255, 245}};

constexpr CurvePoint kCoolRed[] = {{0, 0}, {64, 55}, {128, 112}, {192, 180}, {255, 246}};
constexpr CurvePoint kCoolGreen[] = {{0, 1}, {128, 129}, {255, 253}};
constexpr CurvePoint kCoolBlue[] = {{0, 5}, {64, 76}, {128, 147}, {192, 209}, {255, 255}};

// To the nearest integer, halves up. No sample of these tables comes so near to a half that the
// last bits of a target's pow() could tell.
int32_t roundSample(double value) { return static_cast<int32_t>(std::floor(value + 0.5)); }

// A line about mid grey, 127.5. Its slope is 0 at -128, 1 at 0 and 128 at 127; equal amounts up and
// down undo one another.
int32_t contrastAboutGrey(int32_t sample, int32_t contrast) {
  const int32_t rise = contrast > 0 ? 128 : 128 + contrast;
  const int32_t run = contrast > 0 ? 128 - contrast : 128;
  const double distance = static_cast<double>(2 * sample - 255) * rise / (2 * run);
  return roundSample(127.5 + distance);
}

// Levels come as a matrix of three rows by four columns: gains on the diagonal, offsets last.
ToneTable levelsTable(const QPXLevelsParam& levels, int component) {
  const int64_t gain = levels.formula[5 * component];
  const int64_t offset = levels.formula[4 * component + 3];
  return tabulate([&](int32_t i) { return (gain * i + offset + 128) >> 8; });
}

double linearFromSrgb(double value) {
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double srgbFromLinear(double value) {
  return value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1.0 / 2.4) - 0.055;
}

// Eases what a gain above 1 pushes beyond the knee into the room below white: straight up to the
// knee, of one slope there, and the brightest value ends at white. At a gain of 1 this changes
// nothing.
double shoulder(double value, double brightest) {
  constexpr double kKnee = 0.5;
  if (brightest <= 1.0 || value <= kKnee) return value;
  const double room = 1.0 - kKnee;
  const double left = (brightest - value) / (brightest - kKnee);
  return kKnee + room * (1.0 - std::pow(left, (brightest - kKnee) / room));
}

template <size_t R, size_t G, size_t B>
int32_t composeCurves(Stage& stage, const CurvePoint (&red)[R], const CurvePoint (&green)[G],
                      const CurvePoint (&blue)[B]) {
  ToneTable tables[3];
  int32_t result = drawCurve(red, tables[0]);
  if (result == QPX_OK) result = drawCurve(green, tables[1]);
  if (result == QPX_OK) result = drawCurve(blue, tables[2]);
  return result == QPX_OK ? composeTables(stage, tables[0], tables[1], tables[2]) : result;
}

}  // namespace

int32_t setUpBrightnessContrast(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXBrightnessContrastParam>(stage);
  param.brightness = std::clamp(param.brightness, -128, 127);
  param.contrast = std::clamp(param.contrast, -128, 127);
  return composeTable(stage, tabulate([&](int32_t i) {
                        return contrastAboutGrey(i, param.contrast) + param.brightness;
                      }));
}

int32_t setUpLevels(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  const auto& levels = record<QPXLevelsParam>(stage);
  return composeTables(stage, levelsTable(levels, 0), levelsTable(levels, 1),
                       levelsTable(levels, 2));
}

int32_t setUpExposure(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  int32_t& factor = editRecord<QPXLevelsParam>(stage).formula[0];
  factor = std::clamp(factor, kLeastExposure, kMostExposure);
  const double gain = static_cast<double>(factor) / kUnityGain;
  return composeTable(stage, tabulate([&](int32_t i) {
                        const double light = gain * linearFromSrgb(i / 255.0);
                        return roundSample(255.0 * srgbFromLinear(shoulder(light, gain)));
                      }));
}

int32_t setUpNegative(Stage& stage, QPXBand&) {
  stage.mergedTraits ^= kComplements;
  return composeTable(stage, tabulate([](int32_t i) { return 255 - i; }));
}

int32_t setUpChannelOffsets(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  auto& offsets = editRecord<QPXChannelOffsetsParam>(stage);
  const auto shifted = [](int32_t& offset) {
    offset = std::clamp(offset, -255, 255);
    return tabulate([&](int32_t i) { return i + offset; });
  };
  return composeTables(stage, shifted(offsets.red), shifted(offsets.green), shifted(offsets.blue));
}

// A parabola: mid grey becomes white, and what is lighter turns back to black.
int32_t setUpSolarise(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  return composeTable(stage, tabulate([](int32_t i) { return (4 * i * (255 - i) + 127) / 255; }));
}

int32_t setUpGamma(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  int32_t& percent = editRecord<QPXGammaParam>(stage).percent;
  percent = percent == 0 ? 100 : std::clamp(percent, 10, 400);
  const double exponent = 100.0 / percent;
  return composeTable(stage, tabulate([&](int32_t i) {
                        return roundSample(255.0 * std::pow(i / 255.0, exponent));
                      }));
}

int32_t setUpContrastCurve(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  ToneTable table;
  const int32_t result = drawCurve(kContrast, table);
  return result == QPX_OK ? composeTable(stage, table) : result;
}

int32_t setUpWarmCurve(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  return composeCurves(stage, kWarmRed, kWarmGreen, kWarmBlue);
}

int32_t setUpCoolCurve(Stage& stage, QPXBand&) {
  stage.mergedTraits |= kChangesHues;
  return composeCurves(stage, kCoolRed, kCoolGreen, kCoolBlue);
}

}  // namespace qpx
