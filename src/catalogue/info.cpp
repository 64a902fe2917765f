// The catalogue as hosts see it.
#include "engine/effect_row.h"

using namespace qpx;

namespace {

constexpr uint32_t kBuilt = QPX_EFFECT_BUILT;
constexpr uint32_t kPublicFlags =
    QPX_EFFECT_GIVES_TABLE | QPX_EFFECT_TAKES_TABLE | QPX_EFFECT_ROW_THREADS |
    QPX_EFFECT_SAME_AREA | QPX_EFFECT_SECOND_INPUT | QPX_EFFECT_GENERIC | QPX_EFFECT_ONE_CALL;

// What a generic form is reached with: every format that the effect can be set up for.
uint32_t genericFormats(const EffectRow& row) {
  const uint32_t yuyv = row.has(kSetsUpYuyv) ? QPX_TAKES_YUYV | QPX_TAKES_UYVY : 0;
  return kTakesPackedRgb | QPX_TAKES_GREY | kTakesYuv | yuyv;
}

// Of an effect that is not built: what it is to take.
uint32_t formatsOf(const EffectRow& row) {
  if (!row.built()) return row.formats | (row.has(QPX_EFFECT_GENERIC) ? genericFormats(row) : 0);
  uint32_t formats = row.generic != nullptr ? genericFormats(row) : 0;
  for (const LayoutKernel& kernel : row.kernels) {
    if (kernel.run != nullptr) formats |= kernel.formats;
  }
  return formats;
}

QPXEffectInfo describe(const EffectFamily& family, const EffectRow& row) {
  return {.id = row.id,
          .name = row.name,
          .title = row.title,
          .summary = row.summary,
          .family = family.name,
          .formats = formatsOf(row),
          .recordSize = static_cast<int32_t>(row.record.size),
          .marginRule = row.margin.rule,
          .margin = row.margin.fixed,
          .flags = (row.flags & kPublicFlags) | (row.built() ? kBuilt : 0),
          .paramCount = static_cast<int32_t>(row.record.params.size()),
          .params = row.record.params.data()};
}

}  // namespace

int32_t QPX_GetEffectCount(void) {
  size_t count = 0;
  for (const EffectFamily* family : effectFamilies()) count += family->effects.size();
  return static_cast<int32_t>(count);
}

int32_t QPX_GetEffectInfo(int32_t index, QPXEffectInfo* info) {
  if (info == nullptr || index < 0) return QPX_BAD_PARAM;
  size_t place = static_cast<size_t>(index);
  for (const EffectFamily* family : effectFamilies()) {
    if (place < family->effects.size()) {
      *info = describe(*family, family->effects[place]);
      return QPX_OK;
    }
    place -= family->effects.size();
  }
  return QPX_BAD_PARAM;
}
