// Colour fringes along edges, faded to grey by their hue: two windows of hues, one of cyan to red
// and one of orange to cyan, and a ramp to the untouched source on both sides of each.
#include "adjust/remove_edge.h"

#include <qpx/image.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "toolkit/curve.h"
#include "toolkit/kernel_call.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

constexpr int32_t kTurn = 360;
constexpr int32_t kRamp = 20;  // how far beyond a window hues still fade
constexpr int32_t kAll = 256;

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

// What setup leaves in the stage's block.
struct FringeTable {
  uint16_t share[kTurn];  // of kAll, by hue in degrees
};

// Both windows may reach a hue: the stronger counts.
void fillShares(FringeTable& table, const QPXRemoveEdgeParam& param) {
  const HueWindow first = windowOf(param.left, param.right, 200);
  const HueWindow second = windowOf(param.top, param.bottom, 20);
  for (int32_t degrees = 0; degrees < kTurn; ++degrees) {
    const int32_t hue = degrees < 20 ? degrees + kTurn : degrees;
    const int32_t share = std::max(weightOf(first, hue) * param.strength / 100,
                                   weightOf(second, hue) * param.secondStrength / 100);
    table.share[degrees] = static_cast<uint16_t>(share);
  }
}

// In whole degrees; colours without a hue have 0.
int32_t hueOf(int32_t r, int32_t g, int32_t b) {
  const auto [least, most] = std::minmax({r, g, b});
  const int32_t chroma = most - least;
  if (chroma == 0) return 0;
  if (most == r) return (60 * (g - b) / chroma + kTurn) % kTurn;
  return most == g ? 120 + 60 * (b - r) / chroma : 240 + 60 * (r - g) / chroma;
}

uint8_t faded(int32_t sample, int32_t grey, int32_t share) {
  return static_cast<uint8_t>(sample + (((grey - sample) * share + kAll / 2) >> 8));
}

void fade(const FringeTable& table, const uint8_t* mask, PixelRun& run) {
  for (int32_t i = 0; i < run.count; ++i) {
    const int32_t r = run.r[i], g = run.g[i], b = run.b[i];
    int32_t share = table.share[hueOf(r, g, b)];
    if (mask != nullptr) share = share * mask[i] / 255;
    if (share == 0) continue;
    const int32_t grey = (306 * r + 601 * g + 117 * b) >> 10;
    run.r[i] = faded(r, grey, share);
    run.g[i] = faded(g, grey, share);
    run.b[i] = faded(b, grey, share);
  }
}

// A mask is of 8 bits and covers the rectangle, no more and no less.
bool fits(const MBitmap& mask, const MRect& rect) {
  return mask.format == QPX_FORMAT_GREY8 && mask.plane[0] != nullptr &&
         mask.width == rect.right - rect.left && mask.height == rect.bottom - rect.top;
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
  auto* table = static_cast<FringeTable*>(MMemAlloc(nullptr, sizeof(FringeTable)));
  if (table == nullptr) return QPX_NO_MEMORY;
  fillShares(*table, param);
  stage.lut = reinterpret_cast<uint8_t*>(table);
  stage.lutSize = sizeof(FringeTable);
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;
  return QPX_OK;
}

int32_t removeEdge(const Frame& frame) {
  const MBitmap* mask = record<QPXRemoveEdgeParam>(frame.stage).selection.mask;
  if (mask != nullptr && !fits(*mask, frame.rect)) return QPX_BAD_PARAM;
  const auto& table = *reinterpret_cast<const FringeTable*>(frame.stage.lut);
  const RunFormat format(frame.stage);
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    const uint8_t* row = nullptr;
    if (mask != nullptr) {
      row = mask->plane[0] + ptrdiff_t{run.y - frame.rect.top} * mask->pitch[0] +
            (run.x - frame.rect.left);
    }
    format.load(frame.in, run);
    fade(table, row, run);
    format.store(run, frame.in, frame.out);
  });
  return QPX_OK;
}

}  // namespace qpx

using namespace qpx;

int32_t RemoveEdge_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                       QPXRowTable* inRows) {
  return callOnFrameOf(kRemoveEdge, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? removeEdge(frame) : int32_t{QPX_OK};
  });
}
