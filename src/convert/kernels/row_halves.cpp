#include "convert/kernels/row_halves.h"

#include "convert/format_decoder.h"
#include "convert/kernels/positions.h"
#include "convert/kernels/source.h"
#include "simd/sampled_rows.h"
#include "simd/yuv_rows.h"

namespace qpx::convert::fast {
namespace {

constexpr uint32_t kTwo = 0x20000;
constexpr int32_t kMiddle = 0x8000;

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
         positions.row(rect.top).fraction == kMiddle &&
         positions.row(rect.bottom - 1).fraction == kMiddle;
}

class RowHalves {
 public:
  RowHalves(const Call& call, const CellGrid& cells)
      : call_(call), record_(*call.record), rect_(call.rect), cells_(cells), positions_(call) {}

  bool open(FormatSet from, FormatSet to);
  void halvePixels() const;
  void thinChroma() const;

  bool hasChroma() const { return hasChroma_; }

 private:
  // The left of the two columns of a pixel.
  int32_t columnOf(int32_t x) const { return record_.srcOrgX + 2 * (x - record_.dstOrgX); }
  void thinPlane(int32_t component, int32_t plane) const;

  const Call& call_;
  const ConvRecord& record_;
  const MRect& rect_;
  CellGrid cells_;
  Positions positions_;
  Source source_;
  int32_t bytes_ = 1;
  bool hasChroma_ = false;
};

bool RowHalves::open(FormatSet from, FormatSet to) {
  const FormatSet family = familyOf(from);
  const bool keeps = family != 0 && family == familyOf(to) && ((from & kIn32) == 0 || from == to);
  if (!keeps || record_.swapXY != 0 || record_.mirrorX != 0 || record_.useLut != 0 ||
      !halvesAll(call_, positions_) || !source_.open(call_, from)) {
    return false;
  }
  if ((from & kIn32) != 0) bytes_ = 4;
  hasChroma_ = (from & kInPlanar) != 0;
  if (call_.dstPlanes[0] == nullptr) return false;
  return !hasChroma_ || (cells_.x.endsWhole(rect_.right) && call_.dstPlanes[1] != nullptr &&
                         call_.dstPlanes[2] != nullptr);
}

void RowHalves::halvePixels() const {
  const simd::SampledRows& rows = simd::sampledRows();
  const Source::Plane plane = source_.plane(0);
  const ptrdiff_t first = ptrdiff_t{bytes_} * columnOf(rect_.left);
  const int32_t count = rect_.right - rect_.left;
  for (int32_t y = rect_.top; y < rect_.bottom; ++y) {
    const SourcePair place = positions_.row(y);
    (bytes_ == 1 ? rows.halve1 : rows.halve4)(
        plane.at(place.first, first), plane.at(place.second, first), count,
        call_.dstPlanes[0] + ptrdiff_t{call_.dstPitch[0]} * (y - rect_.top));
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
    const int32_t last = positions_.row(cells_.y.lastOf(row, rect_.bottom)).first;
    rows.moveLuma(src.at(last >> source_.chromaShiftY(), column), 2,
                  call_.dstPlanes[plane] + ptrdiff_t{call_.dstPitch[plane]} * (row - firstRow), 1,
                  count);
  }
}

}  // namespace

bool halveRows(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  RowHalves halves(call, cells);
  if (!halves.open(from, to)) return false;
  halves.halvePixels();
  if (halves.hasChroma()) halves.thinChroma();
  return true;
}

}  // namespace qpx::convert::fast
