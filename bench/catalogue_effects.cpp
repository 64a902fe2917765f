#include "catalogue_effects.h"

#include <cstring>

namespace qpx::bench {
namespace {

template <typename Value>
void put(std::vector<uint8_t>& record, const QPXParamInfo& param) {
  const auto value = static_cast<Value>(param.initial);
  std::memcpy(record.data() + param.offset, &value, sizeof value);
}

}  // namespace

bool isBuilt(const QPXEffectInfo& effect) { return (effect.flags & QPX_EFFECT_BUILT) != 0; }

std::vector<QPXEffectInfo> builtEffects() {
  std::vector<QPXEffectInfo> effects;
  for (int32_t i = 0; i < QPX_GetEffectCount(); ++i) {
    QPXEffectInfo effect;
    if (QPX_GetEffectInfo(i, &effect) == QPX_OK && isBuilt(effect)) effects.push_back(effect);
  }
  return effects;
}

bool findBuilt(const std::string& name, QPXEffectInfo& found) {
  for (const QPXEffectInfo& effect : builtEffects()) {
    if (effect.name != name) continue;
    found = effect;
    return true;
  }
  return false;
}

std::vector<uint8_t> initialRecord(const QPXEffectInfo& effect) {
  std::vector<uint8_t> record(static_cast<size_t>(effect.recordSize));
  for (int32_t i = 0; i < effect.paramCount; ++i) {
    const QPXParamInfo& param = effect.params[i];
    switch (param.type) {
      case QPX_PARAM_UINT8:
        put<uint8_t>(record, param);
        break;
      case QPX_PARAM_FLOAT:
        put<float>(record, param);
        break;
      case QPX_PARAM_DOUBLE:
        put<double>(record, param);
        break;
      case QPX_PARAM_COLOR:
        put<uint32_t>(record, param);
        break;
      default:
        put<int32_t>(record, param);
        break;
    }
  }
  return record;
}

}  // namespace qpx::bench
