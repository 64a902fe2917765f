#include "frame_effects.h"

#include <algorithm>
#include <utility>

#include "catalogue.h"
#include "one_picture.h"
#include "picture.h"

namespace qpx::tool {

namespace {

bool runsIn(const PixelFormat& format, const std::vector<EffectCall>& chain,
            const RunOptions& options) {
  if (options.strength < 100 || options.mask) return false;
  if (options.format && options.format->code != format.code) return false;
  return std::all_of(chain.begin(), chain.end(),
                     [&](const EffectCall& call) { return takes(*call.effect, format); });
}

FrameShape rgbShape(const FrameShape& shape) {
  FrameShape rgb = shape;
  rgb.format = &pixelFormatByName(shape.format->keepsAlpha ? "rgba32" : "rgb24");
  return rgb;
}

}  // namespace

FrameEffects::FrameEffects(const FrameShape& shape, const std::vector<EffectCall>& chain,
                           const RunOptions& options)
    : shape_(shape),
      chain_(chain),
      options_(options),
      native_(runsIn(*shape.format, chain, options)) {
  ConversionOptions plain;
  plain.threads = options.threads;
  if (!native_) toRgb_.emplace(shape, rgbShape(shape), plain);
}

const Frame& FrameEffects::run(const Frame& frame, Progress& progress) {
  if (native_) {
    result_ = applyEffects(frame, chain_, options_, progress);
  } else {
    runThroughRgb(frame, progress);
  }
  return *result_;
}

void FrameEffects::runThroughRgb(const Frame& frame, Progress& progress) {
  Picture picture(shape_.width, shape_.height, shape_.format->keepsAlpha ? 4 : 3);
  toRgb_->run(frame.bitmap(), bitmapOf(picture));
  picture = applyEffects(std::move(picture), chain_, options_, progress);
  FrameShape result = shape_;
  result.width = picture.width();
  result.height = picture.height();
  if (!fromRgb_) {
    ConversionOptions plain;
    plain.threads = options_.threads;
    fromRgb_.emplace(rgbShape(result), result, plain);
    result_.emplace(*result.format, result.width, result.height);
  }
  fromRgb_->run(bitmapOf(picture), result_->bitmap());
}

}  // namespace qpx::tool
