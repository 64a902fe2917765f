// The parameter records of the native looks, described for hosts and tools.
#pragma once

#include <array>
#include <cstddef>

#include "engine/param_info.h"

namespace qpx::curves {

static_assert(sizeof(QPXCornerLookParam) == 20);

inline constexpr QPXParamInfo kMode = intParam("mode", "0: tones alone; 1: darkened corners too.",
                                               "", offsetof(QPXCornerLookParam, mode), 0, 1, 1);
inline constexpr QPXParamInfo kCorners =
    intParam("corners", "How much more than usual the corners darken.", "percent",
             offsetof(QPXCornerLookParam, corners), -100, 100, 0);
inline constexpr QPXParamInfo kReach =
    intParam("reach", "How far the darkening reaches towards the centre.", "percent",
             offsetof(QPXCornerLookParam, reach), -100, 100, 0);
inline constexpr QPXParamInfo kCenterX =
    intParam("centerX", "Moves the clear middle right.", "percent of half the width",
             offsetof(QPXCornerLookParam, centerX), -100, 100, 0);
inline constexpr QPXParamInfo kCenterY =
    intParam("centerY", "Moves the clear middle down.", "percent of half the height",
             offsetof(QPXCornerLookParam, centerY), -100, 100, 0);

inline constexpr QPXParamInfo kModeParams[] = {kMode, kCorners, kReach, kCenterX, kCenterY};
inline constexpr QPXParamInfo kCornerParams[] = {kCorners, kReach, kCenterX, kCenterY};

static_assert(sizeof(QPXSingleColorParam) == 7);

inline constexpr QPXParamInfo kSingleColorParams[] = {
    byteParam("red", "Red of the midtones; no colour at all stands for Prussian blue.", "",
              offsetof(QPXSingleColorParam, red), 255, 0),
    byteParam("green", "Green of the midtones.", "", offsetof(QPXSingleColorParam, green), 255, 0),
    byteParam("blue", "Blue of the midtones.", "", offsetof(QPXSingleColorParam, blue), 255, 0),
    byteParam("fade", "How much of the colour gives way to grey.", "percent",
              offsetof(QPXSingleColorParam, fade), 100, 0),
    byteParam("shadows", "How much of the colour black takes.", "percent",
              offsetof(QPXSingleColorParam, shadows), 100, 25),
    byteParam("highlights", "How much of the colour white takes.", "percent",
              offsetof(QPXSingleColorParam, highlights), 100, 0),
    byteParam("contrast", "Steepens tones about mid grey.", "percent",
              offsetof(QPXSingleColorParam, contrast), 100, 20)};

inline constexpr QPXParamInfo kColorGradientParams[] = {
    intParam("hue", "Turns the colours of the gradient.", "degrees",
             offsetof(QPXColorGradientParam, hue), -180, 180, 0)};

inline constexpr QPXParamInfo kCurveBrightnessParams[] = {
    intParam("brightness", "Lighter or darker midtones; black and white stay.", "",
             offsetof(QPXCurveBrightnessParam, brightness), -100, 100, 40)};

static_assert(sizeof(QPXReversalFilmParam) == 20);

inline constexpr QPXParamInfo kReversalFilmParams[] = {
    intParam("greenGain", "Strength of green in its dye; 234 is the film's own.", "1/256",
             offsetof(QPXReversalFilmParam, greenGain), 128, 384, 234),
    intParam("blueGain", "Strength of blue in its dye; 234 is the film's own.", "1/256",
             offsetof(QPXReversalFilmParam, blueGain), 128, 384, 234),
    intParam("exposure", "More or less light on the film.", "percent of a stop",
             offsetof(QPXReversalFilmParam, exposure), -100, 100, 0),
    intParam("contrast", "How much more than usual the film's curve does.", "percent",
             offsetof(QPXReversalFilmParam, contrast), -100, 100, 0),
    intParam("warmth", "Turns lights amber, or blue.", "percent",
             offsetof(QPXReversalFilmParam, warmth), -100, 100, 0)};

static_assert(sizeof(QPXCurveLookParam) == 4 && sizeof(QPXMaskedLookParam) == 8);

inline constexpr QPXParamInfo kCurveLookParams[] = {
    intParam("strength", "How much of the curve is mixed in.", "percent",
             offsetof(QPXCurveLookParam, strength), 0, 100, 100)};

// The strengths that a look is meant to have, which are also those that its undoing takes for
// granted.
constexpr std::array<QPXParamInfo, 2> maskedLookParams(double maskStrength) {
  return {intParam("curveStrength", "How much of the tone curve is mixed in.", "percent",
                   offsetof(QPXMaskedLookParam, curveStrength), 0, 100, 100),
          intParam("maskStrength", "How much of the textures is mixed in.", "percent",
                   offsetof(QPXMaskedLookParam, maskStrength), 0, 100, maskStrength)};
}

inline constexpr auto kLomoParams = maskedLookParams(68);
inline constexpr auto kSoftPinkParams = maskedLookParams(100);

}  // namespace qpx::curves
