// The parameter records of the first effects, described for hosts and tools.
#pragma once

#include "engine/param_info.h"

namespace qpx::older {

static_assert(sizeof(QPXTintParam) == 8);
inline constexpr QPXParamInfo kTintParams[] = {
    intParam("hue", "The hue that colours turn towards.", "degrees", offsetof(QPXTintParam, hue),
             -180, 180, 30),
    intParam("strength", "How far they turn; below 0 to the complement.", "percent",
             offsetof(QPXTintParam, strength), -100, 100, 60)};

static_assert(sizeof(QPXBoxBlurParam) == 4);
inline constexpr QPXParamInfo kBoxBlurParams[] = {
    intParam("kernelSize", "Side of the window.", "pixels", offsetof(QPXBoxBlurParam, kernelSize),
             1, 255, 9)};

static_assert(sizeof(QPXSmootherParam) == 28);
static_assert(offsetof(QPXSmootherParam, strength) == 12);
constexpr QPXParamInfo exposureHint(const char* name, size_t index) {
  return intParam(name, "Exposure data of the picture; 0 for unknown.", "",
                  offsetof(QPXSmootherParam, exposureHint) + index * sizeof(int32_t), 0, INT32_MAX,
                  0);
}
constexpr QPXParamInfo channelStrength(const char* name, const char* summary, size_t index) {
  return intParam(name, summary, "percent",
                  offsetof(QPXSmootherParam, strength) + index * sizeof(int32_t), 10, 100, 40);
}
inline constexpr QPXParamInfo kSmootherParams[] = {
    exposureHint("exposureHint0", 0),
    exposureHint("exposureHint1", 1),
    exposureHint("exposureHint2", 2),
    channelStrength("strength0", "How much the first channel is smoothed.", 0),
    channelStrength("strength1", "How much the second channel is smoothed.", 1),
    channelStrength("strength2", "How much the third channel is smoothed.", 2),
    intParam("level", "0 copies; 53 and above smooth strongly.", "percent",
             offsetof(QPXSmootherParam, level), 0, 100, 40)};

static_assert(sizeof(QPXFocusBandParam) == 40);
static_assert(offsetof(QPXFocusBandParam, centerX) == 24);
inline constexpr QPXParamInfo kFocusBandParams[] = {
    intParam("angle", "Turns the band.", "degrees", offsetof(QPXFocusBandParam, angle), -360, 360,
             0),
    intParam("shape", "0: a straight band; 1: a round one.", "", offsetof(QPXFocusBandParam, shape),
             0, 1, 0),
    intParam("blurMode", "0: box; 1: Gaussian.", "", offsetof(QPXFocusBandParam, blurMode), 0, 1,
             1),
    intParam("focusSize", "From the centre to the edge of what stays sharp.", "pixels",
             offsetof(QPXFocusBandParam, focusSize), 0, 65535, 100),
    intParam("transition", "Width over which sharp turns to blurred.", "pixels",
             offsetof(QPXFocusBandParam, transition), 0, 65535, 80),
    intParam("kernelSize", "Side of the blur's window.", "pixels",
             offsetof(QPXFocusBandParam, kernelSize), 1, 255, 15),
    intParam("centerX", "Centre of the band, from the left.", "pixels",
             offsetof(QPXFocusBandParam, centerX), 0, 65535, 200),
    intParam("centerY", "Centre of the band, from the top.", "pixels",
             offsetof(QPXFocusBandParam, centerY), 0, 65535, 200)};

static_assert(sizeof(QPXPosteriseParam) == 4);
inline constexpr QPXParamInfo kPosteriseParams[] = {
    intParam("levels", "Levels that each channel keeps.", "", offsetof(QPXPosteriseParam, levels),
             2, 16, 4)};

static_assert(sizeof(QPXSphereParam) == 4);
inline constexpr QPXParamInfo kSphereParams[] = {
    floatParam("strength", "0 copies, 1 is a half sphere; below 0 radians, the other way.", "",
               offsetof(QPXSphereParam, strength), -3, 1, 0.5)};

}  // namespace qpx::older
