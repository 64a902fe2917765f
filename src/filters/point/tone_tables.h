// Setups of the effects that are tone tables: what each table is.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

int32_t setUpBrightnessContrast(Stage& stage, QPXBand& band);  // QPXBrightnessContrastParam
int32_t setUpLevels(Stage& stage, QPXBand& band);              // QPXLevelsParam
int32_t setUpExposure(Stage& stage, QPXBand& band);            // QPXLevelsParam
int32_t setUpNegative(Stage& stage, QPXBand& band);
int32_t setUpChannelOffsets(Stage& stage, QPXBand& band);  // QPXChannelOffsetsParam
int32_t setUpSolarise(Stage& stage, QPXBand& band);
int32_t setUpGamma(Stage& stage, QPXBand& band);  // QPXGammaParam
int32_t setUpContrastCurve(Stage& stage, QPXBand& band);
int32_t setUpWarmCurve(Stage& stage, QPXBand& band);
int32_t setUpCoolCurve(Stage& stage, QPXBand& band);

}  // namespace qpx
