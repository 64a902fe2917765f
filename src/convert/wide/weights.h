// Full-range BT.601 with small integers: weights in 64ths or 128ths, constants that hold the offset
// of chroma and a bias that halves the error of cutting the sum.
#pragma once

#include "simd/wide_rows.h"

namespace qpx::convert::wide {

inline constexpr simd::FoldedWeights kSixBits = {.redV = 90,
                                                 .redBias = 11485,
                                                 .greenV = 46,
                                                 .greenU = 22,
                                                 .greenBias = 8669,
                                                 .blueU = 113,
                                                 .blueBias = 14516,
                                                 .shift = 6};

inline constexpr simd::FoldedWeights kSixBitsRounded = {.redV = 90,
                                                        .redBias = 11453,
                                                        .greenV = 46,
                                                        .greenU = 22,
                                                        .greenBias = 8701,
                                                        .blueU = 113,
                                                        .blueBias = 14465,
                                                        .shift = 6};

inline constexpr simd::FoldedWeights kSevenBits = {.redV = 179,
                                                   .redBias = 22906,
                                                   .greenV = 91,
                                                   .greenU = 44,
                                                   .greenBias = 17403,
                                                   .blueU = 227,
                                                   .blueBias = 28968,
                                                   .shift = 7};

}  // namespace qpx::convert::wide
