// Selective colour: ink in proportion to what a colour holds of it, or in absolute amounts.
#include "adjust/selective_color.h"

#include <qpx/kernels_adjust.h>

#include <array>

#include "simd/selective_math.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

using Reciprocals = std::array<int32_t, 256>;

// 2^20 / room, of a channel above 0 and below 255.
template <typename Room>
constexpr Reciprocals reciprocals(const Room& room) {
  Reciprocals table = {};
  for (int32_t v = 0; v < 256; ++v) {
    table[static_cast<size_t>(v)] = 0x100000 / std::max(room(v), 1);
  }
  return table;
}
constexpr Reciprocals kOfLight = reciprocals([](int32_t v) { return v; });
constexpr Reciprocals kOfInk = reciprocals([](int32_t v) { return 255 - v; });

// Amounts with eight fractional bits.
simd::Inks absoluteInks(const QPXSelectiveColorParam& param) {
  simd::Inks inks = foldBlack(param);
  for (auto& amounts : inks.amount) {
    for (int32_t& amount : amounts) amount = clampPercent(amount) * 256 / 100;
  }
  return inks;
}

// What an amount takes from a channel: no more light than the channel has, and no more ink given
// back than it holds. In the weight, p is the part that falls to light.
int32_t absoluteLoss(int32_t c, int32_t amount, int32_t weight) {
  if (amount == 0) return 0;
  const int32_t u = amount * 255, t = u >> 8;
  const int32_t p = weight * c / 255;
  const auto at = static_cast<size_t>(c);
  if (u < 256) return (kOfInk[at] * ((weight - p) * std::max(t, c - 255))) >> 20;
  return (kOfLight[at] * (std::min(c, t) * p)) >> 20;
}

class AbsoluteColor {
 public:
  AbsoluteColor(const simd::Inks& inks, uint8_t r, uint8_t g, uint8_t b)
      : inks_(inks), channel_{r, g, b} {
    const auto [least, most] = std::minmax({r, g, b});
    const int32_t mid = r + g + b - least - most;
    const int32_t top = most - mid, bottom = mid - least;
    if (r == most) add(0, top);
    if (b == least) add(1, bottom);
    if (g == most) add(2, top);
    if (r == least) add(3, bottom);
    if (b == most) add(4, top);
    if (g == least) add(5, bottom);
    if (least > 127) add(6, 2 * least - 255);
    add(7, 255 - (std::abs(least - 127) + std::abs(most - 127)));
    if (most <= 127) add(8, 255 - 2 * most);
  }

  uint8_t result(int ink) const {
    return static_cast<uint8_t>(std::clamp(channel_[ink] - loss_[ink], 0, 255));
  }

 private:
  void add(int colorClass, int32_t weight) {
    for (int ink = 0; ink < simd::kInks; ++ink) {
      loss_[ink] += absoluteLoss(channel_[ink], inks_.amount[ink][colorClass], weight);
    }
  }

  const simd::Inks& inks_;
  int32_t channel_[simd::kInks];
  int32_t loss_[simd::kInks] = {};
};

void selectAbsolutely(PixelRun& run, const simd::Inks& inks) {
  for (int32_t i = 0; i < run.count; ++i) {
    const AbsoluteColor color(inks, run.r[i], run.g[i], run.b[i]);
    run.r[i] = color.result(0);
    run.g[i] = color.result(1);
    run.b[i] = color.result(2);
  }
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
  return forColors(frame, [&](PixelRun& run) { selectAbsolutely(run, inks); });
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
