// Adjustments of skin.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

inline constexpr uint32_t kComplexion = 0xAD00;
inline constexpr uint32_t kSkinTone = 0xE900;

int32_t setUpComplexion(Stage& stage, QPXBand& band);
int32_t complexionMargin(const Stage& stage);
int32_t complexionRgb(const Frame& frame);
int32_t complexionNv21(const Frame& frame);
int32_t complexionYuyv(const Frame& frame);

int32_t setUpSkinTone(Stage& stage, QPXBand& band);
int32_t skinTone(const Frame& frame);

}  // namespace qpx
