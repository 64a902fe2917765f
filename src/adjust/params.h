// The parameter records of the adjustments, described for hosts and tools.
#pragma once

#include <array>

#include "engine/param_info.h"

namespace qpx::adjust {

constexpr QPXParamInfo amountParam(const char* name, const char* summary, size_t offset,
                                   double initial) {
  return intParam(name, summary, "percent", offset, -100, 100, initial);
}

// A group of levels. Its offsets come from the place of the group in the record.
constexpr std::array<QPXParamInfo, 3> levelRange(const char* black, const char* white,
                                                 const char* gamma, size_t at, int32_t clip) {
  return {intParam(black, "The sample that becomes black.", "", at + offsetof(QPXLevelRange, black),
                   0, 254, clip),
          intParam(white, "The sample that becomes white.", "", at + offsetof(QPXLevelRange, white),
                   1, 255, 255 - clip),
          doubleParam(gamma, "Above 1 the middle is lighter.", "",
                      at + offsetof(QPXLevelRange, gamma), 0.1, 10, 1)};
}

static_assert(sizeof(QPXToneLevelsParam) == 80);
inline constexpr std::array<QPXParamInfo, 15> kToneLevelsParams = [] {
  const std::array<QPXParamInfo, 3> groups[] = {
      levelRange("black", "white", "gamma", offsetof(QPXToneLevelsParam, master), 16),
      levelRange("redBlack", "redWhite", "redGamma", offsetof(QPXToneLevelsParam, red), 0),
      levelRange("greenBlack", "greenWhite", "greenGamma", offsetof(QPXToneLevelsParam, green), 0),
      levelRange("blueBlack", "blueWhite", "blueGamma", offsetof(QPXToneLevelsParam, blue), 0)};
  std::array<QPXParamInfo, 15> params = {};
  for (size_t i = 0; i < 12; ++i) params[i] = groups[i / 3][i % 3];
  params[12] = intParam("outputBlack", "What black becomes.", "",
                        offsetof(QPXToneLevelsParam, outputBlack), 0, 255, 0);
  params[13] = intParam("outputWhite", "What white becomes.", "",
                        offsetof(QPXToneLevelsParam, outputWhite), 1, 255, 255);
  params[14] = intParam("mode", "0: all; 1: master alone; 2: the channels' own alone.", "",
                        offsetof(QPXToneLevelsParam, mode), 0, 2, 0);
  return params;
}();

// The points of a curve, x and y in turn; the names follow the field.
// Names of fields and literals that are put together stand no parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define QPX_CURVE_POINT(field, name, i, x, y)                            \
  byteParam(name "X" #i, "Where point " #i " is.", "",                   \
            offsetof(QPXCurveParam, field.point) + 2 * (i - 1), 255, x), \
      byteParam(name "Y" #i, "What it becomes.", "",                     \
                offsetof(QPXCurveParam, field.point) + 2 * (i - 1) + 1, 255, y)
#define QPX_CURVE_POINTS(field, name, used, x2, y2, x3, y3)                                        \
  byteParam(name "Points", "How many points there are.", "", offsetof(QPXCurveParam, field.count), \
            7, used),                                                                              \
      QPX_CURVE_POINT(field, name, 1, 0, 0), QPX_CURVE_POINT(field, name, 2, x2, y2),              \
      QPX_CURVE_POINT(field, name, 3, x3, y3), QPX_CURVE_POINT(field, name, 4, 255, 255),          \
      QPX_CURVE_POINT(field, name, 5, 255, 255), QPX_CURVE_POINT(field, name, 6, 255, 255),        \
      QPX_CURVE_POINT(field, name, 7, 255, 255)
// NOLINTEND(bugprone-macro-parentheses)

static_assert(sizeof(QPXCurveParam) == 64);
inline constexpr QPXParamInfo kCurveParams[] = {
    QPX_CURVE_POINTS(master, "master", 4, 64, 48, 192, 208),
    QPX_CURVE_POINTS(red, "red", 0, 64, 64, 192, 192),
    QPX_CURVE_POINTS(green, "green", 0, 64, 64, 192, 192),
    QPX_CURVE_POINTS(blue, "blue", 0, 64, 64, 192, 192)};
#undef QPX_CURVE_POINTS
#undef QPX_CURVE_POINT

static_assert(sizeof(QPXSmoothContrastParam) == 8);
inline constexpr QPXParamInfo kSmoothContrastParams[] = {
    amountParam("brightness", "Lighter or darker.", offsetof(QPXSmoothContrastParam, brightness),
                15),
    amountParam("contrast", "Steeper or flatter about the middle.",
                offsetof(QPXSmoothContrastParam, contrast), 25)};

static_assert(sizeof(QPXExposureStopsParam) == 8);
inline constexpr QPXParamInfo kExposureStopsParams[] = {
    doubleParam("exposure", "More or less light.", "stops",
                offsetof(QPXExposureStopsParam, exposure), -5, 5, 0.7)};

static_assert(sizeof(QPXSaturationParam) == 4);
inline constexpr QPXParamInfo kSaturationParams[] = {
    amountParam("saturation", "Stronger or weaker colours; above 0 it counts half.",
                offsetof(QPXSaturationParam, saturation), 60)};

static_assert(sizeof(QPXDefinitionParam) == 12);
inline constexpr QPXParamInfo kDefinitionParams[] = {
    amountParam("amount", "Above 0 more local contrast, below 0 less.",
                offsetof(QPXDefinitionParam, amount), 50),
    intParam("windowSize", "Side of the window that is compared with.", "pixels",
             offsetof(QPXDefinitionParam, windowSize), 1, 511, 31)};

static_assert(sizeof(QPXTonalRangesParam) == 32);
constexpr QPXParamInfo tonalRange(const char* name, const char* summary, size_t offset,
                                  double initial) {
  return doubleParam(name, summary, "percent", offset, -100, 100, initial);
}
inline constexpr QPXParamInfo kTonalRangesParams[] = {
    tonalRange("highlights", "Lighter or darker highlights.",
               offsetof(QPXTonalRangesParam, highlights), -40),
    tonalRange("brights", "Lighter or darker light tones.", offsetof(QPXTonalRangesParam, brights),
               0),
    tonalRange("darks", "Lighter or darker dark tones.", offsetof(QPXTonalRangesParam, darks), 0),
    tonalRange("shadows", "Lighter or darker shadows.", offsetof(QPXTonalRangesParam, shadows),
               40)};

static_assert(sizeof(QPXColorRangeParam) == 16);
inline constexpr QPXParamInfo kColorRangeParams[] = {
    intParam("colorIndex",
             "0 red, 1 orange, 2 yellow, 3 green, 4 aqua, 5 blue, 6 purple, 7 magenta.", "",
             offsetof(QPXColorRangeParam, colorIndex), 0, 7, 5),
    amountParam("hue", "Turns the range's hue.", offsetof(QPXColorRangeParam, hue), 0),
    amountParam("saturation", "Stronger or weaker colours of the range.",
                offsetof(QPXColorRangeParam, saturation), 50),
    amountParam("lightness", "Lighter or darker colours of the range.",
                offsetof(QPXColorRangeParam, lightness), 0)};

static_assert(sizeof(QPXSplitToningParam) == 20);
inline constexpr QPXParamInfo kSplitToningParams[] = {
    intParam("highlightHue", "Hue of the highlights.", "degrees",
             offsetof(QPXSplitToningParam, highlightHue), 0, 360, 45),
    intParam("highlightSaturation", "How much of it they take.", "percent",
             offsetof(QPXSplitToningParam, highlightSaturation), 0, 100, 30),
    intParam("balance", "Above 0 more of the picture counts as highlight.", "percent",
             offsetof(QPXSplitToningParam, balance), -100, 100, 0),
    intParam("shadowHue", "Hue of the shadows.", "degrees",
             offsetof(QPXSplitToningParam, shadowHue), 0, 360, 215),
    intParam("shadowSaturation", "How much of it they take.", "percent",
             offsetof(QPXSplitToningParam, shadowSaturation), 0, 100, 30)};

static_assert(sizeof(QPXVibranceParam) == 4);
inline constexpr QPXParamInfo kVibranceParams[] = {
    amountParam("vibrance", "Stronger or weaker colours, weak ones first.",
                offsetof(QPXVibranceParam, vibrance), 60)};

static_assert(sizeof(QPXGaussBlurParam) == 4);
inline constexpr QPXParamInfo kGaussBlurParams[] = {
    intParam("kernelSize", "Side of the window.", "pixels", offsetof(QPXGaussBlurParam, kernelSize),
             1, 383, 15)};

static_assert(sizeof(QPXSelectiveColorParam) == 148);
static_assert(offsetof(QPXSelectiveColorParam, amounts[3][0]) == 27 * 4);

constexpr QPXParamInfo inkParam(const char* name, const char* summary, size_t ink, size_t colors,
                                double initial) {
  return amountParam(name, summary, (ink * 9 + colors) * sizeof(int32_t), initial);
}

// Class by class within an ink, as the record has them; nothing but skies changes at first.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define QPX_INK(ink, name, Title, initial)                         \
  inkParam(name "Reds", Title " of reds.", ink, 0, 0),             \
      inkParam(name "Yellows", Title " of yellows.", ink, 1, 0),   \
      inkParam(name "Greens", Title " of greens.", ink, 2, 0),     \
      inkParam(name "Cyans", Title " of cyans.", ink, 3, initial), \
      inkParam(name "Blues", Title " of blues.", ink, 4, initial), \
      inkParam(name "Magentas", Title " of magentas.", ink, 5, 0), \
      inkParam(name "Whites", Title " of whites.", ink, 6, 0),     \
      inkParam(name "Neutrals", Title " of neutrals.", ink, 7, 0), \
      inkParam(name "Blacks", Title " of blacks.", ink, 8, 0)
// NOLINTEND(bugprone-macro-parentheses)

inline constexpr QPXParamInfo kSelectiveColorParams[] = {
    QPX_INK(0, "cyan", "Cyan", 60), QPX_INK(1, "magenta", "Magenta", 20),
    QPX_INK(2, "yellow", "Yellow", -40), QPX_INK(3, "black", "Black", 0)};
#undef QPX_INK

static_assert(sizeof(QPXChannelMixerParam) == 52);
static_assert(offsetof(QPXChannelMixerParam, blue) == 36);
constexpr QPXParamInfo mixerParam(const char* name, const char* summary, size_t offset,
                                  double initial) {
  return intParam(name, summary, "percent", offset, -200, 200, initial);
}
inline constexpr QPXParamInfo kChannelMixerParams[] = {
    intParam("mode", "0: colour; 1: one grey from the first row.", "",
             offsetof(QPXChannelMixerParam, mode), 0, 1, 0),
    mixerParam("redRed", "Red in red, or in the grey.", offsetof(QPXChannelMixerParam, red.red),
               110),
    mixerParam("redGreen", "Green in red, or in the grey.",
               offsetof(QPXChannelMixerParam, red.green), 10),
    mixerParam("redBlue", "Blue in red, or in the grey.", offsetof(QPXChannelMixerParam, red.blue),
               -20),
    mixerParam("redConstant", "Added to red, or to the grey.",
               offsetof(QPXChannelMixerParam, red.constant), 0),
    mixerParam("greenRed", "Red in green.", offsetof(QPXChannelMixerParam, green.red), 0),
    mixerParam("greenGreen", "Green in green.", offsetof(QPXChannelMixerParam, green.green), 100),
    mixerParam("greenBlue", "Blue in green.", offsetof(QPXChannelMixerParam, green.blue), 0),
    mixerParam("greenConstant", "Added to green.", offsetof(QPXChannelMixerParam, green.constant),
               0),
    mixerParam("blueRed", "Red in blue.", offsetof(QPXChannelMixerParam, blue.red), -10),
    mixerParam("blueGreen", "Green in blue.", offsetof(QPXChannelMixerParam, blue.green), 20),
    mixerParam("blueBlue", "Blue in blue.", offsetof(QPXChannelMixerParam, blue.blue), 90),
    mixerParam("blueConstant", "Added to blue.", offsetof(QPXChannelMixerParam, blue.constant), 0)};

static_assert(sizeof(QPXColorBalanceParam) == 40);
static_assert(offsetof(QPXColorBalanceParam, keepLuminosity) == 36);
inline constexpr QPXParamInfo kColorBalanceParams[] = {
    amountParam("shadowsCyanRed", "Shadows from cyan to red.",
                offsetof(QPXColorBalanceParam, shadows.cyanRed), -20),
    amountParam("shadowsMagentaGreen", "Shadows from magenta to green.",
                offsetof(QPXColorBalanceParam, shadows.magentaGreen), 0),
    amountParam("shadowsYellowBlue", "Shadows from yellow to blue.",
                offsetof(QPXColorBalanceParam, shadows.yellowBlue), 20),
    amountParam("midtonesCyanRed", "Midtones from cyan to red.",
                offsetof(QPXColorBalanceParam, midtones.cyanRed), 0),
    amountParam("midtonesMagentaGreen", "Midtones from magenta to green.",
                offsetof(QPXColorBalanceParam, midtones.magentaGreen), 0),
    amountParam("midtonesYellowBlue", "Midtones from yellow to blue.",
                offsetof(QPXColorBalanceParam, midtones.yellowBlue), 0),
    amountParam("highlightsCyanRed", "Highlights from cyan to red.",
                offsetof(QPXColorBalanceParam, highlights.cyanRed), 20),
    amountParam("highlightsMagentaGreen", "Highlights from magenta to green.",
                offsetof(QPXColorBalanceParam, highlights.magentaGreen), 0),
    amountParam("highlightsYellowBlue", "Highlights from yellow to blue.",
                offsetof(QPXColorBalanceParam, highlights.yellowBlue), -20),
    flagParam("keepLuminosity", "1: lightness stays.",
              offsetof(QPXColorBalanceParam, keepLuminosity), true)};

static_assert(sizeof(QPXRemoveEdgeParam) == 28);
static_assert(offsetof(QPXRemoveEdgeParam, selection) == 20);
inline constexpr QPXParamInfo kRemoveEdgeParams[] = {
    intParam("left", "Where the window of blue and purple begins.", "percent",
             offsetof(QPXRemoveEdgeParam, left), 0, 90, 30),
    intParam("right", "Where it ends.", "percent", offsetof(QPXRemoveEdgeParam, right), 10, 100,
             75),
    intParam("top", "Where the window of yellow and green begins.", "percent",
             offsetof(QPXRemoveEdgeParam, top), 0, 90, 40),
    intParam("bottom", "Where it ends.", "percent", offsetof(QPXRemoveEdgeParam, bottom), 10, 100,
             75),
    byteParam("strength", "How far blue and purple fade.", "percent",
              offsetof(QPXRemoveEdgeParam, strength), 100, 100),
    byteParam("secondStrength", "How far yellow and green fade.", "percent",
              offsetof(QPXRemoveEdgeParam, secondStrength), 100, 60)};

static_assert(sizeof(QPXComplexionParam) == 24);
inline constexpr QPXParamInfo kComplexionParams[] = {
    intParam("radiusSize", "Side of the window that skin is smoothed over.", "pixels",
             offsetof(QPXComplexionParam, radiusSize), 0, 63, 9)};

static_assert(sizeof(QPXUnsharpMaskParam) == 12);
inline constexpr QPXParamInfo kUnsharpMaskParams[] = {
    intParam("amount", "How much edges are sharpened.", "percent",
             offsetof(QPXUnsharpMaskParam, amount), 0, 500, 120),
    intParam("threshold", "Differences up to this stay as they are.", "",
             offsetof(QPXUnsharpMaskParam, threshold), 0, 255, 3),
    intParam("radius", "Width of the blur that is compared with.", "pixels",
             offsetof(QPXUnsharpMaskParam, radius), 0, 191, 3)};

static_assert(sizeof(QPXColorTemperatureParam) == 12);
inline constexpr QPXParamInfo kColorTemperatureParams[] = {
    intParam("kelvin", "Below 5000 cooler, above it warmer.", "kelvin",
             offsetof(QPXColorTemperatureParam, kelvin), 4000, 6000, 5600)};

constexpr QPXParamInfo degreesParam(const char* name, const char* summary, size_t offset,
                                    double initial) {
  return intParam(name, summary, "degrees", offset, -180, 180, initial);
}

constexpr QPXParamInfo angleParam(const char* name, const char* summary, size_t offset) {
  return intParam(name, summary, "degrees", offset, 0, 360, 0);
}

// The names follow the field; what shows the effect at first is more of greens.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define QPX_HUE_RANGE(field, RANGE, turned, saturated)                                            \
  degreesParam(#field "Hue", "Turns " RANGE ".", offsetof(QPXHsbAdjustParam, field.hue), turned), \
      amountParam(#field "Saturation", "Stronger or weaker " RANGE ".",                           \
                  offsetof(QPXHsbAdjustParam, field.saturation), saturated),                      \
      amountParam(#field "Brightness", "Lighter or darker " RANGE ".",                            \
                  offsetof(QPXHsbAdjustParam, field.brightness), 0),                              \
      angleParam(#field "From", "Where " RANGE " begin; all four 0 for their usual place.",       \
                 offsetof(QPXHsbAdjustParam, field.from)),                                        \
      angleParam(#field "FullFrom", "Where " RANGE " begin to change fully.",                     \
                 offsetof(QPXHsbAdjustParam, field.fullFrom)),                                    \
      angleParam(#field "FullTo", "Where " RANGE " end to change fully.",                         \
                 offsetof(QPXHsbAdjustParam, field.fullTo)),                                      \
      angleParam(#field "To", "Where " RANGE " end.", offsetof(QPXHsbAdjustParam, field.to))
// NOLINTEND(bugprone-macro-parentheses)

static_assert(sizeof(QPXHsbAdjustParam) == 196);
inline constexpr QPXParamInfo kHsbAdjustParams[] = {
    degreesParam("hue", "Turns all colours.", offsetof(QPXHsbAdjustParam, hue), 0),
    amountParam("saturation", "Stronger or weaker colours.",
                offsetof(QPXHsbAdjustParam, saturation), 0),
    amountParam("brightness", "Lighter or darker colours; greys stay.",
                offsetof(QPXHsbAdjustParam, brightness), 0),
    QPX_HUE_RANGE(red, "reds", 0, 0),
    QPX_HUE_RANGE(yellow, "yellows", 0, 0),
    QPX_HUE_RANGE(green, "greens", 10, 40),
    QPX_HUE_RANGE(cyan, "cyans", 0, 20),
    QPX_HUE_RANGE(blue, "blues", 0, 30),
    QPX_HUE_RANGE(magenta, "magentas", 0, 0),
    amountParam("inputBrightness", "Lighter or darker tones, before all else.",
                offsetof(QPXHsbAdjustParam, inputBrightness), 0),
    amountParam("inputContrast", "More or less contrast, before all else.",
                offsetof(QPXHsbAdjustParam, inputContrast), 0)};
#undef QPX_HUE_RANGE

static_assert(sizeof(QPXVibranceSaturationParam) == 8);
inline constexpr QPXParamInfo kVibranceSaturationParams[] = {
    amountParam("vibrance", "Stronger or weaker colours, weak ones first.",
                offsetof(QPXVibranceSaturationParam, vibrance), 50),
    amountParam("saturation", "Stronger or weaker colours, all alike.",
                offsetof(QPXVibranceSaturationParam, saturation), 15)};

}  // namespace qpx::adjust
