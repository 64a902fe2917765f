#include "effect_run.h"

#include <qpx/engine.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <span>
#include <utility>

#include "console.h"
#include "engine_pass.h"
#include "errors.h"
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

// What the groups of a chain have in common.
class ChainRun {
 public:
  ChainRun(const RunOptions& options, Frame in, Progress& progress)
      : options_(options),
        progress_(progress),
        in_(std::move(in)),
        out_(in_.format(), in_.width(), in_.height()) {}

  void run(Chain chain, const Picture* mask) {
    mask_ = mask;
    const auto steps = kEffectSteps / static_cast<int64_t>(chain.size());
    while (!chain.empty()) {
      const auto end = std::find_if(chain.begin(), chain.end(), runsAlone);
      const auto alone = static_cast<size_t>(end - chain.begin());
      const Chain group = chain.first(alone == 0 ? 1 : alone);
      runGroup(group, steps * static_cast<int64_t>(group.size()));
      chain = chain.subspan(group.size());
    }
  }

  Frame takeResult() { return std::move(in_); }

 private:
  static Picture scaledToFit(const Picture& from, const Frame& to) {
    if (from.width() == to.width() && from.height() == to.height()) return copyOf(from);
    return scaled(from, to.width(), to.height());
  }

  static bool sameSize(const Frame& a, const Frame& b) {
    return a.width() == b.width() && a.height() == b.height();
  }

  // The second picture always has the size of what the group starts from.
  void fitSecond() {
    if (!options_.second || (second_ && sameSize(*second_, in_))) return;
    second_.emplace(in_.format(), in_.width(), in_.height());
    toFrame(scaledToFit(*options_.second, in_), *second_);
  }

  void fitOutput(Chain group) {
    const bool turned = turns(group.front());
    const Size size = turned ? turnedSize(group.front(), in_) : Size{in_.width(), in_.height()};
    if (out_.width() != size.width || out_.height() != size.height) {
      out_ = Frame(in_.format(), size.width, size.height);
    }
    // What an effect leaves as it is should be the picture, not what the memory held before.
    if (!turned) out_.copyFrom(in_);
  }

  void runGroup(Chain group, int64_t steps) {
    int32_t code = runEngine(group, steps);
    if (code == QPX_UNSUPPORTED && group.size() > 1) {
      // Outside packed RGB the engine keeps no rows between stages.
      say(namesOf(group) + ": not in one engine, running one after the other");
      for (size_t i = 0; i < group.size(); ++i) {
        runGroup(group.subspan(i, 1), steps / static_cast<int64_t>(group.size()));
      }
      return;
    }
    if (code != QPX_OK) {
      fail(group, code, in_, !second_ && std::any_of(group.begin(), group.end(), mayTakeOverlay));
    }
    std::swap(in_, out_);
  }

  int32_t runEngine(Chain group, int64_t steps) {
    fitSecond();
    fitOutput(group);
    EnginePass pass(group, in_, out_, options_.level);
    if (second_) pass.setOverlay(*second_);
    if (takesSecond(group.front())) pass.setSecond(second_ ? &*second_ : nullptr, mask_);
    const int threads = threadsFor(group, options_, in_);
    say(namesOf(group) + " in " + in_.format().name + ", " + std::to_string(in_.width()) + "x" +
        std::to_string(in_.height()) + ", threads: " + std::to_string(threads));
    return pass.run(options_.band, threads, steps, progress_);
  }

  const RunOptions& options_;
  Progress& progress_;
  Frame in_;
  Frame out_;
  std::optional<Frame> second_;
  const Picture* mask_ = nullptr;
};

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

Picture applyEffects(Picture picture, const std::vector<EffectCall>& chain,
                     const RunOptions& options, Progress& progress) {
  const PixelFormat& format = formatFor(chain, options, picture.hasAlpha());
  Picture mask;
  if (options.mask) {
    mask = maskOf(*options.mask);
    if (mask.width() != picture.width() || mask.height() != picture.height()) {
      mask = scaled(mask, picture.width(), picture.height());
    }
  }
  const bool engineMasks = std::any_of(chain.begin(), chain.end(), takesSecond);
  const Picture* mixMask = options.mask && !engineMasks ? &mask : nullptr;
  Picture source;
  if (options.strength < 100 || mixMask) source = copyOf(picture);
  Frame frame(format, picture.width(), picture.height());
  toFrame(picture, frame);
  ChainRun run(options, std::move(frame), progress);
  run.run(chain, options.mask ? &mask : nullptr);
  const Frame result = run.takeResult();
  if (result.width() != picture.width() || result.height() != picture.height()) {
    picture = emptyLike(picture, result.width(), result.height());
  }
  fromFrame(result, picture);
  if (source.width() > 0) mixWithSource(picture, source, options.strength, mixMask);
  return picture;
}

Frame applyEffects(const Frame& frame, const std::vector<EffectCall>& chain,
                   const RunOptions& options, Progress& progress) {
  Frame in(frame.format(), frame.width(), frame.height());
  in.copyFrom(frame);
  ChainRun run(options, std::move(in), progress);
  run.run(chain, nullptr);
  return run.takeResult();
}

}  // namespace qpx::tool
