// Effect setup: a list item becomes a stage that kernels only read.
#include <algorithm>
#include <cstring>

#include "engine/engine_handle.h"

namespace qpx {
namespace {

// Packed 4:2:2 came late and only few effects know it; every other family is let through here.
bool familyServed(const PixInfo& pix, const EffectRow& effect) {
  return pix.family != kFamilyYuyv || effect.has(kSetsUpYuyv);
}

// Looks of the shared filter record are written for 24 and 32-bit RGB and for nothing else: a host
// learns it here rather than from a picture that comes back as it was.
bool formatServed(const PixInfo& pix, const EffectRow& effect) {
  return !effect.record.sharedFilterRecord || (formatGroup(pix) & kTakesRgb) != 0;
}

// Copies the record to the effect's place. A record of another size than the effect's own would be
// read beyond its end, so it counts as all zero.
void copyRecord(const QPXEffectItem& item, Stage& stage) {
  const RecordLayout& layout = stage.effect->record;
  uint8_t* place = stage.param.bytes + recordPlace(*stage.effect);
  std::memset(place, 0, layout.size);
  if (item.param != nullptr && item.paramSize == layout.size) {
    std::memcpy(place, item.param, layout.size);
  }
  stage.record = place;
}

// Twice a margin and one more still fits 32 bits, as does the sum over a chain of any use. Sizes of
// pictures may be negative.
constexpr int32_t kMaxMargin = 1 << 28;

int32_t marginOf(const Stage& stage) {
  const MarginPolicy& policy = stage.effect->margin;
  return policy.measure != nullptr ? policy.measure(stage) : policy.fixed;
}

int32_t declareMargins(const Stage& stage, QPXBand& band) {
  const bool wholeImage = stage.effect->margin.rule == QPX_MARGIN_WHOLE_IMAGE;
  const int32_t down = std::max(wholeImage ? stage.inHeight : marginOf(stage), 0);
  const int32_t across = std::max(wholeImage ? stage.inWidth : down, 0);
  if (down > kMaxMargin || across > kMaxMargin) return QPX_NO_MEMORY;
  band.ringCapacity = 2 * down + 1;
  band.marginTop = band.marginBottom = down;
  band.marginLeft = band.marginRight = across;
  return QPX_OK;
}

}  // namespace

int32_t setUpEffect(const QPXEffectItem& item, Stage& stage, QPXBand& band) {
  stage.effectId = item.effectId;
  stage.effect = findEffect(item.effectId);
  if (stage.effect == nullptr || !stage.effect->built()) return QPX_UNSUPPORTED;
  if (!familyServed(stage.pix, *stage.effect)) return QPX_UNSUPPORTED;
  if (!formatServed(stage.pix, *stage.effect)) return QPX_UNSUPPORTED;
  copyRecord(item, stage);
  if (stage.effect->has(kCrops)) stage.cropMode = 1;
  if (stage.effect->setup != nullptr) {
    const int32_t result = stage.effect->setup(stage, band);
    if (result != QPX_OK) return result;
  }
  return declareMargins(stage, band);
}

}  // namespace qpx
