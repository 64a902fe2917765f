// Selective colour: ink in proportion to what a colour holds of it, or in absolute amounts.
#include "adjust/selective_color.h"

#include <qpx/kernels_adjust.h>

#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

// Amounts with eight fractional bits.
simd::Inks absoluteInks(const QPXSelectiveColorParam& param) {
  simd::Inks inks = foldBlack(param);
  for (auto& amounts : inks.amount) {
    for (int32_t& amount : amounts) amount = clampPercent(amount) * 256 / 100;
  }
  return inks;
}

template <typename Step>
int32_t forColors(const Frame& frame, const Step& step) {
  const RunFormat format(frame.stage);
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.load(frame.in, run);
    step(run);
    format.store(run, frame.in, frame.out);
  });
  return QPX_OK;
}

int32_t selectiveColorAbsolute(const Frame& frame) {
  const simd::Inks inks = absoluteInks(record<QPXSelectiveColorParam>(frame.stage));
  return forColors(frame, [&](PixelRun& run) {
    simd::selectiveRows().selectAbsoluteInks(run.r, run.g, run.b, run.count, inks);
  });
}

int32_t callOnColors(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows,
                     Kernel kernel) {
  return callOnFrameOf(kSelectiveColor, stage, rect, outRows, inRows, [=](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? kernel(frame) : int32_t{QPX_OK};
  });
}

}  // namespace

int32_t setUpSelectiveColor(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXSelectiveColorParam>(stage);
  for (auto& amounts : param.amounts) {
    for (int32_t& amount : amounts) amount = clampPercent(amount);
  }
  return QPX_OK;
}

int32_t selectiveColor(const Frame& frame) {
  const simd::Inks inks = foldBlack(record<QPXSelectiveColorParam>(frame.stage));
  return forColors(frame, [&](PixelRun& run) { selectColors(run, inks); });
}

}  // namespace qpx

using namespace qpx;

int32_t SelectiveColor_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows) {
  return callOnColors(stage, rect, outRows, inRows, selectiveColor);
}

int32_t SelectiveColorFilter1995_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows) {
  return callOnColors(stage, rect, outRows, inRows, selectiveColor);
}

int32_t SelectiveColorAbsolute_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                   QPXRowTable* inRows) {
  return callOnColors(stage, rect, outRows, inRows, selectiveColorAbsolute);
}
