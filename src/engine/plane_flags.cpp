#include "engine/plane_flags.h"

#include <algorithm>
#include <cstring>

#include "engine/address.h"

namespace qpx {
namespace {

struct Columns {
  ptrdiff_t begin;
  ptrdiff_t end;
};

// Sample columns of plane p that belong to pixels of `out`, chroma of border blocks included.
Columns planeColumns(const Stage& head, int p, const MRect& out) {
  const PixInfo& pix = head.pix;
  if (p > 0 && isSemiPlanar(pix)) {
    // Whole pairs, but never in front of the band, where the plane of a tile may begin.
    return {std::max(out.left & ~1, head.bandLeft), ptrdiff_t{divideUp(out.right, 2)} * 2};
  }
  const int32_t across = pix.xSampling[p];
  return {out.left / across, divideUp(out.right, across)};
}

template <typename RowAction>
void forPlaneRows(const Stage& head, int p, const MRect& out, const RowAction& action) {
  const QPXBand& band = head.bands[0];
  const int32_t down = head.pix.ySampling[p];
  for (int32_t y = out.top; y < out.bottom; ++y) {
    const bool newRow = y == out.top || y % down == 0;
    if (!newRow) continue;
    action(chromaRow(band.outRows[p], y, down), chromaRow(band.inRows[p], y, down));
  }
}

void fillPlane(const Stage& head, int p, const MRect& out) {
  const Columns columns = planeColumns(head, p, out);
  const ptrdiff_t step = columnStep(head.pix, p);
  const size_t bytes = static_cast<size_t>((columns.end - columns.begin) * step);
  forPlaneRows(head, p, out, [&](uint8_t* to, const uint8_t*) {
    std::memset(to + columns.begin * step, head.bands[0].fill[p], bytes);
  });
}

void copyPlane(const Stage& head, int p, const MRect& out) {
  const Columns columns = planeColumns(head, p, out);
  const ptrdiff_t step = columnStep(head.pix, p);
  const size_t bytes = static_cast<size_t>((columns.end - columns.begin) * step);
  forPlaneRows(head, p, out, [&](uint8_t* to, const uint8_t* from) {
    std::memmove(to + columns.begin * step, from + columns.begin * step, bytes);
  });
}

// NV21 and NV12 have both chroma flags meet in one plane, which starts at the lower of the two
// pointers.
int firstChromaPlane(const PixInfo& pix) { return pix.family == kFamilyNv21 ? 2 : 1; }

uint32_t flagsOfPlane(const Stage& head, int p) {
  const uint32_t flags = head.bands[0].planeFlags;
  constexpr uint32_t kPlane0 = QPX_FILL_PLANE0 | QPX_COPY_PLANE0;
  if (p == 0 || !isSemiPlanar(head.pix)) return (flags >> p) & kPlane0;
  if (p != firstChromaPlane(head.pix)) return 0;
  return ((flags >> 1) | (flags >> 2)) & kPlane0;
}

}  // namespace

void applyPlaneFlags(const Stage& head, const MRect& out) {
  for (int p = 0; p < head.pix.planes; ++p) {
    const uint32_t flags = flagsOfPlane(head, p);
    const bool samePlane = head.plane[kInputPlane + p] == head.plane[kOutputPlane + p];
    if ((flags & QPX_COPY_PLANE0) != 0 && !samePlane) {
      copyPlane(head, p, out);
    } else if ((flags & QPX_FILL_PLANE0) != 0) {
      fillPlane(head, p, out);
    }
  }
}

}  // namespace qpx
