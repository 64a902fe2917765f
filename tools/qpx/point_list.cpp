#include "point_list.h"

#include <algorithm>
#include <cctype>

#include "errors.h"
#include "text.h"

namespace qpx::tool {
namespace {

constexpr std::string_view kSuffix = "Points";

bool isNumber(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](unsigned char c) { return std::isdigit(c) != 0; });
}

[[noreturn]] void refuse(const QPXEffectInfo& effect, const PointList& list,
                         const std::string& text, const std::string& why) {
  throw UsageError(std::string(effect.name) + ": " + list.name + "=" + text + " " + why +
                   ": use x:y,x:y, 2 to " + std::to_string(list.most) +
                   " points of 0 ... 255 from left to right");
}

std::optional<double> coordinate(const QPXParamInfo& param, std::string_view text) {
  const std::optional<int64_t> value = isNumber(text) ? parseInteger(text) : std::nullopt;
  if (!value || static_cast<double>(*value) > param.maximum) return std::nullopt;
  return static_cast<double>(*value);
}

}  // namespace

std::optional<PointList> pointListAt(const QPXEffectInfo& effect, size_t index) {
  const std::span<const QPXParamInfo> params = paramsOf(effect);
  const std::string_view whole = params[index].name;
  if (whole.size() <= kSuffix.size() || !whole.ends_with(kSuffix)) return std::nullopt;
  PointList list = {std::string(whole.substr(0, whole.size() - kSuffix.size())), index, 0};
  for (size_t i = index + 1; i + 1 < params.size(); i += 2, ++list.most) {
    const std::string number = std::to_string(list.most + 1);
    if (params[i].name != list.name + "X" + number) break;
    if (params[i + 1].name != list.name + "Y" + number) break;
  }
  return list.most > 1 ? std::optional(list) : std::nullopt;
}

std::optional<PointList> pointListNamed(const QPXEffectInfo& effect, std::string_view name) {
  for (size_t i = 0; i < paramsOf(effect).size(); ++i) {
    std::optional<PointList> list = pointListAt(effect, i);
    if (list && sameName(list->name, name)) return list;
  }
  return std::nullopt;
}

std::vector<std::string> pointListNames(const QPXEffectInfo& effect) {
  std::vector<std::string> names;
  for (size_t i = 0; i < paramsOf(effect).size(); ++i) {
    if (const std::optional<PointList> list = pointListAt(effect, i)) names.push_back(list->name);
  }
  return names;
}

bool isPoint(std::string_view text) {
  const size_t colon = text.find(':');
  return colon != std::string_view::npos && isNumber(text.substr(0, colon)) &&
         isNumber(text.substr(colon + 1));
}

std::vector<double> parsePoints(const QPXEffectInfo& effect, const PointList& list,
                                const std::string& text) {
  const std::vector<std::string> points = split(text, ',');
  if (points.size() < 2 || points.size() > list.most) {
    refuse(effect, list, text, "has " + std::to_string(points.size()) + " points");
  }
  std::vector<double> values = {static_cast<double>(points.size())};
  for (const std::string& point : points) {
    const size_t colon = std::min(point.find(':'), point.size());
    const QPXParamInfo& param = paramsOf(effect)[list.count + values.size()];
    const std::optional<double> x = coordinate(param, point.substr(0, colon));
    const std::optional<double> y =
        coordinate(param, colon < point.size() ? point.substr(colon + 1) : "");
    if (!x || !y) refuse(effect, list, text, "has '" + point + "', which is no point");
    const bool first = values.size() == 1;
    if (!first && *x <= values[values.size() - 2]) {
      refuse(effect, list, text, "goes back at '" + point + "'");
    }
    values.push_back(*x);
    values.push_back(*y);
  }
  return values;
}

}  // namespace qpx::tool
