#include "geometry/stroke.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qpx {
namespace {

int32_t roundAway(double value) {
  return static_cast<int32_t>(value < 0 ? value - 0.5 : value + 0.5);
}

double degreesOf(const MPoint& first, const MPoint& second, double pi) {
  const double dx = double(first.x) - second.x;
  const double dy = double(second.y) - first.y;
  if (dx == 0) return 90;
  if (dy == 0) return 0;
  const double acute = std::atan(dy / std::fabs(dx)) * 180.0 / pi;
  return dx > 0 ? acute : 180.0 - acute;
}

bool comesFirst(const MPoint& p, const MPoint& q) { return p.y != q.y ? p.y < q.y : p.x >= q.x; }

}  // namespace

Stroke strokeBetween(const MPoint& p, const MPoint& q, double pi) {
  Stroke stroke = {p, q, 0, 0};
  if (!comesFirst(p, q)) std::swap(stroke.first, stroke.second);
  stroke.degrees = degreesOf(stroke.first, stroke.second, pi);
  const double dx = double(p.x) - q.x, dy = double(p.y) - q.y;
  stroke.length = std::sqrt(dx * dx + dy * dy);
  return stroke;
}

Direction directionOf(double degrees, double pi) {
  const double radians = degrees * pi / 180.0;
  return {roundAway(std::sin(radians) * 256.0), roundAway(std::cos(radians) * 256.0)};
}

Area areaAbout(const Stroke& stroke, int64_t reach, int32_t width, int32_t height) {
  const int64_t left = std::min(stroke.first.x, stroke.second.x);
  const int64_t right = std::max(stroke.first.x, stroke.second.x);
  const int64_t top = stroke.first.y, bottom = stroke.second.y;
  const auto atLeastZero = [](int64_t value) { return std::max<int64_t>(value, 0); };
  const int64_t l = atLeastZero(left - reach), t = atLeastZero(top - reach);
  const int64_t r = std::min<int64_t>(right + reach, width - 1);
  const int64_t b = std::min<int64_t>(bottom + reach, height - 1);
  if (l > r || t > b) return kNoArea;
  return {static_cast<int32_t>(l), static_cast<int32_t>(t), static_cast<int32_t>(r),
          static_cast<int32_t>(b)};
}

void StrokeMask::putTwo(int64_t x, int64_t y, uint8_t value) const {
  if (y < area.top || y > area.bottom) return;
  uint8_t* const line = row(static_cast<int32_t>(y));
  if (x >= area.left && x <= area.right) line[x] = value;
  if (x + 1 >= area.left && x + 1 <= area.right) line[x + 1] = value;
}

void paintDisc(const StrokeMask& mask, const MPoint& centre, const Brush& brush) {
  const Area& area = mask.area;
  const int64_t top = std::max<int64_t>(area.top, centre.y - brush.outer);
  const int64_t bottom = std::min<int64_t>(area.bottom, centre.y + brush.outer);
  const int64_t left = std::max<int64_t>(area.left, centre.x - brush.outer);
  const int64_t right = std::min<int64_t>(area.right, centre.x + brush.outer);
  const auto inner = static_cast<double>(brush.inner), outer = static_cast<double>(brush.outer);
  for (int64_t y = top; y <= bottom; ++y) {
    uint8_t* const row = mask.row(static_cast<int32_t>(y));
    for (int64_t x = left; x <= right; ++x) {
      const auto dx = static_cast<double>(x - centre.x), dy = static_cast<double>(y - centre.y);
      const double d = std::sqrt(dx * dx + dy * dy);
      if (d >= outer) continue;
      const double fall = d <= inner ? 0 : (d - inner) * 255.0 / (outer - inner);
      row[x] = static_cast<uint8_t>(255.0 - fall);
    }
  }
}

// Projections of the area's corners on the stroke and on the direction across it. Places are
// rounded to pixels, which moves them by less than the slack.
StrokeRange rangeOver(const Area& area, const MPoint& origin, const Direction& direction) {
  constexpr int64_t kSlack = 8;
  const double norm =
      (double(direction.sin) * direction.sin + double(direction.cos) * direction.cos) / 256.0;
  double leastStep = INFINITY, mostStep = -INFINITY, leastWay = INFINITY, mostWay = -INFINITY;
  for (const int32_t x : {area.left, area.right}) {
    for (const int32_t y : {area.top, area.bottom}) {
      const double dx = double(x) - origin.x, dy = double(y) - origin.y;
      const double step = (dy * direction.sin - dx * direction.cos) / norm;
      const double way = (dx * direction.sin + dy * direction.cos) / norm;
      leastStep = std::min(leastStep, step);
      mostStep = std::max(mostStep, step);
      leastWay = std::min(leastWay, way);
      mostWay = std::max(mostWay, way);
    }
  }
  const double nearest = std::max({leastWay, -mostWay, 0.0});
  const double farthest = std::max(-leastWay, mostWay);
  return {static_cast<int64_t>(leastStep) - kSlack, static_cast<int64_t>(mostStep) + kSlack,
          static_cast<int64_t>(nearest) - kSlack, static_cast<int64_t>(farthest) + kSlack};
}

void paintBand(const StrokeMask& mask, const Stroke& stroke, const Direction& direction,
               const Brush& brush) {
  if (mask.area.empty()) return;
  const StrokeRange range = rangeOver(mask.area, stroke.first, direction);
  const int64_t steps = static_cast<int64_t>(stroke.length + 0.5);
  const int64_t lastStep = std::min(steps - 1, range.lastStep);
  const int64_t fall = 255 / (2 * brush.feather);
  const int64_t end = std::min(brush.outer, range.farthest + 1);
  for (int64_t k = std::max<int64_t>(0, range.firstStep); k <= lastStep; ++k) {
    const int64_t x = stroke.first.x - roundedWay(k, direction.cos);
    const int64_t y = stroke.first.y + roundedWay(k, direction.sin);
    mask.putTwo(x, y, 255);
    const int64_t begin = std::max(std::min<int64_t>(1, brush.inner), range.nearest);
    for (int64_t j = begin; j < end; ++j) {
      const int64_t value = j < brush.inner ? 255 : 255 - (j - brush.inner) * fall;
      const int64_t a = roundedWay(j, direction.sin), b = roundedWay(j, direction.cos);
      mask.putTwo(x - a, y - b, static_cast<uint8_t>(value));
      mask.putTwo(x + a, y + b, static_cast<uint8_t>(value));
    }
  }
}

}  // namespace qpx
