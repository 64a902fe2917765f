// Gaussian blur and unsharp mask: one blur, and what is made of it.
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstdlib>

#include "adjust/gauss_window.h"
#include "adjust/sharpening.h"
#include "simd/rows.h"
#include "simd/window_rows.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

constexpr ptrdiff_t kPart = 512;

// How far each difference from the blur moves a sample; none that is not above the threshold does.
struct Steps {
  uint8_t of[256];

  explicit Steps(const QPXUnsharpMaskParam& param) {
    for (int32_t difference = 0; difference < 256; ++difference) {
      const int32_t step = difference > param.threshold ? difference * param.amount / 100 : 0;
      of[difference] = static_cast<uint8_t>(std::min(step, 255));
    }
  }
};

void sharpen(const uint8_t* steps, const uint8_t* source, uint8_t* blurred, ptrdiff_t count) {
  const simd::WindowRows& rows = simd::windowRows();
  uint8_t move[kPart];
  for (ptrdiff_t i = 0; i < count; i += kPart) {
    const ptrdiff_t part = std::min(kPart, count - i);
    rows.distance(source + i, blurred + i, move, part);
    simd::rows().lookup(move, move, part, steps);
    rows.moveAway(source + i, blurred + i, move, blurred + i, part);
  }
}

int32_t gaussRadius(const Stage& stage) { return record<QPXGaussBlurParam>(stage).kernelSize >> 1; }

int32_t unsharpRadius(const Stage& stage) { return record<QPXUnsharpMaskParam>(stage).radius; }

int32_t gaussBlurOf(const Frame& frame, bool kept) {
  if ((formatGroup(frame.stage.pix) & kTakesRgb) == 0) return QPX_OK;
  return blurFrame(frame, {gaussRadius(frame.stage), nullptr, nullptr, kept});
}

int32_t unsharpMaskOf(const Frame& frame, bool kept) {
  if ((formatGroup(frame.stage.pix) & kTakesRgb) == 0) return QPX_OK;
  const Steps steps(record<QPXUnsharpMaskParam>(frame.stage));
  return blurFrame(frame, {unsharpRadius(frame.stage), sharpen, steps.of, kept});
}

}  // namespace

int32_t setUpGaussBlur(Stage& stage, QPXBand&) {
  int32_t& size = editRecord<QPXGaussBlurParam>(stage).kernelSize;
  size = std::clamp(size, 1, 2 * kMaxGaussRadius + 1);
  return setUpBlur(stage, gaussRadius(stage));
}

int32_t gaussBlurMargin(const Stage& stage) { return gaussRadius(stage); }

int32_t gaussBlur(const Frame& frame) { return gaussBlurOf(frame, true); }

int32_t setUpUnsharpMask(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXUnsharpMaskParam>(stage);
  param.amount = std::clamp(param.amount, 0, 500);
  param.threshold = std::clamp(param.threshold, 0, 255);
  param.radius = std::clamp(param.radius, 0, kMaxGaussRadius);
  return setUpBlur(stage, param.radius);
}

int32_t unsharpMaskMargin(const Stage& stage) { return unsharpRadius(stage); }

int32_t unsharpMask(const Frame& frame) { return unsharpMaskOf(frame, true); }

}  // namespace qpx

using namespace qpx;

int32_t GaussBlur_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callOnFrameOf(kGaussBlur, stage, rect, outRows, inRows,
                       [](const Frame& frame) { return gaussBlurOf(frame, false); });
}

int32_t SharpenUSM_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                       QPXRowTable* inRows) {
  return callOnFrameOf(kUnsharpMask, stage, rect, outRows, inRows,
                       [](const Frame& frame) { return unsharpMaskOf(frame, false); });
}
