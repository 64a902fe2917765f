// Which colours are skin.
#pragma once

#include <array>
#include <cstdint>

namespace qpx {

// How far a chroma is from the middle of skin: 1024 at the border of the cluster, by Cb and Cr of
// full range around 128.
using SkinMap = std::array<std::array<uint16_t, 256>, 256>;

inline constexpr int32_t kSkinBorder = 1023;  // the last distance that is skin
inline constexpr int32_t kDarkestSkin = 61;   // below this luma, chroma says little

void fillSkinMap(SkinMap& map);

// The first and the last Cr that are skin with each Cb: the cluster has no holes. Where none are,
// the first lies behind the last.
struct SkinSpans {
  std::array<uint8_t, 256> lowest, highest;
};

SkinSpans skinSpans(const SkinMap& map);

inline bool isSkin(const SkinMap& map, int32_t luma, uint8_t cb, uint8_t cr) {
  return luma >= kDarkestSkin && map[cb][cr] <= kSkinBorder;
}

}  // namespace qpx
