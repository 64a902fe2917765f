#include "toolkit/intensity.h"

#include <qpx/kernels.h>

#include <cstring>

#include "simd/blend_math.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

constexpr int32_t kFull = 100;

// Of k in 0..100 the formula is the rounded percent mix that there is a vector form of. Hosts can
// ask for less than nothing, which moves away from the look.
void mixRow(const uint8_t* source, uint8_t* look, ptrdiff_t count, int32_t k) {
  if (k >= 0) {
    simd::rows().mixOpaque(source, look, look, count, k);
    return;
  }
  for (ptrdiff_t i = 0; i < count; ++i) look[i] = mixIntensity(look[i], source[i], k);
}

void mixRuns(const Frame& frame, int32_t k) {
  const RunFormat format(frame.stage);
  PixelRun source;
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    source.x = run.x;
    source.y = run.y;
    source.count = run.count;
    format.load(frame.in, source);
    format.load(frame.out, run);
    mixWithSource(run, source, k);
    format.store(run, frame.out, frame.out);
  });
}

}  // namespace

int32_t intensityOf(const Stage& stage) {
  return std::min(record<QPXFilterRecord>(stage).intensity, kFull);
}

void mixWithSource(PixelRun& run, const PixelRun& source, int32_t k) {
  if (k == kFull) return;
  mixRow(source.r, run.r, run.count, k);
  mixRow(source.g, run.g, run.count, k);
  mixRow(source.b, run.b, run.count, k);
}

void mixFrameWithSource(const Frame& frame, int32_t k) {
  const uint32_t group = formatGroup(frame.stage.pix);
  if (k == kFull || (group & kTakesRgb) == 0) return;
  if (group == QPX_TAKES_RGB32) return mixRuns(frame, k);
  // All bytes of these pixels are mixed alike.
  const ptrdiff_t offset = ptrdiff_t{frame.rect.left} * 3;
  const ptrdiff_t bytes = (ptrdiff_t{frame.rect.right} - frame.rect.left) * 3;
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    mixRow(frame.in[0][y] + offset, frame.out[0][y] + offset, bytes, k);
  }
}

int32_t runRecipeAtIntensity(const Frame& frame, Recipe recipe) {
  const int32_t k = intensityOf(frame.stage);
  if (k == kFull) return runRecipe(frame, recipe);
  const RunFormat format(frame.stage);
  if (!format.known()) return QPX_UNSUPPORTED;
  PixelRun source;
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.load(frame.in, run);
    const size_t count = static_cast<size_t>(run.count);
    std::memcpy(source.r, run.r, count);
    std::memcpy(source.g, run.g, count);
    std::memcpy(source.b, run.b, count);
    recipe(frame.stage, run);
    mixWithSource(run, source, k);
    format.store(run, frame.in, frame.out);
  });
  return QPX_OK;
}

}  // namespace qpx

using namespace qpx;

int32_t ApplyIntensityOfFilteredImage(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                      QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows, [](const Frame& frame) {
    mixFrameWithSource(frame, intensityOf(frame.stage));
    return int32_t{QPX_OK};
  });
}
