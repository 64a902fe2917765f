// Neighbourhood adjustments: Gaussian blur, unsharp mask, definition.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

inline constexpr uint32_t kDefinition = 0x7400;
inline constexpr uint32_t kGaussBlur = 0x7B00;
inline constexpr uint32_t kUnsharpMask = 0xAE00;

int32_t setUpGaussBlur(Stage& stage, QPXBand& band);
int32_t gaussBlurMargin(const Stage& stage);
int32_t gaussBlur(const Frame& frame);

int32_t setUpUnsharpMask(Stage& stage, QPXBand& band);
int32_t unsharpMaskMargin(const Stage& stage);
int32_t unsharpMask(const Frame& frame);

int32_t setUpDefinition(Stage& stage, QPXBand& band);
int32_t definitionMargin(const Stage& stage);
int32_t definition(const Frame& frame);

}  // namespace qpx
