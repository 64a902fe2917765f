// From a rectangle of the destination to the calls of a frame that convert it.
#pragma once

#include <qpx/convert.h>

#include <cstdint>

namespace qpx::convert {

// Planes of both sides at the origins of their pictures. Where a format has one plane only the
// first of each three counts.
struct Planes {
  const uint8_t* src[3] = {};
  int32_t srcPitch[3] = {};
  uint8_t* dst[3] = {};
  int32_t dstPitch[3] = {};
};

// The rectangle that the record converts to, in destination coordinates.
MRect destinationRect(const ConvRecord& record);

// A rectangle of the destination in the unrotated frame, and back.
MRect toFrame(const ConvRecord& record, MRect rect);
MRect fromFrame(const ConvRecord& record, MRect rect);

// Whether a rectangle of the frame, not empty, lies in the destination.
bool isInDestination(const MRect& rect, const ConvRecord& record);

MRect intersect(const MRect& a, const MRect& b);
constexpr bool isEmpty(const MRect& rect) {
  return rect.left >= rect.right || rect.top >= rect.bottom;
}

// Rows of a strip where the conversion exchanges X and Y: transposed writes stay in a window.
int32_t stripRows(const ConvRecord& record);

// Calls `frame` for one strip, a rectangle within destinationRect(). The frame gets the planes of
// the destination at the strip's first pixel in its own order (and at the chroma cell of it), with
// the byte offsets of packed formats not added; pitches negated for a vertical mirror; the planes
// of the source as they are; and, on both sides, the first plane and pitch in all three places
// where the format has one.
int32_t convertStrip(const ConvRecord& record, const Planes& planes, const MRect& strip,
                     ConvFrameFunction frame);

// Cuts `rect` to the destination rectangle and converts it, strip by strip where X and Y are
// exchanged. Returns 0, or the first other answer of the frame.
int32_t convertRect(const ConvRecord& record, const Planes& planes, const MRect& rect,
                    ConvFrameFunction frame);

}  // namespace qpx::convert
