#include "engine/plane_layout.h"

#include <algorithm>
#include <limits>

#include "engine/format_code.h"

namespace qpx {
namespace {

enum class PlaneClass { packed16, packed24, packed32, bytes8, grey, planar, nv21, nv12 };

struct KnownCode {
  uint32_t format;
  PlaneClass planes;
  AllocatorKind since;  // the plainest allocator that knows the code
};

constexpr KnownCode kKnownCodes[] = {
    {0x15000454, PlaneClass::packed16, AllocatorKind::basic},
    {0x15001454, PlaneClass::packed16, AllocatorKind::basic},
    {0x50000410, PlaneClass::packed16, AllocatorKind::basic},
    {0x50000610, PlaneClass::packed16, AllocatorKind::basic},
    {0x50001010, PlaneClass::packed16, AllocatorKind::extended},
    {0x16000555, PlaneClass::packed24, AllocatorKind::basic},
    {0x16000777, PlaneClass::packed24, AllocatorKind::basic},
    {0x16001555, PlaneClass::packed24, AllocatorKind::basic},
    {0x16001777, PlaneClass::packed24, AllocatorKind::basic},
    {0x50001000, PlaneClass::packed24, AllocatorKind::extended},
    {0x17000777, PlaneClass::packed32, AllocatorKind::basic},
    {0x17001777, PlaneClass::packed32, AllocatorKind::basic},
    {0x37000777, PlaneClass::packed32, AllocatorKind::basic},
    {0x37001777, PlaneClass::packed32, AllocatorKind::basic},
    {0x37004777, PlaneClass::packed32, AllocatorKind::extended},
    {0x37005777, PlaneClass::packed32, AllocatorKind::extended},
    {0x44000000, PlaneClass::bytes8, AllocatorKind::basic},
    {0x64000000, PlaneClass::grey, AllocatorKind::basic},
    {0x64001000, PlaneClass::grey, AllocatorKind::basic},
    {0x50000800, PlaneClass::planar, AllocatorKind::basic},
    {0x50001800, PlaneClass::planar, AllocatorKind::basic},
    {0x50000810, PlaneClass::planar, AllocatorKind::basic},
    {0x50001810, PlaneClass::planar, AllocatorKind::basic},
    {0x50000811, PlaneClass::planar, AllocatorKind::basic},
    {0x50000A11, PlaneClass::planar, AllocatorKind::basic},
    {0x50001811, PlaneClass::planar, AllocatorKind::basic},
    {0x50001A11, PlaneClass::planar, AllocatorKind::basic},
    {0x50000801, PlaneClass::planar, AllocatorKind::basic},
    {0x50001801, PlaneClass::planar, AllocatorKind::basic},
    {0x50000803, PlaneClass::planar, AllocatorKind::quarterChroma},
    {0x50000813, PlaneClass::planar, AllocatorKind::quarterChroma},
    {0x70000002, PlaneClass::nv21, AllocatorKind::basic},
    {0x70001002, PlaneClass::nv21, AllocatorKind::extended},
    {0x70000003, PlaneClass::nv12, AllocatorKind::extended},
    {0x70001003, PlaneClass::nv12, AllocatorKind::extended},
};

const KnownCode* findCode(uint32_t format, AllocatorKind kind) {
  for (const KnownCode& code : kKnownCodes) {
    if (code.format == format) return code.since <= kind ? &code : nullptr;
  }
  return nullptr;
}

// Sizes are reported in 32 bits. Checked plane by plane, since the sum of three could leave 64
// bits.
constexpr int64_t kMaxBytes = std::numeric_limits<int32_t>::max();

constexpr int64_t roundUp16(int64_t value) { return (value + 15) & ~int64_t{15}; }

// One plane: rows padded to 4 bytes.
int32_t layOutPacked(const MBitmap& bitmap, int64_t bytesPerPixel, PlaneLayout* layout) {
  const int64_t rowBytes = bitmap.width * bytesPerPixel;
  const int64_t pitch = bitmap.pitch[0] != 0 ? bitmap.pitch[0] : (rowBytes + 3) & ~int64_t{3};
  if (pitch > kMaxBytes) return QPX_NO_MEMORY;
  if (pitch < rowBytes) return QPX_BAD_PARAM;
  layout->pitch[0] = static_cast<int32_t>(pitch);
  layout->bytes = pitch * bitmap.height;
  return QPX_OK;
}

// One plane whose width and height are padded to 16.
int32_t layOutGrey(const MBitmap& bitmap, PlaneLayout* layout) {
  const int64_t pitch = bitmap.pitch[0] != 0 ? bitmap.pitch[0] : roundUp16(bitmap.width);
  if (pitch > kMaxBytes) return QPX_NO_MEMORY;
  if (pitch < bitmap.width) return QPX_BAD_PARAM;
  layout->pitch[0] = static_cast<int32_t>(pitch);
  layout->bytes = pitch * roundUp16(bitmap.height);
  return QPX_OK;
}

// A caller's pitches count only together; a chroma row has `chromaBytes` bytes.
int32_t choosePitches(const MBitmap& bitmap, int64_t chromaPitch, int64_t chromaBytes,
                      PlaneLayout* layout) {
  const int32_t* own = bitmap.pitch;
  const int64_t lumaPitch = roundUp16(bitmap.width);
  if (std::max(lumaPitch, chromaPitch) > kMaxBytes) return QPX_NO_MEMORY;
  const bool chosen = own[0] == 0 || own[1] == 0 || own[2] == 0;
  layout->pitch[0] = chosen ? static_cast<int32_t>(lumaPitch) : own[0];
  layout->pitch[1] = chosen ? static_cast<int32_t>(chromaPitch) : own[1];
  layout->pitch[2] = chosen ? static_cast<int32_t>(chromaPitch) : own[2];
  const bool wideEnough = layout->pitch[0] >= bitmap.width && layout->pitch[1] >= chromaBytes &&
                          layout->pitch[2] >= chromaBytes;
  return wideEnough ? QPX_OK : QPX_BAD_PARAM;
}

// Three planes one behind the other, all with the height padded to 16.
int32_t layOutPlanar(const MBitmap& bitmap, PlaneLayout* layout) {
  const int64_t across = chromaAcross(bitmap.format);
  const int64_t down = chromaDown(bitmap.format);
  const int64_t chromaBytes = (bitmap.width + across - 1) / across;
  const int32_t result =
      choosePitches(bitmap, roundUp16(bitmap.width) / across, chromaBytes, layout);
  if (result != QPX_OK) return result;
  const int64_t lumaRows = roundUp16(bitmap.height);
  const int64_t chromaRows = lumaRows / down;
  layout->offset[1] = layout->pitch[0] * lumaRows;
  if (layout->offset[1] > kMaxBytes) return QPX_NO_MEMORY;
  layout->offset[2] = layout->offset[1] + layout->pitch[1] * chromaRows;
  if (layout->offset[2] > kMaxBytes) return QPX_NO_MEMORY;
  layout->bytes = layout->offset[2] + layout->pitch[2] * chromaRows;
  return QPX_OK;
}

// Luma, then interleaved chroma of half the height; `first` is the plane whose samples come first.
int32_t layOutSemiPlanar(const MBitmap& bitmap, int first, PlaneLayout* layout) {
  const int64_t chromaBytes = (int64_t{bitmap.width} + 1) & ~int64_t{1};
  const int32_t result = choosePitches(bitmap, roundUp16(bitmap.width), chromaBytes, layout);
  if (result != QPX_OK) return result;
  const int64_t lumaRows = roundUp16(bitmap.height);
  layout->offset[first] = layout->pitch[0] * lumaRows;
  if (layout->offset[first] > kMaxBytes) return QPX_NO_MEMORY;
  layout->offset[3 - first] = layout->offset[first] + 1;
  // Both planes walk the one block, each by its own pitch.
  const int64_t chromaPitch = std::max(layout->pitch[1], layout->pitch[2]);
  layout->bytes = layout->offset[first] + chromaPitch * (lumaRows / 2);
  return QPX_OK;
}

int32_t layOutClass(const MBitmap& bitmap, PlaneClass planes, PlaneLayout* layout) {
  switch (planes) {
    case PlaneClass::packed16:
      return layOutPacked(bitmap, 2, layout);
    case PlaneClass::packed24:
      return layOutPacked(bitmap, 3, layout);
    case PlaneClass::packed32:
      return layOutPacked(bitmap, 4, layout);
    case PlaneClass::bytes8:
      return layOutPacked(bitmap, 1, layout);
    case PlaneClass::grey:
      return layOutGrey(bitmap, layout);
    case PlaneClass::planar:
      return layOutPlanar(bitmap, layout);
    case PlaneClass::nv21:
      return layOutSemiPlanar(bitmap, 2, layout);
    case PlaneClass::nv12:
      return layOutSemiPlanar(bitmap, 1, layout);
  }
  return QPX_UNSUPPORTED;
}

}  // namespace

int32_t layOutPlanes(const MBitmap& bitmap, AllocatorKind kind, PlaneLayout* layout) {
  const KnownCode* code = findCode(bitmap.format, kind);
  if (code == nullptr || bitmap.width < 1 || bitmap.height < 1) return QPX_UNSUPPORTED;
  const int32_t result = layOutClass(bitmap, code->planes, layout);
  if (result != QPX_OK) return result;
  return layout->bytes > kMaxBytes ? QPX_NO_MEMORY : QPX_OK;
}

}  // namespace qpx
