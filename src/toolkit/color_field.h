// A colour field of a packed pixel, and samples of 8 bits.
//
// Fields of up to 8 bits widen by repeating their bits, so that full white stays full white, and
// narrow by dropping the low bits, so that an untouched sample keeps its field. Of wider fields the
// sample is the top 8 bits; the field keeps its low bits too where the sample is untouched.
#pragma once

#include <bit>
#include <cstdint>

namespace qpx {

struct ColorField {
  uint32_t mask = 0;
  uint32_t pos = 0;
  uint32_t size = 0;
  uint32_t repeat = 0;  // widening of up to 8 bits: times this,
  uint32_t excess = 0;  // then shifted right by this

  constexpr ColorField() = default;

  constexpr explicit ColorField(uint32_t fieldMask)
      : mask(fieldMask), size(static_cast<uint32_t>(std::popcount(fieldMask))) {
    if (size == 0) return;
    pos = static_cast<uint32_t>(std::countr_zero(mask));
    if (size > 8) {
      excess = size - 8;
      return;
    }
    uint32_t bits = 0;
    for (; bits < 8; bits += size) repeat |= uint32_t{1} << bits;
    excess = bits - 8;
  }

  constexpr uint8_t widen(uint32_t value) const {
    return static_cast<uint8_t>((size > 8 ? value : value * repeat) >> excess);
  }

  constexpr uint8_t load(uint32_t pixel) const { return widen((pixel & mask) >> pos); }

  // The field's bits, in place, for fields of up to 8 bits.
  constexpr uint32_t narrow(uint8_t sample) const {
    return (uint32_t{sample} >> (8 - size)) << pos & mask;
  }

  // The field's bits, in place, where `pixel` held the field before.
  constexpr uint32_t store(uint8_t sample, uint32_t pixel) const {
    if (size <= 8) return narrow(sample);
    if (load(pixel) == sample) return pixel & mask;
    const uint32_t doubled = uint32_t{sample} << 8 | sample;
    return doubled >> (16 - size) << pos & mask;
  }
};

// The three fields of a packed pixel and the bits outside them.
struct ColorFields {
  ColorField red;
  ColorField green;
  ColorField blue;
  uint32_t spare = 0;

  constexpr ColorFields() = default;

  // Bits of a mask that a pixel of this many bytes does not have are not there.
  constexpr ColorFields(const uint32_t (&masks)[3], int32_t bytes)
      : red(masks[0] & pixelBits(bytes)),
        green(masks[1] & pixelBits(bytes)),
        blue(masks[2] & pixelBits(bytes)),
        spare(~(red.mask | green.mask | blue.mask)) {}

  static constexpr uint32_t pixelBits(int32_t bytes) {
    return bytes >= 4 ? ~uint32_t{0} : (uint32_t{1} << (8 * bytes)) - 1;
  }

  constexpr bool narrowFields() const { return red.size <= 8 && green.size <= 8 && blue.size <= 8; }

  // Plain bytes in the order R, G, B, or B, G, R.
  constexpr bool bytesRgb() const {
    return red.mask == 0xFF && green.mask == 0xFF00 && blue.mask == 0xFF0000;
  }
  constexpr bool bytesBgr() const {
    return blue.mask == 0xFF && green.mask == 0xFF00 && red.mask == 0xFF0000;
  }
};

// Packed pixels are little-endian numbers, at any address.
template <int kBytes>
inline uint32_t readPixel(const uint8_t* at) {
  uint32_t pixel = 0;
  for (int i = 0; i < kBytes; ++i) pixel |= uint32_t{at[i]} << (8 * i);
  return pixel;
}

template <int kBytes>
inline void writePixel(uint32_t pixel, uint8_t* at) {
  for (int i = 0; i < kBytes; ++i) at[i] = static_cast<uint8_t>(pixel >> (8 * i));
}

}  // namespace qpx
