#include "strokes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <utility>

#include "errors.h"
#include "json_reader.h"
#include "text.h"

namespace qpx::tool {

namespace {

MPoint parsePoint(const std::string& option, const std::string& text) {
  const std::vector<std::string> parts = split(text, ',');
  if (parts.size() == 2) {
    const std::optional<int64_t> x = parseInteger(parts[0]), y = parseInteger(parts[1]);
    if (x && y && *x >= INT32_MIN && *x <= INT32_MAX && *y >= INT32_MIN && *y <= INT32_MAX) {
      return {static_cast<int32_t>(*x), static_cast<int32_t>(*y)};
    }
  }
  throw UsageError(option + ": '" + text + "' is no point: use X,Y in pixels, such as 120,80");
}

[[noreturn]] void failAt(const JsonValue& value, const std::string& what) {
  throw RunError("line " + std::to_string(value.line) + ": " + what);
}

int32_t coordinateOf(const JsonValue& value) {
  const double whole = std::floor(value.number);
  if (value.kind != JsonValue::Kind::number) failAt(value, "a point is two numbers: [x, y]");
  if (std::abs(whole) > INT32_MAX) failAt(value, "a point lies off any picture");
  return static_cast<int32_t>(whole);
}

MPoint pointOf(const JsonValue& value) {
  if (value.kind != JsonValue::Kind::array || value.items.size() != 2) {
    failAt(value, "a point is two numbers: [x, y]");
  }
  return {coordinateOf(value.items[0]), coordinateOf(value.items[1])};
}

std::vector<Stroke> strokesOf(const JsonValue& value, const std::string& side) {
  if (value.kind != JsonValue::Kind::array) failAt(value, "'" + side + "' is an array of strokes");
  std::vector<Stroke> strokes;
  for (const JsonValue& item : value.items) {
    if (item.kind != JsonValue::Kind::array || item.items.empty()) {
      failAt(item, "a stroke is an array of points: [[x, y], [x, y]]");
    }
    Stroke stroke;
    stroke.name = "the " + side + " stroke in line " + std::to_string(item.line);
    for (const JsonValue& point : item.items) stroke.points.push_back(pointOf(point));
    strokes.push_back(std::move(stroke));
  }
  return strokes;
}

// Bresenham's line without its first pixel.
void appendLine(MPoint from, const MPoint& to, std::vector<MPoint>& pixels) {
  const int64_t dx = std::abs(int64_t{to.x} - from.x), dy = std::abs(int64_t{to.y} - from.y);
  const int32_t stepX = from.x < to.x ? 1 : -1, stepY = from.y < to.y ? 1 : -1;
  int64_t error = dx - dy;
  while (from.x != to.x || from.y != to.y) {
    const int64_t doubled = 2 * error;
    if (doubled >= -dy) {
      error -= dy;
      from.x += stepX;
    }
    if (doubled <= dx) {
      error += dx;
      from.y += stepY;
    }
    pixels.push_back(from);
  }
}

}  // namespace

Stroke parseStroke(const std::string& option, const std::string& text, size_t fewest) {
  Stroke stroke;
  stroke.name = "the stroke '" + text + "'";
  for (const std::string& word : split(text, ' ')) {
    if (!word.empty()) stroke.points.push_back(parsePoint(option, word));
  }
  if (stroke.points.size() < fewest) {
    const std::string needed = fewest == 1 ? "a point" : "two points or more";
    throw UsageError(option + ": '" + text + "' needs " + needed + ": use \"X,Y X,Y\"");
  }
  return stroke;
}

StrokeSet parseStrokeFile(std::string_view json) {
  const JsonValue root = parseJson(json);
  if (root.kind != JsonValue::Kind::object) {
    failAt(root, "strokes are an object with 'foreground' and 'background'");
  }
  StrokeSet set;
  for (size_t i = 0; i < root.items.size(); ++i) {
    const std::string& name = root.names[i];
    const JsonValue& value = root.items[i];
    if (name != "foreground" && name != "background") {
      failAt(value, "'" + name + "' is no side" + suggestion(name, {"foreground", "background"}) +
                        ": use 'foreground' and 'background'");
    }
    std::vector<Stroke> strokes = strokesOf(value, name);
    std::vector<Stroke>& side = name == "foreground" ? set.foreground : set.background;
    std::move(strokes.begin(), strokes.end(), std::back_inserter(side));
  }
  return set;
}

std::vector<MPoint> pixelsOf(const Stroke& stroke) {
  std::vector<MPoint> pixels = {stroke.points.front()};
  for (size_t i = 1; i < stroke.points.size(); ++i) {
    appendLine(stroke.points[i - 1], stroke.points[i], pixels);
  }
  return pixels;
}

}  // namespace qpx::tool
