// Local contrast against the mean of a square window, by running sums.
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "adjust/sharpening.h"
#include "simd/window_rows.h"
#include "toolkit/kernel_call.h"
#include "toolkit/planar_rows.h"
#include "toolkit/row_ring.h"

namespace qpx {
namespace {

// The reciprocal of a wider window has one bit, which is no mean any more.
constexpr int32_t kMaxWindow = 511;

size_t sizeOf(int32_t count) { return static_cast<size_t>(count); }

int32_t windowOf(const Stage& stage) { return record<QPXDefinitionParam>(stage).windowSize; }

// The percentage with eight fractional bits; beyond 100 it is all.
int32_t shareOf(int32_t amount) {
  return amount < -100 || amount > 100 ? 256 : std::abs(amount) * 256 / 100;
}

// A window reaches half its side up and to the left, and what is left of it down and to the right:
// one less for even sides. One block holds the ring of rows as planes, from one row before the
// window on, and behind it the sums of the window's rows by column, the sums of windows, a row to
// write and its alpha.
class BoxContrast {
 public:
  static bool bytesFor(int32_t columns, int32_t window, size_t* bytes) {
    const size_t width = sizeOf(columns) + sizeOf(window);
    return RowRing::bytesFor(width * kPlanes, sizeOf(window) + 1 + 2 * sizeof(int32_t) + 2, bytes);
  }

  BoxContrast(const Frame& frame, RingHead* head)
      : frame_(frame),
        head_(*head),
        window_(windowOf(frame.stage)),
        reach_(window_ >> 1),
        below_(window_ - 1 - reach_),
        columns_(frame.rect.right - frame.rect.left),
        padded_(columns_ + 2 * reach_),
        lastRow_(std::abs(frame.stage.inHeight) - 1),
        rows_(simd::windowRows()),
        ring_(head, rowBytes(), window_ + 1),
        columnSums_(reinterpret_cast<int32_t*>(reinterpret_cast<uint8_t*>(head + 1) +
                                               roundUp(rowBytes() * (sizeOf(window_) + 1)))),
        sums_(columnSums_ + padded_ * kPlanes),
        result_(
            planesOf(reinterpret_cast<uint8_t*>(sums_ + ptrdiff_t{columns_} * kPlanes), columns_)),
        format_(frame.stage, result_.plane[2] + columns_) {}

  void run() {
    for (int32_t y = frame_.rect.top; y < frame_.rect.bottom; ++y) makeRow(y);
  }

 private:
  static size_t roundUp(size_t bytes) { return (bytes + 3) & ~size_t{3}; }

  static PlanarRow planesOf(uint8_t* block, ptrdiff_t columns) {
    return {{block, block + columns, block + 2 * columns}};
  }

  size_t rowBytes() const { return sizeOf(padded_) * kPlanes; }

  // Rows beyond the picture repeat its edge.
  const uint8_t* sourceRow(int32_t y) const { return ring_.row(std::clamp(y, 0, lastRow_)); }

  void makeRow(int32_t y) {
    ring_.hold(std::max(y - reach_, 0), std::min(y + below_, lastRow_),
               [this](int32_t row, uint8_t* to) {
                 format_.load(frame_.in[0][row], frame_.rect.left, frame_.rect.right, reach_,
                              planesOf(to, padded_));
               });
    sumColumns(y);
    sumWindows();
    moveRow(y);
  }

  // `extra` of the ring's head is the row around which the columns are summed, plus 1.
  void sumColumns(int32_t y) {
    const bool slides = y > 0 && head_.extra == y && ring_.holds(std::max(y - 1 - reach_, 0));
    const ptrdiff_t samples = ptrdiff_t{padded_} * kPlanes;
    if (slides) {
      rows_.slideDown(columnSums_, sourceRow(y + below_), sourceRow(y - 1 - reach_), samples);
    } else {
      std::memset(columnSums_, 0, static_cast<size_t>(samples) * sizeof(int32_t));
      for (int32_t row = y - reach_; row <= y + below_; ++row) addRow(sourceRow(row), samples);
    }
    head_.extra = int64_t{y} + 1;
  }

  void addRow(const uint8_t* row, ptrdiff_t samples) {
    for (ptrdiff_t i = 0; i < samples; ++i) columnSums_[i] += row[i];
  }

  void sumWindows() {
    const ptrdiff_t wide = padded_, narrow = columns_;
    const int32_t* const from[] = {columnSums_, columnSums_ + wide, columnSums_ + 2 * wide};
    int32_t* const to[] = {sums_, sums_ + narrow, sums_ + 2 * narrow};
    rows_.windowSums(from, to, window_, columns_);
  }

  void moveRow(int32_t y) {
    const int32_t amount = record<QPXDefinitionParam>(frame_.stage).amount;
    const int32_t share = amount > 0 ? -shareOf(amount) : shareOf(amount);
    const int32_t reciprocal = static_cast<int32_t>(1024.0 / window_ + 0.5);
    const PlanarRow source = planesOf(ring_.row(y), padded_).from(reach_);
    for (int p = 0; p < kPlanes; ++p) {
      rows_.moveToMean(source.plane[p], sums_ + ptrdiff_t{columns_} * p, result_.plane[p], columns_,
                       reciprocal, share);
    }
    format_.store(result_, frame_.in[0][y], frame_.out[0][y], frame_.rect.left, frame_.rect.right);
  }

  const Frame& frame_;
  RingHead& head_;
  int32_t window_;
  int32_t reach_;
  int32_t below_;
  int32_t columns_;
  int32_t padded_;
  int32_t lastRow_;
  const simd::WindowRows& rows_;
  RowRing ring_;
  int32_t* columnSums_;
  int32_t* sums_;
  PlanarRow result_;
  PlanarFormat format_;
};

int32_t definitionOf(const Frame& frame, bool kept) {
  if ((formatGroup(frame.stage.pix) & kTakesRgb) == 0) return QPX_OK;
  size_t bytes = 0;
  const int32_t columns = frame.rect.right - frame.rect.left;
  if (!BoxContrast::bytesFor(columns, windowOf(frame.stage), &bytes)) return QPX_NO_MEMORY;
  return withRing(frame.stage, bytes, kept,
                  [&frame](RingHead* head) { BoxContrast(frame, head).run(); });
}

}  // namespace

int32_t setUpDefinition(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXDefinitionParam>(stage);
  param.windowSize = std::clamp(param.windowSize, 1, kMaxWindow);
  size_t bytes = 0;
  if (!BoxContrast::bytesFor(stage.inWidth, windowOf(stage), &bytes)) return QPX_NO_MEMORY;
  return reserveRing(stage, bytes);
}

int32_t definitionMargin(const Stage& stage) { return windowOf(stage) >> 1; }

int32_t definition(const Frame& frame) { return definitionOf(frame, true); }

}  // namespace qpx

using namespace qpx;

int32_t Definition_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                       QPXRowTable* inRows) {
  return callOnFrameOf(kDefinition, stage, rect, outRows, inRows,
                       [](const Frame& frame) { return definitionOf(frame, false); });
}
