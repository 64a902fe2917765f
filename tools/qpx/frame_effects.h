// Effects over frames that follow each other.
#pragma once

#include <optional>
#include <vector>

#include "conversion.h"
#include "effect_argument.h"
#include "effect_run.h"
#include "pixel_format.h"
#include "progress.h"

namespace qpx::tool {

// Frames stay in their format where all effects run in it. Otherwise, and where the effect is mixed
// with its source, they go through RGB and back.
class FrameEffects {
 public:
  // `chain` and `options` outlive it.
  FrameEffects(const FrameShape& shape, const std::vector<EffectCall>& chain,
               const RunOptions& options);

  // The result has the format of the frame, and its size but where an effect turns it. It stays
  // until the next call. Throws RunError.
  const Frame& run(const Frame& frame, Progress& progress);

 private:
  void runThroughRgb(const Frame& frame, Progress& progress);

  FrameShape shape_;
  const std::vector<EffectCall>& chain_;
  const RunOptions& options_;
  bool native_;
  std::optional<Conversion> toRgb_;
  std::optional<Conversion> fromRgb_;
  std::optional<Frame> result_;
};

}  // namespace qpx::tool
