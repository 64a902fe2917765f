#include "convert/kernels/rgb_sink.h"

namespace qpx::convert::fast {

bool RgbSink::open(const Call& call, FormatSet from, FormatSet to) {
  if (call.dstPlanes[0] == nullptr || !source_.open(call, from)) return false;
  const ConvRecord& record = *call.record;
  rows_ = &simd::convertRows();
  if (!source_.isRgb()) pixels_.open(record, to);
  rect_ = call.rect;
  bytes_ = pixelBytes(to);
  keepsAlpha_ = bytes_ == 4 && (from & (kIn24 | kIn16)) != 0;
  redFirst_ = (to & kInRedFirst) != 0;
  const bool turned = record.swapXY != 0;
  const Stride stride = strideOf(call, 0, 0);
  lane_.open(call.dstPlanes[0], stride, bytes_, turned);
  if (keepsAlpha_ && !lane_.isForward()) {
    bytes_ = 3;
    lane_.open(call.dstPlanes[0], stride, bytes_, turned);
  }
  return true;
}

bool RgbSink::copyPixels(const Positions& positions) {
  if (!positions.isDirect()) return false;
  const Source::Plane plane = source_.plane(0);
  const int32_t x = rect_.left + positions.shiftX(), y = rect_.top + positions.shiftY();
  lane_.take(plane.at(y, ptrdiff_t{bytes_} * x), plane.pitch, rect_.right - rect_.left,
             rect_.bottom - rect_.top);
  return true;
}

bool RgbSink::needsNoRooms(const Positions& positions) const {
  const bool unpacks = source_.isOf16Bits() && bytes_ != 3;
  return lane_.isForward() && !unpacks &&
         source_.needsNoRooms(positions, rect_.left + positions.shiftX());
}

void RgbSink::begin(const Positions& positions, int32_t x, int32_t count, int32_t y) {
  columns_.locate(positions, x, count);
  if (!source_.isRgb()) columns_.chromaOfPixels(source_.chromaShiftX());
  lane_.begin(x - rect_.left, count, y - rect_.top);
}

void RgbSink::row(int32_t index, int32_t, const SourcePair& place) {
  places_[index] = place;
  if (source_.isRgb()) {
    fromRgb(index);
  } else if (!columns_.direct) {
    fromYuv(index, index + 1);
  }
}

void RgbSink::end(int32_t rows) {
  if (!source_.isRgb() && columns_.direct) fromYuv(0, rows);
  lane_.end(rows);
}

void RgbSink::fromRgb(int32_t index) {
  uint8_t* const made = lane_.room(index);
  if (source_.bytesOf(columns_) == bytes_ && source_.isRedFirst() == redFirst_) {
    lane_.put(index, source_.pixels(places_[index], columns_, made).pixels);
    return;
  }
  uint8_t room[4 * kRun];
  reorder(source_.pixels(places_[index], columns_, room), made);
  lane_.put(index, made);
}

int32_t RgbSink::linesTogether(int32_t index, int32_t end) const {
  return index + 1 < end && source_.shareChroma(places_[index], places_[index + 1]) ? 2 : 1;
}

// Two rows together where they share their chroma, and all at once, unless the rooms for their
// samples or pixels have to be used again.
void RgbSink::fromYuv(int32_t first, int32_t end) {
  YuvRooms rooms;
  simd::YuvRow made[kBandRows];
  const bool together = source_.liesReady(columns_) && lane_.hasRooms();
  int32_t count = 0, delivered = first;
  for (int32_t i = first; i < end;) {
    const int32_t lines = lane_.hasRooms() ? linesTogether(i, end) : 1;
    simd::YuvRow& row = made[count++];
    source_.yuvRows(places_ + i, lines, columns_, &rooms, &row);
    for (int32_t line = 0; line < lines; ++line) row.dst[line] = lane_.room(i + line);
    i += lines;
    if (together && i < end) continue;
    pixels_.convert(made, count, columns_.count);
    count = 0;
    for (; delivered < i; ++delivered) lane_.put(delivered, lane_.room(delivered));
  }
}

void RgbSink::reorder(const PixelRow& row, uint8_t* room) const {
  const bool swap = source_.isRedFirst() != redFirst_;
  const int32_t count = columns_.count;
  if (bytes_ == 2) {
    uint8_t unpacked[3 * kRun];
    if (row.bytes == 2) {
      rows_->rgb16To24(row.pixels, count, false, unpacked);
      rows_->rgb24To16(unpacked, count, swap, room);
    } else {
      (row.bytes == 3 ? rows_->rgb24To16 : rows_->rgb32To16)(row.pixels, count, swap, room);
    }
  } else if (row.bytes == bytes_) {
    (bytes_ == 3 ? rows_->swapEnds3 : rows_->swapEnds4)(row.pixels, count, room);
  } else if (row.bytes == 2) {
    uint8_t unpacked[3 * kRun];
    uint8_t* const pixels = bytes_ == 3 ? room : unpacked;
    rows_->rgb16To24(row.pixels, count, swap, pixels);
    if (bytes_ == 4) rows_->rgb24To32(pixels, count, false, room);
  } else {
    (bytes_ == 3 ? rows_->rgb32To24 : rows_->rgb24To32)(row.pixels, count, swap, room);
  }
}

}  // namespace qpx::convert::fast
