// Hue, saturation and brightness by the hue of a pixel: a step for recipes too.
//
//   QPXHsbAdjustParam param = {};  // at setup
//   param.blue.brightness = 15;
//   tables = hsbTables(param);  // in the stage's block
//
//   adjustHsb(run, tables);        // per run
#pragma once

#include "simd/hue_rows.h"
#include "toolkit/curve.h"
#include "toolkit/pixel_run.h"

namespace qpx {

struct HsbTables {
  ToneTable input;  // of each channel, before the hue is taken
  bool keepsInput;  // nothing to look up there
  simd::HueChanges changes;
};

// The tables of a record whose fields are in their ranges; angles may be any.
HsbTables hsbTables(const QPXHsbAdjustParam& param);

// In place.
void adjustHsb(PixelRun& run, const HsbTables& tables);

}  // namespace qpx
