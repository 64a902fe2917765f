// Rectangles, from one image to the other.
#include <qpx/postprocess.h>

#include <algorithm>

#include "convert/position.h"
#include "convert/strip_walk.h"

namespace qpx::postprocess {
namespace {

constexpr MRect kNowhere = {};

bool isAllZero(const MRect& rect) {
  return rect.left == 0 && rect.top == 0 && rect.right == 0 && rect.bottom == 0;
}

struct Span {
  int64_t low, high;
};

// One axis of the frame: source columns and frame columns, or rows and rows.
struct Axis {
  int64_t step;
  int64_t srcOrigin;
  int64_t dstOrigin;
  int64_t dstExtent;
  bool bilinear;

  int64_t extra() const { return bilinear ? 3 : 1; }

  // Frame coordinates that a span of the source comes to. Bilinear: from the first whose position
  // lies at its low end or behind it. Nearest: from the last that lies there or before it, so that
  // the division is the same as at the far end. What the first column makes begins at the edge.
  Span toDestination(const Span& src) const {
    const int64_t half = bilinear ? step / 2 + convert::kFixedHalf : 0;
    const int64_t low = (src.low - srcOrigin) * convert::kFixedOne,
                  high = (src.high - srcOrigin) * convert::kFixedOne;
    const int64_t first =
        low <= 0 ? 0 : convert::floorDivide(bilinear ? half + low - 1 : low, step);
    const int64_t behind = convert::floorDivide(half + high - 1, step) + extra();
    return {dstOrigin + std::clamp<int64_t>(first, 0, dstExtent),
            dstOrigin + std::clamp<int64_t>(behind, 0, dstExtent)};
  }

  Span toSource(const Span& dst) const {
    const int64_t low = dst.low - dstOrigin, high = dst.high - dstOrigin;
    const int64_t before = step / 2 + convert::kFixedHalf;
    const int64_t first = bilinear ? step * (low + 1) - before : step * low;
    const int64_t last = bilinear ? step * high - before : step * high - 1;
    return {srcOrigin + (first >> 16), srcOrigin + (last >> 16) + extra()};
  }
};

Axis axisX(const ConvRecord& record) {
  return {record.stepX, record.srcOrgX, record.dstOrgX, convert::frameX(record).extent,
          record.bilinearY != 0};
}

Axis axisY(const ConvRecord& record) {
  return {record.stepY, record.srcOrgY, record.dstOrgY, convert::frameY(record).extent,
          record.bilinearY != 0};
}

// Everything that may be read: the source rectangle and the clip rectangle, which edges repeat.
MRect readableRect(const ConvRecord& record) {
  const int32_t right = record.srcOrgX + static_cast<int32_t>(record.src.width);
  const int32_t bottom = record.srcOrgY + static_cast<int32_t>(record.src.height);
  return {std::min(record.srcOrgX, record.clipL), std::min(record.srcOrgY, record.clipT),
          std::max(right, record.clipR), std::max(bottom, record.clipB)};
}

MRect rectOf(const Span& x, const Span& y) {
  return {static_cast<int32_t>(x.low), static_cast<int32_t>(y.low), static_cast<int32_t>(x.high),
          static_cast<int32_t>(y.high)};
}

MRect mapToDestination(const ConvRecord& record, const MRect& srcRect) {
  const MRect src = convert::intersect(srcRect, readableRect(record));
  if (convert::isEmpty(src)) return kNowhere;
  const MRect frame = rectOf(axisX(record).toDestination({src.left, src.right}),
                             axisY(record).toDestination({src.top, src.bottom}));
  return convert::isEmpty(frame) ? kNowhere : convert::fromFrame(record, frame);
}

// With what the first and the last place read, which may be repeated edges.
Span widened(const Span& span, const convert::SourcePair& first, const convert::SourcePair& last,
             int32_t least, int32_t most) {
  const int64_t low = std::min<int64_t>({span.low, first.first, last.first});
  const int64_t high = std::max<int64_t>({span.high, first.second + 1, last.second + 1});
  return {std::clamp<int64_t>(low, least, most), std::clamp<int64_t>(high, least, most)};
}

MRect mapToSource(const ConvRecord& record, const MRect& dstRect) {
  const MRect dst = convert::intersect(dstRect, convert::destinationRect(record));
  if (convert::isEmpty(dst)) return kNowhere;
  const MRect frame = convert::toFrame(record, dst);
  const MRect all = readableRect(record);
  const Span x = widened(axisX(record).toSource({frame.left, frame.right}),
                         convert::sourceColumn(record, frame.left),
                         convert::sourceColumn(record, frame.right - 1), all.left, all.right);
  const convert::SourcePair firstRow = convert::sourceRow(record, frame.top);
  const Span y = widened(axisY(record).toSource({frame.top, frame.bottom}), firstRow,
                         convert::sourceRow(record, frame.bottom - 1),
                         std::min(all.top, firstRow.first), all.bottom);
  return rectOf(x, y);
}

}  // namespace
}  // namespace qpx::postprocess

int32_t MPPAlign(const PostProcessContext* context, MRect* srcRect, MRect* dstRect) {
  namespace postprocess = qpx::postprocess;
  if (context == nullptr || srcRect == nullptr || dstRect == nullptr) return QPX_BAD_PARAM;
  const bool noSource = postprocess::isAllZero(*srcRect);
  const bool noDestination = postprocess::isAllZero(*dstRect);
  if (noSource == noDestination) return QPX_BAD_PARAM;
  const ConvRecord& record = context->stage[0]->record;
  if (noDestination) {
    *dstRect = postprocess::mapToDestination(record, *srcRect);
  } else {
    *srcRect = postprocess::mapToSource(record, *dstRect);
  }
  return QPX_OK;
}
