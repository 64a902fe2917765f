// How requests are cut up, so that the fast stages see aligned work alone.
#pragma once

#include <qpx/types.h>

#include <cstdint>

namespace qpx::postprocess {

// The align mode of contexts with three stages.
inline constexpr uint32_t kSplitRequests = 256;

constexpr int32_t roundDown(int32_t value, int32_t multiple) { return value / multiple * multiple; }

// Of a coordinate that is not below 0. May end behind every int32_t; an inner rectangle that does
// is empty.
constexpr int32_t roundUp(int32_t value, int32_t multiple) {
  const int64_t up = (int64_t{value} + multiple - 1) / multiple * multiple;
  return up > INT32_MAX ? INT32_MAX : static_cast<int32_t>(up);
}

// The largest rectangle in `rect` whose edges are multiples; may be empty.
constexpr MRect innerRect(const MRect& rect, int32_t across, int32_t down) {
  return {roundUp(rect.left, across), roundUp(rect.top, down), roundDown(rect.right, across),
          roundDown(rect.bottom, down)};
}

struct Piece {
  int32_t stage;  // index in the context
  MRect rect;
};

// The middle of a request, which may be empty, and the stage it is for: the widest whose blocks
// fit.
constexpr Piece innerPiece(const MRect& request, bool takesWideBlocks) {
  const MRect wide = innerRect(request, 16, 8);
  if (takesWideBlocks && wide.left < wide.right && wide.top < wide.bottom) return {2, wide};
  return {1, innerRect(request, 2, 2)};
}

// What is left around `inner`: top, bottom, left and right, any of them empty. With an empty
// `inner` the first is all of it.
struct Margins {
  MRect part[4];
};

constexpr Margins marginsOf(const MRect& rect, const MRect& inner) {
  if (inner.left >= inner.right || inner.top >= inner.bottom) return {{rect, {}, {}, {}}};
  return {{
      {rect.left, rect.top, rect.right, inner.top},
      {rect.left, inner.bottom, rect.right, rect.bottom},
      {rect.left, inner.top, inner.left, inner.bottom},
      {inner.right, inner.top, rect.right, inner.bottom},
  }};
}

}  // namespace qpx::postprocess
