// Grey and threshold: what becomes of a pixel's luma.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

// In YUV there is nothing for the kernel to do: luma is copied and chroma filled by the band's
// plane flags.
int32_t setUpGrey(Stage& stage, QPXBand& band);
int32_t makeGrey(const Frame& frame);

// QPXThresholdParam. Two-tone pictures in YUV have their chroma filled by the band's plane flags.
int32_t setUpThreshold(Stage& stage, QPXBand& band);
int32_t makeThreshold(const Frame& frame);

}  // namespace qpx
