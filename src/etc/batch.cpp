#include "etc/batch.h"

#include <algorithm>
#include <array>
#include <bit>

#include "etc/levels.h"
#include "simd/rows.h"

namespace qpx::etc {
namespace {

using simd::EtcChoices;
using simd::EtcWords;

// Pixels of a left or right half go row by row, two in a row; those of an upper or lower one row by
// row, four in a row.
void splitAcross(const uint32_t (&rows)[4][kEtcBatch], uint32_t (&left)[2][kEtcBatch],
                 uint32_t (&right)[2][kEtcBatch]) {
  for (size_t word = 0; word < 2; ++word) {
    for (size_t i = 0; i < kEtcBatch; ++i) {
      const uint32_t upper = rows[2 * word][i], lower = rows[2 * word + 1][i];
      left[word][i] = (upper & 0xFFFF) | lower << 16;
      right[word][i] = upper >> 16 | (lower & 0xFFFF0000);
    }
  }
}

void splitDown(const uint32_t (&rows)[4][kEtcBatch], uint32_t (&top)[2][kEtcBatch],
               uint32_t (&bottom)[2][kEtcBatch]) {
  for (size_t word = 0; word < 2; ++word) {
    std::copy_n(rows[word], kEtcBatch, top[word]);
    std::copy_n(rows[2 + word], kEtcBatch, bottom[word]);
  }
}

void sumSamples(const uint32_t (&words)[2][kEtcBatch], uint32_t (&sums)[kEtcBatch]) {
  constexpr uint32_t kEven = 0x00FF00FF;
  for (size_t i = 0; i < kEtcBatch; ++i) {
    const uint32_t a = words[0][i], b = words[1][i];
    const uint32_t pairs = (a & kEven) + (a >> 8 & kEven) + (b & kEven) + (b >> 8 & kEven);
    sums[i] = (pairs & 0xFFFF) + (pairs >> 16);
  }
}

void halve(const BlockRows& rows, bool flipped, Halves& halves) {
  for (size_t c = 0; c < 3; ++c) {
    const auto split = flipped ? splitDown : splitAcross;
    split(rows.words[c], halves.samples[0].words[c], halves.samples[1].words[c]);
    for (size_t h = 0; h < 2; ++h) sumSamples(halves.samples[h].words[c], halves.sums[h].of[c]);
  }
}

// Types rather than function pointers, so that the loops over a batch become vectors.
struct MeanLevel {
  static uint32_t of5(uint32_t sum) { return meanLevel5(sum); }
  static uint32_t of4(uint32_t sum) { return meanLevel4(sum); }
};
struct NearLevel {
  static uint32_t of5(uint32_t sum) { return nearLevel5(sum); }
  static uint32_t of4(uint32_t sum) { return nearLevel4(sum); }
};

// Differential where all differences have three bits, else individual.
template <typename Level>
void chooseLevels(const Halves& halves, Coding& coding) {
  std::fill_n(coding.differential, kEtcBatch, 1u);
  uint32_t five[2][3][kEtcBatch];
  for (size_t c = 0; c < 3; ++c) {
    for (size_t i = 0; i < kEtcBatch; ++i) {
      five[0][c][i] = Level::of5(halves.sums[0].of[c][i]);
      five[1][c][i] = Level::of5(halves.sums[1].of[c][i]);
      coding.differential[i] &= five[1][c][i] - five[0][c][i] + 4 < 8 ? 1u : 0u;
    }
  }
  for (size_t h = 0; h < 2; ++h) {
    std::fill_n(coding.bases[h], kEtcBatch, 0u);
    for (size_t c = 0; c < 3; ++c) {
      for (size_t i = 0; i < kEtcBatch; ++i) {
        const uint32_t four = Level::of4(halves.sums[h].of[c][i]);
        const bool close = coding.differential[i] != 0;
        coding.levels[h][c][i] = close ? five[h][c][i] : four;
        coding.bases[h][i] |= (close ? simd::etcExpand5(five[h][c][i]) : simd::etcExpand4(four))
                              << (8 * c);
      }
    }
  }
}

void chooseBases(const Halves& halves, Bases bases, Coding& coding) {
  if (bases == Bases::mean) {
    chooseLevels<MeanLevel>(halves, coding);
  } else {
    chooseLevels<NearLevel>(halves, coding);
  }
}

void code(const Halves& halves, Bases bases, ptrdiff_t count, Coding& coding) {
  chooseBases(halves, bases, coding);
  const simd::EtcRows& rows = simd::etcRows();
  for (size_t h = 0; h < 2; ++h) {
    rows.searchEtc(halves.samples[h], coding.bases[h], coding.choices[h], count);
  }
}

// Where the bits of a half's eight pixels, in the order of EtcSamples, stand among the sixteen of
// the format, by flip. The second half's lie 8 bits higher, or 2 where the block is flipped.
constexpr std::array<std::array<uint16_t, 256>, 2> makeBitPlaces() {
  std::array<std::array<uint16_t, 256>, 2> places = {};
  for (uint32_t bits = 0; bits < 256; ++bits) {
    for (uint32_t k = 0; k < 8; ++k) {
      const uint32_t bit = bits >> k & 1;
      places[0][bits] = static_cast<uint16_t>(places[0][bits] | bit << (4 * (k % 2) + k / 2));
      places[1][bits] = static_cast<uint16_t>(places[1][bits] | bit << (4 * (k % 4) + k / 4));
    }
  }
  return places;
}

constexpr std::array<std::array<uint16_t, 256>, 2> kBitPlaces = makeBitPlaces();

uint32_t placed(uint32_t bits, bool flipped, size_t half) {
  const auto& places = kBitPlaces[flipped ? 1 : 0];
  const uint32_t word = uint32_t{places[bits >> 16]} << 16 | places[bits & 255];
  return half == 0 ? word : word << (flipped ? 2 : 8);
}

EtcWords wordsOf(const Coding& coding, size_t i, bool flipped) {
  const bool differential = coding.differential[i] != 0;
  EtcWords words = {(flipped ? 1u : 0u) | (differential ? 2u : 0u), 0};
  for (size_t c = 0; c < 3; ++c) {
    const uint32_t first = coding.levels[0][c][i], second = coding.levels[1][c][i];
    const uint32_t byte = differential ? first << 3 | ((second - first) & 7) : first << 4 | second;
    words.upper |= byte << (24 - 8 * c);
  }
  words.upper |= coding.choices[0].table[i] << 5 | coding.choices[1].table[i] << 2;
  for (size_t h = 0; h < 2; ++h) words.lower |= placed(coding.choices[h].bits[i], flipped, h);
  return words;
}

uint32_t errorOf(const Coding& coding, size_t i) {
  return coding.choices[0].error[i] + coding.choices[1].error[i];
}

uint32_t exactErrorOf(const Coding& coding, size_t i) {
  return coding.choices[0].exact[i] + coding.choices[1].exact[i];
}

bool flippedIsBetter(const Coding& upright, const Coding& flipped, size_t i) {
  return errorOf(flipped, i) < errorOf(upright, i);
}

void copyChoice(const EtcChoices& from, size_t i, EtcChoices& to, size_t k) {
  to.table[k] = from.table[i];
  to.bits[k] = from.bits[i];
  to.error[k] = from.error[i];
  to.exact[k] = from.exact[i];
}

void searchAgain(Again& again, Coding& coding) {
  if (again.count == 0) return;
  simd::etcRows().searchEtc(again.samples, again.bases, again.choices, again.count);
  for (size_t k = 0; k < static_cast<size_t>(again.count); ++k) {
    copyChoice(again.choices, k, coding.choices[again.half[k]], again.block[k]);
  }
  again.count = 0;
}

// As code() with the nearest colours, most of which are the mean ones: what those found holds for
// them, and only the halves with another base colour are searched, close together.
void codeNearest(const Halved& mean, Again& again, ptrdiff_t count, Coding& coding) {
  chooseBases(mean.halves, Bases::nearest, coding);
  again.count = 0;
  for (size_t h = 0; h < 2; ++h) {
    coding.choices[h] = mean.coding.choices[h];
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
      if (coding.bases[h][i] == mean.coding.bases[h][i]) continue;
      const auto k = static_cast<size_t>(again.count);
      for (size_t c = 0; c < 3; ++c) {
        for (size_t word = 0; word < 2; ++word) {
          again.samples.words[c][word][k] = mean.halves.samples[h].words[c][word][i];
        }
      }
      again.bases[k] = coding.bases[h][i];
      again.half[k] = static_cast<uint8_t>(h);
      again.block[k] = static_cast<uint8_t>(i);
      if (++again.count == kEtcBatch) searchAgain(again, coding);
    }
  }
  searchAgain(again, coding);
}

}  // namespace

static_assert(std::endian::native == std::endian::little, "words are filled byte by byte");

void BlockRows::take(const uint8_t* rgb, ptrdiff_t pitch, ptrdiff_t count) {
  const simd::Rows& rows = simd::rows();
  for (ptrdiff_t y = 0; y < 4; ++y) {
    const auto bytes = [&](size_t c) {
      return reinterpret_cast<uint8_t*>(words[c][static_cast<size_t>(y)]);
    };
    rows.deinterleave3(rgb + pitch * y, count * 4, bytes(0), bytes(1), bytes(2));
  }
}

void compressFast(const BlockRows& rows, Halved& set, ptrdiff_t count, EtcWords* out) {
  halve(rows, false, set.halves);
  code(set.halves, Bases::mean, count, set.coding);
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) out[i] = wordsOf(set.coding, i, false);
}

void compressFlipping(const BlockRows& rows, Halved (&sets)[2], Bases bases, ptrdiff_t count,
                      EtcWords* out) {
  for (size_t flip = 0; flip < 2; ++flip) {
    halve(rows, flip == 1, sets[flip].halves);
    code(sets[flip].halves, bases, count, sets[flip].coding);
  }
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    const size_t flip = flippedIsBetter(sets[0].coding, sets[1].coding, i) ? 1 : 0;
    out[i] = wordsOf(sets[flip].coding, i, flip == 1);
  }
}

void compressSlow(SlowSet& set, ptrdiff_t count, EtcWords* out) {
  for (size_t flip = 0; flip < 2; ++flip) {
    Halved& mean = set.mean[flip];
    halve(set.rows, flip == 1, mean.halves);
    code(mean.halves, Bases::mean, count, mean.coding);
    codeNearest(mean, set.again, count, set.nearest[flip]);
  }
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    const size_t mean = flippedIsBetter(set.mean[0].coding, set.mean[1].coding, i) ? 1 : 0;
    const size_t nearest = flippedIsBetter(set.nearest[0], set.nearest[1], i) ? 1 : 0;
    const Coding& first = set.mean[mean].coding;
    const Coding& second = set.nearest[nearest];
    const bool better = exactErrorOf(second, i) < exactErrorOf(first, i);
    out[i] = better ? wordsOf(second, i, nearest == 1) : wordsOf(first, i, mean == 1);
  }
}

}  // namespace qpx::etc
