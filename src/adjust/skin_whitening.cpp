// Skin of a camera preview made lighter where a mask finds it.
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstddef>

namespace qpx {
namespace {

// What a block's mask says: a share of 256 for luma, and for chroma that share times the strength.
struct BlockShare {
  int32_t luma;
  int64_t chroma;
};

BlockShare shareOf(const uint8_t* upper, const uint8_t* lower, int32_t strength) {
  const int32_t sum = upper[0] + upper[1] + lower[0] + lower[1];
  return {sum >> 2, (int64_t{strength} * sum) >> 10};
}

void mixLuma(uint8_t* luma, const uint8_t* target, int32_t share) {
  for (int i = 0; i < 2; ++i) {
    luma[i] = static_cast<uint8_t>((luma[i] * (256 - share) + target[luma[i]] * share) >> 8);
  }
}

// Towards the aim by a share, upwards only, by `most` at most and not beyond a byte.
uint8_t liftedBy(int32_t chroma, int32_t aim, int64_t share, int64_t most) {
  const int64_t way = std::max<int64_t>((share * (aim - chroma + 128)) >> 8, 0);
  return static_cast<uint8_t>(std::min(chroma + std::min(way, most), int64_t{255}));
}

// Blue below the middle comes nearer to it.
uint8_t liftedU(int32_t u, int64_t share) {
  return u < 128 ? liftedBy(u, (u - 128) * 51 >> 7, share, 9) : static_cast<uint8_t>(u);
}

// Red above the middle grows.
uint8_t liftedV(int32_t v, int64_t share) {
  return v >= 129 ? liftedBy(v, (332 * (v - 128)) >> 8, share, 4) : static_cast<uint8_t>(v);
}

void whitenRows(uint8_t* upper, uint8_t* lower, uint8_t* pairs, const uint8_t* upperMask,
                const uint8_t* lowerMask, int32_t blocks, const uint8_t* target, int32_t strength) {
  for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{blocks} * 2; i += 2) {
    const BlockShare share = shareOf(upperMask + i, lowerMask + i, strength);
    if (share.luma == 0 && share.chroma == 0) continue;
    mixLuma(upper + i, target, share.luma);
    mixLuma(lower + i, target, share.luma);
    pairs[i] = liftedV(pairs[i], share.chroma);
    pairs[i + 1] = liftedU(pairs[i + 1], share.chroma);
  }
}

int32_t whitenSkin(const MBitmap* image, const uint8_t* mask, int32_t maskPitch,
                   const uint8_t* target, int32_t strength) {
  if (image == nullptr || mask == nullptr || target == nullptr) return QPX_BAD_PARAM;
  const int32_t blocks = image->width / 2, blockRows = image->height / 2;
  if (blocks <= 0 || blockRows <= 0) return QPX_OK;
  if (image->plane[0] == nullptr || image->plane[2] == nullptr) return QPX_BAD_PARAM;
  const std::ptrdiff_t lumaPitch = image->pitch[0], chromaPitch = image->pitch[2];
  for (std::ptrdiff_t y = 0; y < blockRows; ++y) {
    uint8_t* luma = image->plane[0] + 2 * y * lumaPitch;
    const uint8_t* share = mask + 2 * y * maskPitch;
    whitenRows(luma, luma + lumaPitch, image->plane[2] + y * chromaPitch, share, share + maskPitch,
               blocks, target, strength);
  }
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

int32_t _SkinWhitenByMask_YUV420_VUVU(const MBitmap* image, const uint8_t* mask, int32_t maskPitch,
                                      const uint8_t* target, int32_t strength) {
  return qpx::whitenSkin(image, mask, maskPitch, target, strength);
}

int32_t _SkinWhitenByMask_YUV420_VUVU_neon(const MBitmap* image, const uint8_t* mask,
                                           int32_t maskPitch, const uint8_t* target,
                                           int32_t strength) {
  return qpx::whitenSkin(image, mask, maskPitch, target, strength);
}

int32_t _SkinWhitenByMask_YUV420_VUVU_ARMv7(const MBitmap* image, const uint8_t* mask,
                                            int32_t maskPitch, const uint8_t* target,
                                            int32_t strength) {
  return qpx::whitenSkin(image, mask, maskPitch, target, strength);
}
