// Yes-or-no questions about effects, answered from their rows.
#include <qpx/engine.h>

#include "engine/effect_row.h"

using namespace qpx;

namespace {

// An id of the first range that no effect bears, for which hosts have always had a yes.
constexpr uint32_t kVacantId = 0x1500;

bool rowHas(uint32_t effectId, uint32_t flag) {
  const EffectRow* row = findEffect(effectId);
  return row != nullptr && row->has(flag);
}

// The flag of a colour model, the top four bits of a format; 0 for models that the oldest effects
// do not know. 32-bit RGB with alpha is such a model, although all of them run in it.
uint32_t supportFlag(uint32_t format) {
  switch (format >> 28) {
    case 1:
      return kSupportsRgb;
    case 5:
      return kSupportsYuv;
    case 6:
      return kSupportsGrey;
    default:
      return 0;
  }
}

}  // namespace

int32_t QPXIsSupport(uint32_t format, uint32_t effectId) {
  return rowHas(effectId, supportFlag(format)) ? 1 : 0;
}

int32_t QPX_IfSupportMultiThread(uint32_t effectId) {
  return rowHas(effectId, QPX_EFFECT_ROW_THREADS) ? 1 : 0;
}

int32_t QPXIsSameInOutArea(uint32_t effectId) {
  return effectId == kVacantId || rowHas(effectId, QPX_EFFECT_SAME_AREA) ? 1 : 0;
}

int32_t QPXIsSupEffMerge(uint32_t first, uint32_t second) {
  return rowHas(first, QPX_EFFECT_GIVES_TABLE) && rowHas(second, QPX_EFFECT_TAKES_TABLE) ? 1 : 0;
}

// Asks of every effect whether it gives its table, of the last one too: an effect that takes tables
// gives its own as well, but levels give without taking. So a 1 here is not yet a promise of one
// stage.
int32_t QPXMergeable(uint32_t format, const QPXEffectList* list) {
  constexpr uint32_t kModelBits = 0x70000000;
  if ((format & kModelBits) == 0 || list == nullptr) return 0;
  if (list->items == nullptr || list->count < 2) return 0;
  for (uint32_t i = 0; i < list->count; ++i) {
    if (!rowHas(list->items[i].effectId, QPX_EFFECT_GIVES_TABLE)) return 0;
  }
  return 1;
}
