#include "retouch/fill_front.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace qpx::retouch {
namespace {

// Filling by priority, its data term and its confidence are those of A. Criminisi, P. Perez and
// K. Toyama, "Region filling and object removal by exemplar-based image inpainting", IEEE
// Transactions on Image Processing 13(9), 2004. Their product is a weighted sum here.
constexpr float kLeastData = 0.001f;  // lets confidence decide where there are no lines at all

constexpr float kDiagonal = 0.70710677f;

struct Direction {
  int32_t x, y;
  float length;  // of each component that is not 0
};
constexpr Direction kNeighbours[] = {{-1, -1, kDiagonal}, {0, -1, 1},       {1, -1, kDiagonal},
                                     {-1, 0, 1},          {1, 0, 1},        {-1, 1, kDiagonal},
                                     {0, 1, 1},           {1, 1, kDiagonal}};

}  // namespace

std::optional<Normal> frontNormal(const Level& level, int32_t x, int32_t y) {
  float sumX = 0, sumY = 0;
  int32_t known = 0, across = 0, down = 0;
  for (const Direction& to : kNeighbours) {
    if (!level.contains(x + to.x, y + to.y) || level.isHole(x + to.x, y + to.y)) continue;
    ++known;
    across += std::abs(to.x);
    down += std::abs(to.y);
    sumX += static_cast<float>(to.x) * to.length;
    sumY += static_cast<float>(to.y) * to.length;
  }
  if (known == 0) return std::nullopt;
  const float length = std::sqrt(sumX * sumX + sumY * sumY);
  if (length > 0.01f) return Normal{sumX / length, sumY / length};
  if (across == down) return Normal{kDiagonal, kDiagonal};
  return across > down ? Normal{1, 0} : Normal{0, 1};
}

FillFront::FillFront(const Level& level, int32_t radius, float weight)
    : level_(level),
      radius_(radius),
      weight_(weight),
      isophotes_(level),
      confidence_(int64_t{level.width} * level.height),
      priority_(int64_t{level.width} * level.height),
      best_(level.height) {}

void FillFront::start() {
  bounds_ = {level_.width, level_.height, 0, 0};
  for (int32_t y = 0; y < level_.height; ++y) {
    for (int32_t x = 0; x < level_.width; ++x) {
      const uint8_t state = level_.state(x, y);
      confidence_[level_.place(x, y)] = state == kHole || state == kDoubtful ? 0.0f : 1.0f;
      if (state != kHole) continue;
      bounds_ = {std::min(bounds_.left, x), std::min(bounds_.top, y),
                 std::max(bounds_.right, x + 1), std::max(bounds_.bottom, y + 1)};
    }
  }
  std::memset(priority_.get(), 0xFF, priority_.bytes());  // no number, which no other is below
  isophotes_.computeAll();
  refresh(level_.all());
}

float FillFront::patchConfidence(const MRect& patch) const {
  float sum = 0;
  int32_t count = 0;
  for (int32_t y = patch.top; y < patch.bottom; ++y) {
    for (int32_t x = patch.left; x < patch.right; ++x, ++count) {
      if (!level_.isHole(x, y)) sum += confidence_[level_.place(x, y)];
    }
  }
  return sum / static_cast<float>(count);
}

void FillFront::filled(MPoint pixel, float confidence) const {
  confidence_[level_.place(pixel.x, pixel.y)] = confidence;
  isophotes_.compute(pixel.x, pixel.y);
}

void FillFront::refreshAround(const MRect& patch) const { refresh(grown(patch, radius_ + 1)); }

void FillFront::refresh(const MRect& area) const {
  const MRect inside = intersection(area, bounds_);
  if (isEmpty(inside)) return;
  for (int32_t y = inside.top; y < inside.bottom; ++y) {
    for (int32_t x = inside.left; x < inside.right; ++x) refreshPixel(x, y);
    findBest(y);
  }
}

void FillFront::refreshPixel(int32_t x, int32_t y) const {
  float& priority = priority_[level_.place(x, y)];
  const uint8_t state = level_.state(x, y);
  const std::optional<Normal> normal =
      state == kHole ? frontNormal(level_, x, y) : std::optional<Normal>{};
  if (!normal) {
    if ((state & kFromFill) == 0) priority = -1;
    return;
  }
  const float data = kLeastData + dataTerm({x, y}, *normal);
  const float trust = confidence({x, y});
  confidence_[level_.place(x, y)] = trust;
  priority = (1 - weight_) * data + weight_ * 0.5f * (1 + trust);
}

// The strongest line of the patch, where lines farther away count less.
float FillFront::dataTerm(MPoint pixel, const Normal& normal) const {
  const MRect patch = patchOf(pixel);
  Gradient strongest = {0, 0};
  float strength = 0;
  for (int32_t y = patch.top; y < patch.bottom; ++y) {
    for (int32_t x = patch.left; x < patch.right; ++x) {
      if (level_.isHole(x, y)) continue;
      const int32_t distance = std::max(std::abs(x - pixel.x), std::abs(y - pixel.y));
      const auto divisor = static_cast<float>(1 + distance);
      const Gradient& there = isophotes_.at(x, y);
      const Gradient here = {there.x / divisor, there.y / divisor};
      const float sum = std::fabs(here.x) + std::fabs(here.y);
      if (sum <= strength) continue;
      strength = sum;
      strongest = here;
    }
  }
  return std::fabs(normal.y * strongest.x - normal.x * strongest.y);
}

float FillFront::confidence(MPoint pixel) const {
  const MRect patch = patchOf(pixel);
  float sum = 0;
  int32_t known = 0;
  for (int32_t y = patch.top; y < patch.bottom; ++y) {
    for (int32_t x = patch.left; x < patch.right; ++x) {
      if (level_.isHole(x, y)) continue;
      sum += confidence_[level_.place(x, y)];
      ++known;
    }
  }
  return sum / static_cast<float>(known);
}

void FillFront::findBest(int32_t y) const {
  const float* const row = priority_.get() + level_.place(0, y);
  Best best = {-1, 0};
  for (int32_t x = bounds_.left; x < bounds_.right; ++x) {
    if (row[x] > best.priority) best = {row[x], x};
  }
  best_[y] = best;
}

std::optional<MPoint> FillFront::next() const {
  float highest = -1;
  std::optional<MPoint> pixel;
  for (int32_t y = bounds_.top; y < bounds_.bottom; ++y) {
    if (!(best_[y].priority > highest)) continue;
    highest = best_[y].priority;
    pixel = MPoint{best_[y].x, y};
  }
  return pixel;
}

}  // namespace qpx::retouch
