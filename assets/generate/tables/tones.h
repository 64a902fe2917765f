// The curves and blends of the looks that previews have in YUV, and what inverts them.
#pragma once

#include <cstdint>
#include <vector>

namespace qpx::drawing {

using Bytes = std::vector<uint8_t>;

/// Places of the colours in an entry of a curve.
enum Lane { kBlue = 0, kGreen = 1, kRed = 2 };

// 256 entries: blue, green, red.
Bytes buildReversal();
Bytes buildVillage();
Bytes buildRixi();
Bytes buildSoftLight();

// [base << 8 | texture].
Bytes buildSoftLightBlend();
Bytes buildPinkBlend();

Bytes buildLomoTone();   // 256 entries: the tone three times, 255
Bytes buildPinkTone();   // 256 entries: red, green, blue, 255
Bytes buildFleetTone();  // three blocks of 256 entries as a curve's; red is read from the first,
                         // green from the second, blue from the third

}  // namespace qpx::drawing
