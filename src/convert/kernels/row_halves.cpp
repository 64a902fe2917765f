#include "convert/kernels/row_halves.h"

#include <algorithm>

#include "convert/format_decoder.h"
#include "convert/kernels/positions.h"
#include "convert/kernels/source.h"
#include "convert/kernels/yuv_pixels.h"
#include "simd/sampled_rows.h"
#include "simd/yuv_rows.h"

namespace qpx::convert::fast {
namespace {

constexpr uint32_t kTwo = 2 * kFixedOne;
constexpr int32_t kRunOfHalves = 2048;

FormatSet familyOf(FormatSet format) {
  for (const FormatSet family : {kIn420, kIn444, kInI422H | kInYv422H, kInI422V | kInYv422V}) {
    if ((format & family) != 0) return family;
  }
  return format & (kInGrey | kIn32);
}

// No row or column is held at an edge of the clip, so that all lie half way between two.
bool halvesAll(const Call& call, const Positions& positions) {
  const ConvRecord& record = *call.record;
  const MRect& rect = call.rect;
  return record.bilinearY != 0 && call.stepX == kTwo && call.stepY == kTwo &&
         rect.left >= record.validX0 && rect.right < record.validX1 &&
         positions.row(rect.top).fraction == kFixedHalf &&
         positions.row(rect.bottom - 1).fraction == kFixedHalf;
}

class RowHalves {
 public:
  RowHalves(const Call& call, const CellGrid& cells)
      : call_(call), record_(*call.record), rect_(call.rect), cells_(cells), positions_(call) {}

  bool open(FormatSet from, FormatSet to);
  void run() const;

 private:
  bool openSameFormat(FormatSet from, FormatSet to);
  bool openToRgb(FormatSet to);

  // The left of the two columns of a pixel, and the upper of its two rows.
  int32_t columnOf(int32_t x) const { return record_.srcOrgX + 2 * (x - record_.dstOrgX); }
  int32_t rowOf(int32_t y) const { return firstRow_ + 2 * (y - rect_.top); }
  uint8_t* target(int32_t y) const {
    return call_.dstPlanes[0] + ptrdiff_t{call_.dstPitch[0]} * (y - rect_.top);
  }
  void halvePixels() const;
  void thinChroma() const;
  void thinPlane(int32_t component, int32_t plane) const;
  void halveToRgb() const;
  simd::YuvRow rowAt(int32_t x, int32_t y) const;

  const Call& call_;
  const ConvRecord& record_;
  const MRect& rect_;
  CellGrid cells_;
  Positions positions_;
  int32_t firstRow_ = 0;
  Source source_;
  int32_t bytes_ = 1;  // of a pixel, or of a sample
  bool hasChroma_ = false;
  bool toRgb_ = false;
  YuvPixels pixels_;
};

bool RowHalves::open(FormatSet from, FormatSet to) {
  if (record_.swapXY != 0 || record_.mirrorX != 0 || !halvesAll(call_, positions_) ||
      call_.dstPlanes[0] == nullptr || !source_.open(call_, from)) {
    return false;
  }
  firstRow_ = positions_.row(rect_.top).first;
  toRgb_ = openToRgb(to);
  return toRgb_ || openSameFormat(from, to);
}

bool RowHalves::openSameFormat(FormatSet from, FormatSet to) {
  const FormatSet family = familyOf(from);
  const bool keeps = family != 0 && family == familyOf(to) && ((from & kIn32) == 0 || from == to);
  if (!keeps || record_.useLut != 0) return false;
  if ((from & kIn32) != 0) bytes_ = 4;
  hasChroma_ = (from & kInPlanar) != 0;
  return !hasChroma_ || (cells_.x.endsWhole(rect_.right) && call_.dstPlanes[1] != nullptr &&
                         call_.dstPlanes[2] != nullptr);
}

// Chroma of half the columns has a sample for each pixel.
bool RowHalves::openToRgb(FormatSet to) {
  const bool canRead = source_.hasPlanes() || source_.hasPairs();
  if ((to & kInRgb) == 0 || !canRead || source_.chromaShiftX() == 0) return false;
  bytes_ = pixelBytes(to);
  pixels_.open(record_, to);
  return true;
}

void RowHalves::run() const {
  if (toRgb_) {
    halveToRgb();
    return;
  }
  halvePixels();
  if (hasChroma_) thinChroma();
}

void RowHalves::halvePixels() const {
  const simd::SampledRows& rows = simd::sampledRows();
  const Source::Plane plane = source_.plane(0);
  const ptrdiff_t first = ptrdiff_t{bytes_} * columnOf(rect_.left);
  const int32_t count = rect_.right - rect_.left;
  for (int32_t y = rect_.top; y < rect_.bottom; ++y) {
    const int32_t row = rowOf(y);
    (bytes_ == 1 ? rows.halve1 : rows.halve4)(plane.at(row, first), plane.at(row + 1, first), count,
                                              target(y));
  }
}

// Chroma is that of the last pixel of each cell and not mixed: of neighbouring cells, that of every
// other sample.
void RowHalves::thinChroma() const {
  thinPlane(1, planeOfU(record_.dst.klass));
  thinPlane(2, planeOfV(record_.dst.klass));
}

void RowHalves::thinPlane(int32_t component, int32_t plane) const {
  const simd::YuvRows& rows = simd::yuvRows();
  const Source::Plane src = source_.plane(component);
  const int32_t firstColumn = cells_.x.of(rect_.left), firstRow = cells_.y.of(rect_.top);
  const int32_t count = cells_.x.of(rect_.right - 1) - firstColumn + 1;
  const int32_t column =
      columnOf(cells_.x.lastOf(firstColumn, rect_.right)) >> source_.chromaShiftX();
  for (int32_t row = firstRow; row <= cells_.y.of(rect_.bottom - 1); ++row) {
    const int32_t last = rowOf(cells_.y.lastOf(row, rect_.bottom));
    rows.moveLuma(src.at(last >> source_.chromaShiftY(), column), 2,
                  call_.dstPlanes[plane] + ptrdiff_t{call_.dstPitch[plane]} * (row - firstRow), 1,
                  count);
  }
}

// Chroma of row `y` from pixel `x` on.
simd::YuvRow RowHalves::rowAt(int32_t x, int32_t y) const {
  const int32_t row = rowOf(y) >> source_.chromaShiftY();
  const int32_t column = columnOf(x) >> source_.chromaShiftX();
  const ptrdiff_t step = source_.hasPairs() ? 2 : 1;
  simd::YuvRow made = {};
  made.u = source_.plane(1).at(row, step * column);
  made.v = source_.plane(2).at(row, step * column);
  made.chromaStep = step;
  return made;
}

void RowHalves::halveToRgb() const {
  const simd::SampledRows& rows = simd::sampledRows();
  const Source::Plane plane = source_.plane(0);
  uint8_t luma[kRunOfHalves];
  for (int32_t y = rect_.top; y < rect_.bottom; ++y) {
    const int32_t upper = rowOf(y);
    for (int32_t x = rect_.left, count; x < rect_.right; x += count) {
      count = std::min(kRunOfHalves, rect_.right - x);
      const int32_t column = columnOf(x);
      rows.halve1(plane.at(upper, column), plane.at(upper + 1, column), count, luma);
      simd::YuvRow row = rowAt(x, y);
      row.luma[0] = luma;
      row.dst[0] = target(y) + ptrdiff_t{bytes_} * (x - rect_.left);
      pixels_.convert(&row, 1, count);
    }
  }
}

}  // namespace

bool halveRows(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  RowHalves halves(call, cells);
  if (!halves.open(from, to)) return false;
  halves.run();
  return true;
}

}  // namespace qpx::convert::fast
