// One engine, or one for each thread, over pictures of one size.
#pragma once

#include <qpx/effects.h>
#include <qpx/engine.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "effect_argument.h"
#include "picture.h"
#include "pixel_format.h"
#include "progress.h"

namespace qpx::tool {

class EnginePass {
 public:
  // `chain` outlives it.
  EnginePass(std::span<const EffectCall> chain, int level);
  ~EnginePass();
  EnginePass(const EnginePass&) = delete;
  EnginePass& operator=(const EnginePass&) = delete;

  // The picture that effects with the shared record may lay over the source, which outlives the
  // pass.
  void setOverlay(const Frame& overlay);

  // Second input and mask (one channel), of the pictures' size; either may be null, and both
  // outlive the pass. The engine is then driven with both.
  void setSecond(const Frame* second, const Picture* mask);

  // Feeds bands of `band` rows (0: all at once) and splits rows among threads. The caller sees to
  // it that more than one thread is allowed. Frames have the same format and size, but for a
  // rotation, which fills an output of any size. Engines are made for the first picture and kept
  // for others, which have the same sizes and come with the same number of threads. Returns a
  // result code of the engine.
  int32_t run(const Frame& in, Frame& out, int32_t band, int threads, int64_t steps,
              Progress& progress);

 private:
  class Handle;

  // What one call is about.
  struct Work {
    const Frame& in;
    Frame& out;
    int32_t band;
    int64_t steps;
    Progress& progress;
  };

  int32_t runRows(std::unique_ptr<Handle>& handle, const Work& work, int32_t top,
                  int32_t bottom) const;
  int32_t runRotation(QPXEngine* engine, const Work& work) const;
  int32_t feed(QPXEngine* engine, const Work& work, int32_t finished, MRect& rect) const;

  std::span<const EffectCall> chain_;
  std::vector<std::vector<uint8_t>> records_;
  std::vector<QPXEffectItem> items_;
  QPXEffectList list_{};
  MBitmap overlay_{};
  bool merging_ = false;
  const Frame* second_ = nullptr;
  MBitmap mask_{};  // without a plane: none
  std::vector<std::unique_ptr<Handle>> handles_;
};

}  // namespace qpx::tool
