// The parameter records of the fix effects, described for hosts and tools.
#pragma once

#include "engine/param_info.h"

namespace qpx::autofix {

static_assert(sizeof(QPXWhiteBalanceParam) == 12);
inline constexpr QPXParamInfo kWhiteBalanceParams[] = {
    intParam("mode", "Where the values come from: 1 measured, 8 chosen by hand.", "",
             offsetof(QPXWhiteBalanceParam, mode), 0, 8, 8),
    intParam("temperature", "Colour temperature of the light.", "kelvin",
             offsetof(QPXWhiteBalanceParam, temperature), 2000, 12000, 6000),
    intParam("tint", "Green or magenta of the light.", "", offsetof(QPXWhiteBalanceParam, tint),
             -150, 150, 10)};

static_assert(sizeof(FixParam) == 120);
static_assert(offsetof(FixParam, lSharpPara) == 8 * 4);
static_assert(offsetof(FixParam, lClipHigh) == 15 * 4);
static_assert(offsetof(FixParam, lShadow) == 19 * 4);
static_assert(offsetof(FixParam, lBalanceAuto) == 22 * 4);
static_assert(offsetof(FixParam, lAutoLevel) == 27 * 4);

constexpr QPXParamInfo slopeParam(const char* name, const char* summary, size_t offset) {
  return intParam(name, summary, "1/1024", offset, 0, 1 << 20, 1024);
}
constexpr QPXParamInfo startParam(const char* name, const char* summary, size_t offset) {
  return intParam(name, summary, "1/1024", offset, -(1 << 20), 1 << 20, 0);
}
constexpr QPXParamInfo limitParam(const char* name, const char* summary, size_t offset,
                                  double initial) {
  return intParam(name, summary, "", offset, 0, 255, initial);
}

inline constexpr QPXParamInfo kFixParams[] = {
    intParam("balanceBlue", "More or less blue.", "percent", offsetof(FixParam, lBalanceBlue), -100,
             100, 0),
    intParam("balanceGreen", "More or less green.", "percent", offsetof(FixParam, lBalanceGreen),
             -100, 100, 0),
    intParam("balanceRed", "More or less red.", "percent", offsetof(FixParam, lBalanceRed), -100,
             100, 0),
    intParam("saturation", "Stronger or weaker colours.", "percent", offsetof(FixParam, lSatPara),
             -100, 100, 20),
    intParam("brightness", "Lighter or darker.", "percent", offsetof(FixParam, lBriPara), -100, 100,
             10),
    intParam("levelHigh", "The level that becomes white.", "", offsetof(FixParam, lConMax), 0, 511,
             240),
    intParam("levelLow", "The level that becomes black.", "", offsetof(FixParam, lConMin), -256,
             255, 10),
    intParam("sharpness", "How much edges are sharpened.", "percent",
             offsetof(FixParam, lSharpPara), 0, 100, 30),
    slopeParam("redSlope", "Slope of red in the automatic levels.", offsetof(FixParam, redSlope)),
    startParam("redStart", "Start of red in the automatic levels.", offsetof(FixParam, redStart)),
    slopeParam("greenSlope", "Slope of green in the automatic levels.",
               offsetof(FixParam, greenSlope)),
    startParam("greenStart", "Start of green in the automatic levels.",
               offsetof(FixParam, greenStart)),
    slopeParam("blueSlope", "Slope of blue in the automatic levels.",
               offsetof(FixParam, blueSlope)),
    startParam("blueStart", "Start of blue in the automatic levels.",
               offsetof(FixParam, blueStart)),
    limitParam("clipHigh", "Level above which highlights are lost.", offsetof(FixParam, lClipHigh),
               255),
    limitParam("shadowLimit", "Level below which tones are shadows.",
               offsetof(FixParam, lShadowLimit), 85),
    limitParam("highlightLimit", "Level above which tones are highlights.",
               offsetof(FixParam, lHighlightLimit), 170),
    limitParam("clipLow", "Level below which shadows are lost.", offsetof(FixParam, lClipLow), 0),
    intParam("shadow", "How far shadows open.", "percent", offsetof(FixParam, lShadow), 0, 100, 20),
    intParam("highlight", "How far highlights are held back.", "percent",
             offsetof(FixParam, lHighlight), -100, 0, -20),
    flagParam("wideWindow", "1: shadows and highlights go by a wide neighbourhood.",
              offsetof(FixParam, wideWindow), false),
    flagParam("balanceAuto", "1: the balance was measured.", offsetof(FixParam, lBalanceAuto),
              false),
    flagParam("saturationAuto", "1: the saturation was measured.", offsetof(FixParam, lSatAuto),
              false),
    flagParam("brightnessAuto", "1: the brightness was measured.", offsetof(FixParam, lBriAuto),
              false),
    flagParam("contrastAuto", "1: the levels were measured.", offsetof(FixParam, lConAuto), false),
    flagParam("sharpnessAuto", "1: the sharpness was measured.", offsetof(FixParam, lSharpAuto),
              false),
    flagParam("autoLevel", "1: the automatic levels apply.", offsetof(FixParam, lAutoLevel),
              false)};

}  // namespace qpx::autofix
