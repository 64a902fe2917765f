// The parts of a pixel format code.
#pragma once

#include <qpx/types.h>

#include <cstdint>

namespace qpx {

enum class ColorModel : uint32_t {
  rgb = 1,
  rgbVariant = 2,
  rgbAlpha = 3,
  palette = 4,
  yuv = 5,
  grey = 6,
  semiPlanar = 7
};

// RGB: the first field sits in the lowest bits.
inline constexpr uint32_t kReversedOrder = 0x1000;
constexpr uint32_t withoutOrder(uint32_t format) { return format & ~kReversedOrder; }
// YUV: planes of their own for Y, U and V.
inline constexpr uint32_t kPlanarLayout = 0x800;

// Inside the engine NV21 and NV12 carry their chroma divisors like the other YUV codes.
inline constexpr uint32_t kStageNv21 = 0x70020011;
inline constexpr uint32_t kStageNv12 = 0x70030011;

constexpr ColorModel colorModel(uint32_t format) { return static_cast<ColorModel>(format >> 28); }
constexpr uint32_t sizeNibble(uint32_t format) { return (format >> 24) & 15; }
constexpr uint32_t colorimetry(uint32_t format) { return (format >> 12) & 3; }

// Horizontal and vertical chroma divisor of a planar YUV code.
constexpr int32_t chromaAcross(uint32_t format) {
  return static_cast<int32_t>((format >> 4) & 15) + 1;
}
constexpr int32_t chromaDown(uint32_t format) { return static_cast<int32_t>(format & 15) + 1; }

constexpr uint32_t stageFormat(uint32_t format) {
  if (format == QPX_FORMAT_NV21) return kStageNv21;
  if (format == QPX_FORMAT_NV12) return kStageNv12;
  return format;
}

}  // namespace qpx
