#include "retouch/patch_blend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace qpx::retouch {
namespace {

// The membrane of P. Perez, M. Gangnet and A. Blake, "Poisson image editing", ACM Transactions on
// Graphics 22(3), 2003: the pasted pixels keep the gradient of where they come from. What is added
// to them is then 0 under the 5-point Laplacian, and at known pixels the difference between what is
// there and what would have been pasted. Towards pixels that are still holes it has no border.
constexpr MPoint kNeighbours[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};

constexpr int32_t kNone = -1;

// A border that differs by more than this from most of the patch's is an edge that does not go on,
// not a seam. Made up for, it would spread over the patch as a spot.
constexpr int32_t kMostUnusual = 16;

// The median of differences of two samples.
class UsualDifference {
 public:
  void add(int32_t difference) {
    const int32_t place = difference + 255;
    ++counts_[static_cast<size_t>(place)];
    ++total_;
  }
  int32_t median() const {
    int32_t below = 0, value = -255;
    for (const int32_t count : counts_) {
      below += count;
      if (2 * below >= total_) break;
      ++value;
    }
    return value;
  }

 private:
  std::array<int32_t, 511> counts_ = {};
  int32_t total_ = 0;
};

uint8_t toSample(float value) {
  return static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f) + 0.5f);
}

}  // namespace

PatchBlend::PatchBlend(int32_t width, int32_t height)
    : places_(int64_t{width} * height),
      numbers_(int64_t{width} * height),
      entries_(int64_t{width} * height < INT32_MAX
                   ? int64_t{width} * height * (std::min(width, height) + 1)
                   : INT64_MAX),
      sides_(int64_t{width} * height * kSystems) {}

int32_t& PatchBlend::numberAt(int32_t x, int32_t y) const {
  return numbers_[ptrdiff_t{patch_.right - patch_.left} * (y - patch_.top) + (x - patch_.left)];
}

// Counted along the shorter side, which makes the band as narrow as it can be.
void PatchBlend::listHoles(const Level& level, const MRect& patch) {
  patch_ = patch;
  count_ = 0;
  const auto take = [&](int32_t x, int32_t y) {
    const bool isHole = level.isHole(x, y);
    numberAt(x, y) = isHole ? static_cast<int32_t>(count_) : kNone;
    if (isHole) places_[count_++] = {x, y};
  };
  if (patch.right - patch.left <= patch.bottom - patch.top) {
    for (int32_t y = patch.top; y < patch.bottom; ++y) {
      for (int32_t x = patch.left; x < patch.right; ++x) take(x, y);
    }
  } else {
    for (int32_t x = patch.left; x < patch.right; ++x) {
      for (int32_t y = patch.top; y < patch.bottom; ++y) take(x, y);
    }
  }
}

void PatchBlend::fill(const Level& level, const MRect& patch, MPoint offset) {
  listHoles(level, patch);
  for (const MPoint& to : filled()) {
    uint8_t* const pixel = level.pixel(to.x, to.y);
    const uint8_t* const from = level.pixel(to.x + offset.x, to.y + offset.y);
    for (ptrdiff_t c = 0; c < 3; ++c) pixel[level.channelStep * c] = from[level.channelStep * c];
  }
  correct(level, offset);
}

void PatchBlend::correct(const Level& level, MPoint offset) {
  if (!setUp(level, offset) || !factorise(matrix_)) return;
  solve(matrix_, sides_.get());
  for (ptrdiff_t k = 0; k < count_; ++k) {
    uint8_t* const pixel = level.pixel(places_[k].x, places_[k].y);
    for (ptrdiff_t c = 0; c < 3; ++c) {
      uint8_t& sample = pixel[level.channelStep * c];
      sample = toSample(static_cast<float>(sample) + sides_[kSystems * k + c]);
    }
  }
}

// The known pixel one step from a place of the hole that is one of its borders, or none.
std::optional<PatchBlend::Border> PatchBlend::borderAt(const Level& level, MPoint offset, MPoint at,
                                                       MPoint step) const {
  const int32_t x = at.x + step.x, y = at.y + step.y;
  if (!level.contains(x, y) || level.isHole(x, y)) return std::nullopt;
  const int32_t fromX = x + offset.x, fromY = y + offset.y;
  if (!level.contains(fromX, fromY) || level.isHole(fromX, fromY)) return std::nullopt;
  return Border{level.pixel(x, y), level.pixel(fromX, fromY)};
}

// False where there is nothing to correct. Otherwise every part of the hole has a known neighbour:
// the patch is a rectangle, and what separates its parts is known.
bool PatchBlend::setUp(const Level& level, MPoint offset) {
  ptrdiff_t reach = 0;
  UsualDifference usual[3];
  for (ptrdiff_t k = 0; k < count_; ++k) {
    const MPoint at = places_[k];
    if (at.x + 1 < patch_.right) reach = std::max(reach, numberAt(at.x + 1, at.y) - k);
    if (at.y + 1 < patch_.bottom) reach = std::max(reach, numberAt(at.x, at.y + 1) - k);
    for (const MPoint& step : kNeighbours) {
      const std::optional<Border> border = borderAt(level, offset, at, step);
      for (ptrdiff_t c = 0; border && c < 3; ++c) usual[c].add(border->at(level.channelStep * c));
    }
  }
  for (ptrdiff_t c = 0; c < 3; ++c) usual_[c] = usual[c].median();
  matrix_ = {entries_.get(), count_, reach + 1};
  std::fill_n(matrix_.entries, matrix_.size * matrix_.band, 0.0f);
  std::fill_n(sides_.get(), count_ * kSystems, 0.0f);
  for (ptrdiff_t k = 0; k < count_; ++k) addEquation(level, offset, k);
  const float* const sides = sides_.get();
  return std::any_of(sides, sides + count_ * kSystems, [](float side) { return side != 0; });
}

void PatchBlend::addEquation(const Level& level, MPoint offset, ptrdiff_t k) {
  const MPoint at = places_[k];
  for (const MPoint& step : kNeighbours) {
    const int32_t x = at.x + step.x, y = at.y + step.y;
    const bool inPatch =
        x >= patch_.left && x < patch_.right && y >= patch_.top && y < patch_.bottom;
    if (inPatch && numberAt(x, y) != kNone) {
      const ptrdiff_t other = numberAt(x, y);
      matrix_.at(k, k) += 1;
      if (other > k) matrix_.at(other, k) = -1;
      continue;
    }
    const std::optional<Border> border = borderAt(level, offset, at, step);
    if (!border) continue;
    matrix_.at(k, k) += 1;
    for (ptrdiff_t c = 0; c < 3; ++c) {
      const int32_t difference = border->at(level.channelStep * c);
      const int32_t kept =
          std::clamp(difference, usual_[c] - kMostUnusual, usual_[c] + kMostUnusual);
      sides_[kSystems * k + c] += static_cast<float>(kept);
    }
  }
}

}  // namespace qpx::retouch
