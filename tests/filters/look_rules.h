// The native looks once more, a pixel at a time and as slow as they are simple, to hold the kernels
// against. Tables are those of the stage's working block, found by their places in it.
#ifndef QPX_TESTS_FILTERS_LOOK_RULES_H_
#define QPX_TESTS_FILTERS_LOOK_RULES_H_

#include <cstdint>

#include "engine/stage.h"

namespace qpx::testing {

struct Rgb {
  int r, g, b;
};

struct Yuv {
  int y, u, v;
};

// What a look makes of the colour at (x, y) of the stage's picture.
using Rule = Rgb (*)(const Stage& stage, int32_t x, int32_t y, Rgb c);

Rgb sepiaRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb singleColorRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb duotoneCornersRule(const Stage& stage, int32_t x, int32_t y, Rgb c);  // nostalgic and old print
Rgb vintageRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb deepQuiteRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb tonedCornersRule(const Stage& stage, int32_t x, int32_t y, Rgb c);  // cold blue and purple
Rgb gothicRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb gradientRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb sunnyRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb threeTablesRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb reversalFilmRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb polaroidRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb blackWhiteRule(const Stage& stage, int32_t x, int32_t y, Rgb c);
Rgb fineFoodRule(const Stage& stage, int32_t x, int32_t y, Rgb c);

Rgb rgbFromYuv(Yuv c);
Yuv yuvFromRgb(Rgb c);

// Places in the working block of the looks with dark corners, whose tables follow its mode.
int rowTerm(const Stage& stage, int32_t y);
int columnTerm(const Stage& stage, int32_t x);

// The same of the instant film's block, and what its frame leaves of the picture: left, top, right,
// bottom.
int polaroidRowTerm(const Stage& stage, int32_t y);
int polaroidColumnTerm(const Stage& stage, int32_t x);
MRect polaroidWindow(const Stage& stage);

// The place along the diagonal that a gradient's block gives a pixel.
int diagonalPlace(const Stage& stage, int32_t x, int32_t y);

}  // namespace qpx::testing

#endif  // QPX_TESTS_FILTERS_LOOK_RULES_H_
