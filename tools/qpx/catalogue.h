// The library's catalogue of effects, as the tool looks things up in it.
#pragma once

#include <qpx/effects.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pixel_format.h"

namespace qpx::tool {

// All effects, in the library's order.
const std::vector<QPXEffectInfo>& catalogue();

inline std::span<const QPXParamInfo> paramsOf(const QPXEffectInfo& effect) {
  return {effect.params, static_cast<size_t>(effect.paramCount)};
}

inline bool isBuilt(const QPXEffectInfo& effect) { return (effect.flags & QPX_EFFECT_BUILT) != 0; }

inline bool takes(const QPXEffectInfo& effect, const PixelFormat& format) {
  return (effect.formats & format.group) != 0;
}

// By name, number (0x1300) or title, case ignored; null where there is none.
const QPXEffectInfo* findEffect(std::string_view name);

// As findEffect. Throws UsageError, which suggests the nearest name.
const QPXEffectInfo& effectByName(std::string_view name);

std::vector<std::string> familyNames();

// As the catalogue spells it, case ignored. Throws UsageError, which names the families.
std::string familyByName(std::string_view name);

// Those that `wanted` says yes to, by ascending ids.
std::vector<const QPXEffectInfo*> effectsWhere(
    const std::function<bool(const QPXEffectInfo&)>& wanted);

std::string idText(uint32_t id);

// The pixel formats that an effect runs in, by name.
std::vector<std::string> formatNames(const QPXEffectInfo& effect);

// Whole numbers, and so without a point.
bool isInteger(const QPXParamInfo& param);
const char* typeName(const QPXParamInfo& param);

// "0 ... 100 percent", "a colour", "on or off".
std::string rangeText(const QPXParamInfo& param);

// A value as it would be given on the command line.
std::string valueText(const QPXParamInfo& param, double value);

}  // namespace qpx::tool
