// Blocks into pixels: each half's four colours stand in one vector of bytes, out of which a byte
// permute takes a row of four pixels. Included once per target.
#if defined(QPX_SIMD_ETC_DECODE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_ETC_DECODE_INL_H_
#undef QPX_SIMD_ETC_DECODE_INL_H_
#else
#define QPX_SIMD_ETC_DECODE_INL_H_
#endif

#include <hwy/highway.h>

#include <array>
#include <cstring>

#include "simd/etc_block.h"
#include "simd/etc_rows.h"

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace etc {

namespace hn = hwy::HWY_NAMESPACE;

using DRow = hn::FixedTag<uint8_t, 16>;
using VRow = hn::Vec<DRow>;
using RowBytes = std::array<uint8_t, 16>;

// The colours of a half, by index: what is added to its base colour and what is taken away.
struct Palettes {
  RowBytes added[8], taken[8];
};

constexpr Palettes makePalettes() {
  Palettes p = {};
  for (size_t table = 0; table < 8; ++table) {
    for (size_t k = 0; k < 3; ++k) {
      p.added[table][k] = p.taken[table][6 + k] = static_cast<uint8_t>(kEtcTables[table].small);
      p.added[table][3 + k] = p.taken[table][9 + k] = static_cast<uint8_t>(kEtcTables[table].large);
    }
  }
  return p;
}

// By the indices of four pixels in a byte, the first in its lowest bits: which bytes of a palette
// they are.
constexpr std::array<RowBytes, 256> makeRowShuffles() {
  std::array<RowBytes, 256> shuffles = {};
  for (size_t indices = 0; indices < 256; ++indices) {
    for (size_t k = 0; k < 12; ++k) {
      shuffles[indices][k] = static_cast<uint8_t>((indices >> (k / 3 * 2) & 3) * 3 + k % 3);
    }
  }
  return shuffles;
}

inline constexpr Palettes kPalettes = makePalettes();
inline constexpr std::array<RowBytes, 256> kRowShuffles = makeRowShuffles();
alignas(16) inline constexpr uint8_t kRepeatColor[16] = {0, 1, 2, 0, 1, 2, 0, 1,
                                                         2, 0, 1, 2, 0, 1, 2, 0};
// Bytes of the left two pixels.
alignas(16) inline constexpr uint8_t kLeftBytes[16] = {255, 255, 255, 255, 255, 255};

HWY_INLINE VRow palette(EtcWords words, int32_t half) {
  const DRow d;
  const hn::Repartition<uint32_t, DRow> d32;
  const EtcBase base = etcBase(words, half);
  const uint32_t packed = base.r | uint32_t{base.g} << 8 | uint32_t{base.b} << 16;
  const VRow colors =
      hn::TableLookupBytes(hn::BitCast(d, hn::Set(d32, packed)), hn::Load(d, kRepeatColor));
  const uint32_t table = etcTable(words, half);
  return hn::SaturatedSub(hn::SaturatedAdd(colors, hn::LoadU(d, kPalettes.added[table].data())),
                          hn::LoadU(d, kPalettes.taken[table].data()));
}

// The indices of row y of a block in byte 2 * y.
HWY_INLINE uint64_t rowsOfIndices(uint32_t lowerWord) {
  const auto rowsOfBits = [](uint64_t columns) {
    return (columns | columns << 15 | columns << 30 | columns << 45) & 0x1111111111111111;
  };
  uint64_t rows = rowsOfBits(lowerWord & 0xFFFF) | rowsOfBits(lowerWord >> 16) << 1;
  rows = (rows | rows >> 2) & 0x0F0F0F0F0F0F0F0F;
  return (rows | rows >> 4) & 0x00FF00FF00FF00FF;
}

// Four rows of 16 bytes, of which 12 are the block's.
HWY_INLINE void decodeBlock(const uint8_t* block, uint8_t* rgb, ptrdiff_t pitch) {
  const DRow d;
  const EtcWords words = readEtcWords(block);
  const VRow first = palette(words, 0), second = palette(words, 1);
  const uint64_t rows = rowsOfIndices(words.lower);
  const auto row = [&](VRow colors, int32_t y) HWY_ATTR {
    return hn::TableLookupBytes(colors, hn::LoadU(d, kRowShuffles[rows >> (16 * y) & 255].data()));
  };
  if (etcFlipped(words)) {
    for (int32_t y = 0; y < 4; ++y) {
      hn::StoreU(row(y < 2 ? first : second, y), d, rgb + pitch * y);
    }
    return;
  }
  const auto left = hn::MaskFromVec(hn::Load(d, kLeftBytes));
  for (int32_t y = 0; y < 4; ++y) {
    hn::StoreU(hn::IfThenElse(left, row(first, y), row(second, y)), d, rgb + pitch * y);
  }
}

// What a block writes too much, the next one writes over. The last one ends where its row does.
void decodeEtc(const uint8_t* blocks, uint8_t* rgb, ptrdiff_t pitch, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count - 1; ++i) decodeBlock(blocks + 8 * i, rgb + 12 * i, pitch);
  if (count > 0) simd::plain::decodeEtc(blocks + 8 * (count - 1), rgb + 12 * (count - 1), pitch, 1);
}

}  // namespace etc

using etc::decodeEtc;

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
