// The parts of an ETC1 block, as OES_compressed_ETC1_RGB8_texture lays them out.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qpx::simd {

// As stored: big-endian, the upper word first.
struct EtcWords {
  uint32_t upper, lower;
};

inline uint32_t readBigEndian(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

inline EtcWords readEtcWords(const uint8_t* block) {
  return {readBigEndian(block), readBigEndian(block + 4)};
}

constexpr bool etcFlipped(EtcWords words) { return (words.upper & 1) != 0; }
constexpr bool etcDifferential(EtcWords words) { return (words.upper & 2) != 0; }
constexpr uint32_t etcTable(EtcWords words, int32_t half) {
  return words.upper >> (half == 0 ? 5 : 2) & 7;
}

constexpr uint32_t etcExpand5(uint32_t level) { return level << 3 | level >> 2; }
constexpr uint32_t etcExpand4(uint32_t level) { return level << 4 | level; }

// A base colour of 8 bits a channel.
struct EtcBase {
  uint8_t r, g, b;
};

// One channel of both base colours, from the byte of the upper word that holds it. Sums that leave
// 5 bits are not defined by the format; they are kept to 5 bits.
constexpr uint32_t etcChannel(uint32_t byte, bool differential, int32_t half) {
  if (!differential) return etcExpand4(half == 0 ? byte >> 4 : byte & 15);
  const uint32_t step = (byte & 7) - (byte & 4) * 2;  // three bits, signed
  return etcExpand5(((byte >> 3) + (half == 0 ? 0 : step)) & 31);
}

constexpr EtcBase etcBase(EtcWords words, int32_t half) {
  const bool differential = etcDifferential(words);
  const auto channel = [=](int32_t shift) {
    return static_cast<uint8_t>(etcChannel(words.upper >> shift & 255, differential, half));
  };
  return {channel(24), channel(16), channel(8)};
}

// Pixels are numbered down the columns. 0 for the left or upper half.
constexpr int32_t etcHalf(int32_t pixel, bool flipped) {
  return flipped ? pixel >> 1 & 1 : pixel >> 3;
}

constexpr uint32_t etcIndex(uint32_t lowerWord, int32_t pixel) {
  return (lowerWord >> pixel & 1) | (lowerWord >> (pixel + 16) & 1) << 1;
}

}  // namespace qpx::simd
