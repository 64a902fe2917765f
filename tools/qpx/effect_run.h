// Drives the engine: a chain of effects over one picture.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "effect_argument.h"
#include "picture.h"
#include "pixel_format.h"
#include "progress.h"

namespace qpx::tool {

struct RunOptions {
  const PixelFormat* format = nullptr;  // null: chosen by effects and picture
  int32_t band = 0;                     // rows a call; 0: the whole picture in one
  int threads = 1;
  bool forceThreads = false;        // even where a picture is too small to gain from it
  int strength = 100;               // percent of the effect that replaces the source
  int level = 0;                    // quality level, QPXEffectList.quality
  const Picture* mask = nullptr;    // where the effect shows; any size
  const Picture* second = nullptr;  // picture for effects that take one; any size
};

// Shares of a picture's work, in the steps of Progress.
constexpr int64_t kReadSteps = 250;
constexpr int64_t kEffectSteps = 500;
constexpr int64_t kWriteSteps = 250;
constexpr int64_t kPictureSteps = kReadSteps + kEffectSteps + kWriteSteps;

// Effects that take a second picture, and those that might: they ignore one that they have no use
// for.
bool mayTakeSecond(const EffectCall& call);

// Everything that is known to be wrong before a picture is read: effects that are not built or do
// not run in the format, a second picture that none takes. Throws UsageError.
void checkChain(const std::vector<EffectCall>& chain, const RunOptions& options);

// The format that a chain runs in: the wanted one, else the first that all effects take.
const PixelFormat& formatFor(const std::vector<EffectCall>& chain, const RunOptions& options,
                             bool alpha);

// The effects of a chain whose rows cannot be split among threads, by name.
std::vector<std::string> effectsInOneThread(const std::vector<EffectCall>& chain);

// One channel of the size that says where the effect shows.
Picture fittedMask(const Picture& picture, int32_t width, int32_t height);

// Whether the engine itself takes the mask.
bool takesMask(const std::vector<EffectCall>& chain);

// A chain over pictures of one format and size, one after the other. Engines and their textures are
// made for the first and kept for the others.
class EffectChain {
 public:
  // `mask` is for effects that take it themselves; it and the other arguments outlive the chain.
  EffectChain(const std::vector<EffectCall>& chain, const RunOptions& options, const Picture* mask);
  ~EffectChain();
  EffectChain(const EffectChain&) = delete;
  EffectChain& operator=(const EffectChain&) = delete;

  // The result has the format of the picture, and its size but where an effect turns it. It stays
  // until the next call. Throws RunError.
  Frame& run(const Frame& picture, Progress& progress);

 private:
  class Step;

  void splitStep(size_t index);
  Frame& outputFor(size_t index, const Frame& from);

  const RunOptions& options_;
  const Picture* mask_;
  int64_t effects_;
  std::vector<std::unique_ptr<Step>> steps_;
  std::array<std::optional<Frame>, 2> outputs_;  // of steps, by turns
};

// Throws RunError. Exif data and profile stay.
Picture applyEffects(Picture picture, const std::vector<EffectCall>& chain,
                     const RunOptions& options, Progress& progress);

}  // namespace qpx::tool
