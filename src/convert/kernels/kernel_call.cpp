#include "convert/kernels/kernel_call.h"

#include <algorithm>

#include "convert/format_decoder.h"
#include "convert/kernels/positions.h"
#include "convert/strip_walk.h"

namespace qpx::convert::fast {
namespace {

Call callOf(const Pictures& pictures, const Steps& steps, const ConvRecord& record) {
  return {*pictures.rect,    pictures.srcPlanes, pictures.dstPlanes,
          pictures.srcPitch, pictures.dstPitch,  steps.firstSy,
          steps.stepX,       steps.stepY,        &record};
}

int32_t convertByRecord(const Pictures& pictures, const ConvRecord& record) {
  const Steps steps = stepsOf(record, *pictures.rect);
  return convert(callOf(pictures, steps, record)) ? QPX_OK : QPX_UNSUPPORTED;
}

// Rectangle, block, and that no colour table is in use: what a kernel of YUV2YUV_Fast asks for.
bool ownsCall(const Member& member, const MRect& rect, const ConvRecord& record) {
  return record.useLut == 0 && takes(member, workOf(record)) && suits(member, record, rect) &&
         isInDestination(rect, record);
}

// Where a packed destination is turned, its three places differ.
int32_t targetPlanes(const ConvRecord& record) {
  return record.dst.klass == kRgb || record.dst.klass == kGrey ? 1 : 3;
}

bool hasPlanes(const Pictures& pictures, const ConvRecord& record) {
  const auto isThere = [](const uint8_t* plane) { return plane != nullptr; };
  return std::all_of(pictures.srcPlanes,
                     pictures.srcPlanes + std::min<uint32_t>(record.srcPlane.count, 3), isThere) &&
         std::all_of(pictures.dstPlanes, pictures.dstPlanes + targetPlanes(record), isThere);
}

bool matches(const int32_t* given, const int32_t (&own)[3]) {
  return given[1] == own[1] && given[2] == own[2];
}

}  // namespace

bool isComplete(const Pictures& pictures, const ConvRecord* record) {
  return pictures.rect != nullptr && pictures.srcPlanes != nullptr &&
         pictures.dstPlanes != nullptr && pictures.srcPitch != nullptr &&
         pictures.dstPitch != nullptr && record != nullptr && hasPlanes(pictures, *record);
}

Steps stepsOf(const ConvRecord& record, const MRect& rect) {
  return {rowBefore(record, rect.top), record.stepX, record.stepY};
}

bool runKernel(const Member& member, const Pictures& pictures, const Steps& steps,
               const ConvRecord* record) {
  if (!isComplete(pictures, record) || !takes(member, workOf(*record)) ||
      !isInDestination(*pictures.rect, *record) || steps.stepX != record->stepX ||
      steps.stepY != record->stepY) {
    return false;
  }
  return convert(callOf(pictures, steps, *record), member.dither);
}

int32_t runSubsampled(const Member& member, const Pictures& pictures,
                      const Subsamplings& subsamplings, const ConvRecord* record) {
  if (!isComplete(pictures, record) || subsamplings.srcX == nullptr ||
      subsamplings.srcY == nullptr || subsamplings.dstX == nullptr ||
      subsamplings.dstY == nullptr) {
    return QPX_BAD_PARAM;
  }
  const bool asRecorded =
      matches(subsamplings.srcX, record->srcSubX) && matches(subsamplings.srcY, record->srcSubY) &&
      matches(subsamplings.dstX, record->dstSubX) && matches(subsamplings.dstY, record->dstSubY);
  if (!asRecorded || !ownsCall(member, *pictures.rect, *record)) return QPX_UNSUPPORTED;
  return convertByRecord(pictures, *record);
}

int32_t runPaired(const Member& member, const Pictures& pictures, int32_t isNV21,
                  const ConvRecord* record) {
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  const bool vFirst = (destinationFormat(*record) & (kInNv21 | kInNv61)) != 0;
  if ((isNV21 != 0) != vFirst || !ownsCall(member, *pictures.rect, *record)) {
    return QPX_UNSUPPORTED;
  }
  return convertByRecord(pictures, *record);
}

}  // namespace qpx::convert::fast
