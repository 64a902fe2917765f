// Coloured fringes along edges, faded to grey: by their hue, in a window for purple and magenta
// ones and a window for green ones with a ramp to the untouched source on both sides of each, and
// by how much luma changes near by, so that colours of surfaces stay.
#include "adjust/remove_edge.h"

#include <qpx/image.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "filters/curves/look_block.h"
#include "simd/hue_rows.h"
#include "simd/tone_rows.h"
#include "toolkit/color_field.h"
#include "toolkit/kernel_call.h"
#include "toolkit/planar_rows.h"
#include "toolkit/row_ring.h"

namespace qpx {
namespace {

constexpr int32_t kTurn = 360;
constexpr int32_t kRamp = 20;  // how far beyond a window hues still fade
constexpr int32_t kAll = 256;

constexpr int32_t kFullReach = 2;  // pixels from an edge within which fringes fade fully
constexpr int32_t kSquares = kFringeReach - kFullReach + 1;

// Hues on a scale of 20 ... 380: 360 and above are reds again.
struct HueWindow {
  int32_t low, high;
};

// 180 degrees from `base` on, in percent.
HueWindow windowOf(int32_t from, int32_t to, int32_t base) {
  return {base + from * 3 * 60 / 100, base + to * 180 / 100};
}

// A window has ten percent at least.
void clampWindow(int32_t& from, int32_t& to) {
  from = std::clamp(from, 0, 90);
  to = std::clamp(to, from + 10, 100);
}

int32_t circleDistance(int32_t a, int32_t b) {
  const int32_t distance = std::abs(a - b) % kTurn;
  return std::min(distance, kTurn - distance);
}

// Of kAll, at a hue.
int32_t weightOf(const HueWindow& window, int32_t hue) {
  if (hue >= window.low && hue <= window.high) return kAll;
  const int32_t beyond =
      std::min(circleDistance(hue, window.low), circleDistance(hue, window.high));
  return std::max(kAll - beyond * kAll / kRamp, 0);
}

// Both windows may reach a hue: the stronger counts.
void fillShares(simd::DegreeWords& shares, const QPXRemoveEdgeParam& param) {
  const HueWindow first = windowOf(param.left, param.right, 200);
  const HueWindow second = windowOf(param.top, param.bottom, 20);
  for (int32_t degrees = 0; degrees < kTurn; ++degrees) {
    const int32_t hue = degrees < 20 ? degrees + kTurn : degrees;
    const int32_t share = std::max(weightOf(first, hue) * param.strength / 100,
                                   weightOf(second, hue) * param.secondStrength / 100);
    shares.set(degrees, share);
  }
}

// How much of an edge, of 255, a range of lumas is: noise and texture are none, and the contrasts
// that lenses fringe are whole ones, with a smooth step between.
constexpr std::array<uint8_t, 256> kEdges = [] {
  constexpr int32_t kTexture = 16, kWidth = 80, kCube = kWidth * kWidth * kWidth;
  std::array<uint8_t, 256> table = {};
  for (int32_t range = 0; range < 256; ++range) {
    const int32_t t = std::clamp(range - kTexture, 0, kWidth);
    const int32_t step = 255 * (t * t * (3 * kWidth - 2 * t) / 8);
    table[static_cast<size_t>(range)] = static_cast<uint8_t>((step + kCube / 16) / (kCube / 8));
  }
  return table;
}();

void leastOf(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* to, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) to[i] = std::min(std::min(a[i], b[i]), c[i]);
}

void mostOf(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* to, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) to[i] = std::max(std::max(a[i], b[i]), c[i]);
}

size_t sizeOf(int32_t count) { return static_cast<size_t>(count); }

// A row of the ring holds, for every distance up to kFringeReach, the least and the largest luma
// that far to both sides of each pixel. Behind the ring are the sums of edges, the row's samples
// and luma, and what is worked on.
class FringeFade {
 public:
  static bool bytesFor(int32_t columns, size_t* bytes) {
    if (!RowRing::bytesFor(sizeOf(columns) * kRowPlanes, kRows + 1, bytes)) return false;
    *bytes += size_t{kFringeReach} * kRowPlanes;
    return true;
  }

  FringeFade(const Frame& frame, RingHead* head)
      : frame_(frame),
        mask_(record<QPXRemoveEdgeParam>(frame.stage).selection.mask),
        columns_(frame.rect.right - frame.rect.left),
        padded_(columns_ + 2 * kFringeReach),
        lastRow_(std::abs(frame.stage.inHeight) - 1),
        reversed_(ColorFields(frame.stage.pix.mask, frame.stage.pix.bytesPerSample[0]).bytesBgr()),
        ring_(head, sizeOf(columns_) * kRowPlanes, kRows),
        sums_(reinterpret_cast<uint16_t*>(reinterpret_cast<uint8_t*>(head + 1) +
                                          sizeOf(columns_) * kRowPlanes * kRows)),
        least_(reinterpret_cast<uint8_t*>(sums_ + columns_)),
        most_(least_ + columns_),
        luma_(most_ + columns_),
        samples_{{luma_ + padded_, luma_ + 2 * padded_, luma_ + 3 * padded_}},
        format_(frame.stage, least_) {}

  void run() {
    for (int32_t y = frame_.rect.top; y < frame_.rect.bottom; ++y) makeRow(y);
  }

 private:
  static constexpr size_t kRowPlanes = 2 * kFringeReach;
  static constexpr int32_t kRows = 2 * kFringeReach + 1;

  void makeRow(int32_t y) {
    ring_.hold(std::max(y - kFringeReach, 0), std::min(y + kFringeReach, lastRow_),
               [this](int32_t row, uint8_t* to) { spreadAlong(row, to); });
    sumEdges(y);
    averageEdges(y);
    load(y, 0);
    simd::hueRows().fadeHues(red(), green(), blue(), columns_, luma_, most_,
                             blockOf<simd::DegreeWords>(frame_.stage));
    format_.store(samples_, frame_.in[0][y], frame_.out[0][y], frame_.rect.left, frame_.rect.right);
  }

  void load(int32_t y, int32_t margin) {
    format_.load(frame_.in[0][y], frame_.rect.left, frame_.rect.right, margin, samples_);
    simd::toneRows().rgbToLuma(red(), green(), blue(), luma_, columns_ + 2 * margin);
  }

  uint8_t* red() const { return samples_.plane[reversed_ ? 2 : 0]; }
  uint8_t* green() const { return samples_.plane[1]; }
  uint8_t* blue() const { return samples_.plane[reversed_ ? 0 : 2]; }

  // Each distance from the one before it.
  void spreadAlong(int32_t y, uint8_t* to) {
    load(y, kFringeReach);
    const uint8_t* const middle = luma_ + kFringeReach;
    const uint8_t *least = middle, *most = middle;
    for (int32_t reach = 1; reach <= kFringeReach; ++reach, to += 2 * ptrdiff_t{columns_}) {
      leastOf(least, middle - reach, middle + reach, to, columns_);
      mostOf(most, middle - reach, middle + reach, to + columns_, columns_);
      least = to;
      most = to + columns_;
    }
  }

  // The squares that count do so alike, so that beyond the smallest edges fade out evenly.
  void sumEdges(int32_t y) {
    std::memset(sums_, 0, sizeOf(columns_) * sizeof *sums_);
    for (int32_t reach = kFullReach; reach <= kFringeReach; ++reach) {
      findExtremes(y, reach);
      for (ptrdiff_t i = 0; i < columns_; ++i) {
        most_[i] = static_cast<uint8_t>(most_[i] - least_[i]);
      }
      simd::rows().lookup(most_, most_, columns_, kEdges.data());
      for (ptrdiff_t i = 0; i < columns_; ++i) {
        sums_[i] = static_cast<uint16_t>(sums_[i] + most_[i]);
      }
    }
  }

  void findExtremes(int32_t y, int32_t reach) {
    const ptrdiff_t plane = 2 * (ptrdiff_t{reach} - 1) * columns_;
    std::memcpy(least_, ring_.row(y) + plane, sizeOf(columns_));
    std::memcpy(most_, ring_.row(y) + plane + columns_, sizeOf(columns_));
    for (int32_t k = 1; k <= reach; ++k) {
      const uint8_t* above = ring_.row(std::max(y - k, 0)) + plane;
      const uint8_t* below = ring_.row(std::min(y + k, lastRow_)) + plane;
      leastOf(least_, above, below, least_, columns_);
      mostOf(most_, above + columns_, below + columns_, most_, columns_);
    }
  }

  // What of the fade shows, in place of the largest lumas.
  void averageEdges(int32_t y) {
    for (ptrdiff_t i = 0; i < columns_; ++i) {
      most_[i] = static_cast<uint8_t>((sums_[i] + kSquares / 2) / kSquares);
    }
    if (mask_ == nullptr) return;
    const uint8_t* shown = mask_->plane[0] + ptrdiff_t{y - frame_.rect.top} * mask_->pitch[0];
    for (ptrdiff_t i = 0; i < columns_; ++i) {
      most_[i] = static_cast<uint8_t>((most_[i] * shown[i] + 127) / 255);
    }
  }

  const Frame& frame_;
  const MBitmap* mask_;
  int32_t columns_;
  int32_t padded_;
  int32_t lastRow_;
  bool reversed_;
  RowRing ring_;
  uint16_t* sums_;
  uint8_t* least_;
  uint8_t* most_;
  uint8_t* luma_;
  PlanarRow samples_;
  PlanarFormat format_;
};

// A mask is of 8 bits and covers the rectangle, no more and no less.
bool fits(const MBitmap& mask, const MRect& rect) {
  return mask.format == QPX_FORMAT_GREY8 && mask.plane[0] != nullptr &&
         mask.width == rect.right - rect.left && mask.height == rect.bottom - rect.top;
}

int32_t removeEdgeOf(const Frame& frame, bool kept) {
  if ((formatGroup(frame.stage.pix) & kTakesRgb) == 0) return QPX_OK;
  const MBitmap* mask = record<QPXRemoveEdgeParam>(frame.stage).selection.mask;
  if (mask != nullptr && !fits(*mask, frame.rect)) return QPX_BAD_PARAM;
  size_t bytes = 0;
  if (!FringeFade::bytesFor(frame.rect.right - frame.rect.left, &bytes)) return QPX_NO_MEMORY;
  return withRing(frame.stage, bytes, kept,
                  [&frame](RingHead* head) { FringeFade(frame, head).run(); });
}

}  // namespace

int32_t setUpRemoveEdge(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXRemoveEdgeParam>(stage);
  for (uint8_t* percent : {&param.strength, &param.secondStrength}) {
    *percent = std::min<uint8_t>(*percent, 100);
  }
  // A packed record's fields lend no references.
  int32_t left = param.left, right = param.right, top = param.top, bottom = param.bottom;
  clampWindow(left, right);
  clampWindow(top, bottom);
  param.left = left;
  param.right = right;
  param.top = top;
  param.bottom = bottom;
  size_t bytes = 0;
  if (!FringeFade::bytesFor(stage.inWidth, &bytes)) return QPX_NO_MEMORY;
  auto* shares = makeBlock<simd::DegreeWords>(stage);
  if (shares == nullptr) return QPX_NO_MEMORY;
  fillShares(*shares, param);
  return reserveRing(stage, bytes);
}

int32_t removeEdge(const Frame& frame) { return removeEdgeOf(frame, true); }

}  // namespace qpx

using namespace qpx;

int32_t RemoveEdge_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                       QPXRowTable* inRows) {
  return callOnFrameOf(kRemoveEdge, stage, rect, outRows, inRows,
                       [](const Frame& frame) { return removeEdgeOf(frame, false); });
}
