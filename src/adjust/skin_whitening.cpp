// Skin of a camera preview made lighter where a mask finds it.
#include <qpx/kernels_adjust.h>

#include <algorithm>

#include "simd/complexion_rows.h"
#include "simd/rows.h"

namespace qpx {
namespace {

void whitenRows(const simd::WhitenedRows& rows, ptrdiff_t count, const uint8_t* target,
                int32_t strength) {
  constexpr ptrdiff_t kPart = 512;
  uint8_t aims[2][kPart];
  for (ptrdiff_t done = 0; done < count; done += kPart) {
    const ptrdiff_t part = std::min(kPart, count - done);
    for (int i = 0; i < 2; ++i) simd::rows().lookup(rows.luma[i] + done, aims[i], part, target);
    const simd::WhitenedRows from = {{rows.luma[0] + done, rows.luma[1] + done},
                                     rows.pairs + done,
                                     {aims[0], aims[1]},
                                     {rows.mask[0] + done, rows.mask[1] + done}};
    simd::complexionRows().whitenBlocks(from, part, strength);
  }
}

int32_t whitenSkin(const MBitmap* image, const uint8_t* mask, int32_t maskPitch,
                   const uint8_t* target, int32_t strength) {
  if (image == nullptr) return QPX_BAD_PARAM;
  const int32_t blocks = image->width / 2, blockRows = image->height / 2;
  if (blocks <= 0 || blockRows <= 0) return QPX_OK;
  if (mask == nullptr || target == nullptr) return QPX_BAD_PARAM;
  if (image->plane[0] == nullptr || image->plane[2] == nullptr) return QPX_BAD_PARAM;
  const ptrdiff_t lumaPitch = image->pitch[0], chromaPitch = image->pitch[2];
  for (ptrdiff_t y = 0; y < blockRows; ++y) {
    uint8_t* luma = image->plane[0] + 2 * y * lumaPitch;
    const uint8_t* share = mask + 2 * y * maskPitch;
    const simd::WhitenedRows rows = {{luma, luma + lumaPitch},
                                     image->plane[2] + y * chromaPitch,
                                     {},
                                     {share, share + maskPitch}};
    whitenRows(rows, ptrdiff_t{blocks} * 2, target, strength);
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
