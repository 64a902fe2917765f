// Format words, taken apart into what a conversion works with.
#pragma once

#include <qpx/convert_record.h>

#include <cstdint>

namespace qpx::convert {

// Format classes.
inline constexpr uint32_t kRgb = 256;
inline constexpr uint32_t kYvyu = 512;
inline constexpr uint32_t kYuyv = 513;
inline constexpr uint32_t kUyvy = 514;
inline constexpr uint32_t kVyuy = 515;
inline constexpr uint32_t kSwappedYvyu = 528;  // 528 to 531: the two lumas of a group exchanged
inline constexpr uint32_t kSwappedVyuy = 531;
inline constexpr uint32_t kPacked444 = 576;  // 576 to 581: YUV, YVU, UVY, VUY, UYV, VYU
inline constexpr uint32_t kGrey = 640;
inline constexpr uint32_t kPlanarYvu = 768;  // any subsampling
inline constexpr uint32_t kYv12 = 769;
inline constexpr uint32_t kYv422V = 770;
inline constexpr uint32_t kYv422H = 771;
inline constexpr uint32_t kYv444 = 772;
inline constexpr uint32_t kPlanarYuv = 1024;  // any subsampling
inline constexpr uint32_t kI420 = 1025;
inline constexpr uint32_t kI422V = 1026;
inline constexpr uint32_t kI422H = 1027;
inline constexpr uint32_t kI444 = 1028;
inline constexpr uint32_t kNv21 = 0x70000002;
inline constexpr uint32_t kNv12 = 0x70000003;
inline constexpr uint32_t kNv61 = 0x70000004;
inline constexpr uint32_t kNv16 = 0x70000005;
inline constexpr uint32_t kPacked422In16 = 0x70000008;
inline constexpr uint32_t kPacked444In32 = 0x70000009;

// Colour codes: low half 1 video range, 2 full range; high half 1 BT.601, 2 BT.709.
inline constexpr uint32_t kBt601Video = 0x10001;
inline constexpr uint32_t kBt601Full = 0x10002;
inline constexpr uint32_t kBt709Video = 0x20001;
inline constexpr uint32_t kBt709Full = 0x20002;

constexpr bool isVideoRange(uint32_t colour) { return (colour & 1) != 0; }
constexpr bool isFullRange(uint32_t colour) { return (colour & 2) != 0; }

// Kinds of conversion, ConvRecord::convKind.
inline constexpr uint32_t kYuvToYuv = 0;
inline constexpr uint32_t kYuvToRgb = 1;
inline constexpr uint32_t kRgbToRgb = 2;
inline constexpr uint32_t kRgbToYuv = 3;

constexpr uint32_t kindOf(bool fromRgb, bool toRgb) {
  if (fromRgb) return toRgb ? kRgbToRgb : kRgbToYuv;
  return toRgb ? kYuvToRgb : kYuvToYuv;
}

// Chroma divisors are the format's own.
constexpr bool isGenericPlanar(uint32_t klass) {
  return klass == kPlanarYvu || klass == kPlanarYuv;
}

constexpr bool swapsLumas(uint32_t klass) { return klass >= kSwappedYvyu && klass <= kSwappedVyuy; }

// The second plane holds V and the third U.
constexpr bool hasVBeforeU(uint32_t klass) { return klass >= kPlanarYvu && klass <= kYv444; }

// Indexes of the planes that hold U and V.
constexpr int32_t planeOfU(uint32_t klass) { return hasVBeforeU(klass) ? 2 : 1; }
constexpr int32_t planeOfV(uint32_t klass) { return hasVBeforeU(klass) ? 1 : 2; }

// The plane that holds component 0, 1 or 2: Y or pixels, U, V.
inline int32_t planeOf(const ConvPlanes& planes, int32_t component) {
  if (planes.count == 1 || component == 0) return 0;
  return component == 1 ? planeOfU(planes.klass) : planeOfV(planes.klass);
}

// Everything that one side of a conversion is described by.
struct DecodedFormat {
  ConvFormat format = {};
  ConvPlanes planes = {};
  int32_t subX[3] = {1, 1, 1};
  int32_t subY[3] = {1, 1, 1};
  int32_t bits[3] = {};      // of R, G, B
  int32_t position[3] = {};  // lowest bit of R, G, B
};

// Decodes a word; sizes and the palette are left alone. Returns 0, or 3 for an unknown word.
int32_t decodeFormat(uint32_t word, DecodedFormat* decoded);

}  // namespace qpx::convert
