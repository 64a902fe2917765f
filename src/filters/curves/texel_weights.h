// The carried tables of samples by texels in a form that rows can compute, which costs a quarter of
// a look at 64 KB for each sample: simd::ToneRows::layTexels with these weights gives what the
// tables hold, to the byte.
#pragma once

#include "toolkit/curve.h"

namespace qpx {

// What the darkest and the lightest texel do to each sample, in 1024ths of 255.
struct TexelWeights {
  ToneTable darker;
  ToneTable lighter;
};

namespace texel_weights {

constexpr int64_t cutRoot(int64_t square) {
  int64_t root = 0;
  for (int64_t bit = int64_t{1} << 20; bit > 0; bit >>= 1) {
    if ((root + bit) * (root + bit) <= square) root += bit;
  }
  return root;
}

// Of a sample x in 0..1, x - x² and √x - x. The root is cut at 1024 times its size.
constexpr int64_t lessSquare(int64_t i) { return (1024 * i * (255 - i) + 32512) / 65025; }
constexpr int64_t rootLess(int64_t i) {
  return (cutRoot(255 * i * 1024 * 1024) - 1024 * i + 127) / 255;
}

}  // namespace texel_weights

// fleet_data3, soft light.
inline constexpr TexelWeights kSoftLight = {
    tabulate([](int32_t i) { return texel_weights::lessSquare(i); }),
    tabulate([](int32_t i) { return texel_weights::rootLess(i); })};

// pink_mask2, whose darks are held back and whose lights reach a little into black.
inline constexpr TexelWeights kPinkLight = {
    tabulate([](int32_t i) { return texel_weights::lessSquare(i) / 2; }),
    tabulate([](int32_t i) { return (5 * texel_weights::rootLess(i) + (255 - i) / 2) / 8; })};

}  // namespace qpx
