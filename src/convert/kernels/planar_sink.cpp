#include "convert/kernels/planar_sink.h"

#include "convert/format_decoder.h"

namespace qpx::convert::fast {

bool PlanarSink::open(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  cells_ = cells;
  rect_ = call.rect;
  if (call.dstPlanes[0] == nullptr || !maker_.open(call, from)) return false;
  const bool turned = call.record->swapXY != 0;
  const Stride stride = strideOf(call, 0, 0);
  luma_.open(call.dstPlanes[0] + call.record->dstPlane.offset[0], stride, 1, turned);
  chroma_ = Chroma::none;
  return to == kInGrey || openChroma(call, to);
}

bool PlanarSink::openChroma(const Call& call, FormatSet to) {
  const int32_t planeU = planeOfU(call.record->dst.klass),
                planeV = planeOfV(call.record->dst.klass);
  uint8_t *const u = call.dstPlanes[planeU], *const v = call.dstPlanes[planeV];
  if (u == nullptr || v == nullptr) return false;
  const Stride strideU = strideOf(call, 1, planeU), strideV = strideOf(call, 2, planeV);
  const bool turned = call.record->swapXY != 0, adjacent = u + 1 == v || v + 1 == u;
  if ((to & kInNv) != 0 && adjacent && call.dstPitch[1] == call.dstPitch[2]) {
    chroma_ = Chroma::pairs;
    vFirst_ = v < u;
    u_.open(vFirst_ ? v : u, strideU, 2, turned);
  } else {
    chroma_ = Chroma::planes;
    u_.open(u + call.record->dstPlane.offset[1], strideU, 1, turned);
    v_.open(v + call.record->dstPlane.offset[2], strideV, 1, turned);
  }
  return true;
}

bool PlanarSink::copyPlanes(const Positions& positions) {
  const Source& source = maker_.source();
  if (!positions.isDirect() || !maker_.copies() || !source.hasLumaPlane()) return false;
  const int32_t x = rect_.left + positions.shiftX(), y = rect_.top + positions.shiftY();
  const Source::Plane luma = source.plane(0);
  luma_.take(luma.at(y, x), luma.pitch, rect_.right - rect_.left, rect_.bottom - rect_.top);
  lumaIsDone_ = true;
  return chroma_ == Chroma::none || copyChroma(positions);
}

// Cells of one side lie on cells of the other, and so does the last pixel of each.
bool PlanarSink::copyChroma(const Positions& positions) {
  const Source& source = maker_.source();
  const bool sameCells = source.chromaShiftX() == cells_.x.shift() &&
                         source.chromaShiftY() == cells_.y.shift() &&
                         cells_.x.endsWhole(rect_.right) && cells_.y.endsWhole(rect_.bottom);
  const bool planes = source.hasPlanes() && chroma_ == Chroma::planes;
  const bool pairs = source.hasPairs() && chroma_ == Chroma::pairs && source.isVFirst() == vFirst_;
  if (!sameCells || (!planes && !pairs)) return false;

  const int32_t firstX = cells_.x.of(rect_.left), firstY = cells_.y.of(rect_.top);
  const int32_t x = (cells_.x.lastOf(firstX, rect_.right) + positions.shiftX()) >> cells_.x.shift();
  const int32_t y =
      (cells_.y.lastOf(firstY, rect_.bottom) + positions.shiftY()) >> cells_.y.shift();
  const int32_t columns = cells_.x.of(rect_.right - 1) - firstX + 1;
  const int32_t rows = cells_.y.of(rect_.bottom - 1) - firstY + 1;
  if (pairs) {
    const Source::Plane plane = source.plane(vFirst_ ? 2 : 1);
    u_.take(plane.at(y, 2 * x), plane.pitch, columns, rows);
  } else {
    const Source::Plane u = source.plane(1), v = source.plane(2);
    u_.take(u.at(y, x), u.pitch, columns, rows);
    v_.take(v.at(y, x), v.pitch, columns, rows);
  }
  return true;
}

bool PlanarSink::needsNoRooms(const Positions& positions) const {
  const Source& source = maker_.source();
  const bool forward = luma_.isForward() && (chroma_ == Chroma::none || u_.isForward()) &&
                       (chroma_ != Chroma::planes || v_.isForward());
  return forward && source.isRgb() && !source.isOf16Bits() && positions.isDirect();
}

void PlanarSink::begin(const Positions& positions, int32_t x, int32_t count, int32_t y) {
  maker_.begin(positions, x, count, cells_.x, rect_.right, chroma_ != Chroma::none);
  luma_.begin(x - rect_.left, count, y - rect_.top);
  chromaRows_ = 0;
  if (chroma_ == Chroma::none) return;
  const int32_t column = cells_.x.of(x) - cells_.x.of(rect_.left);
  const int32_t row = cells_.y.of(y) - cells_.y.of(rect_.top);
  u_.begin(column, maker_.columns().chroma.count, row);
  if (chroma_ == Chroma::planes) v_.begin(column, maker_.columns().chroma.count, row);
}

void PlanarSink::row(int32_t index, int32_t y, const SourcePair& place) {
  maker_.load(place);
  if (!lumaIsDone_) luma_.put(index, maker_.luma(luma_.room(index)));
  if (chroma_ == Chroma::none || !cells_.y.isLast(y, rect_.bottom)) return;
  const int32_t chromaIndex = chromaRows_++;
  if (chroma_ == Chroma::pairs) {
    putPairs(chromaIndex);
    return;
  }
  const ChromaRow row = maker_.chroma(u_.room(chromaIndex), v_.room(chromaIndex));
  u_.put(chromaIndex, row.u);
  v_.put(chromaIndex, row.v);
}

void PlanarSink::putPairs(int32_t index) {
  uint8_t* const room = u_.room(index);
  if (maker_.source().hasPairs()) {
    u_.put(index, maker_.chromaPairs(vFirst_, room));
    return;
  }
  if (maker_.source().isRgb()) {
    maker_.makeChroma({room + (vFirst_ ? 1 : 0), room + (vFirst_ ? 0 : 1), 2});
    u_.put(index, room);
    return;
  }
  uint8_t u[kRun], v[kRun];
  const ChromaRow row = maker_.chroma(u, v);
  simd::rows().interleave2(vFirst_ ? row.v : row.u, vFirst_ ? row.u : row.v,
                           maker_.columns().chroma.count, room);
  u_.put(index, room);
}

void PlanarSink::end(int32_t rows) {
  if (!lumaIsDone_) luma_.end(rows);
  if (chroma_ == Chroma::none) return;
  u_.end(chromaRows_);
  if (chroma_ == Chroma::planes) v_.end(chromaRows_);
}

}  // namespace qpx::convert::fast
