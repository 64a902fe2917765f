// A vignette that moves pixels towards a corner tone.
#pragma once

#include "engine/effect_row.h"
#include "toolkit/pixel_run.h"

namespace qpx {

// Where the corners of one picture begin and how much of their tone shows.
struct CornerTerms {
  int32_t centerX;
  int32_t centerY;
  int32_t farthest;  // distance of the farthest corner of the picture, cut
  int32_t inner;     // up to this distance pixels stay as they are
  int32_t scale;     // reciprocal of the distance from there to the corner, 20 fractional bits
  int32_t start;     // the inner radius in the same measure, 10 fractional bits
  int32_t amount;    // how much shows, 0..1024 for an intensity of 0..100 of either sign

  // Centre in pixels, radius and intensity in percent; what is out of range is clamped.
  CornerTerms(const QPXDarkCornerParam& param, int32_t width, int32_t height);
};

// As a step, through a tone table of 256 entries.
void darkenCorners(PixelRun& run, const CornerTerms& terms, const uint8_t* tone);

// As a pass; formats other than 24 and 32-bit RGB are left alone.
void darkenCorners(const Frame& frame, const CornerTerms& terms, const uint8_t* tone);

// The kernel: parameters from the stage's record, tone table from its `lut`. 2 without one.
int32_t darkenCorners(const Frame& frame);

}  // namespace qpx
