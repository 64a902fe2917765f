// The adjustments of hue, saturation and lightness: what each sets up, and their kernels.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

inline constexpr uint32_t kSaturation = 0x7300;
inline constexpr uint32_t kColorRange = 0x7700;
inline constexpr uint32_t kVibrance = 0x7900;
inline constexpr uint32_t kHsbAdjust = 0x7F00;
inline constexpr uint32_t kVibranceSaturation = 0x9900;

int32_t setUpSaturation(Stage& stage, QPXBand& band);
int32_t saturation(const Frame& frame);

int32_t setUpColorRange(Stage& stage, QPXBand& band);
int32_t colorRange(const Frame& frame);

int32_t setUpHsbAdjust(Stage& stage, QPXBand& band);
int32_t hsbAdjust(const Frame& frame);

// Both copy where they leave the stage without tables.
int32_t setUpVibrance(Stage& stage, QPXBand& band);
int32_t setUpVibranceSaturation(Stage& stage, QPXBand& band);
int32_t chromaMapped(const Frame& frame);

}  // namespace qpx
