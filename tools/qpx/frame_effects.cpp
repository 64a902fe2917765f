#include "frame_effects.h"

#include <algorithm>

#include "catalogue.h"
#include "picture_frame.h"

namespace qpx::tool {

namespace {

bool isRgb(const PixelFormat& format) { return format.layout == Layout::packedRgb; }

// Samples that are bytes can be mixed as they are.
bool hasByteSamples(const PixelFormat& format) {
  return !isRgb(format) || narrowestField(format) == 8;
}

bool runsIn(const PixelFormat& format, const std::vector<EffectCall>& chain,
            const RunOptions& options) {
  if (options.format && options.format->code != format.code) return false;
  return std::all_of(chain.begin(), chain.end(),
                     [&](const EffectCall& call) { return takes(*call.effect, format); });
}

FrameShape workShape(const FrameShape& shape, const std::vector<EffectCall>& chain,
                     const RunOptions& options) {
  FrameShape work = shape;
  if (runsIn(*shape.format, chain, options)) return work;
  work.format = &formatFor(chain, options, shape.format->keepsAlpha);
  if (isRgb(*shape.format)) work.range = Range::bt601Full;
  return work;
}

FrameShape sized(FrameShape shape, const Frame& like) {
  shape.width = like.width();
  shape.height = like.height();
  return shape;
}

Picture rgbFor(const FrameShape& shape) {
  return {shape.width, shape.height, shape.format->keepsAlpha ? 4 : 3};
}

void mixSamples(const Frame& source, Frame& effect, int strength) {
  const uint8_t* in = source.data();
  uint8_t* out = effect.data();
  for (size_t i = 0; i < effect.bytes(); ++i) {
    out[i] = static_cast<uint8_t>((in[i] * (100 - strength) + out[i] * strength + 50) / 100);
  }
}

}  // namespace

FrameEffects::FrameEffects(const FrameShape& shape, const std::vector<EffectCall>& chain,
                           const RunOptions& options)
    : shape_(shape),
      work_(workShape(shape, chain, options)),
      options_(options),
      mask_(options.mask ? fittedMask(*options.mask, shape.width, shape.height) : Picture()),
      mixMask_(options.mask && !takesMask(chain) ? &mask_ : nullptr),
      mixes_(options.strength < 100 || mixMask_),
      mixesRgb_(mixes_ &&
                (mixMask_ || work_.format != shape.format || !hasByteSamples(*shape.format))),
      chain_(chain, options, options.mask ? &mask_ : nullptr) {}

Frame& FrameEffects::of(std::optional<Made>& made, const FrameShape& from, const FrameShape& to,
                        const MBitmap& picture) {
  if (!made) {
    made.emplace(from, to, worthwhileThreads(to.width, to.height, options_.threads));
  }
  return made->of(picture);
}

const Frame& FrameEffects::run(const Frame& frame, Progress& progress) {
  const bool native = work_.format == shape_.format;
  Frame& effect = chain_.run(native ? frame : of(toWork_, shape_, work_, frame.bitmap()), progress);
  if (mixesRgb_) return mixed(frame, effect);
  if (native && mixes_) mixSamples(frame, effect, options_.strength);
  if (native) return effect;
  return of(toShape_, sized(work_, effect), sized(shape_, effect), effect.bitmap());
}

// Effects that change the size are not mixed with their source.
const Frame& FrameEffects::mixed(const Frame& frame, const Frame& effect) {
  if (!sourceToRgb_) {
    const int threads = worthwhileThreads(shape_.width, shape_.height, options_.threads);
    source_ = rgbFor(shape_);
    effect_ = rgbFor(shape_);
    sourceToRgb_.emplace(shape_, shapeOf(source_), threads);
    effectToRgb_.emplace(work_, shapeOf(effect_), threads);
  }
  sourceToRgb_->run(frame.bitmap(), bitmapOf(source_));
  effectToRgb_->run(effect.bitmap(), bitmapOf(effect_));
  mixWithSource(effect_, source_, options_.strength, mixMask_);
  return of(fromRgb_, shapeOf(effect_), shape_, bitmapOf(effect_));
}

}  // namespace qpx::tool
