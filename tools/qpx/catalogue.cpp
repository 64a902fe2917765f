#include "catalogue.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "errors.h"
#include "text.h"

namespace qpx::tool {

const std::vector<QPXEffectInfo>& catalogue() {
  static const std::vector<QPXEffectInfo> effects = [] {
    std::vector<QPXEffectInfo> all;
    for (int32_t i = 0; i < QPX_GetEffectCount(); ++i) {
      QPXEffectInfo info{};
      if (QPX_GetEffectInfo(i, &info) == QPX_OK) all.push_back(info);
    }
    return all;
  }();
  return effects;
}

const QPXEffectInfo* findEffect(std::string_view name) {
  for (const QPXEffectInfo& effect : catalogue()) {
    if (sameName(effect.name, name)) return &effect;
  }
  const std::optional<int64_t> id = parseInteger(name);
  for (const QPXEffectInfo& effect : catalogue()) {
    if (id ? *id == int64_t{effect.id} : sameName(effect.title, name)) return &effect;
  }
  return nullptr;
}

const QPXEffectInfo& effectByName(std::string_view name) {
  if (const QPXEffectInfo* effect = findEffect(name)) return *effect;
  std::vector<std::string> known;
  for (const QPXEffectInfo& effect : catalogue()) {
    known.emplace_back(effect.name);
    known.emplace_back(effect.title);
  }
  throw UsageError("unknown effect '" + std::string(name) + "'" + suggestion(name, known) +
                   ": 'qpx list' shows all effects");
}

std::vector<std::string> familyNames() {
  std::vector<std::string> names;
  for (const QPXEffectInfo& effect : catalogue()) {
    if (std::find(names.begin(), names.end(), effect.family) == names.end()) {
      names.emplace_back(effect.family);
    }
  }
  return names;
}

std::string familyByName(std::string_view name) {
  const std::vector<std::string> families = familyNames();
  for (const std::string& family : families) {
    if (sameName(family, name)) return family;
  }
  throw UsageError("unknown family '" + std::string(name) + "'" + suggestion(name, families) +
                   ": choose one of " + joined(families, ", "));
}

std::vector<const QPXEffectInfo*> effectsWhere(
    const std::function<bool(const QPXEffectInfo&)>& wanted) {
  std::vector<const QPXEffectInfo*> effects;
  for (const QPXEffectInfo& effect : catalogue()) {
    if (wanted(effect)) effects.push_back(&effect);
  }
  std::sort(effects.begin(), effects.end(),
            [](const QPXEffectInfo* a, const QPXEffectInfo* b) { return a->id < b->id; });
  return effects;
}

std::string idText(uint32_t id) {
  std::array<char, 12> text{};
  std::snprintf(text.data(), text.size(), "0x%04X", static_cast<unsigned>(id));
  return text.data();
}

std::vector<std::string> formatNames(const QPXEffectInfo& effect) {
  std::vector<std::string> names;
  for (const PixelFormat& format : pixelFormats()) {
    if (takes(effect, format)) names.emplace_back(format.name);
  }
  return names;
}

bool isInteger(const QPXParamInfo& param) {
  return param.type != QPX_PARAM_FLOAT && param.type != QPX_PARAM_DOUBLE;
}

const char* typeName(const QPXParamInfo& param) {
  switch (param.type) {
    case QPX_PARAM_INT32:
      return "int32";
    case QPX_PARAM_UINT8:
      return "uint8";
    case QPX_PARAM_FLOAT:
      return "float";
    case QPX_PARAM_DOUBLE:
      return "double";
    case QPX_PARAM_FLAG:
      return "flag";
    case QPX_PARAM_COLOR:
      return "color";
    default:
      return "unknown";
  }
}

std::string rangeText(const QPXParamInfo& param) {
  if (param.type == QPX_PARAM_FLAG) return "on or off";
  if (param.type == QPX_PARAM_COLOR) return "#rrggbb or a name like red";
  std::string text = numberText(param.minimum) + " ... " + numberText(param.maximum);
  if (param.unit && *param.unit) text += std::string(" ") + param.unit;
  return text;
}

std::string valueText(const QPXParamInfo& param, double value) {
  if (param.type == QPX_PARAM_FLAG) return value != 0 ? "on" : "off";
  if (param.type != QPX_PARAM_COLOR) return numberText(value);
  std::array<char, 12> text{};
  std::snprintf(text.data(), text.size(), "#%06x", static_cast<unsigned>(value));
  return text.data();
}

}  // namespace qpx::tool
