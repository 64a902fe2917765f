// The ETC1 search and decoder: vector forms against plain ones, on every target. (The plain ones
// are held against the definition in tests/etc.)
#include "simd/etc_rows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "simd/row_cases.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class EtcRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(EtcRowsTest);

struct HalfBlocks {
  EtcSamples samples = {};
  uint32_t bases[kEtcBatch] = {};
};

// Samples of place `i` spread by `spread` about one of the base colour's, which is what makes
// offsets tie and clamp.
HalfBlocks halfBlocks(uint32_t seed, int32_t spread, const std::array<uint8_t, 3>& least,
                      const std::array<uint8_t, 3>& most) {
  HalfBlocks made;
  uint32_t place = 0;
  for (size_t i = 0; i < kEtcBatch; ++i) {
    for (size_t c = 0; c < 3; ++c) {
      const int32_t base = least[c] + noise(place++, seed) * (most[c] - least[c]) / 255;
      made.bases[i] |= static_cast<uint32_t>(base) << (8 * c);
      for (uint32_t k = 0; k < 8; ++k) {
        const int32_t away = noise(place++, seed) * (2 * spread + 1) / 256 - spread;
        const auto sample = static_cast<uint32_t>(std::clamp(base + away, 0, 255));
        made.samples.words[c][k / 4][i] |= sample << (8 * (k % 4));
      }
    }
  }
  return made;
}

void expectSame(const HalfBlocks& blocks, ptrdiff_t count, const char* what) {
  EtcChoices plain = {}, vector = {};
  plainForm<EtcRows>().searchEtc(blocks.samples, blocks.bases, plain, count);
  vectorForm<EtcRows>().searchEtc(blocks.samples, blocks.bases, vector, count);
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    ASSERT_EQ(plain.table[i], vector.table[i]) << what << ", place " << i;
    ASSERT_EQ(plain.bits[i], vector.bits[i]) << what << ", place " << i;
    ASSERT_EQ(plain.error[i], vector.error[i]) << what << ", place " << i;
    ASSERT_EQ(plain.exact[i], vector.exact[i]) << what << ", place " << i;
  }
}

TEST_P(EtcRowsTest, SearchOfAnyColors) {
  constexpr int32_t kSpreads[] = {0, 1, 2, 4, 8, 16, 40, 100, 255};
  for (uint32_t seed = 0; seed < 40; ++seed) {
    for (const int32_t spread : kSpreads) {
      expectSame(halfBlocks(seed, spread, {0, 0, 0}, {255, 255, 255}), kEtcBatch, "any");
      // All offsets of most tables in range, in all places.
      expectSame(halfBlocks(seed, spread, {107, 107, 107}, {148, 148, 148}), kEtcBatch, "middle");
      expectSame(halfBlocks(seed, spread, {0, 0, 0}, {3, 9, 30}), kEtcBatch, "dark");
      expectSame(halfBlocks(seed, spread, {250, 230, 252}, {255, 255, 255}), kEtcBatch, "light");
      expectSame(halfBlocks(seed, spread, {0, 250, 100}, {4, 255, 140}), kEtcBatch, "green");
    }
  }
}

// Where every pixel is as far away as it can be.
TEST_P(EtcRowsTest, SearchOfTheLargestErrors) {
  HalfBlocks blocks;
  for (size_t i = 0; i < kEtcBatch; ++i) {
    blocks.bases[i] = (i & 1 ? 0xFFu : 0u) | (i & 2 ? 0xFF00u : 0u) | (i & 4 ? 0xFF0000u : 0u);
    for (size_t c = 0; c < 3; ++c) {
      const uint32_t far = (blocks.bases[i] >> (8 * c) & 1) != 0 ? 0 : 0xFFFFFFFF;
      blocks.samples.words[c][0][i] = blocks.samples.words[c][1][i] = far;
    }
  }
  expectSame(blocks, kEtcBatch, "far");
}

TEST_P(EtcRowsTest, SearchOfAFewPlaces) {
  const HalfBlocks blocks = halfBlocks(99, 30, {0, 0, 0}, {255, 255, 255});
  for (ptrdiff_t count = 0; count <= kEtcBatch; ++count) expectSame(blocks, count, "few");
}

// Rows of `count` blocks whose bytes all around are known.
std::vector<uint8_t> decoded(const EtcRows& rows, const std::vector<uint8_t>& blocks,
                             ptrdiff_t count, size_t offset) {
  constexpr ptrdiff_t kGuard = 40;
  const ptrdiff_t pitch = 12 * count + kGuard;
  std::vector<uint8_t> pixels(static_cast<size_t>(4 * pitch + kGuard) + offset, 0xA7);
  // A block of its own, so that reads behind the last one show.
  const std::vector<uint8_t> exact(blocks.begin(), blocks.begin() + 8 * count);
  rows.decodeEtc(exact.data(), pixels.data() + offset, pitch, count);
  return pixels;
}

TEST_P(EtcRowsTest, DecodeOfAnyBlocksWritesJustTheirPixels) {
  for (ptrdiff_t count = 0; count <= 40; ++count) {
    std::vector<uint8_t> blocks(static_cast<size_t>(8 * count));
    for (uint32_t seed = 0; seed < 8; ++seed) {
      for (uint32_t i = 0; i < blocks.size(); ++i) blocks[i] = noise(i, seed);
      const size_t offset = seed;
      ASSERT_EQ(decoded(plainForm<EtcRows>(), blocks, count, offset),
                decoded(vectorForm<EtcRows>(), blocks, count, offset))
          << count << " blocks, seed " << seed;
    }
  }
}

// Each byte of the upper word and each place of the lower one, all values of it.
TEST_P(EtcRowsTest, DecodeOfEveryByteOfABlock) {
  constexpr ptrdiff_t kCount = 257;
  for (size_t byte = 0; byte < 8; ++byte) {
    for (uint32_t seed = 0; seed < 4; ++seed) {
      std::vector<uint8_t> blocks(8 * kCount);
      for (size_t i = 0; i < blocks.size(); ++i) {
        blocks[i] =
            i % 8 == byte ? static_cast<uint8_t>(i / 8) : noise(static_cast<uint32_t>(i), seed);
      }
      ASSERT_EQ(decoded(plainForm<EtcRows>(), blocks, kCount, 0),
                decoded(vectorForm<EtcRows>(), blocks, kCount, 0))
          << "byte " << byte << ", seed " << seed;
    }
  }
}

}  // namespace
}  // namespace qpx::simd
