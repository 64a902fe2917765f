// The tone controls: what each sets up, and the kernels that are more than tables.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

inline constexpr uint32_t kLevels = 0x6F00;
inline constexpr uint32_t kCurve = 0x7000;
inline constexpr uint32_t kSmoothContrast = 0x7100;
inline constexpr uint32_t kExposure = 0x7200;
inline constexpr uint32_t kTonalRanges = 0x7500;
inline constexpr uint32_t kSplitToning = 0x7800;
inline constexpr uint32_t kChannelMixer = 0x8500;
inline constexpr uint32_t kColorBalance = 0x8700;
inline constexpr uint32_t kColorTemperature = 0x11500;

// These leave three tone tables, or one, to applyStageTables.
int32_t setUpToneLevels(Stage& stage, QPXBand& band);
int32_t setUpCurve(Stage& stage, QPXBand& band);
int32_t setUpSmoothContrast(Stage& stage, QPXBand& band);
int32_t setUpTonalRanges(Stage& stage, QPXBand& band);
int32_t setUpColorBalance(Stage& stage, QPXBand& band);
int32_t setUpColorTemperature(Stage& stage, QPXBand& band);

int32_t setUpExposureStops(Stage& stage, QPXBand& band);
int32_t exposure(const Frame& frame);

int32_t setUpSplitToning(Stage& stage, QPXBand& band);
int32_t splitToning(const Frame& frame);

int32_t setUpChannelMixer(Stage& stage, QPXBand& band);
int32_t channelMixer(const Frame& frame);

}  // namespace qpx
