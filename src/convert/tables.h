// Look-up tables of a conversion. Every colour coefficient is 16.16 fixed point.
//
// From YUV to RGB a pixel is three additions of table words with 20 fractional bits: with
// y = Y[luma], u = U[Cb], v = V[Cr], all unsigned,
//   R = channel(y + v), B = channel(y + u), G = channel(y + ((u + v) << 16)),
// where the low halves of u and v carry green. The words are biased, so that a sum is never
// negative for ordinary colours; `channel` takes the bias off and clamps.
#pragma once

#include <qpx/convert_record.h>

#include <cstddef>
#include <cstdint>

namespace qpx::convert {

// b * a / 256, made byte by byte, with the lowest byte's product rounded.
int32_t qmul(int32_t a, int32_t b);
// 256 for an adjustment of 0, 768 for 128, 0 for -128.
int32_t gain(int32_t adjustment);
int32_t slope(int32_t contrast, int32_t saturation, int32_t coefficient, bool isChroma);
// Keeps mid-grey where it is while contrast changes.
int32_t offset(int32_t contrast, int32_t saturation, int32_t base, int32_t coefficient);

// Bias of a channel of `bits` bits, in steps of eight-bit values. A 6-bit channel of a 16-bit pixel
// looks up behind the clamp table of the 5-bit ones.
constexpr uint32_t channelBias(int32_t bits, uint32_t bitsPerPixel) {
  return bitsPerPixel == 16 && bits == 6 ? 1152 : 512;
}

// The unclamped eight-bit value that a sum of table words stands for, -2048..2047.
constexpr int32_t channelValue(uint32_t sum, uint32_t bias) {
  return static_cast<int32_t>(sum - (bias << 20)) >> 20;
}

// The straight lines that the tables from YUV to RGB run along, with bias and rounding in the
// bases:
//   Y[i] = ySlope * i * 16
//   U[i] = (guSlope * i) >> 12 in the low half, (bBase + bSlope * i) >> 12 in the high half
//   V[i] = (gBase + gvSlope * i) >> 12 in the low half, (rBase + rSlope * i) >> 12 in the high half
struct ToRgbLines {
  int32_t ySlope;
  int32_t rSlope, rBase;
  int32_t guSlope, gvSlope, gBase;
  int32_t bSlope, bBase;
};
ToRgbLines toRgbLines(const ConvRecord& record);

// Where the tables from RGB to YUV stand in their block, in words. Blue to U and red to V share a
// coefficient, and so a table.
inline constexpr int32_t kRedToY = 0;
inline constexpr int32_t kGreenToY = 256;
inline constexpr int32_t kBlueToY = 512;
inline constexpr int32_t kRedToU = 768;
inline constexpr int32_t kGreenToU = 1024;
inline constexpr int32_t kBlueToU = 1280;
inline constexpr int32_t kRedToV = kBlueToU;
inline constexpr int32_t kGreenToV = 1536;
inline constexpr int32_t kBlueToV = 1792;

// Where the table of chroma from YUV to YUV stands behind that of luma, in bytes.
inline constexpr int32_t kChromaLut = 256;

// Size of the block, and where the three tables from YUV to RGB stand in it.
size_t tableBytesOf(const ConvRecord& record);
// Fills record->tables, which has record->tableBytes bytes, and the table indexes. Colour codes,
// kind, formats and channel widths of the record are set.
void fillTables(ConvRecord* record);

}  // namespace qpx::convert
