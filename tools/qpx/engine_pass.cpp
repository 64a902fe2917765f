#include "engine_pass.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>
#include <thread>

#include "errors.h"

namespace qpx::tool {

namespace {

// Blocks of every chroma layout are at most two rows high: threads must not share one.
constexpr int32_t kRowUnit = 2;

}  // namespace

// An engine for the pass, destroyed with the scope.
class EnginePass::Handle {
 public:
  explicit Handle(const EnginePass& pass) {
    const MBitmap *in = &pass.in_.bitmap(), *out = &pass.out_.bitmap();
    if (!pass.merging_) {
      code_ = QPXCreate(out, in, &pass.list_, &engine_);
      return;
    }
    const MBitmap* second = pass.second_ ? &pass.second_->bitmap() : nullptr;
    const MBitmap* mask = pass.mask_.plane[0] ? &pass.mask_ : nullptr;
    code_ = QPXCreateIn(out, in, second, mask, &pass.list_, &engine_);
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

EnginePass::EnginePass(std::span<const EffectCall> chain, const Frame& in, Frame& out, int level)
    : chain_(chain), in_(in), out_(out) {
  for (const EffectCall& call : chain) records_.push_back(call.record());
  for (size_t i = 0; i < chain.size(); ++i) {
    items_.push_back({chain[i].effect->id, records_[i].empty() ? nullptr : records_[i].data(),
                      static_cast<uint32_t>(records_[i].size())});
  }
  list_ = {items_.data(), static_cast<uint32_t>(items_.size()), level};
}

void EnginePass::setOverlay(const Frame& overlay) {
  for (std::vector<uint8_t>& record : records_) {
    if (record.size() != sizeof(QPXFilterRecord)) continue;
    QPXFilterRecord filter{};
    std::memcpy(&filter, record.data(), sizeof filter);
    filter.overlayImage = &overlay.bitmap();
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

int32_t EnginePass::feed(QPXEngine* engine, int32_t finished, MRect& rect) {
  const QPXPlaneSet from = in_.planesAt(rect.top), to = out_.planesAt(finished);
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
int32_t EnginePass::runRotation(QPXEngine* engine, int64_t steps, Progress& progress) {
  MRect whole = {0, 0, out_.width(), out_.height()}, needed{};
  int32_t code = QPXCalcRect(engine, &whole, &needed);
  MRect rect = {0, 0, in_.width(), in_.height()};
  if (code == QPX_OK) code = feed(engine, 0, rect);
  progress.advance(steps);
  return code;
}

// The engine holds rows back where an effect looks at neighbours. What it finishes goes behind what
// was finished before, and the last band brings the rest.
int32_t EnginePass::runRows(int32_t top, int32_t bottom, int32_t band, int64_t steps,
                            Progress& progress) {
  const Handle handle(*this);
  if (handle.code() != QPX_OK) return handle.code();
  if (chain_.front().effect->marginRule == QPX_MARGIN_ROTATION) {
    return runRotation(handle.engine(), steps, progress);
  }
  const auto wantsOneCall = [](const EffectCall& call) {
    return (call.effect->flags & QPX_EFFECT_ONE_CALL) != 0;
  };
  if (std::any_of(chain_.begin(), chain_.end(), wantsOneCall)) band = bottom;
  int32_t finished = top;
  for (int32_t y = top; y < bottom;) {
    const int32_t end = bottom - y > band ? y + band : bottom;
    MRect rect = {0, y, in_.width(), end};
    const int32_t code = feed(handle.engine(), finished, rect);
    if (code != QPX_OK) return code;
    if (rect.top < rect.bottom) finished = rect.bottom;
    // As a difference, so that narrow bands are not all rounded to nothing.
    progress.advance(steps * end / in_.height() - steps * y / in_.height());
    y = end;
  }
  if (finished == bottom) return QPX_OK;
  throw RunError("the engine finished only rows up to " + std::to_string(finished) + " of " +
                 std::to_string(bottom) + ": try without --band");
}

int32_t EnginePass::run(int32_t band, int threads, int64_t steps, Progress& progress) {
  const int32_t height = in_.height();
  if (band <= 0) band = height;
  const int32_t units = (height + kRowUnit - 1) / kRowUnit;
  threads = std::clamp(threads, 1, units);
  if (threads == 1) return runRows(0, height, band, steps, progress);
  std::atomic<int32_t> worst{QPX_OK};
  std::vector<std::jthread> workers;
  for (int i = 0; i < threads; ++i) {
    const auto top = static_cast<int32_t>(int64_t{units} * i / threads) * kRowUnit;
    const auto next = static_cast<int32_t>(int64_t{units} * (i + 1) / threads) * kRowUnit;
    workers.emplace_back([this, &worst, &progress, top, next, height, band, steps] {
      try {
        const int32_t code = runRows(top, std::min(next, height), band, steps, progress);
        if (code != QPX_OK) worst = code;
      } catch (const std::bad_alloc&) {
        worst = QPX_NO_MEMORY;
      } catch (const std::exception&) {
        worst = QPX_BAD_PARAM;  // an exception must not leave a thread
      }
    });
  }
  workers.clear();  // joins
  return worst;
}

}  // namespace qpx::tool
