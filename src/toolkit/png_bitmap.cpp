// PNG files into image records.
#include "toolkit/png_bitmap.h"

#include <kesbase.h>
#include <qpx/image.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "platform/stream_record.h"
#include "toolkit/png_decoder.h"

struct QPXPng {
  PngHandle* decoder;
  MStreamHandle* stream;
};

static_assert(sizeof(void*) != 4 || sizeof(QPXPng) == 8);

namespace qpx {
namespace {

constexpr int32_t kNoMemoryForPair = -1;
constexpr int32_t kNoTarget = -1;
constexpr int32_t kNoBitmap = -2;

// Bytes that a row of the file may have. A pitch may span more than the bitmap, which can be a part
// of a larger picture.
int64_t rowRoom(const MBitmap& bitmap) {
  const int64_t pitch = std::abs(int64_t{bitmap.pitch[0]});
  const int64_t pixelBytes = UTIL_GetPixelBytesEX(bitmap.format);
  return pixelBytes == 0 ? pitch : std::min(pitch, bitmap.width * pixelBytes);
}

bool isExhaustion(int32_t result) { return result == kNoMemoryForPair || result == QPX_NO_MEMORY; }

}  // namespace

DecodedPng decodePng(const void* data, int32_t size) {
  // The block is only read from.
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(const_cast<void*>(data), size);
  MStreamSeek(stream, kFromStart, 0);
  QPXPng* png = nullptr;
  const int32_t created = QPX_png_create(stream, &png);
  PngInfo info = {};
  QPX_png_get_property(png, QPX_PNG_PROPERTY_INFO, &info);
  MBitmap* const bitmap = UTIL_MBitmapCreate(static_cast<int32_t>(info.width),
                                             static_cast<int32_t>(info.height), info.format);
  const int32_t read = QPX_png_decode(png, bitmap);
  QPX_png_destroy(png);
  MStreamClose(stream);
  const bool exhausted =
      stream == nullptr || bitmap == nullptr || isExhaustion(created) || isExhaustion(read);
  return {bitmap, exhausted};
}

}  // namespace qpx

using namespace qpx;

int32_t QPX_DecodePNG(const void* data, int32_t size, MBitmap** bitmapOut) {
  if (bitmapOut == nullptr) return kNoTarget;
  MBitmap* const bitmap = decodePng(data, size).bitmap;
  if (bitmap == nullptr) return kNoBitmap;
  *bitmapOut = bitmap;
  return QPX_OK;
}

int32_t QPX_png_create(MStreamHandle* stream, QPXPng** handleOut) {
  if (stream == nullptr || handleOut == nullptr) return QPX_PNG_REFUSED;
  QPXPng* const png = newRecord<QPXPng>();
  if (png == nullptr) return kNoMemoryForPair;
  png->stream = stream;
  const int32_t result = PNG_DecodeInit(stream, &png->decoder);
  if (result != QPX_OK) {
    MMemFree(nullptr, png);
    return result;
  }
  PNG_DecodeSetRGBInvert(png->decoder);
  *handleOut = png;
  return QPX_OK;
}

int32_t QPX_png_destroy(QPXPng* handle) {
  if (handle == nullptr) return QPX_PNG_REFUSED;
  const int32_t result = PNG_DecodeUninit(handle->decoder);
  if (result == QPX_OK) MMemFree(nullptr, handle);
  return result;
}

int32_t QPX_png_get_property(QPXPng* handle, int32_t property, PngInfo* info) {
  if (handle == nullptr || info == nullptr || property != QPX_PNG_PROPERTY_INFO) {
    return QPX_PNG_REFUSED;
  }
  const int32_t result = PNG_DecodeGetPngInfo(handle->decoder, info);
  if (result != QPX_OK) return result;
  return info->format == 0 ? QPX_PNG_REFUSED : QPX_OK;
}

int32_t QPX_png_decode(QPXPng* handle, MBitmap* bitmap) {
  if (handle == nullptr || bitmap == nullptr || bitmap->plane[0] == nullptr) return QPX_PNG_REFUSED;
  if (bitmap->height < 1) return QPX_OK;
  PngInfo info = {};
  PNG_DecodeGetPngInfo(handle->decoder, &info);
  if (info.rowBytes > rowRoom(*bitmap)) return QPX_PNG_REFUSED;
  for (int32_t y = 0; y < bitmap->height; ++y) {
    uint8_t* const row = bitmap->plane[0] + ptrdiff_t{bitmap->pitch[0]} * y;
    int32_t line = 0;
    int32_t done = 0;
    const int32_t result = PNG_DecodeScanLines(handle->decoder, &row, 1, &line, &done);
    if (result != QPX_OK) return result;
  }
  return QPX_OK;
}
