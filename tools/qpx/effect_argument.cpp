#include "effect_argument.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

#include "errors.h"
#include "point_list.h"
#include "text.h"

namespace qpx::tool {

namespace {

struct NamedColor {
  const char* name;
  uint32_t value;
};

constexpr std::array kColors = {
    NamedColor{"black", 0x000000},   NamedColor{"white", 0xFFFFFF},
    NamedColor{"grey", 0x808080},    NamedColor{"gray", 0x808080},
    NamedColor{"silver", 0xC0C0C0},  NamedColor{"red", 0xFF0000},
    NamedColor{"maroon", 0x800000},  NamedColor{"orange", 0xFFA500},
    NamedColor{"gold", 0xFFD700},    NamedColor{"yellow", 0xFFFF00},
    NamedColor{"olive", 0x808000},   NamedColor{"lime", 0x00FF00},
    NamedColor{"green", 0x008000},   NamedColor{"teal", 0x008080},
    NamedColor{"cyan", 0x00FFFF},    NamedColor{"aqua", 0x00FFFF},
    NamedColor{"blue", 0x0000FF},    NamedColor{"navy", 0x000080},
    NamedColor{"purple", 0x800080},  NamedColor{"violet", 0xEE82EE},
    NamedColor{"magenta", 0xFF00FF}, NamedColor{"fuchsia", 0xFF00FF},
    NamedColor{"pink", 0xFFC0CB},    NamedColor{"brown", 0xA52A2A},
    NamedColor{"beige", 0xF5F5DC},   NamedColor{"ivory", 0xFFFFF0},
    NamedColor{"sepia", 0x704214},
};

std::optional<uint32_t> parseHexColor(std::string_view digits) {
  uint32_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  if (digits.size() == 6) return value;
  if (digits.size() != 3) return std::nullopt;
  return (value >> 8) * 0x110000 + (value >> 4 & 15) * 0x1100 + (value & 15) * 0x11;
}

std::optional<double> parseFlag(std::string_view text) {
  for (const char* yes : {"1", "on", "true", "yes"}) {
    if (sameName(text, yes)) return 1;
  }
  for (const char* no : {"0", "off", "false", "no"}) {
    if (sameName(text, no)) return 0;
  }
  return std::nullopt;
}

std::optional<double> parseNumber(const QPXParamInfo& param, std::string_view text) {
  std::optional<double> value;
  if (isInteger(param)) {
    if (const std::optional<int64_t> whole = parseInteger(text))
      value = static_cast<double>(*whole);
  } else {
    value = parseReal(text);
  }
  if (value && (*value < param.minimum || *value > param.maximum)) return std::nullopt;
  return value;
}

double parseValue(const QPXEffectInfo& effect, const QPXParamInfo& param, const std::string& text) {
  if (param.type == QPX_PARAM_COLOR) return parseColor(text);
  const std::optional<double> value =
      param.type == QPX_PARAM_FLAG ? parseFlag(text) : parseNumber(param, text);
  if (value) return *value;
  throw UsageError(std::string(effect.name) + ": " + param.name + "=" + text + " is not " +
                   (param.type == QPX_PARAM_FLAG ? "a switch: use " : "in range: use ") +
                   (isInteger(param) && param.type != QPX_PARAM_FLAG ? "a whole number, " : "") +
                   rangeText(param));
}

// The assignments of a call. A point belongs to the list before it.
std::vector<std::string> assignmentsOf(const std::string& text) {
  std::vector<std::string> assignments;
  for (const std::string& piece : split(text, ',')) {
    if (!assignments.empty() && isPoint(piece)) {
      assignments.back() += "," + piece;
    } else {
      assignments.push_back(piece);
    }
  }
  return assignments;
}

// One call as it is read.
class CallBuilder {
 public:
  explicit CallBuilder(const QPXEffectInfo& effect) {
    call_.effect = &effect;
    for (const QPXParamInfo& param : paramsOf(effect)) call_.values.push_back(param.initial);
    given_.resize(call_.values.size());
  }

  void assign(const std::string& name, const std::string& value) {
    const QPXEffectInfo& effect = *call_.effect;
    if (const std::optional<PointList> list = pointListNamed(effect, name)) {
      const std::vector<double> values = parsePoints(effect, *list, value);
      for (size_t i = 0; i < values.size(); ++i) set(list->count + i, values[i]);
      return;
    }
    const size_t index = paramIndex(effect, name);
    refuseTwice(index);
    set(index, parseValue(effect, paramsOf(effect)[index], value));
  }

  EffectCall call() && { return std::move(call_); }

 private:
  void refuseTwice(size_t index) const {
    if (!given_.at(index)) return;
    throw UsageError(std::string(call_.effect->name) + ": " + paramsOf(*call_.effect)[index].name +
                     " is given twice: give it once");
  }

  void set(size_t index, double value) {
    refuseTwice(index);
    given_.at(index) = true;
    call_.values[index] = value;
  }

  EffectCall call_;
  std::vector<bool> given_;
};

template <typename T>
void store(std::vector<uint8_t>& record, int32_t offset, T value) {
  const auto place = static_cast<size_t>(offset);
  if (offset < 0 || record.size() < sizeof value || place > record.size() - sizeof value) return;
  std::memcpy(record.data() + place, &value, sizeof value);
}

}  // namespace

size_t paramIndex(const QPXEffectInfo& effect, const std::string& name) {
  const std::span<const QPXParamInfo> params = paramsOf(effect);
  std::vector<std::string> names = pointListNames(effect);
  for (size_t i = 0; i < params.size(); ++i) {
    if (sameName(params[i].name, name)) return i;
    names.emplace_back(params[i].name);
  }
  throw UsageError(std::string(effect.name) + ": unknown parameter '" + name + "'" +
                   suggestion(name, names) + ": " +
                   (names.empty() ? "it takes none" : "it takes " + joined(names, ", ")));
}

uint32_t parseColor(std::string_view text) {
  std::optional<uint32_t> value;
  if (text.starts_with('#')) value = parseHexColor(text.substr(1));
  if (text.starts_with("0x") && text.size() == 8) value = parseHexColor(text.substr(2));
  std::vector<std::string> names;
  for (const NamedColor& color : kColors) {
    if (sameName(color.name, text)) value = color.value;
    names.emplace_back(color.name);
  }
  if (value) return *value;
  throw UsageError("'" + std::string(text) + "' is no colour" + suggestion(text, names) +
                   ": use #rrggbb or a name like red");
}

std::vector<uint8_t> EffectCall::record() const {
  std::vector<uint8_t> bytes(static_cast<size_t>(std::max(effect->recordSize, 0)));
  const std::span<const QPXParamInfo> params = paramsOf(*effect);
  for (size_t i = 0; i < params.size(); ++i) {
    const int32_t offset = params[i].offset;
    switch (params[i].type) {
      case QPX_PARAM_UINT8:
        store(bytes, offset, static_cast<uint8_t>(values[i]));
        break;
      case QPX_PARAM_FLOAT:
        store(bytes, offset, static_cast<float>(values[i]));
        break;
      case QPX_PARAM_DOUBLE:
        store(bytes, offset, values[i]);
        break;
      // By way of 64 bits: colours and other words may use the top bit.
      default:
        store(bytes, offset, static_cast<uint32_t>(static_cast<int64_t>(values[i])));
    }
  }
  return bytes;
}

bool namesEffect(std::string_view argument) {
  return findEffect(argument.substr(0, argument.find(':'))) != nullptr;
}

EffectCall parseEffect(std::string_view argument) {
  const size_t colon = argument.find(':');
  const QPXEffectInfo& effect = effectByName(argument.substr(0, colon));
  CallBuilder call(effect);
  if (colon == std::string_view::npos) return std::move(call).call();
  for (const std::string& assignment : assignmentsOf(std::string(argument.substr(colon + 1)))) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
      throw UsageError(std::string(effect.name) + ": '" + assignment +
                       "' sets nothing: write parameters as name=value,name=value");
    }
    call.assign(assignment.substr(0, equals), assignment.substr(equals + 1));
  }
  return std::move(call).call();
}

}  // namespace qpx::tool
