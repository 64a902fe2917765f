// From a stage to its kernel.
#include "engine/engine_handle.h"

namespace qpx {
namespace {

bool argumentsValid(const QPXStage* stage, const MRect* rect, const QPXRowTable* out,
                    const QPXRowTable* in) {
  return stage != nullptr && rect != nullptr && out != nullptr && in != nullptr;
}

// Stages are only ever made by the engine, so a public stage is the head of one of its own.
Stage& engineStage(QPXStage* stage) { return *static_cast<Stage*>(stage); }

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPXEffectProcess_C_Optimized(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows, QPXRowTable* secondRows,
                                     QPXRowTable maskRows) {
  if (!argumentsValid(stage, rect, outRows, inRows)) return QPX_BAD_PARAM;
  const EffectRow* effect = engineStage(stage).effect;
  const uint32_t group = formatGroup(stage->pix);
  for (const LayoutKernel& kernel : effect->kernels) {
    if (kernel.run == nullptr) break;
    if ((kernel.formats & group) == 0) continue;
    return kernel.run({engineStage(stage), *rect, outRows, inRows, secondRows, maskRows});
  }
  return QPX_UNSUPPORTED;
}

int32_t QPXEffectProcess_C_Slow(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                QPXRowTable* inRows, QPXRowTable* secondRows,
                                QPXRowTable maskRows) {
  if (!argumentsValid(stage, rect, outRows, inRows)) return QPX_BAD_PARAM;
  const EffectRow* effect = engineStage(stage).effect;
  if (effect->generic != nullptr) {
    effect->generic({engineStage(stage), *rect, outRows, inRows, secondRows, maskRows});
  }
  return QPX_OK;
}

int32_t QPXEffectProcess_C(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows, QPXRowTable* secondRows, QPXRowTable maskRows) {
  const int32_t result =
      QPXEffectProcess_C_Optimized(stage, rect, outRows, inRows, secondRows, maskRows);
  if (result == QPX_OK) return result;
  return QPXEffectProcess_C_Slow(stage, rect, outRows, inRows, secondRows, maskRows);
}
