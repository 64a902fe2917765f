#include "convert/kernels/members.h"

#include "convert/format_decoder.h"
#include "convert/record.h"

namespace qpx::convert::fast {
namespace {

constexpr FormatSet kVFirst = kInYv12 | kInYv422V | kInYv422H | kInYv444 | kInNv21 | kInNv61;

Order orderOf(FormatSet from, FormatSet to) {
  constexpr FormatSet kReversed = kInRedFirst | kVFirst;
  return ((from & kReversed) != 0) == ((to & kReversed) != 0) ? Order::same : Order::other;
}

SamplingSet samplingOf(const ConvRecord& record) {
  if (record.isUnit != 0) return kUnit;
  return (record.bilinearY != 0 ? kBilinear : kNearest) & ~kUnit;
}

OrientSet orientOf(const ConvRecord& record) {
  const uint32_t orient = record.swapXY | record.mirrorX << 1 | record.mirrorY << 2;
  return static_cast<OrientSet>(1u << (orient & 7));
}

bool isMultiple(const MRect& rect, int32_t block) {
  return ((rect.left | rect.top | rect.right | rect.bottom) & (block - 1)) == 0;
}

// Records with a colour table never have a mode above 2 at the same size.
bool allowsBlock(const ConvRecord& record, int32_t block) {
  if (block == 8) return true;
  if (record.useLut != 0 && record.isUnit != 0) return block == 1 || record.blockMode == kBlocksOf2;
  return block <= (record.blockMode >= kBlocksOf4 ? 4 : static_cast<int32_t>(record.blockMode));
}

bool keepsDither(const Member& member, const ConvRecord& record) {
  if (member.dither == Dither::cells || member.dither == Dither::pixels) return record.dither != 0;
  return member.dither == Dither::byRecord || record.dither == 0 || record.convKind != kYuvToRgb;
}

}  // namespace

Work workOf(const ConvRecord& record) {
  if (!canConvert(record)) return {};
  const FormatSet from = sourceFormat(record), to = destinationFormat(record);
  return {from, to, orderOf(from, to), samplingOf(record), orientOf(record)};
}

bool suits(const Member& member, const ConvRecord& record, const MRect& rect) {
  return allowsBlock(record, member.block) && isMultiple(rect, member.block) &&
         keepsDither(member, record);
}

}  // namespace qpx::convert::fast
