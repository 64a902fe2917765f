#include "convert/kernels/positions.h"

#include <algorithm>

namespace qpx::convert::fast {
namespace {

int64_t wideRowBefore(const ConvRecord& record, int32_t top) {
  return sourceYOf(record, top) - record.stepY;
}

// A row handed over in 32 bits, in full: far down a tall picture its upper bits are lost.
int64_t widened(int32_t firstSy, const ConvRecord& record, int32_t top) {
  const int64_t usual = wideRowBefore(record, top);
  return usual +
         static_cast<int32_t>(static_cast<uint32_t>(firstSy) - static_cast<uint32_t>(usual));
}

bool isInside(const MRect& rect, const ConvRecord& record, int32_t shiftX, int32_t shiftY) {
  return rect.left + shiftX >= record.clipL && rect.top + shiftY >= record.clipT &&
         rect.right + shiftX <= record.clipR && rect.bottom + shiftY <= record.clipB;
}

}  // namespace

Positions::Positions(const Call& call)
    : record_(*call.record),
      bilinear_(record_.bilinearY != 0),
      direct_(false),
      shiftX_(record_.srcOrgX - record_.dstOrgX),
      shiftY_(record_.srcOrgY - record_.dstOrgY),
      top_(call.rect.top),
      leastSy_(record_.clipT),
      firstRow_(record_.clipT),
      lastRow_(record_.clipB - 1),
      firstSy_(widened(call.firstSy, record_, top_)),
      stepX_(call.stepX),
      stepY_(call.stepY) {
  direct_ =
      stepX_ == kFixedOne && stepY_ == kFixedOne && isInside(call.rect, record_, shiftX_, shiftY_);
  if (!call.keepsRowsInSource) return;
  firstRow_ = record_.srcOrgY;
  lastRow_ = firstRow_ + static_cast<int32_t>(record_.src.height) - 1;
  leastSy_ = int64_t{firstRow_} * kFixedOne;
}

// As sourceRow, where rows are held to the clip.
SourcePair Positions::sampledRow(int32_t y) const {
  const int64_t sy = firstSy_ + int64_t{stepY_} * (int64_t{y} - top_ + 1);
  if (sy < leastSy_) return {firstRow_, firstRow_, 0};
  const auto row = static_cast<int32_t>(sy >> 16);
  if (row >= lastRow_) return {lastRow_, lastRow_, 0};
  const int32_t fraction = bilinear_ ? static_cast<int32_t>(sy & 0xFFFF) : 0;
  return {row, fraction != 0 ? row + 1 : row, fraction};
}

// As sourceColumn.
void Positions::columns(int32_t x, int32_t count, int32_t* place, int32_t* fraction) const {
  const int32_t begin = std::clamp(record_.validX0, x, x + count);
  const int32_t end = std::clamp(record_.validX1 - 1, begin, x + count);
  for (int32_t i = 0; i < begin - x; ++i) {
    place[i] = record_.clipL;
    fraction[i] = 0;
  }
  const int32_t mask = bilinear_ ? 0xFFFF : 0;
  int64_t sx = sourcePosition(record_.srcOrgX, stepX_, begin - record_.dstOrgX, bilinear_);
  for (int32_t i = begin - x; i < end - x; ++i, sx += stepX_) {
    place[i] = static_cast<int32_t>(sx >> 16);
    fraction[i] = static_cast<int32_t>(sx & mask);
  }
  for (int32_t i = end - x; i < count; ++i) {
    place[i] = record_.clipR - 1;
    fraction[i] = 0;
  }
}

int32_t rowBefore(const ConvRecord& record, int32_t top) {
  return static_cast<int32_t>(static_cast<uint32_t>(wideRowBefore(record, top)));
}

}  // namespace qpx::convert::fast
