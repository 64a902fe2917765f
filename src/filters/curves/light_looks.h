// Looks that lay light or colour on by luma or by place.
#pragma once

#include "filters/curves/tone_runs.h"

namespace qpx {

int32_t setUpSunny(Stage& stage, QPXBand& band);
int32_t setUpColorGradient(Stage& stage, QPXBand& band);  // QPXColorGradientParam
int32_t setUpReversalFilm(Stage& stage, QPXBand& band);   // QPXReversalFilmParam

extern const Look kSunny;
extern const Look kColorGradient;
extern const Look kReversalFilm;

}  // namespace qpx
