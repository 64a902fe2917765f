// Looks made of tables that the library carries: a tone curve, textures laid over it, a last tone,
// mixed in by strengths that kernels read at each call. In packed RGB strengths are 0..100 percent;
// in YUV they are taken as they stand, and what leaves a sample's range is cut.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

int32_t setUpLomo(Stage& stage, QPXBand& band);
int32_t setUpSoftPink(Stage& stage, QPXBand& band);
int32_t setUpFleetingTime(Stage& stage, QPXBand& band);

// Kernels for all formats. They return 0, or 2 on a stage that lacks the look's record or textures.
int32_t warmLomo(const Frame& frame);      // QPXMaskedLookParam
int32_t coldLomo(const Frame& frame);      // QPXMaskedLookParam
int32_t softPink(const Frame& frame);      // QPXMaskedLookParam
int32_t rixi(const Frame& frame);          // QPXCurveLookParam
int32_t newReversal(const Frame& frame);   // QPXCurveLookParam
int32_t fleetingTime(const Frame& frame);  // none

}  // namespace qpx
