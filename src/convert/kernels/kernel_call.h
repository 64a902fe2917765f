// From the arguments of an exported kernel or frame to a conversion.
#pragma once

#include <qpx/convert_kernels.h>

#include "convert/kernels/members.h"

namespace qpx::convert::fast {

// The planes and pitches of a call.
struct Pictures {
  const MRect* rect;
  const uint8_t* const* srcPlanes;
  uint8_t* const* dstPlanes;
  const int32_t* srcPitch;
  const int32_t* dstPitch;
};

// Whether no argument is null, nor any plane that the record's formats have.
bool isComplete(const Pictures& pictures, const ConvRecord* record);

struct Steps {
  int32_t firstSy;
  uint32_t stepX;
  uint32_t stepY;
};

// What the record says of them.
Steps stepsOf(const ConvRecord& record, const MRect& rect);

// A kernel by its name: false, with nothing written, where the record's conversion is not the
// name's.
bool runKernel(const Member& member, const Pictures& pictures, const Steps& steps,
               const ConvRecord* record);

// The subsampling of both sides' planes, as some kernels are handed it.
struct Subsamplings {
  const int32_t* srcX;
  const int32_t* srcY;
  const int32_t* dstX;
  const int32_t* dstY;
};

// Kernels that check for themselves what they do: 0, or 3 for what is not theirs.
int32_t runSubsampled(const Member& member, const Pictures& pictures,
                      const Subsamplings& subsamplings, const ConvRecord* record);
int32_t runPaired(const Member& member, const Pictures& pictures, int32_t isNV21,
                  const ConvRecord* record);

}  // namespace qpx::convert::fast
