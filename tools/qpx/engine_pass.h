// One engine, or one for each thread, over one picture.
#pragma once

#include <qpx/effects.h>
#include <qpx/engine.h>

#include <cstdint>
#include <span>
#include <vector>

#include "effect_argument.h"
#include "picture.h"
#include "pixel_format.h"
#include "progress.h"

namespace qpx::tool {

class EnginePass {
 public:
  // Frames have the same format and outlive the pass. They have the same size too, but for a
  // rotation, which fills an output of any size.
  EnginePass(std::span<const EffectCall> chain, const Frame& in, Frame& out, int level);

  // The picture that effects with the shared record may lay over the source.
  void setOverlay(const Frame& overlay);

  // Second input and mask (one channel), of the same size; either may be null. The engine is then
  // driven with both.
  void setSecond(const Frame* second, const Picture* mask);

  // Feeds bands of `band` rows (0: all at once) and splits rows among threads. The caller sees to
  // it that more than one thread is allowed. Returns a result code of the engine.
  int32_t run(int32_t band, int threads, int64_t steps, Progress& progress);

 private:
  class Handle;

  int32_t runRows(int32_t top, int32_t bottom, int32_t band, int64_t steps, Progress& progress);
  int32_t runRotation(QPXEngine* engine, int64_t steps, Progress& progress);
  int32_t feed(QPXEngine* engine, int32_t finished, MRect& rect);

  std::span<const EffectCall> chain_;
  const Frame& in_;
  Frame& out_;
  std::vector<std::vector<uint8_t>> records_;
  std::vector<QPXEffectItem> items_;
  QPXEffectList list_{};
  bool merging_ = false;
  const Frame* second_ = nullptr;
  MBitmap mask_{};  // without a plane: none
};

}  // namespace qpx::tool
