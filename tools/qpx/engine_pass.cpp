#include "engine_pass.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

#include "errors.h"
#include "parallel.h"

namespace qpx::tool {

namespace {

// Blocks of every chroma layout are at most four rows high: threads must not share one.
constexpr int32_t kRowUnit = 4;

}  // namespace

class EnginePass::Handle {
 public:
  Handle(const EnginePass& pass, const Work& work) {
    const MBitmap in = work.in.engineBitmap(), out = work.out.engineBitmap();
    if (!pass.merging_) {
      code_ = QPXCreate(&out, &in, &pass.list_, &engine_);
      return;
    }
    const MBitmap second = pass.second_ ? pass.second_->engineBitmap() : MBitmap{};
    code_ = QPXCreateIn(&out, &in, pass.second_ ? &second : nullptr,
                        pass.mask_.plane[0] ? &pass.mask_ : nullptr, &pass.list_, &engine_);
  }
  ~Handle() { QPXDestroy(engine_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  int32_t code() const { return code_; }
  QPXEngine* engine() const { return engine_; }

 private:
  QPXEngine* engine_ = nullptr;
  int32_t code_ = QPX_OK;
};

EnginePass::EnginePass(std::span<const EffectCall> chain, int level) : chain_(chain) {
  for (const EffectCall& call : chain) records_.push_back(call.record());
  for (size_t i = 0; i < chain.size(); ++i) {
    items_.push_back({chain[i].effect->id, records_[i].empty() ? nullptr : records_[i].data(),
                      static_cast<uint32_t>(records_[i].size())});
  }
  list_ = {items_.data(), static_cast<uint32_t>(items_.size()), level};
}

EnginePass::~EnginePass() = default;

void EnginePass::setOverlay(const Frame& overlay) {
  overlay_ = overlay.engineBitmap();
  for (std::vector<uint8_t>& record : records_) {
    if (record.size() != sizeof(QPXFilterRecord)) continue;
    QPXFilterRecord filter{};
    std::memcpy(&filter, record.data(), sizeof filter);
    filter.overlayImage = &overlay_;
    filter.overlayRect = {0, 0, overlay.width(), overlay.height()};
    std::memcpy(record.data(), &filter, sizeof filter);
  }
}

void EnginePass::setSecond(const Frame* second, const Picture* mask) {
  second_ = second;
  merging_ = second || mask;
  if (!mask) return;
  mask_.format = QPX_FORMAT_GREY8;
  mask_.width = mask->width();
  mask_.height = mask->height();
  mask_.pitch[0] = mask->width();
  // The record has no place for "read only", which the mask nevertheless is.
  mask_.plane[0] = const_cast<uint8_t*>(mask->row(0));
}

int32_t EnginePass::feed(QPXEngine* engine, const Work& work, int32_t finished, MRect& rect) const {
  const QPXPlaneSet from = work.in.planesAt(rect.top), to = work.out.planesAt(finished);
  if (!merging_) return QPXProcess(engine, &to, &from, &rect);
  const QPXPlaneSet second = second_ ? second_->planesAt(rect.top) : QPXPlaneSet{};
  QPXPlaneSet mask{};
  if (mask_.plane[0]) {
    mask.plane[0] = mask_.plane[0] + ptrdiff_t{mask_.pitch[0]} * rect.top;
    mask.pitch[0] = mask_.pitch[0];
  }
  QPXBandRect band = {rect.left, rect.top, rect.right, rect.bottom, 0, 0, 0, 0};
  const int32_t code = QPXMerge(engine, &to, &from, second_ ? &second : nullptr,
                                mask_.plane[0] ? &mask : nullptr, &band);
  rect = {band.left, band.top, band.right, band.bottom};
  return code;
}

// A rotation makes its whole output, which has a size of its own, out of the whole input.
int32_t EnginePass::runRotation(QPXEngine* engine, const Work& work) const {
  MRect whole = {0, 0, work.out.width(), work.out.height()}, needed{};
  int32_t code = QPXCalcRect(engine, &whole, &needed);
  MRect rect = {0, 0, work.in.width(), work.in.height()};
  if (code == QPX_OK) code = feed(engine, work, 0, rect);
  work.progress.advance(work.steps);
  return code;
}

// The engine holds rows back where an effect looks at neighbours. What it finishes goes behind what
// was finished before, and the last band brings the rest.
int32_t EnginePass::runRows(std::unique_ptr<Handle>& handle, const Work& work, int32_t top,
                            int32_t bottom) const {
  if (!handle) handle = std::make_unique<Handle>(*this, work);
  if (handle->code() != QPX_OK) return handle->code();
  QPXEngine* engine = handle->engine();
  if (chain_.front().effect->marginRule == QPX_MARGIN_ROTATION) return runRotation(engine, work);
  const auto wantsOneCall = [](const EffectCall& call) {
    return (call.effect->flags & QPX_EFFECT_ONE_CALL) != 0;
  };
  const bool oneCall = std::any_of(chain_.begin(), chain_.end(), wantsOneCall);
  const int32_t band = oneCall ? bottom : work.band, height = work.in.height();
  QPXCalcRectReset(engine);  // the rows of the picture before are no neighbours of these
  int32_t finished = top;
  for (int32_t y = top; y < bottom;) {
    const int32_t end = bottom - y > band ? y + band : bottom;
    MRect rect = {0, y, work.in.width(), end};
    const int32_t code = feed(engine, work, finished, rect);
    if (code != QPX_OK) return code;
    if (rect.top < rect.bottom) finished = rect.bottom;
    // As a difference, so that narrow bands are not all rounded to nothing.
    work.progress.advance(work.steps * end / height - work.steps * y / height);
    y = end;
  }
  if (finished == bottom) return QPX_OK;
  throw RunError("the engine finished only rows up to " + std::to_string(finished) + " of " +
                 std::to_string(bottom) + ": try without --band");
}

int32_t EnginePass::run(const Frame& in, Frame& out, int32_t band, int threads, int64_t steps,
                        Progress& progress) {
  const int32_t height = in.height();
  const Work work = {in, out, band <= 0 ? height : band, steps, progress};
  const int32_t units = (height + kRowUnit - 1) / kRowUnit;
  threads = std::clamp(threads, 1, units);
  if (handles_.size() < static_cast<size_t>(threads)) {
    handles_.resize(static_cast<size_t>(threads));
  }
  if (threads == 1) return runRows(handles_.front(), work, 0, height);
  std::atomic<int32_t> worst{QPX_OK};
  forEachInThreads(static_cast<size_t>(threads), threads, [&](size_t i) {
    const auto edge = [&](size_t strip) {
      const int64_t unit = int64_t{units} * static_cast<int64_t>(strip) / threads;
      return std::min(static_cast<int32_t>(unit) * kRowUnit, height);
    };
    try {
      const int32_t code = runRows(handles_[i], work, edge(i), edge(i + 1));
      if (code != QPX_OK) worst = code;
    } catch (const std::bad_alloc&) {
      worst = QPX_NO_MEMORY;
    } catch (const std::exception&) {
      worst = QPX_BAD_PARAM;  // an exception must not leave a thread
    }
  });
  return worst;
}

}  // namespace qpx::tool
