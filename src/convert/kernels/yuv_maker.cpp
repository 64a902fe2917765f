#include "convert/kernels/yuv_maker.h"

namespace qpx::convert::fast {

bool YuvMaker::open(const Call& call, FormatSet from) {
  rows_ = &simd::rows();
  convert_ = &simd::convertRows();
  if (!source_.open(call, from)) return false;
  lut_ = colourLutOf(*call.record);
  if (source_.isRgb()) weights_ = toYuvWeightsOf(*call.record, source_.isRedFirst());
  return true;
}

void YuvMaker::begin(const Positions& positions, int32_t x, int32_t count, const Cells& cells,
                     int32_t right, bool wantsChroma) {
  columns_.locate(positions, x, count);
  firstInCell_ = 0;
  if (!wantsChroma) return;
  if (source_.isRgb()) {
    columns_.chroma.count = cells.of(x + count - 1) - cells.of(x) + 1;
  } else {
    columns_.chromaOfCells(source_.chromaShiftX(), cells, right);
  }
  cellsOfTwo_ = cells.shift() != 0;
  firstInCell_ = cellsOfTwo_ && x == cells.lastOf(cells.of(x), x + 2) ? 1 : 0;
}

void YuvMaker::load(const SourcePair& place) {
  place_ = place;
  if (!source_.isRgb()) return;
  pixels_ = source_.pixels(place, columns_, pixelRoom_);
  if (pixels_.bytes != 2) return;
  convert_->rgb16To24(pixels_.pixels, columns_.count, false, unpacked_);
  pixels_ = {unpacked_, 3};
}

const uint8_t* YuvMaker::luma(uint8_t* room) {
  if (source_.isRgb()) {
    const auto weigh = pixels_.bytes == 3 ? convert_->rgb24ToLuma : convert_->rgb32ToLuma;
    weigh(pixels_.pixels, columns_.count, weights_.y, room);
    return room;
  }
  const uint8_t* const luma = source_.luma(place_, columns_, room);
  if (lut_.luma == nullptr) return luma;
  rows_->lookup(luma, room, columns_.count, lut_.luma);
  return room;
}

void YuvMaker::weighChroma(const uint8_t* pixels, int32_t count,
                           const simd::ChromaTarget& dst) const {
  const auto weigh = pixels_.bytes == 3 ? convert_->rgb24ToChroma : convert_->rgb32ToChroma;
  weigh(pixels, count, cellsOfTwo_, weights_.chroma, dst);
}

// Of a cell that the rectangle cuts, the pixel there is.
void YuvMaker::makeChroma(const simd::ChromaTarget& dst) const {
  const int32_t cut = firstInCell_;
  if (cut != 0) weighChroma(pixels_.pixels, cut, dst);
  weighChroma(pixels_.pixels + ptrdiff_t{pixels_.bytes} * cut, columns_.count - cut,
              {dst.u + cut * dst.step, dst.v + cut * dst.step, dst.step});
}

ChromaRow YuvMaker::chroma(uint8_t* roomU, uint8_t* roomV) {
  const int32_t count = columns_.chroma.count;
  if (source_.isRgb()) {
    makeChroma({roomU, roomV, 1});
    return {roomU, roomV};
  }
  const ChromaRow row = source_.chroma(place_, columns_.chroma, roomU, roomV);
  if (lut_.chroma == nullptr) return row;
  // Grey has one row for both.
  rows_->lookup(row.v, roomV, count, lut_.chroma);
  rows_->lookup(row.u, roomU, count, lut_.chroma);
  return {roomU, roomV};
}

const uint8_t* YuvMaker::chromaPairs(bool vFirst, uint8_t* room) {
  const uint8_t* pairs = source_.chromaPairs(place_, columns_.chroma, room);
  const int32_t count = columns_.chroma.count;
  if (source_.isVFirst() != vFirst) {
    convert_->swapPairs(pairs, count, room);
    pairs = room;
  }
  if (lut_.chroma == nullptr) return pairs;
  rows_->lookup(pairs, room, ptrdiff_t{2} * count, lut_.chroma);
  return room;
}

}  // namespace qpx::convert::fast
