// The parameter records of the point effects, described for hosts and tools.
#pragma once

#include <array>
#include <cstddef>

#include "engine/param_info.h"

namespace qpx::point {

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

// A gain and an offset, both in 1/256, that show what the effect is for.
struct Level {
  double gain;
  double offset;
};

constexpr std::array<QPXParamInfo, 6> levelsParams(Level red, Level green, Level blue) {
  return {gainParam("redGain", "Factor of red; 256 is 1.", 0, red.gain),
          offsetParam("redOffset", "Added to red; 256 is one step.", 3, red.offset),
          gainParam("greenGain", "Factor of green; 256 is 1.", 5, green.gain),
          offsetParam("greenOffset", "Added to green; 256 is one step.", 7, green.offset),
          gainParam("blueGain", "Factor of blue; 256 is 1.", 10, blue.gain),
          offsetParam("blueOffset", "Added to blue; 256 is one step.", 11, blue.offset)};
}

// By channel: shadows towards blue, highlights towards yellow.
inline constexpr auto kChannelLevelsParams = levelsParams({292, -4096}, {272, -2048}, {216, 6144});

// Together: black and white points drawn in, as for a hazy picture.
inline constexpr auto kCommonLevelsParams = levelsParams({320, -8192}, {320, -8192}, {320, -8192});

// Second step: the range drawn together again, for a matt print.
inline constexpr auto kSecondLevelsParams = levelsParams({204, 9216}, {204, 9216}, {204, 9216});

inline constexpr QPXParamInfo kExposureParams[] = {
    intParam("gain", "Factor of the light; 256 is 1, 512 one stop more.", "1/256",
             offsetof(QPXLevelsParam, formula), 16, 4096, 448)};

inline constexpr QPXParamInfo kThresholdParams[] = {
    intParam("level", "Luma of this value and above is lit.", "",
             offsetof(QPXThresholdParam, level), 1, 255, 112),
    flagParam("twoTone", "1: lit parts turn white; 0: they keep their colour.",
              offsetof(QPXThresholdParam, twoTone), true)};

inline constexpr QPXParamInfo kChannelOffsetsParams[] = {
    intParam("red", "Added to red.", "", offsetof(QPXChannelOffsetsParam, red), -255, 255, 24),
    intParam("green", "Added to green.", "", offsetof(QPXChannelOffsetsParam, green), -255, 255, 4),
    intParam("blue", "Added to blue.", "", offsetof(QPXChannelOffsetsParam, blue), -255, 255, -28)};

inline constexpr QPXParamInfo kGammaParams[] = {
    intParam("percent", "100 is neutral; above it midtones are lighter.", "percent",
             offsetof(QPXGammaParam, percent), 10, 400, 150)};

}  // namespace qpx::point
