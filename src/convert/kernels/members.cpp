#include "convert/kernels/members.h"

#include "convert/position.h"

namespace qpx::convert::fast {
namespace {

constexpr FormatSet kVFirst = kInYv12 | kInYv422V | kInYv422H | kInYv444 | kInNv21 | kInNv61;

bool isInOrder(Order order, FormatSet from, FormatSet to) {
  if (order == Order::any) return true;
  const FormatSet reversed = kInRedFirst | kVFirst;
  const bool same = ((from & reversed) != 0) == ((to & reversed) != 0);
  return same == (order == Order::same);
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
  if (record.useLut != 0 && record.isUnit != 0) return block == 1 || record.blockMode == 2;
  return block <= (record.blockMode >= 3 ? 4 : static_cast<int32_t>(record.blockMode));
}

bool keepsDither(const Member& member, const ConvRecord& record) {
  if (member.dither == Dither::cells || member.dither == Dither::pixels) return record.dither != 0;
  return member.dither == Dither::byRecord || record.dither == 0 || record.convKind != 1;
}

}  // namespace

bool takes(const Member& member, const ConvRecord& record) {
  const FormatSet from = sourceFormat(record), to = destinationFormat(record);
  return (member.from & from) != 0 && (member.to & to) != 0 && isInOrder(member.order, from, to) &&
         (member.sampling & samplingOf(record)) != 0 && (member.orients & orientOf(record)) != 0 &&
         canConvert(record);
}

bool suits(const Member& member, const ConvRecord& record, const MRect& rect) {
  return allowsBlock(record, member.block) && isMultiple(rect, member.block) &&
         keepsDither(member, record);
}

}  // namespace qpx::convert::fast
