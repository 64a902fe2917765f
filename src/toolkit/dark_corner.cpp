#include "toolkit/dark_corner.h"

#include <qpx/kernels.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "simd/blend_rows.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

constexpr int32_t kFarthestCentre = 1 << 20;

int64_t distance(int64_t dx, int64_t dy) {
  const double x = static_cast<double>(dx);
  const double y = static_cast<double>(dy);
  return static_cast<int64_t>(std::sqrt(x * x + y * y));
}

// The inner radius in tenths of the farthest distance: 0..4 up to a radius of 50 percent, then
// 4..7.
int32_t innerTenths(int32_t radius) {
  return radius < 51 ? radius * 8 / 100 : 1 + radius * 6 / 100;
}

}  // namespace

CornerTerms::CornerTerms(const QPXDarkCornerParam& param, int32_t width, int32_t height)
    : centerX(std::clamp(param.centerX, -kFarthestCentre, kFarthestCentre)),
      centerY(std::clamp(param.centerY, -kFarthestCentre, kFarthestCentre)),
      farthest(0),
      amount(std::min(std::abs(std::max(param.intensity, -100)), 100) * 1024 / 100) {
  for (const int32_t x : {0, width}) {
    for (const int32_t y : {0, height}) {
      const int64_t corner = distance(int64_t{x} - centerX, int64_t{y} - centerY);
      farthest =
          static_cast<int32_t>(std::min<int64_t>(std::max<int64_t>(farthest, corner), INT32_MAX));
    }
  }
  const int32_t tenths = innerTenths(std::clamp(param.radius, 0, 100));
  inner = static_cast<int32_t>(int64_t{tenths} * farthest / 10);
  // A picture that is all centre has no corners to scale.
  scale = farthest > inner ? 0x100000 / (farthest - inner) : 0;
  start = (tenths << 10) / (10 - tenths);
}

void darkenCorners(PixelRun& run, const CornerTerms& terms, const uint8_t* tone) {
  const simd::Rows& rows = simd::rows();
  const simd::BlendRows& blends = simd::blendRows();
  alignas(kRunAlignment) int32_t weights[kRunLength];
  alignas(kRunAlignment) uint8_t toned[kRunLength];
  blends.cornerWeights({.dx = int64_t{run.x} - terms.centerX,
                        .dy = int64_t{run.y} - terms.centerY,
                        .inner = terms.inner,
                        .scale = terms.scale,
                        .start = terms.start,
                        .farthest = terms.farthest},
                       weights, run.count);
  for (uint8_t* channel : {run.r, run.g, run.b}) {
    rows.lookup(channel, toned, run.count, tone);
    blends.mixCorner(channel, toned, weights, channel, run.count, terms.amount);
  }
}

void darkenCorners(const Frame& frame, const CornerTerms& terms, const uint8_t* tone) {
  if ((formatGroup(frame.stage.pix) & kTakesRgb) == 0) return;
  const RunFormat format(frame.stage);
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.load(frame.in, run);
    darkenCorners(run, terms, tone);
    format.store(run, frame.in, frame.out);
  });
}

int32_t darkenCorners(const Frame& frame) {
  const Stage& stage = frame.stage;
  if (stage.lut == nullptr || stage.lutSize < 256) return QPX_BAD_PARAM;
  const CornerTerms terms(record<QPXDarkCornerParam>(stage), stage.inWidth, stage.inHeight);
  darkenCorners(frame, terms, stage.lut);
  return QPX_OK;
}

}  // namespace qpx

using namespace qpx;

int32_t DarkCornerOptimized(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows,
                     [](const Frame& frame) { return darkenCorners(frame); });
}
