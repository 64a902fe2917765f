// Allocation and small services of image records.
#include <kesbase.h>
#include <qpx/image.h>

#include <cstddef>

#include "engine/plane_layout.h"

namespace qpx {
namespace {

constexpr int64_t kSpareBytes = 16;
constexpr uint8_t kExtendedFill = 0x77;

struct Allocator {
  AllocatorKind kind;
  int64_t spareBytes;
  uint8_t fill;
  bool clearsUnusedPitches;
};

int32_t allocatePlanes(MBitmap* bitmap, const Allocator& allocator, int32_t* size) {
  if (bitmap == nullptr) return QPX_BAD_PARAM;
  PlaneLayout layout;
  const int32_t result = layOutPlanes(*bitmap, allocator.kind, &layout);
  if (result != QPX_OK) return result;

  const size_t blockBytes = static_cast<size_t>(layout.bytes + allocator.spareBytes);
  uint8_t* block = static_cast<uint8_t*>(MMemAlloc(nullptr, blockBytes));
  if (block == nullptr) return QPX_NO_MEMORY;
  MMemSet(block, allocator.fill, blockBytes);
  MMemFree(nullptr, bitmap->plane[0]);

  const bool onePlane = layout.offset[1] < 0;
  for (int p = 0; p < 3; ++p) {
    bitmap->plane[p] = layout.offset[p] < 0 ? nullptr : block + layout.offset[p];
    if (p == 0 || !onePlane || allocator.clearsUnusedPitches) bitmap->pitch[p] = layout.pitch[p];
  }
  if (size != nullptr) *size = static_cast<int32_t>(layout.bytes);
  return QPX_OK;
}

bool hasFourByteAlpha(uint32_t format) {
  return UTIL_GetPixelBytesEX(format) == 4 || format == 0x37004777;
}

// Off-screen numbers of the formats that have one, and which of the planes go along.
struct OffscreenFormat {
  uint32_t format;
  uint32_t number;
  int sourcePlane[3];  // plane of the image record, -1 for none
};

constexpr OffscreenFormat kOffscreenFormats[] = {
    {QPX_FORMAT_RGB565, 261, {0, 1, 2}}, {QPX_FORMAT_BGR24, 513, {0, 1, 2}},
    {QPX_FORMAT_RGB24, 516, {0, 1, 2}},  {QPX_FORMAT_RGBA32, 770, {0, 1, 2}},
    {QPX_FORMAT_BGRA32, 772, {0, 1, 2}}, {QPX_FORMAT_YUYV, 1281, {0, -1, -1}},
    {QPX_FORMAT_I420, 1537, {0, 1, 2}},  {QPX_FORMAT_NV21, 2050, {0, 2, -1}},
    {0x70001002, 2050, {0, 2, -1}},
};

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t MBitmapAlloc(MBitmap* bitmap) {
  return allocatePlanes(bitmap, {AllocatorKind::basic, 0, 0, true}, nullptr);
}

int32_t MBitmapAllocEx(MBitmap* bitmap, int32_t* size) {
  return allocatePlanes(bitmap, {AllocatorKind::extended, kSpareBytes, kExtendedFill, false}, size);
}

int32_t MBitmapAlloc2(MBitmap* bitmap) {
  return allocatePlanes(bitmap, {AllocatorKind::extended, kSpareBytes, 0, false}, nullptr);
}

int32_t UTILS_MdBitmapAlloc(MBitmap* bitmap) {
  return allocatePlanes(bitmap, {AllocatorKind::quarterChroma, 0, 0, false}, nullptr);
}

int32_t MBitmapFree(MBitmap* bitmap) {
  if (bitmap == nullptr) return QPX_BAD_PARAM;
  MMemFree(nullptr, bitmap->plane[0]);
  *bitmap = {};
  return QPX_OK;
}

int32_t MBitmapFree2(MBitmap* bitmap) { return MBitmapFree(bitmap); }

int32_t UTIL_GetPixelBytesEX(uint32_t format) {
  switch (format) {
    case 0x15000333:
    case 0x15000444:
    case 0x15000454:
    case 0x15001333:
    case 0x15001444:
    case 0x15001454:
    case 0x25000444:
    case 0x65000000:
      return 2;
    case 0x16000555:
    case 0x16000777:
    case 0x16001555:
    case 0x16001777:
    case 0x26000444:
      return 3;
    case 0x17000777:
    case 0x17001777:
    case 0x37000777:
    case 0x37001777:
    case 0x37005777:
      return 4;
    case 0x64000000:
      return 1;
    default:
      return 0;
  }
}

MBitmap* UTIL_MBitmapCreate(int32_t width, int32_t height, uint32_t format) {
  const bool hasPixels = format != 0;
  const int64_t bits = int64_t{8} * UTIL_GetPixelBytesEX(format);
  const int32_t leastSide = hasPixels ? 1 : 0;
  if (width < leastSide || height < leastSide || (hasPixels && bits == 0)) return nullptr;
  const int64_t pitch = (width * bits + 31) / 32 * 4;
  if (pitch > INT32_MAX || pitch * height > INT32_MAX) return nullptr;

  MBitmap* bitmap = static_cast<MBitmap*>(MMemAlloc(nullptr, sizeof(MBitmap)));
  if (bitmap == nullptr) return nullptr;
  *bitmap = {format, width, height, {static_cast<int32_t>(pitch), 0, 0}, {}};
  if (!hasPixels) return bitmap;

  const size_t bytes = static_cast<size_t>(pitch * height);
  bitmap->plane[0] = static_cast<uint8_t*>(MMemAlloc(nullptr, bytes));
  if (bitmap->plane[0] == nullptr) {
    MMemFree(nullptr, bitmap);
    return nullptr;
  }
  MMemSet(bitmap->plane[0], 0, bytes);
  return bitmap;
}

void UTIL_MBitmapFree(MBitmap* bitmap) {
  if (bitmap == nullptr) return;
  MMemFree(nullptr, bitmap->plane[0]);
  MMemFree(nullptr, bitmap);
}

int32_t MBitmapSetAlpha(MBitmap* bitmap, uint8_t value) {
  if (bitmap == nullptr || bitmap->plane[0] == nullptr) return QPX_BAD_PARAM;
  if (!hasFourByteAlpha(bitmap->format)) return QPX_UNSUPPORTED;
  for (int32_t y = 0; y < bitmap->height; ++y) {
    uint8_t* row = bitmap->plane[0] + ptrdiff_t{bitmap->pitch[0]} * y;
    for (ptrdiff_t x = 0; x < bitmap->width; ++x) row[4 * x + 3] = value;
  }
  return QPX_OK;
}

int32_t BuildQEMOOFFSCREEN(const MBitmap* bitmap, QEMOOFFSCREEN* offscreen) {
  if (bitmap == nullptr || offscreen == nullptr) return QPX_BAD_PARAM;
  for (const OffscreenFormat& known : kOffscreenFormats) {
    if (known.format != bitmap->format) continue;
    offscreen->format = known.number;
    offscreen->width = bitmap->width;
    offscreen->height = bitmap->height;
    for (int p = 0; p < 3; ++p) {
      const int source = known.sourcePlane[p];
      offscreen->plane[p] = source < 0 ? nullptr : bitmap->plane[source];
      offscreen->pitch[p] = bitmap->pitch[p];
    }
    return QPX_OK;
  }
  return QPX_UNSUPPORTED;
}
