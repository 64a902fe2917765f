// The arguments of one conversion of a rectangle, as all kernels take them.
#pragma once

#include <qpx/convert_record.h>

#include <cstdint>
#include <limits>

namespace qpx::convert::fast {

// Elements of a row that are worked on at a time, and rows of a rectangle that is turned on its
// side. Both are even, so that no chroma cell straddles two runs; buffers of this size stay in the
// first-level cache and on small stacks.
inline constexpr int32_t kRun = 512;
inline constexpr int32_t kTileColumns = 64;
inline constexpr int32_t kBandRows = 16;

// The length of runs that need no buffer.
inline constexpr int32_t kWholeRow = std::numeric_limits<int32_t>::max();

struct Call {
  MRect rect;  // in the frame of the source: neither turned nor mirrored
  const uint8_t* const* srcPlanes;
  uint8_t* const* dstPlanes;  // each at the sample of the rectangle's left top pixel
  const int32_t* srcPitch;
  const int32_t* dstPitch;
  int32_t firstSy;  // 16.16 source row, one step before that of the rectangle's first row
  uint32_t stepX;
  uint32_t stepY;
  const ConvRecord* record;
  bool keepsRowsInSource = false;  // rows are held to the source rectangle, not to the clip
};

}  // namespace qpx::convert::fast
