// Each channel, or one grey, as a weighted sum of the three: a step for recipes too.
#pragma once

#include "toolkit/pixel_run.h"

namespace qpx {

// (gains.red * R + gains.green * G + gains.blue * B + 255 * constant) >> 8, clamped, the gains and
// the constant being percent * 255 / 100.
struct MixerWeights {
  explicit MixerWeights(const QPXMixerRow& percent);
  int32_t weights[4];  // as Rows::weightedSum takes them
};

void mixGrey(PixelRun& run, const MixerWeights& grey);
void mixChannels(PixelRun& run, const MixerWeights (&rows)[3]);

}  // namespace qpx
