// Tone controls that setup turns into tables.
#include <qpx/kernels_adjust.h>

#include <cmath>

#include "adjust/tone_effects.h"
#include "adjust/tone_tables.h"
#include "filters/point/table_kernel.h"
#include "toolkit/kernel_call.h"
#include "toolkit/solid_tables.h"

namespace qpx {
namespace {

ToneTable identity() {
  return tabulate([](int32_t i) { return i; });
}

// What is no number is taken for the neutral value.
double clampNumber(double value, double low, double high, double neutral) {
  return std::isnan(value) ? neutral : std::clamp(value, low, high);
}

// 0 stands for no white of its own.
void clampWhite(int32_t& white) {
  if (white != 0) white = std::clamp(white, 1, 255);
}

void clampRange(QPXLevelRange& range) {
  range.black = std::clamp(range.black, 0, 254);
  clampWhite(range.white);
  range.gamma = range.gamma == 0.0 ? 1.0 : clampNumber(range.gamma, 0.1, 10.0, 1.0);
}

void clampShift(QPXColorShift& shift) {
  for (int32_t* amount : {&shift.cyanRed, &shift.magentaGreen, &shift.yellowBlue}) {
    *amount = std::clamp(*amount, -100, 100);
  }
}

// How a channel shifts in shadows, midtones and highlights, in percent.
struct TonalShift {
  double shadows, midtones, highlights;

  // The least slope of the shift, in percent of the range: it changes evenly from black to white.
  double steepestFall() const { return 2.0 * std::min(midtones - shadows, highlights - midtones); }
};

// Of the range, what a shift of 100 percent is.
constexpr double kBalanceReach = 0.2;

// What a channel of a grey gains at each of its values. The three ranges add up to one everywhere,
// so that equal shifts of all of them shift every value alike.
ToneTable balanceTable(const TonalShift& shift, double share) {
  return tabulate([&](int32_t i) {
    const double x = i / 255.0;
    const double percent = shift.shadows * (1 - x) * (1 - x) + shift.midtones * 2 * x * (1 - x) +
                           shift.highlights * x * x;
    return static_cast<int64_t>(
        std::floor(i + kBalanceReach * 255.0 / 100.0 * share * percent + 0.5));
  });
}

// Ranges that pull apart could turn a curve round. All channels shift less then, by the same share,
// so that kept luminosity stays kept.
double monotoneShare(const TonalShift (&channels)[3]) {
  constexpr double kLeastSlope = 0.15;
  double fall = 0.0;
  for (const TonalShift& shift : channels) fall = std::min(fall, shift.steepestFall());
  const double most = -(1.0 - kLeastSlope) * 100.0 / kBalanceReach;
  return fall < most ? most / fall : 1.0;
}

// How a shift changes the three channels. Kept luminosity takes from all what a grey would gain.
struct ChannelShift {
  double red, green, blue;

  ChannelShift(const QPXColorShift& shift, bool keepLuminosity)
      : red(shift.cyanRed), green(shift.magentaGreen), blue(shift.yellowBlue) {
    const double gain = keepLuminosity ? 0.299 * red + 0.587 * green + 0.114 * blue : 0.0;
    red -= gain;
    green -= gain;
    blue -= gain;
  }
};

// What six tenths source and four tenths of a light's curve make of every value, at `percent`.
ToneTable temperatureTable(double gamma, int32_t percent) {
  return tabulate([&](int32_t c) {
    const double curved = 255.0 * std::pow(c / 255.0, gamma);
    const int32_t light = static_cast<int32_t>(curved + 0.5);
    const int32_t mixed = (light * 4 + c * 6) / 10;
    const int32_t sum = (100 - percent) * c + percent * mixed;
    return sum >= 25600 ? 255 : sum / 100;
  });
}

int32_t tableKernel(const Frame& frame) {
  if ((formatGroup(frame.stage.pix) & kTakesRgb) == 0) return QPX_OK;
  return applyStageTables(frame);
}

}  // namespace

int32_t setUpToneLevels(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXToneLevelsParam>(stage);
  for (QPXLevelRange* range : {&param.master, &param.red, &param.green, &param.blue}) {
    clampRange(*range);
  }
  param.outputBlack = std::clamp(param.outputBlack, 0, 255);
  clampWhite(param.outputWhite);
  param.mode = std::clamp(param.mode, 0, 2);
  const ToneTable output = outputTable(param.outputBlack, param.outputWhite);
  const ToneTable last = param.mode == 2 ? output : chain(levelsTable(param.master), output);
  const auto whole = [&](const QPXLevelRange& own) {
    return param.mode == 1 ? last : chain(levelsTable(own), last);
  };
  return composeTables(stage, whole(param.red), whole(param.green), whole(param.blue));
}

int32_t setUpCurve(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXCurveParam>(stage);
  ToneTable tables[4];
  QPXCurvePoints* const curves[] = {&param.master, &param.red, &param.green, &param.blue};
  for (size_t i = 0; i < 4; ++i) {
    curves[i]->count = std::min<uint8_t>(curves[i]->count, 7);
    const int32_t result = pointsTable(*curves[i], tables[i]);
    if (result != QPX_OK) return result;
  }
  return composeTables(stage, chain(tables[1], tables[0]), chain(tables[2], tables[0]),
                       chain(tables[3], tables[0]));
}

int32_t setUpSmoothContrast(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXSmoothContrastParam>(stage);
  param.brightness = std::clamp(param.brightness, -100, 100);
  param.contrast = std::clamp(param.contrast, -100, 100);
  return composeTable(stage, contrastTable(param.brightness, param.contrast));
}

int32_t setUpTonalRanges(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXTonalRangesParam>(stage);
  for (double* amount : {&param.highlights, &param.brights, &param.darks, &param.shadows}) {
    *amount = clampNumber(*amount, -100.0, 100.0, 0.0);
  }
  return composeTable(stage, tonalRangesTable(param));
}

int32_t setUpColorBalance(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXColorBalanceParam>(stage);
  for (QPXColorShift* shift : {&param.shadows, &param.midtones, &param.highlights}) {
    clampShift(*shift);
  }
  const bool keeps = param.keepLuminosity != 0;
  const ChannelShift shadows(param.shadows, keeps), midtones(param.midtones, keeps),
      highlights(param.highlights, keeps);
  const TonalShift channels[3] = {{shadows.red, midtones.red, highlights.red},
                                  {shadows.green, midtones.green, highlights.green},
                                  {shadows.blue, midtones.blue, highlights.blue}};
  const double share = monotoneShare(channels);
  return composeTables(stage, balanceTable(channels[0], share), balanceTable(channels[1], share),
                       balanceTable(channels[2], share));
}

// Warm light lifts reds and holds blues back, cool light the other way round; black and white stay.
int32_t setUpColorTemperature(Stage& stage, QPXBand&) {
  int32_t& kelvin = editRecord<QPXColorTemperatureParam>(stage).kelvin;
  kelvin = std::clamp(kelvin, 4000, 6000);
  const int32_t t = (kelvin - 5000) / 10;
  if (t == 0) return composeTable(stage, identity());
  constexpr double kMore = 0.6, kHardlyMore = 0.95, kLess = 1.6;
  const bool warm = t > 0;
  const int32_t percent = warm ? t : -t;
  return composeTables(stage, temperatureTable(warm ? kMore : kLess, percent),
                       temperatureTable(kHardlyMore, percent),
                       temperatureTable(warm ? kLess : kMore, percent));
}

}  // namespace qpx

using namespace qpx;

#define QPX_TABLE_KERNEL(name, effectId)                                                        \
  int32_t name(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) { \
    return callOnFrameOf(effectId, stage, rect, outRows, inRows, tableKernel);                  \
  }                                                                                             \
  static_assert(true)

QPX_TABLE_KERNEL(Levels_RGB, kLevels);
QPX_TABLE_KERNEL(Curve_RGB, kCurve);
QPX_TABLE_KERNEL(newBrightnessContrast_RGB, kSmoothContrast);
QPX_TABLE_KERNEL(HighlightBrightDarkShadow_RGB, kTonalRanges);
QPX_TABLE_KERNEL(ColorBalance_RGB, kColorBalance);
QPX_TABLE_KERNEL(ColorTemperature_RGB, kColorTemperature);
