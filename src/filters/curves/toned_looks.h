// Looks of few steps: sepia by sorting, grey through tables, one curve.
#pragma once

#include "filters/curves/tone_runs.h"

namespace qpx {

int32_t setUpSingleColor(Stage& stage, QPXBand& band);      // QPXSingleColorParam
int32_t setUpCurveBrightness(Stage& stage, QPXBand& band);  // QPXCurveBrightnessParam
int32_t setUpBlackWhite2(Stage& stage, QPXBand& band);
int32_t setUpFineFood(Stage& stage, QPXBand& band);

extern const Look kSepia;
extern const Look kSingleColor;
extern const Look kCurveBrightness;
extern const Look kBlackWhite2;
extern const Look kFineFood;

}  // namespace qpx
