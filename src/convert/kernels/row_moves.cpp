#include "convert/kernels/row_moves.h"

#include "convert/format_decoder.h"
#include "convert/kernels/group_sink.h"
#include "convert/kernels/source.h"
#include "simd/yuv_rows.h"

namespace qpx::convert::fast {
namespace {

// Samples of one component, `step` bytes apart.
template <class Byte>
struct Samples {
  Byte* first = nullptr;
  ptrdiff_t pitch = 0;
  ptrdiff_t step = 0;

  Byte* row(int32_t y) const { return advance(first, pitch, y); }
  bool hasGaps(int32_t count) const { return pitch != step * count; }
};
using SourceSamples = Samples<const uint8_t>;
using TargetSamples = Samples<uint8_t>;

class RowMoves {
 public:
  bool open(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells);
  void run() const;

 private:
  enum class Path { planes, unpack, pack, groups };

  bool openLuma(const Call& call, const Source& source);
  bool openChroma(const Call& call, const Source& source);
  bool choosePath(const Call& call, FormatSet from, FormatSet to);

  // The source row of a row of cells: that of its last pixels.
  int32_t chromaRow(int32_t row) const {
    return (cells_.y.lastOf(firstCellRow_ + row, rect_.bottom) + shiftY_) >> chromaShiftY_;
  }

  void moveLuma() const;
  void moveChroma() const;
  void unpack() const;
  void pack() const;
  void copyGroups() const;

  const simd::YuvRows* rows_ = &simd::yuvRows();
  CellGrid cells_{Cells(0, 0), Cells(0, 0)};
  MRect rect_;
  int32_t shiftX_, shiftY_;  // from the destination to the source
  int32_t width_, height_;
  int32_t lumaOffset_;  // in a group
  bool hasChroma_;
  int32_t chromaShiftY_ = 0;
  int32_t firstCellRow_ = 0, cellColumns_ = 0, cellRows_ = 0;
  Path path_;
  SourceSamples srcY_, srcU_, srcV_;
  TargetSamples dstY_, dstU_, dstV_;
};

bool RowMoves::open(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  const ConvRecord& record = *call.record;
  const Positions positions(call);
  const bool moves = record.swapXY == 0 && record.mirrorX == 0 && record.useLut == 0 &&
                     ((from | to) & kInRgb) == 0 && positions.isDirect();
  hasChroma_ = to != kInGrey;
  Source source;
  if (!moves || (hasChroma_ && from == kInGrey) || !source.open(call, from)) return false;
  cells_ = cells;
  rect_ = call.rect;
  shiftX_ = positions.shiftX();
  shiftY_ = positions.shiftY();
  width_ = rect_.right - rect_.left;
  height_ = rect_.bottom - rect_.top;
  if (!openLuma(call, source)) return false;
  return (!hasChroma_ || openChroma(call, source)) && choosePath(call, from, to);
}

bool RowMoves::openLuma(const Call& call, const Source& source) {
  const ConvRecord& record = *call.record;
  const ptrdiff_t step = record.srcPlane.step[0];
  lumaOffset_ = record.srcPlane.offset[0];
  const Source::Plane plane = source.plane(0);
  srcY_ = {plane.at(rect_.top + shiftY_, step * (rect_.left + shiftX_) + lumaOffset_), plane.pitch,
           step};
  if (call.dstPlanes[0] == nullptr) return false;
  dstY_ = {call.dstPlanes[0] + record.dstPlane.offset[0], call.dstPitch[0], record.dstStep[0]};
  return true;
}

// The last pixels of neighbouring cells lie in neighbouring cells of the source.
bool RowMoves::openChroma(const Call& call, const Source& source) {
  const ConvRecord& record = *call.record;
  const auto columnOf = [&](int32_t cell) {
    return (cells_.x.lastOf(cell, rect_.right) + shiftX_) >> source.chromaShiftX();
  };
  const int32_t firstCell = cells_.x.of(rect_.left), lastCell = cells_.x.of(rect_.right - 1);
  const int32_t column = columnOf(firstCell);
  cellColumns_ = lastCell - firstCell + 1;
  if (source.chromaShiftX() != cells_.x.shift() || columnOf(lastCell) - column != cellColumns_ - 1)
    return false;
  chromaShiftY_ = source.chromaShiftY();
  firstCellRow_ = cells_.y.of(rect_.top);
  cellRows_ = cells_.y.of(rect_.bottom - 1) - firstCellRow_ + 1;

  const auto samplesOf = [&](int32_t component) {
    const Source::Plane plane = source.plane(component);
    const ptrdiff_t step = record.srcPlane.step[component];
    return SourceSamples{plane.at(0, step * column + record.srcPlane.offset[component]),
                         plane.pitch, step};
  };
  srcU_ = samplesOf(1);
  srcV_ = samplesOf(2);
  const int32_t planeU = planeOfU(record.dst.klass), planeV = planeOfV(record.dst.klass);
  uint8_t *const u = call.dstPlanes[planeU], *const v = call.dstPlanes[planeV];
  if (u == nullptr || v == nullptr) return false;
  dstU_ = {u + record.dstPlane.offset[1], call.dstPitch[planeU], record.dstStep[1]};
  dstV_ = {v + record.dstPlane.offset[2], call.dstPitch[planeV], record.dstStep[2]};
  return true;
}

// Samples that lie next to each other, by themselves or in pairs.
template <class Byte>
bool areDense(const Samples<Byte>& u, const Samples<Byte>& v) {
  return u.step == 1 || (u.pitch == v.pitch && (u.first + 1 == v.first || v.first + 1 == u.first));
}

// Groups are moved as a whole or not at all.
bool RowMoves::choosePath(const Call& call, FormatSet from, FormatSet to) {
  const bool fromGroups = (from & kInPacked) != 0, toGroups = (to & kInPacked) != 0;
  if (fromGroups) {
    path_ = toGroups ? Path::groups : Path::unpack;
  } else {
    path_ = toGroups ? Path::pack : Path::planes;
  }
  const bool cutsSource = width_ % 2 != 0 || ((rect_.left + shiftX_) & 1) != 0 ||
                          cells_.x.of(rect_.left - 1) == cells_.x.of(rect_.left);
  if ((fromGroups && cutsSource) || (toGroups && !GroupSink::fits(call, cells_))) return false;
  if (path_ == Path::groups) return from == to;
  return !hasChroma_ ||
         ((fromGroups || areDense(srcU_, srcV_)) && (toGroups || areDense(dstU_, dstV_)));
}

void RowMoves::run() const {
  switch (path_) {
    case Path::planes:
      moveLuma();
      if (hasChroma_) moveChroma();
      break;
    case Path::unpack:
      unpack();
      break;
    case Path::pack:
      pack();
      break;
    case Path::groups:
      copyGroups();
      break;
  }
}

// Rows without gaps between them are one long row.
void RowMoves::moveLuma() const {
  const bool oneRow = !srcY_.hasGaps(width_) && !dstY_.hasGaps(width_);
  const ptrdiff_t count = oneRow ? ptrdiff_t{width_} * height_ : width_;
  for (int32_t y = 0; y < (oneRow ? 1 : height_); ++y) {
    rows_->moveLuma(srcY_.row(y), srcY_.step, dstY_.row(y), dstY_.step, count);
  }
}

void RowMoves::moveChroma() const {
  const int32_t first = chromaRow(0);
  const bool oneRow = !srcU_.hasGaps(cellColumns_) && !srcV_.hasGaps(cellColumns_) &&
                      !dstU_.hasGaps(cellColumns_) && !dstV_.hasGaps(cellColumns_) &&
                      chromaRow(cellRows_ - 1) - first == cellRows_ - 1;
  const ptrdiff_t count = oneRow ? ptrdiff_t{cellColumns_} * cellRows_ : cellColumns_;
  for (int32_t k = 0; k < (oneRow ? 1 : cellRows_); ++k) {
    const int32_t row = chromaRow(k);
    rows_->moveChroma({nullptr, srcU_.row(row), srcV_.row(row), 1, srcU_.step},
                      {nullptr, dstU_.row(k), dstV_.row(k), 1, dstU_.step}, count);
  }
}

// Luma of each row; chroma of the last in a cell, which has it in the same row.
void RowMoves::unpack() const {
  for (int32_t y = 0; y < height_; ++y) {
    if (!hasChroma_ || !cells_.y.isLast(rect_.top + y, rect_.bottom)) {
      rows_->moveLuma(srcY_.row(y), srcY_.step, dstY_.row(y), dstY_.step, width_);
      continue;
    }
    const int32_t cell = cells_.y.of(rect_.top + y) - firstCellRow_, row = chromaRow(cell);
    rows_->moveRow({srcY_.row(y), srcU_.row(row), srcV_.row(row), srcY_.step, srcU_.step},
                   {dstY_.row(y), dstU_.row(cell), dstV_.row(cell), dstY_.step, dstU_.step},
                   width_ / 2);
  }
}

void RowMoves::pack() const {
  for (int32_t y = 0; y < height_; ++y) {
    const int32_t row = chromaRow(y);
    rows_->packPairs({srcY_.row(y), srcU_.row(row), srcV_.row(row), srcY_.step, srcU_.step},
                     {dstY_.row(y), dstU_.row(y), dstV_.row(y), dstY_.step, dstU_.step},
                     width_ / 2);
  }
}

void RowMoves::copyGroups() const {
  for (int32_t y = 0; y < height_; ++y) {
    rows_->moveLuma(srcY_.row(y) - lumaOffset_, 1, dstY_.row(y) - lumaOffset_, 1,
                    ptrdiff_t{2} * width_);
  }
}

}  // namespace

bool moveRows(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  RowMoves moves;
  if (!moves.open(call, from, to, cells)) return false;
  moves.run();
  return true;
}

}  // namespace qpx::convert::fast
