#include "convert/strip_walk.h"

#include <algorithm>

#include "convert/position.h"
#include "engine/address.h"

namespace qpx::convert {
namespace {

// Of both ends: the last pixel of a mirrored span is the first of the other.
void mirrorSpan(const FrameAxis& axis, int32_t* low, int32_t* high) {
  if (!axis.mirrored) return;
  const int32_t last = axis.across(*low);
  *low = axis.across(*high - 1);
  *high = last + 1;
}

MRect exchanged(const MRect& rect) { return {rect.top, rect.left, rect.bottom, rect.right}; }

struct StripPlanes {
  const uint8_t* src[3];
  int32_t srcPitch[3];
  uint8_t* dst[3];
  int32_t dstPitch[3];
};

// Steps and subsampling of the record are turned already; these are as the picture lies.
struct PlaneGrid {
  int32_t step, subX, subY;
};

PlaneGrid gridOf(const ConvRecord& record, int32_t plane) {
  const int32_t step = record.dstStep[plane];
  const bool swap = record.swapXY != 0;
  return {record.mirrorX != 0 ? -step : step, swap ? record.dstSubY[plane] : record.dstSubX[plane],
          swap ? record.dstSubX[plane] : record.dstSubY[plane]};
}

StripPlanes planesAt(const ConvRecord& record, const Planes& planes, const MRect& strip) {
  const int32_t x = record.mirrorX != 0 ? strip.right - 1 : strip.left;
  const int32_t y = record.mirrorY != 0 ? strip.bottom - 1 : strip.top;
  StripPlanes at = {};
  for (int32_t p = 0; p < 3; ++p) {
    const int32_t from = record.srcPlane.count > 1 ? p : 0, to = record.dstPlane.count > 1 ? p : 0;
    at.src[p] = planes.src[from];
    at.srcPitch[p] = planes.srcPitch[from];
    const int32_t pitch = planes.dstPitch[to];
    const PlaneGrid grid = gridOf(record, p);
    at.dst[p] = advance(advance(planes.dst[to], pitch, y / grid.subY), grid.step, x / grid.subX);
    at.dstPitch[p] =
        record.mirrorY != 0 ? static_cast<int32_t>(0u - static_cast<uint32_t>(pitch)) : pitch;
  }
  return at;
}

}  // namespace

MRect destinationRect(const ConvRecord& record) {
  const bool swap = record.swapXY != 0;
  const int32_t x = swap ? record.dstOrgY : record.dstOrgX;
  const int32_t y = swap ? record.dstOrgX : record.dstOrgY;
  return {x, y, x + static_cast<int32_t>(record.dst.width),
          y + static_cast<int32_t>(record.dst.height)};
}

MRect toFrame(const ConvRecord& record, MRect rect) {
  if (record.swapXY != 0) rect = exchanged(rect);
  mirrorSpan(frameX(record), &rect.left, &rect.right);
  mirrorSpan(frameY(record), &rect.top, &rect.bottom);
  return rect;
}

MRect fromFrame(const ConvRecord& record, MRect rect) {
  mirrorSpan(frameX(record), &rect.left, &rect.right);
  mirrorSpan(frameY(record), &rect.top, &rect.bottom);
  return record.swapXY != 0 ? exchanged(rect) : rect;
}

bool isInDestination(const MRect& rect, const ConvRecord& record) {
  const MRect all = toFrame(record, destinationRect(record));
  return !isEmpty(rect) && rect.left >= all.left && rect.top >= all.top &&
         rect.right <= all.right && rect.bottom <= all.bottom;
}

MRect intersect(const MRect& a, const MRect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

int32_t stripRows(const ConvRecord& record) { return record.params.blockHint == 4 ? 64 : 32; }

int32_t convertStrip(const ConvRecord& record, const Planes& planes, const MRect& strip,
                     ConvFrameFunction frame) {
  const StripPlanes at = planesAt(record, planes, strip);
  const MRect rect = toFrame(record, strip);
  return frame(&rect, at.dstPitch, at.srcPitch, at.dst, at.src, &record);
}

// No strip ends inside a chroma cell: the last pixel of a cell is the same however tall they are.
int32_t convertRect(const ConvRecord& record, const Planes& planes, const MRect& rect,
                    ConvFrameFunction frame) {
  const MRect all = intersect(rect, destinationRect(record));
  if (isEmpty(all)) return QPX_OK;
  if (record.swapXY == 0) return convertStrip(record, planes, all, frame);
  const int32_t rows = stripRows(record), cellRows = gridOf(record, 1).subY;
  for (MRect strip = all; strip.top < all.bottom; strip.top = strip.bottom) {
    strip.bottom = all.bottom;
    if (all.bottom - strip.top > rows) strip.bottom = (strip.top + rows) / cellRows * cellRows;
    const int32_t result = convertStrip(record, planes, strip, frame);
    if (result != QPX_OK) return result;
  }
  return QPX_OK;
}

}  // namespace qpx::convert
