#include "convert/kernels/group_sink.h"

#include <algorithm>

namespace qpx::convert::fast {
namespace {

bool isWhole(const Cells& cells, int32_t begin, int32_t end) {
  return cells.of(begin - 1) != cells.of(begin) && cells.of(end - 1) != cells.of(end);
}

}  // namespace

bool GroupSink::fits(const Call& call, const CellGrid& cells) {
  const Stride luma = strideOf(call, 0, 0);
  const bool turned = call.record->swapXY != 0;
  const ptrdiff_t towardsSecond = turned ? luma.across : luma.along;
  const ptrdiff_t firstLuma = towardsSecond < 0 ? 2 : 0;
  const bool lies = call.dstPlanes[1] == call.dstPlanes[2] &&
                    call.dstPlanes[0] == call.dstPlanes[1] + firstLuma &&
                    call.dstPitch[0] == call.dstPitch[1] && call.dstPitch[1] == call.dstPitch[2];
  return lies && isWhole(cells.x, call.rect.left, call.rect.right) &&
         isWhole(cells.y, call.rect.top, call.rect.bottom);
}

bool GroupSink::open(const Call& call, FormatSet from, const CellGrid& cells) {
  cells_ = cells;
  rect_ = call.rect;
  std::copy_n(call.record->dstPlane.offset, 3, offset_);
  turned_ = call.record->swapXY != 0;
  const Stride luma = strideOf(call, 0, 0), group = strideOf(call, 1, 1);
  backwards_ = (turned_ ? luma.across : luma.along) < 0;
  lane_.open(call.dstPlanes[1], group, 4, call.record->swapXY != 0);
  return maker_.open(call, from);
}

void GroupSink::begin(const Positions& positions, int32_t x, int32_t count, int32_t y) {
  maker_.begin(positions, x, count, cells_.x, rect_.right, true);
  lane_.begin(cells_.x.of(x) - cells_.x.of(rect_.left), maker_.columns().chroma.count,
              cells_.y.of(y) - cells_.y.of(rect_.top));
  groupRows_ = 0;
}

void GroupSink::row(int32_t index, int32_t y, const SourcePair& place) {
  maker_.load(place);
  if (turned_) {
    acrossRows(y);
  } else {
    alongRow(index);
  }
}

void GroupSink::alongRow(int32_t index) {
  uint8_t room[kRun], first[kRun / 2], second[kRun / 2];
  simd::rows().deinterleave2(maker_.luma(room), maker_.columns().chroma.count, first, second);
  putGroups(index, first, second);
}

void GroupSink::acrossRows(int32_t y) {
  if (!cells_.y.isLast(y, rect_.bottom)) {
    const uint8_t* const luma = maker_.luma(kept_);
    if (luma != kept_) std::copy_n(luma, maker_.columns().count, kept_);
    return;
  }
  uint8_t room[kRun];
  putGroups(groupRows_++, kept_, maker_.luma(room));
}

void GroupSink::putGroups(int32_t index, const uint8_t* first, const uint8_t* second) {
  uint8_t u[kRun], v[kRun];
  const ChromaRow chroma = maker_.chroma(u, v);
  const uint8_t* parts[4] = {};
  parts[offset_[0]] = backwards_ ? second : first;
  parts[offset_[0] + 2] = backwards_ ? first : second;
  parts[offset_[1]] = chroma.u;
  parts[offset_[2]] = chroma.v;
  uint8_t* const room = lane_.room(index);
  simd::rows().interleave4(parts[0], parts[1], parts[2], parts[3], maker_.columns().chroma.count,
                           room);
  lane_.put(index, room);
}

void GroupSink::end(int32_t rows) { lane_.end(turned_ ? groupRows_ : rows); }

}  // namespace qpx::convert::fast
