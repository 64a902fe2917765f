#include "toolkit/planar_rows.h"

#include <algorithm>
#include <cstring>

namespace qpx {

void PlanarFormat::split(const uint8_t* pixels, ptrdiff_t count, const PlanarRow& to) const {
  if (pixelBytes_ == 3) {
    rows_.deinterleave3(pixels, count, to.plane[0], to.plane[1], to.plane[2]);
    return;
  }
  // Alpha has nowhere to go here; it is read again when the row is stored.
  constexpr ptrdiff_t kPart = 1024;
  uint8_t unused[kPart];
  for (ptrdiff_t done = 0; done < count; done += kPart) {
    const PlanarRow part = to.from(done);
    rows_.deinterleave4(pixels + done * 4, std::min(kPart, count - done), part.plane[0],
                        part.plane[1], part.plane[2], unused);
  }
}

void PlanarFormat::load(const uint8_t* row, int32_t left, int32_t right, int32_t margin,
                        const PlanarRow& to) const {
  const int32_t first = std::max(left - margin, 0);
  const int32_t last = static_cast<int32_t>(std::min<int64_t>(int64_t{right} + margin, width_));
  const ptrdiff_t before = first - (ptrdiff_t{left} - margin);
  const ptrdiff_t count = ptrdiff_t{last} - first;
  const ptrdiff_t after = ptrdiff_t{right} + margin - last;
  split(row + first * pixelBytes_, count, to.from(before));
  for (uint8_t* plane : to.plane) {
    std::memset(plane, plane[before], static_cast<size_t>(before));
    std::memset(plane + before + count, plane[before + count - 1], static_cast<size_t>(after));
  }
}

void PlanarFormat::store(const PlanarRow& from, const uint8_t* source, uint8_t* row, int32_t left,
                         int32_t right) const {
  const ptrdiff_t count = ptrdiff_t{right} - left;
  uint8_t* to = row + left * pixelBytes_;
  const auto& [p0, p1, p2] = from.plane;
  if (pixelBytes_ == 3) {
    rows_.interleave3(p0, p1, p2, count, to);
    return;
  }
  const uint8_t* pixels = source + left * pixelBytes_;
  constexpr ptrdiff_t kPart = 512;
  uint8_t unused[3][kPart];
  for (ptrdiff_t done = 0; done < count; done += kPart) {
    rows_.deinterleave4(pixels + done * 4, std::min(kPart, count - done), unused[0], unused[1],
                        unused[2], alpha_ + done);
  }
  rows_.interleave4(p0, p1, p2, alpha_, count, to);
}

}  // namespace qpx
