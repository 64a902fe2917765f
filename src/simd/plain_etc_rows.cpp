#include "simd/plain_etc_rows.h"

#include <algorithm>

#include "simd/etc_block.h"
#include "simd/etc_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

EtcColor brighter(const EtcColor& base, int32_t offset) {
  const auto moved = [=](int32_t sample) { return std::clamp(sample + offset, 0, 255); };
  return {moved(base.r), moved(base.g), moved(base.b)};
}

int32_t errorBetween(const EtcColor& a, const EtcColor& b) {
  const int32_t dr = a.r - b.r, dg = a.g - b.g, db = a.b - b.b;
  return kEtcWeights.red * dr * dr + kEtcWeights.green * dg * dg + kEtcWeights.blue * db * db;
}

// Index bits of the four offsets in ascending order: 3, 2, 0, 1.
constexpr uint32_t kIndexBits[4] = {1u << 16 | 1, 1u << 16, 0, 1};

int32_t byteOf(uint32_t word, int32_t number) {
  return static_cast<int32_t>(word >> (8 * number) & 255);
}

}  // namespace

EtcChoice searchWithTable(const EtcHalf& half, const EtcColor& base, int32_t table) {
  const EtcOffsets by = kEtcTables[table];
  const EtcColor candidates[4] = {brighter(base, -by.large), brighter(base, -by.small),
                                  brighter(base, by.small), brighter(base, by.large)};
  EtcChoice choice = {table, 0, 0, 0};
  for (int32_t k = 0; k < 8; ++k) {
    int32_t exact = errorBetween(half.pixels[k], candidates[0]);
    uint32_t bits = kIndexBits[0];
    for (int32_t c = 1; c < 4; ++c) {
      const int32_t error = errorBetween(half.pixels[k], candidates[c]);
      if (error >> 6 < exact >> 6) {
        exact = error;
        bits = kIndexBits[c];
      }
    }
    choice.error += exact >> 6;
    choice.exact += exact;
    choice.bits |= bits << k;
  }
  return choice;
}

EtcChoice searchAllTables(const EtcHalf& half, const EtcColor& base) {
  EtcChoice best;
  for (int32_t table = 0; table < 8; ++table) {
    const EtcChoice choice = searchWithTable(half, base, table);
    if (choice.error < best.error) best = choice;
  }
  return best;
}

void decodeEtc(const uint8_t* blocks, uint8_t* rgb, ptrdiff_t pitch, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const EtcWords words = readEtcWords(blocks + 8 * i);
    const EtcBase bases[2] = {etcBase(words, 0), etcBase(words, 1)};
    for (int32_t pixel = 0; pixel < 16; ++pixel) {
      const int32_t half = etcHalf(pixel, etcFlipped(words));
      const EtcOffsets by = kEtcTables[etcTable(words, half)];
      const uint32_t index = etcIndex(words.lower, pixel);
      const int32_t offset = (index & 1) != 0 ? by.large : by.small;
      const EtcBase& base = bases[half];
      const EtcColor color =
          brighter({base.r, base.g, base.b}, (index & 2) != 0 ? -offset : offset);
      uint8_t* to = rgb + pitch * (pixel & 3) + 12 * i + 3 * (pixel >> 2);
      to[0] = static_cast<uint8_t>(color.r);
      to[1] = static_cast<uint8_t>(color.g);
      to[2] = static_cast<uint8_t>(color.b);
    }
  }
}

void searchEtc(const EtcSamples& samples, const uint32_t* bases, EtcChoices& choices,
               ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    EtcHalf half;
    for (int32_t k = 0; k < 8; ++k) {
      const auto sample = [&](int32_t c) { return byteOf(samples.words[c][k / 4][i], k % 4); };
      half.pixels[k] = {sample(0), sample(1), sample(2)};
    }
    const EtcChoice best =
        searchAllTables(half, {byteOf(bases[i], 0), byteOf(bases[i], 1), byteOf(bases[i], 2)});
    choices.table[i] = static_cast<uint32_t>(best.table);
    choices.bits[i] = best.bits;
    choices.error[i] = static_cast<uint32_t>(best.error);
    choices.exact[i] = static_cast<uint32_t>(best.exact);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(EtcRows, QPX_ETC_ROWS)

}  // namespace qpx::simd
