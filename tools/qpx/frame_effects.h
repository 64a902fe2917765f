// Effects over frames that follow each other.
#pragma once

#include <optional>
#include <vector>

#include "conversion.h"
#include "effect_argument.h"
#include "effect_run.h"
#include "picture.h"
#include "pixel_format.h"
#include "progress.h"

namespace qpx::tool {

// Frames stay in their format where all effects run in it. Otherwise they are converted to one in
// which all do and back, and where a mask mixes them with their source, that is done in RGB.
class FrameEffects {
 public:
  // `chain` and `options` outlive it.
  FrameEffects(const FrameShape& shape, const std::vector<EffectCall>& chain,
               const RunOptions& options);

  // The result has the format of the frame, and its size but where an effect turns it. It stays
  // until the next call. Throws RunError.
  const Frame& run(const Frame& frame, Progress& progress);

 private:
  // A conversion and what it fills.
  struct Made {
    Made(const FrameShape& from, const FrameShape& to, int threads)
        : conversion(from, to, threads), frame(*to.format, to.width, to.height) {}

    Frame& of(const MBitmap& from) {
      conversion.run(from, frame.bitmap());
      return frame;
    }

    Conversion conversion;
    Frame frame;
  };

  Frame& of(std::optional<Made>& made, const FrameShape& from, const FrameShape& to,
            const MBitmap& picture);
  const Frame& mixed(const Frame& frame, const Frame& effect);

  FrameShape shape_;
  FrameShape work_;  // in which the effects run
  const RunOptions& options_;
  Picture mask_;
  const Picture* mixMask_;  // null: the engine takes the mask itself, or there is none
  bool mixes_;
  bool mixesRgb_;
  EffectChain chain_;
  std::optional<Made> toWork_, toShape_;
  // For mixing: the source, the effect, and what becomes of both.
  std::optional<Conversion> sourceToRgb_, effectToRgb_;
  Picture source_, effect_;
  std::optional<Made> fromRgb_;
};

}  // namespace qpx::tool
