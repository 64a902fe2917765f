// Reading a pixel format code: family, sample steps, chroma divisors, colour fields.
#include <qpx/image.h>

#include <bit>

#include "engine/format_code.h"
#include "engine/stage.h"

namespace qpx {
namespace {

// Storage bits by bits 24-27 of the code; other nibbles name no size.
int32_t storageBits(uint32_t format) {
  const uint32_t nibble = sizeNibble(format);
  return nibble >= 4 && nibble <= 7 ? static_cast<int32_t>(nibble - 3) * 8 : 0;
}

uint32_t fieldMask(uint32_t width, uint32_t shift) {
  return shift >= 32 ? 0 : ((uint32_t{1} << width) - 1) << shift;
}

int32_t packedRgbFamily(PixInfo* info) {
  if (info->bitsPerPixel < 16) return QPX_BAD_PARAM;
  info->family = kFamilyPackedRgb;
  return QPX_OK;
}

int32_t yuvFamily(PixInfo* info) {
  if ((info->format & kPlanarLayout) != 0) {
    info->family = uint32_t{2} << colorimetry(info->format);
    info->bitsPerPixel = 8;
    return QPX_OK;
  }
  if ((info->format & ~uint32_t{0x400}) == QPX_FORMAT_YUYV) {
    info->family = kFamilyYuyv;
    return QPX_OK;
  }
  return QPX_BAD_PARAM;
}

int32_t semiPlanarFamily(PixInfo* info) {
  if (info->format == kStageNv21) {
    info->family = kFamilyNv21;
  } else if (info->format == kStageNv12) {
    info->family = kFamilyNv12;
  } else {
    return QPX_BAD_PARAM;
  }
  return QPX_OK;
}

void setGreyPixelInfo(PixInfo* info) {
  for (int p = 0; p < 3; ++p) info->xSampling[p] = info->ySampling[p] = 1;
  info->bytesPerSample[0] = 1;
  info->planes = 1;
}

}  // namespace

uint32_t formatGroup(const PixInfo& pix) {
  switch (pix.family) {
    case kFamilyPackedRgb:
      if (withoutOrder(pix.format) == QPX_FORMAT_BGR24) return QPX_TAKES_RGB24;
      if (withoutOrder(pix.format) == QPX_FORMAT_BGRA32) return QPX_TAKES_RGB32;
      return pix.format == QPX_FORMAT_RGB565 ? QPX_TAKES_RGB565 : QPX_TAKES_RGB_ANY;
    case 2:
    case 4:
    case 8:
    case 16:
      return pix.format == QPX_FORMAT_I420 ? QPX_TAKES_I420 : QPX_TAKES_PLANAR;
    case kFamilyGrey:
      return QPX_TAKES_GREY;
    case kFamilyNv21:
      return QPX_TAKES_NV21;
    case kFamilyNv12:
      return QPX_TAKES_NV12;
    case kFamilyYuyv:
      return pix.format == QPX_FORMAT_YUYV ? QPX_TAKES_YUYV : QPX_TAKES_UYVY;
    default:
      return 0;
  }
}

}  // namespace qpx

using namespace qpx;

int32_t mbf_GetMaskSize(uint32_t mask) { return std::popcount(mask); }

int32_t mbf_GetMaskPos(uint32_t mask) { return mask == 0 ? 0 : std::countr_zero(mask); }

int32_t MGetMaskSize(uint32_t mask) { return mbf_GetMaskSize(mask); }

int32_t MGetMaskPos(uint32_t mask) { return mbf_GetMaskPos(mask); }

int32_t mbf_GetPixFormat(PixInfo* info) {
  if (info == nullptr) return QPX_BAD_PARAM;
  info->bitsPerPixel = storageBits(info->format);
  switch (colorModel(info->format)) {
    case ColorModel::rgb:
    case ColorModel::rgbAlpha:
      return packedRgbFamily(info);
    case ColorModel::yuv:
      return yuvFamily(info);
    case ColorModel::grey:
      if (info->bitsPerPixel != 8) return QPX_BAD_PARAM;
      info->family = kFamilyGrey;
      return QPX_OK;
    case ColorModel::semiPlanar:
      return semiPlanarFamily(info);
    default:
      return QPX_BAD_PARAM;
  }
}

int32_t mbf_GetRGBPixelInfo(PixInfo* info) {
  if (info == nullptr || info->family != kFamilyPackedRgb) return QPX_BAD_PARAM;
  info->planes = 1;
  info->bytesPerSample[0] = info->bitsPerPixel / 8;
  for (int p = 0; p < 3; ++p) info->xSampling[p] = info->ySampling[p] = 1;

  const uint32_t first = ((info->format >> 8) & 15) + 1;
  const uint32_t second = ((info->format >> 4) & 15) + 1;
  const uint32_t third = (info->format & 15) + 1;
  const bool firstLowest = (info->format & kReversedOrder) != 0;
  info->mask[0] = fieldMask(first, firstLowest ? 0 : second + third);
  info->mask[1] = fieldMask(second, firstLowest ? first : third);
  info->mask[2] = fieldMask(third, firstLowest ? first + second : 0);
  for (int i = 0; i < 3; ++i) {
    info->maskSize[i] = static_cast<uint32_t>(mbf_GetMaskSize(info->mask[i]));
    info->maskPos[i] = static_cast<uint32_t>(mbf_GetMaskPos(info->mask[i]));
  }
  return QPX_OK;
}

int32_t mbf_GetYUVPixelInfo(PixInfo* info) {
  if (info == nullptr || formatGroup(*info) == 0) return QPX_BAD_PARAM;
  if (info->family == kFamilyPackedRgb || info->family == kFamilyGrey) return QPX_BAD_PARAM;
  const bool packed = info->family == kFamilyYuyv;
  // Interleaved U and V: rows of the chroma plane are walked in luma columns.
  const int32_t across = chromaAcross(info->format) >> (isSemiPlanar(*info) ? 1 : 0);
  const int32_t down = chromaDown(info->format);
  info->planes = packed ? 1 : 3;
  info->xSampling[0] = info->ySampling[0] = 1;
  info->bytesPerSample[0] = 1;
  for (int p = 1; p < 3; ++p) {
    info->xSampling[p] = across;
    info->ySampling[p] = down;
    info->bytesPerSample[p] = packed ? 2 : 1;
  }
  return QPX_OK;
}

int32_t mbf_GetPixInfo(uint32_t format, PixInfo* info) {
  if (info == nullptr) return QPX_BAD_PARAM;
  *info = {};
  info->format = format;
  const int32_t result = mbf_GetPixFormat(info);
  if (result != QPX_OK) return result;
  if (info->family == kFamilyPackedRgb) return mbf_GetRGBPixelInfo(info);
  if (info->family != kFamilyGrey) return mbf_GetYUVPixelInfo(info);
  setGreyPixelInfo(info);
  return QPX_OK;
}
