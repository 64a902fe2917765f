// Hue, saturation and lightness of whole images. Divisions go by a table of reciprocals.
#include <qpx/image_convert.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "convert/images/conversions.h"
#include "simd/clamp_byte.h"

namespace qpx {
namespace {

constexpr int32_t kSmallestSide = 3;

struct Rgb {
  int32_t r, g, b;
};

constexpr std::array<uint16_t, 256> makeReciprocals() {
  std::array<uint16_t, 256> table = {};
  table[0] = table[1] = 65535;
  for (uint32_t i = 2; i < 256; ++i) table[i] = static_cast<uint16_t>(65536 / i);
  return table;
}
constexpr std::array<uint16_t, 256> kReciprocals = makeReciprocals();

// The place on the hue circle where the sector begins, and how far the hue is from there.
struct Sector {
  int32_t base, distance;
};

Sector sectorOf(const Rgb& p) {
  const Sector red = {0, p.b - p.g}, green = {85, p.r - p.b}, blue = {170, p.g - p.r};
  if (p.g < p.r) return p.r < p.b ? blue : red;
  return p.g < p.b ? blue : green;
}

uint8_t saturationOf(int32_t delta, int32_t sum, int32_t lightness) {
  const int32_t range = lightness > 127 ? 510 - sum : sum;
  const int32_t reciprocal = kReciprocals[static_cast<size_t>(range)];
  return simd::clampByte((reciprocal * (delta * 255 + (range >> 1))) >> 16);
}

void storeHsl(const Rgb& p, uint8_t* dst) {
  const int32_t most = std::max({p.r, p.g, p.b}), least = std::min({p.r, p.g, p.b});
  const int32_t sum = most + least, lightness = (sum + 1) >> 1, delta = most - least;
  dst[2] = static_cast<uint8_t>(lightness);
  if (delta == 0) {
    dst[0] = 170;
    dst[1] = 0;
    return;
  }
  const Sector sector = sectorOf(p);
  const int32_t reciprocal = kReciprocals[static_cast<size_t>(delta)];
  const int32_t turn = (reciprocal * ((delta >> 1) + sector.distance * 42)) >> 16;
  dst[0] = simd::clampByte(sector.base - turn);
  dst[1] = saturationOf(delta, sum, lightness);
}

int32_t widen5(int32_t field) { return field << 3 | field >> 2; }
int32_t widen6(int32_t field) { return field << 2 | field >> 4; }

struct Bgr888 {
  static constexpr ptrdiff_t kBytes = 3;
  static Rgb load(const uint8_t* src) { return {src[2], src[1], src[0]}; }
};

// Red in the top bits.
struct Rgb565 {
  static constexpr ptrdiff_t kBytes = 2;
  static Rgb load(const uint8_t* src) {
    const int32_t word = src[0] | src[1] << 8;
    return {widen5(word >> 11), widen6(word >> 5 & 63), widen5(word & 31)};
  }
};

struct Bgr565 {
  static constexpr ptrdiff_t kBytes = 2;
  static Rgb load(const uint8_t* src) {
    const Rgb p = Rgb565::load(src);
    return {p.b, p.g, p.r};
  }
};

// The usual matrix with 14 fractional bits, rounded to nearest.
Rgb rgbOf(int32_t y, int32_t u, int32_t v) {
  constexpr int32_t kHalf = 1 << 13;
  return {simd::clampByte(y + ((0x59CB * v + kHalf) >> 14)),
          simd::clampByte(y + ((-0x2DB2 * v - 0x1604 * u + kHalf) >> 14)),
          simd::clampByte(y + ((0x7179 * u + kHalf) >> 14))};
}

int32_t check(const uint8_t* src, const uint8_t* dst, int32_t height, int32_t width) {
  if (src == nullptr || dst == nullptr) return kMcvNull;
  return height < kSmallestSide || width < kSmallestSide ? kMcvRefused : kMcvDone;
}

template <class Pixel>
int32_t pixelsToHsl(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                    int32_t srcPitch, int32_t dstPitch) {
  if (const int32_t answer = check(src, dst, height, width); answer != kMcvDone) return answer;
  for (int32_t row = 0; row < height; ++row, src += srcPitch, dst += dstPitch) {
    for (ptrdiff_t x = 0; x < width; ++x) {
      storeHsl(Pixel::load(src + x * Pixel::kBytes), dst + 3 * x);
    }
  }
  return kMcvDone;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t mcvColorBGR888toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                 int32_t srcPitch, int32_t dstPitch) {
  return pixelsToHsl<Bgr888>(src, dst, height, width, srcPitch, dstPitch);
}

int32_t mcvColorBGR565toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                 int32_t srcPitch, int32_t dstPitch) {
  return pixelsToHsl<Bgr565>(src, dst, height, width, srcPitch, dstPitch);
}

int32_t mcvColorRGB565toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                 int32_t srcPitch, int32_t dstPitch) {
  return pixelsToHsl<Rgb565>(src, dst, height, width, srcPitch, dstPitch);
}

int32_t mcvColorI420toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                               int32_t srcPitch, int32_t dstPitch) {
  if (const int32_t answer = check(src, dst, height, width); answer != kMcvDone) return answer;
  const ptrdiff_t chromaPitch = srcPitch / 2;
  const uint8_t* const u = src + ptrdiff_t{srcPitch} * height;
  const uint8_t* const v = u + chromaPitch * (height / 2);
  for (ptrdiff_t row = 0; row < (height & ~1); ++row) {
    const uint8_t* const luma = src + srcPitch * row;
    const ptrdiff_t chroma = chromaPitch * (row / 2);
    for (ptrdiff_t x = 0; x < (width & ~1); ++x) {
      const Rgb pixel = rgbOf(luma[x], u[chroma + x / 2] - 128, v[chroma + x / 2] - 128);
      storeHsl(pixel, dst + dstPitch * row + 3 * x);
    }
  }
  return kMcvDone;
}
