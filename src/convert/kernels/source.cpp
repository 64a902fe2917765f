#include "convert/kernels/source.h"

#include <cstring>

#include "convert/format_decoder.h"
#include "convert/position.h"
#include "engine/address.h"

namespace qpx::convert::fast {
namespace {

constexpr uint8_t kNoColour = 128;

// The address may lie behind the picture.
void prefetchBytes(const Source::Plane& plane, int32_t row, ptrdiff_t begin, ptrdiff_t end) {
  constexpr ptrdiff_t kLine = 64;
  for (ptrdiff_t i = begin; i < end + kLine; i += kLine) __builtin_prefetch(plane.at(row, i));
}

}  // namespace

bool Source::open(const Call& call, FormatSet format) {
  const ConvRecord& record = *call.record;
  rows_ = &simd::rows();
  format_ = format;
  bilinear_ = record.bilinearY != 0;
  shiftX_ = record.srcSubX[1] - 1;
  shiftY_ = record.srcSubY[1] - 1;
  for (int32_t c = 0; c < 3; ++c) {
    const int32_t plane = planeOf(record.srcPlane, c);
    plane_[c] = call.srcPlanes[plane];
    pitch_[c] = call.srcPitch[plane];
    offset_[c] = record.srcPlane.offset[c];
    if (plane_[c] == nullptr) return false;
  }
  if ((format & (kInRgb | kInGrey)) != 0) {
    chroma_ = Chroma::none;
  } else if ((format & kInPacked) != 0) {
    chroma_ = Chroma::groups;
  } else if ((format & kInNv) == 0) {
    chroma_ = Chroma::planes;
  } else {
    const bool adjacent = plane_[1] + 1 == plane_[2] || plane_[2] + 1 == plane_[1];
    chroma_ = adjacent && pitch_[1] == pitch_[2] ? Chroma::pairs : Chroma::apart;
  }
  openSamplers();
  return true;
}

void Source::openSamplers() {
  if (isRgb()) {
    sampler_.open(pixelBytes(format_), pixelBytes(format_));
  } else {
    sampler_.open(chroma_ == Chroma::groups ? 2 : 1, 1);
  }
  const int32_t chromaBytes = chroma_ == Chroma::groups ? 4 : chroma_ == Chroma::pairs ? 2 : 1;
  chromaSampler_.open(chromaBytes, chromaBytes);
}

void Source::sample(const SourcePair& row, const Columns& columns, uint8_t* room) {
  const int32_t offset = isRgb() ? 0 : offset_[0];
  sampler_.locate(columns.x, columns.count, columns.place, columns.fraction);
  if (bilinear_) {
    sampler_.blend(rowOf(0, row.first) + offset, rowOf(0, row.second) + offset, row.fraction, room);
  } else {
    sampler_.pick(rowOf(0, row.first) + offset, room);
  }
}

void Source::sampleChroma(const uint8_t* row, const ChromaColumns& columns, uint8_t* room) {
  chromaSampler_.locate(columns.x, columns.count, columns.place, nullptr);
  chromaSampler_.pick(row, room);
}

const uint8_t* Source::luma(const SourcePair& row, const Columns& columns, uint8_t* room) {
  if (!columns.direct) {
    sample(row, columns, room);
    return room;
  }
  if (chroma_ == Chroma::groups) return packedLuma(row, columns, room);
  return rowOf(0, row.first) + columns.start;
}

const uint8_t* Source::packedLuma(const SourcePair& row, const Columns& columns,
                                  uint8_t* room) const {
  uint8_t chroma[kRun];
  const uint8_t* const units = rowOf(0, row.first) + ptrdiff_t{2} * columns.start;
  const bool first = offset_[0] == 0;
  rows_->deinterleave2(units, columns.count, first ? room : chroma, first ? chroma : room);
  return room;
}

ChromaRow Source::chroma(const SourcePair& row, const ChromaColumns& columns, uint8_t* roomU,
                         uint8_t* roomV) {
  const int32_t chromaRow = row.first >> shiftY_;
  switch (chroma_) {
    case Chroma::groups:
      return groupedChroma(chromaRow, columns, roomU, roomV);
    case Chroma::pairs: {
      uint8_t room[2 * kRun];
      const uint8_t* const pairs = chromaPairs(row, columns, room);
      rows_->deinterleave2(pairs, columns.count, isVFirst() ? roomV : roomU,
                           isVFirst() ? roomU : roomV);
      return {roomU, roomV};
    }
    case Chroma::planes: {
      const uint8_t *const u = rowOf(1, chromaRow), *const v = rowOf(2, chromaRow);
      if (columns.direct) return {u + columns.start, v + columns.start};
      sampleChroma(u, columns, roomU);
      sampleChroma(v, columns, roomV);
      return {roomU, roomV};
    }
    case Chroma::apart:
      spacedChroma(rowOf(1, chromaRow), columns, roomU);
      spacedChroma(rowOf(2, chromaRow), columns, roomV);
      return {roomU, roomV};
    default:
      memset(roomU, kNoColour, static_cast<size_t>(columns.count));
      return {roomU, roomU};
  }
}

ChromaRow Source::groupedChroma(int32_t row, const ChromaColumns& columns, uint8_t* roomU,
                                uint8_t* roomV) {
  uint8_t picked[4 * kRun], luma0[kRun], luma1[kRun];
  const uint8_t* groups = rowOf(0, row) + ptrdiff_t{4} * columns.start;
  if (!columns.direct) {
    sampleChroma(rowOf(0, row), columns, picked);
    groups = picked;
  }
  uint8_t* parts[4] = {};
  parts[offset_[0]] = luma0;
  parts[offset_[0] + 2] = luma1;
  parts[offset_[1]] = roomU;
  parts[offset_[2]] = roomV;
  rows_->deinterleave4(groups, columns.count, parts[0], parts[1], parts[2], parts[3]);
  return {roomU, roomV};
}

void Source::spacedChroma(const uint8_t* row, const ChromaColumns& columns, uint8_t* room) const {
  for (int32_t i = 0; i < columns.count; ++i) {
    room[i] = row[ptrdiff_t{2} * (columns.direct ? columns.start + i : columns.place[i])];
  }
}

const uint8_t* Source::chromaPairs(const SourcePair& row, const ChromaColumns& columns,
                                   uint8_t* room) {
  const uint8_t* const pairs = rowOf(isVFirst() ? 2 : 1, row.first >> shiftY_);
  if (columns.direct) return pairs + ptrdiff_t{2} * columns.start;
  sampleChroma(pairs, columns, room);
  return room;
}

void Source::groupsAt(const SourcePair& row, const Columns& columns, simd::YuvRow* made) const {
  const uint8_t* const groups = rowOf(0, row.first) + ptrdiff_t{4} * columns.chroma.start;
  made->luma[0] = groups + offset_[0];
  made->luma[1] = nullptr;
  made->u = groups + offset_[1];
  made->v = groups + offset_[2];
  made->lumaStep = 2;
  made->chromaStep = 4;
}

void Source::yuvRows(const SourcePair* rows, int32_t count, const Columns& columns, YuvRooms* rooms,
                     simd::YuvRow* made) {
  const bool isReady = liesReady(columns);
  made->halved = columns.chroma.halved;
  if (isReady && chroma_ == Chroma::groups) {
    groupsAt(rows[0], columns, made);
    return;
  }
  made->luma[0] = luma(rows[0], columns, rooms->luma[0]);
  made->luma[1] = count == 2 ? luma(rows[1], columns, rooms->luma[1]) : nullptr;
  made->lumaStep = 1;
  if (isReady && chroma_ == Chroma::pairs) {
    const ptrdiff_t first = ptrdiff_t{2} * columns.chroma.start;
    made->u = rowOf(1, rows[0].first >> shiftY_) + first;
    made->v = rowOf(2, rows[0].first >> shiftY_) + first;
    made->chromaStep = 2;
    return;
  }
  const ChromaRow row = chroma(rows[0], columns.chroma, rooms->u, rooms->v);
  made->u = row.u;
  made->v = row.v;
  made->chromaStep = 1;
}

bool Source::needsNoRooms(const Positions& positions, int32_t start) const {
  if (!positions.isDirect()) return false;
  if (isRgb()) return true;
  const bool wholeCells = shiftX_ == 0 || (start & 1) == 0;
  return wholeCells && hasReadyChroma();
}

void Source::prefetch(const SourcePair& row, const Columns& columns) const {
  const ptrdiff_t bytes = isRgb() ? pixelBytes(format_) : chroma_ == Chroma::groups ? 2 : 1;
  const ptrdiff_t begin = bytes * columns.first(), end = bytes * (columns.last() + 1);
  prefetchBytes(plane(0), row.first, begin, end);
  const bool startsCell = ((row.first >> shiftY_) << shiftY_) == row.first;
  if (startsCell && (hasPairs() || hasPlanes())) prefetchChroma(row.first >> shiftY_, columns);
}

void Source::prefetchChroma(int32_t row, const Columns& columns) const {
  const ptrdiff_t step = hasPairs() ? 2 : 1;
  const ptrdiff_t begin = step * (columns.first() >> shiftX_);
  const ptrdiff_t end = step * ((columns.last() >> shiftX_) + 1);
  prefetchBytes(plane(1), row, begin, end);
  if (hasPlanes()) prefetchBytes(plane(2), row, begin, end);
}

PixelRow Source::pixels(const SourcePair& row, const Columns& columns, uint8_t* room) {
  const int32_t bytes = pixelBytes(format_);
  if (columns.direct) return {rowOf(0, row.first) + ptrdiff_t{bytes} * columns.start, bytes};
  if (bilinear_ && bytes == 2) {
    blend565(row, columns, room);
    return {room, 3};
  }
  sample(row, columns, room);
  return {room, bytes};
}

// Fields become the highest bits of a byte before they are blended.
void Source::blend565(const SourcePair& row, const Columns& columns, uint8_t* room) const {
  const uint8_t *const top = rowOf(0, row.first), *const bottom = rowOf(0, row.second);
  // Moved up by 3, so that the lowest field, too, is cut out by a shift down.
  const auto wordAt = [](const uint8_t* pixels, int32_t column) {
    const uint8_t* const bytes = pixels + ptrdiff_t{2} * column;
    return (bytes[0] | bytes[1] << 8) << 3;
  };
  for (int32_t i = 0; i < columns.count; ++i, room += 3) {
    const int32_t fraction = columns.fraction[i];
    const int32_t left = columns.place[i], right = fraction != 0 ? left + 1 : left;
    const int32_t a = wordAt(top, left), b = wordAt(top, right);
    const int32_t c = wordAt(bottom, left), d = wordAt(bottom, right);
    const auto channel = [&](int32_t position, int32_t mask) {
      const auto byteOf = [=](int32_t word) { return (word >> position) & mask; };
      return static_cast<uint8_t>(between(between(byteOf(a), byteOf(b), fraction),
                                          between(byteOf(c), byteOf(d), fraction), row.fraction));
    };
    room[0] = channel(0, 0xF8);
    room[1] = channel(6, 0xFC);
    room[2] = channel(11, 0xF8);
  }
}

}  // namespace qpx::convert::fast
