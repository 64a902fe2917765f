// A second picture or a plain colour, laid over the source through a mask.
#pragma once

#include "engine/effect_row.h"

namespace qpx {

int32_t setUpSecondPicture(Stage& stage, QPXBand& band);  // QPXSecondPictureParam
int32_t setUpColorWash(Stage& stage, QPXBand& band);      // QPXColorWashParam

// Both work on a format's own components and in the placed rectangle of second input and mask.
int32_t laySecondPictureOver(const Frame& frame);  // the colour, where there is no second picture
int32_t layColorOver(const Frame& frame);

}  // namespace qpx
