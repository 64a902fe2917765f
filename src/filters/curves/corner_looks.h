// Toned looks that darken towards the corners.
#pragma once

#include "filters/curves/tone_runs.h"

namespace qpx {

int32_t setUpNostalgic(Stage& stage, QPXBand& band);  // all: QPXCornerLookParam
int32_t setUpVintage(Stage& stage, QPXBand& band);
int32_t setUpDeepQuite(Stage& stage, QPXBand& band);
int32_t setUpColdBlue(Stage& stage, QPXBand& band);
int32_t setUpGothic(Stage& stage, QPXBand& band);
int32_t setUpPurple(Stage& stage, QPXBand& band);
int32_t setUpVintageBlackWhite(Stage& stage, QPXBand& band);

extern const Look kNostalgic;
extern const Look kVintage;
extern const Look kDeepQuite;
extern const Look kColdBlue;
extern const Look kGothic;
extern const Look kPurple;
extern const Look kVintageBlackWhite;

}  // namespace qpx
