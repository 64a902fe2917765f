// What OpenCV and libyuv do that is nearest to an adjustment, each on one thread.
#pragma once

#include "subjects.h"

namespace qpx::bench {

enum class ColorSpace { hls, hsv, lab };

// To a space and back, by cv::cvtColor.
Body roundTripBody(PicturesPtr pictures, ColorSpace space);

// A window of 2 * radius + 1 and the deviation that such a window usually has.
Body gaussianBody(PicturesPtr pictures, int radius);
Body boxBody(PicturesPtr pictures, int window);
// Of pictures of three channels alone.
Body bilateralBody(PicturesPtr pictures, int window);
// A matrix of three rows on every pixel.
Body transformBody(PicturesPtr pictures);

// Of pictures of four channels alone.
Body libyuvMatrixBody(PicturesPtr pictures);
Body libyuvBlurBody(PicturesPtr pictures, int radius);

// An NV21 picture mixed with another by a mask of its luma's size, plane by plane.
Body libyuvMixBody(PicturesPtr pictures, const uint8_t* mask);

}  // namespace qpx::bench
