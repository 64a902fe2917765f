#include "effect_run.h"

#include <qpx/engine.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <numbers>
#include <span>
#include <utility>

#include "console.h"
#include "engine_pass.h"
#include "errors.h"
#include "picture_frame.h"
#include "text.h"

namespace qpx::tool {

namespace {

using Chain = std::span<const EffectCall>;

bool takesSecond(const EffectCall& call) {
  return (call.effect->flags & QPX_EFFECT_SECOND_INPUT) != 0;
}

// Effects with the shared record may lay a picture of the host's over the source. Which of them do
// is theirs to know; the others ignore it.
bool mayTakeOverlay(const EffectCall& call) {
  return call.effect->recordSize == static_cast<int32_t>(sizeof(QPXFilterRecord));
}

// Effects whose output has a size of its own.
bool turns(const EffectCall& call) { return call.effect->marginRule == QPX_MARGIN_ROTATION; }

// Effects that an engine of their own must run: those driven with a second input, and those whose
// output rectangle has to be asked for.
bool runsAlone(const EffectCall& call) { return takesSecond(call) || turns(call); }

// The value of a parameter by its name, or what stands for one that the effect does not have.
double valueOf(const EffectCall& call, std::string_view name, double otherwise) {
  for (size_t i = 0; i < call.values.size(); ++i) {
    if (call.effect->params[i].name == name) return call.values[i];
  }
  return otherwise;
}

struct Size {
  int32_t width, height;
};

// The upright frame that holds a turned picture. A hair less than a pixel more than a whole number
// is none, for no sine is exact.
Size turnedSize(const EffectCall& call, const Frame& frame) {
  constexpr double kHair = 1e-6;
  const double angle = valueOf(call, "degrees", 0) * std::numbers::pi / 180.0;
  const double scale = valueOf(call, "scale", 100) / 100.0;
  const double sine = std::abs(std::sin(angle)) * scale;
  const double cosine = std::abs(std::cos(angle)) * scale;
  const auto side = [](double length) {
    return static_cast<int32_t>(std::clamp(std::ceil(length - kHair), 1.0, 1e9));
  };
  return {side(frame.width() * cosine + frame.height() * sine),
          side(frame.width() * sine + frame.height() * cosine)};
}

void checkTurned(Chain chain, const RunOptions& options) {
  if (std::none_of(chain.begin(), chain.end(), turns)) return;
  if (options.strength < 100 || options.mask) {
    throw UsageError(
        "a turned picture cannot be mixed with its source: leave --strength and --mask out");
  }
}

bool allTake(Chain chain, const PixelFormat& format) {
  return std::all_of(chain.begin(), chain.end(),
                     [&](const EffectCall& call) { return takes(*call.effect, format); });
}

void checkWantedFormat(Chain chain, const PixelFormat& format) {
  if (format.group == 0) {
    throw UsageError(std::string("no effect runs in ") + format.name + ": use another --format");
  }
  for (const EffectCall& call : chain) {
    if (takes(*call.effect, format)) continue;
    throw UsageError(std::string(call.effect->name) + " does not run in " + format.name +
                     ": use one of " + joined(formatNames(*call.effect), ", "));
  }
}

void checkSecond(Chain chain, const RunOptions& options) {
  const bool any = std::any_of(chain.begin(), chain.end(), takesSecond);
  if (options.second && std::none_of(chain.begin(), chain.end(), mayTakeSecond)) {
    throw UsageError("no effect of the chain takes a second picture: leave --second out");
  }
  if (options.mask && any && chain.size() > 1) {
    throw UsageError(
        "an effect with a second picture takes the mask itself: run it alone, or without --mask");
  }
}

// A neighbour-free effect may be split by rows where the catalogue allows it.
bool maySplit(const EffectCall& call) {
  const QPXEffectInfo& effect = *call.effect;
  return (effect.flags & QPX_EFFECT_ROW_THREADS) != 0 && effect.marginRule == QPX_MARGIN_FIXED &&
         effect.margin == 0;
}

int threadsFor(Chain chain, const RunOptions& options, const Frame& frame) {
  // Every thread sets up an engine with textures of its own, which a small picture does not pay
  // for.
  constexpr int64_t kWorthwhilePixels = 1 << 19;
  if (!std::all_of(chain.begin(), chain.end(), maySplit)) return 1;
  if (options.forceThreads) return options.threads;
  const int64_t pixels = int64_t{frame.width()} * frame.height();
  return static_cast<int>(std::clamp<int64_t>(pixels / kWorthwhilePixels, 1, options.threads));
}

std::string namesOf(Chain chain) {
  std::vector<std::string> names;
  for (const EffectCall& call : chain) names.emplace_back(call.effect->name);
  return joined(names, " ");
}

[[noreturn]] void fail(Chain chain, int32_t code, const Frame& frame, bool overlayMissing) {
  const std::string what = namesOf(chain) + ": ";
  if (code == QPX_NO_MEMORY)
    throw EngineError(code, what + "not enough memory: use a smaller picture");
  if (code == QPX_UNSUPPORTED) {
    throw EngineError(code, what + "the engine does not run it in " + frame.format().name +
                                ": try another --format");
  }
  throw EngineError(
      code,
      what + "the engine refuses it (code " + std::to_string(code) + ") for " +
          std::to_string(frame.width()) + "x" + std::to_string(frame.height()) +
          (overlayMissing ? " pixels: effects that lay a picture over the source need --second"
                          : " pixels: try other parameters"));
}

Picture scaledToFit(const Picture& from, const Frame& to) {
  if (from.width() == to.width() && from.height() == to.height()) return copyOf(from);
  return scaled(from, to.width(), to.height());
}

}  // namespace

bool mayTakeSecond(const EffectCall& call) { return takesSecond(call) || mayTakeOverlay(call); }

void checkChain(const std::vector<EffectCall>& chain, const RunOptions& options) {
  for (const EffectCall& call : chain) {
    if (isBuilt(*call.effect)) continue;
    throw UsageError(std::string(call.effect->name) +
                     " is catalogued but not built into this library: 'qpx list' shows what is");
  }
  checkSecond(chain, options);
  checkTurned(chain, options);
  formatFor(chain, options, false);
}

const PixelFormat& formatFor(const std::vector<EffectCall>& chain, const RunOptions& options,
                             bool alpha) {
  if (options.format) {
    checkWantedFormat(chain, *options.format);
    return *options.format;
  }
  constexpr std::array kFirst = {"bgr24", "bgra32", "i420", "nv21"};
  if (alpha && allTake(chain, pixelFormatByName("bgra32"))) return pixelFormatByName("bgra32");
  for (const char* name : kFirst) {
    if (allTake(chain, pixelFormatByName(name))) return pixelFormatByName(name);
  }
  for (const PixelFormat& format : pixelFormats()) {
    if (allTake(chain, format)) return format;
  }
  throw UsageError(namesOf(chain) +
                   ": there is no pixel format that all of them run in: apply them one by one");
}

std::vector<std::string> effectsInOneThread(const std::vector<EffectCall>& chain) {
  std::vector<std::string> names;
  for (const EffectCall& call : chain) {
    if (!maySplit(call)) names.emplace_back(call.effect->name);
  }
  return names;
}

Picture fittedMask(const Picture& picture, int32_t width, int32_t height) {
  Picture mask = maskOf(picture);
  if (mask.width() == width && mask.height() == height) return mask;
  return scaled(mask, width, height);
}

bool takesMask(const std::vector<EffectCall>& chain) {
  return std::any_of(chain.begin(), chain.end(), takesSecond);
}

// Effects that one engine runs.
class EffectChain::Step {
 public:
  Step(Chain group, const RunOptions& options, const Picture* mask)
      : group_(group), options_(options), mask_(mask), pass_(group, options.level) {}

  Chain group() const { return group_; }

  Size outputSize(const Frame& from) const {
    return turns(group_.front()) ? turnedSize(group_.front(), from)
                                 : Size{from.width(), from.height()};
  }

  bool missesOverlay() const {
    return !second_ && std::any_of(group_.begin(), group_.end(), mayTakeOverlay);
  }

  int32_t run(const Frame& from, Frame& to, int64_t steps, Progress& progress) {
    if (!begun_) begin(from);
    // What an effect leaves as it is should be the picture, not what the memory held before.
    if (!turns(group_.front())) to.copyFrom(from);
    return pass_.run(from, to, options_.band, threads_, steps, progress);
  }

 private:
  // The second picture always has the size of what the step starts from.
  void begin(const Frame& from) {
    threads_ = threadsFor(group_, options_, from);
    if (options_.second) {
      second_.emplace(frameOf(scaledToFit(*options_.second, from), from.format(), threads_));
      pass_.setOverlay(*second_);
    }
    if (takesSecond(group_.front())) pass_.setSecond(second_ ? &*second_ : nullptr, mask_);
    say(namesOf(group_) + " in " + from.format().name + ", " + std::to_string(from.width()) + "x" +
        std::to_string(from.height()) + ", threads: " + std::to_string(threads_));
    begun_ = true;
  }

  Chain group_;
  const RunOptions& options_;
  const Picture* mask_;
  EnginePass pass_;
  std::optional<Frame> second_;
  int threads_ = 1;
  bool begun_ = false;
};

EffectChain::EffectChain(const std::vector<EffectCall>& chain, const RunOptions& options,
                         const Picture* mask)
    : options_(options), mask_(mask), effects_(static_cast<int64_t>(chain.size())) {
  for (Chain rest = chain; !rest.empty();) {
    const auto end = std::find_if(rest.begin(), rest.end(), runsAlone);
    const auto together = std::max<size_t>(1, static_cast<size_t>(end - rest.begin()));
    steps_.push_back(std::make_unique<Step>(rest.first(together), options, mask));
    rest = rest.subspan(together);
  }
}

EffectChain::~EffectChain() = default;

void EffectChain::splitStep(size_t index) {
  const Chain group = steps_[index]->group();
  say(namesOf(group) + ": not in one engine, running one after the other");
  std::vector<std::unique_ptr<Step>> single;
  for (size_t i = 0; i < group.size(); ++i) {
    single.push_back(std::make_unique<Step>(group.subspan(i, 1), options_, mask_));
  }
  const auto place = steps_.erase(steps_.begin() + static_cast<ptrdiff_t>(index));
  steps_.insert(place, std::make_move_iterator(single.begin()),
                std::make_move_iterator(single.end()));
}

Frame& EffectChain::outputFor(size_t index, const Frame& from) {
  const Size size = steps_[index]->outputSize(from);
  std::optional<Frame>& output = outputs_[index % 2];
  if (!output || output->width() != size.width || output->height() != size.height) {
    output.reset();
    output.emplace(from.format(), size.width, size.height);
  }
  return *output;
}

Frame& EffectChain::run(const Frame& picture, Progress& progress) {
  const Frame* from = &picture;
  for (size_t i = 0; i < steps_.size();) {
    const Chain group = steps_[i]->group();
    const int64_t steps = kEffectSteps / effects_ * static_cast<int64_t>(group.size());
    const int32_t code = steps_[i]->run(*from, outputFor(i, *from), steps, progress);
    if (code == QPX_UNSUPPORTED && group.size() > 1) {
      // Outside packed RGB the engine keeps no rows between stages.
      splitStep(i);
      continue;
    }
    if (code != QPX_OK) fail(group, code, *from, steps_[i]->missesOverlay());
    from = &*outputs_[i++ % 2];
  }
  return *outputs_[(steps_.size() - 1) % 2];
}

Picture applyEffects(Picture picture, const std::vector<EffectCall>& chain,
                     const RunOptions& options, Progress& progress) {
  const PixelFormat& format = formatFor(chain, options, picture.hasAlpha());
  const int threads = worthwhileThreads(picture.width(), picture.height(), options.threads);
  Picture mask;
  if (options.mask) mask = fittedMask(*options.mask, picture.width(), picture.height());
  const Picture* mixMask = options.mask && !takesMask(chain) ? &mask : nullptr;
  Picture source;
  if (options.strength < 100 || mixMask) source = copyOf(picture);
  const Frame frame = frameOf(picture, format, threads);
  EffectChain effects(chain, options, options.mask ? &mask : nullptr);
  const Frame& result = effects.run(frame, progress);
  if (result.width() != picture.width() || result.height() != picture.height()) {
    picture = emptyLike(picture, result.width(), result.height());
  }
  takeColors(result, picture, threads);
  if (source.width() > 0) mixWithSource(picture, source, options.strength, mixMask);
  return picture;
}

}  // namespace qpx::tool
