// The parameter records of the point effects, described for hosts and tools.
#pragma once

#include <cstddef>

#include "engine/effect_row.h"

namespace qpx::point {

constexpr QPXParamInfo intParam(const char* name, const char* summary, const char* unit,
                                size_t offset, double minimum, double maximum, double initial) {
  return {name,    summary, unit,   QPX_PARAM_INT32, static_cast<int32_t>(offset),
          minimum, maximum, initial};
}

constexpr QPXParamInfo colorParam(const char* summary, size_t offset, double initial) {
  return {"color", summary,  "",     QPX_PARAM_COLOR, static_cast<int32_t>(offset),
          0,       0xFFFFFF, initial};
}

inline constexpr QPXParamInfo kSecondPictureParams[] = {
    intParam("opacity", "How much of the second picture shows.", "percent",
             offsetof(QPXSecondPictureParam, opacity), 1, 100, 50),
    colorParam("What is faded in where there is no second picture.",
               offsetof(QPXSecondPictureParam, color), 0x20406A)};

inline constexpr QPXParamInfo kColorWashParams[] = {
    intParam("opacity", "How much of the colour shows.", "percent",
             offsetof(QPXColorWashParam, opacity), 1, 100, 35),
    colorParam("The colour, 0xRRGGBB.", offsetof(QPXColorWashParam, color), 0xE08030)};

inline constexpr QPXParamInfo kBrightnessContrastParams[] = {
    intParam("brightness", "Added to every sample.", "",
             offsetof(QPXBrightnessContrastParam, brightness), -128, 127, 15),
    intParam("contrast", "Steepens or flattens tones about mid grey.", "",
             offsetof(QPXBrightnessContrastParam, contrast), -128, 127, 30)};

constexpr QPXParamInfo gainParam(const char* name, const char* summary, size_t word,
                                 double initial) {
  return intParam(name, summary, "1/256", word * sizeof(int32_t), 0, 4096, initial);
}

constexpr QPXParamInfo offsetParam(const char* name, const char* summary, size_t word,
                                   double initial) {
  return intParam(name, summary, "1/256", word * sizeof(int32_t), -65536, 65536, initial);
}

// Black and white points drawn in a little, with a warm cast of the shadows taken out.
inline constexpr QPXParamInfo kLevelsParams[] = {
    gainParam("redGain", "Factor of red; 256 is 1.", 0, 312),
    offsetParam("redOffset", "Added to red; 256 is one step.", 3, -6144),
    gainParam("greenGain", "Factor of green; 256 is 1.", 5, 304),
    offsetParam("greenOffset", "Added to green; 256 is one step.", 7, -4608),
    gainParam("blueGain", "Factor of blue; 256 is 1.", 10, 296),
    offsetParam("blueOffset", "Added to blue; 256 is one step.", 11, -2048)};

inline constexpr QPXParamInfo kExposureParams[] = {
    intParam("gain", "Factor of the light; 256 is 1, 512 one stop more.", "1/256",
             offsetof(QPXLevelsParam, formula), 16, 4096, 448)};

inline constexpr QPXParamInfo kThresholdParams[] = {
    intParam("level", "Luma of this value and above is lit.", "",
             offsetof(QPXThresholdParam, level), 1, 255, 112),
    {"twoTone", "1: lit parts turn white; 0: they keep their colour.", "", QPX_PARAM_FLAG,
     static_cast<int32_t>(offsetof(QPXThresholdParam, twoTone)), 0, 1, 1}};

inline constexpr QPXParamInfo kChannelOffsetsParams[] = {
    intParam("red", "Added to red.", "", offsetof(QPXChannelOffsetsParam, red), -255, 255, 24),
    intParam("green", "Added to green.", "", offsetof(QPXChannelOffsetsParam, green), -255, 255, 4),
    intParam("blue", "Added to blue.", "", offsetof(QPXChannelOffsetsParam, blue), -255, 255, -28)};

inline constexpr QPXParamInfo kGammaParams[] = {
    intParam("percent", "100 is neutral; above it midtones are lighter.", "percent",
             offsetof(QPXGammaParam, percent), 10, 400, 150)};

}  // namespace qpx::point
