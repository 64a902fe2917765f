#include "retouch/full_size.h"

#include <algorithm>
#include <cmath>

#include "retouch/source_map.h"

namespace qpx::retouch {
namespace {

// A vector of the search holds as many patches.
constexpr int32_t kOriginsAtOnce = 32;
// What a match of the guide leaves open is a pixel of it; more is not worth its time.
constexpr int32_t kLongestReach = 16;

int32_t roundedUp(int32_t value, int32_t to) { return (value + to - 1) / to * to; }

}  // namespace

Cells::Cells(int32_t sourceSize, int32_t guideSize)
    : sourceSize_(sourceSize),
      guideSize_(guideSize),
      step_(static_cast<double>(std::max(sourceSize - 1, 1)) / std::max(guideSize - 1, 1)),
      first_(int64_t{guideSize} + 1),
      cell_(sourceSize) {}

void Cells::fill() const {
  int32_t next = 0;
  for (int32_t pixel = 0; pixel < sourceSize_; ++pixel) {
    const auto nearest = static_cast<int32_t>(pixel / step_ + 0.5);
    cell_[pixel] = std::min(nearest, guideSize_ - 1);
    while (next <= cell_[pixel]) first_[next++] = pixel;
  }
  while (next <= guideSize_) first_[next++] = sourceSize_;
}

int32_t Cells::longestRun(int32_t count) const {
  int32_t longest = 0;
  for (int32_t cell = 0; cell < guideSize_; ++cell) {
    const int32_t end = std::min(cell + count, guideSize_);
    longest = std::max(longest, firstOf(end) - firstOf(cell));
  }
  return longest;
}

int32_t Cells::shift(int32_t cells) const {
  return static_cast<int32_t>(std::floor(cells * step_ + 0.5));
}

FullSize::WindowShape FullSize::shapeFor(const Cells& across, const Cells& down, int32_t patchWidth,
                                         int32_t patchHeight) {
  const double step = std::max(across.step(), down.step());
  const int32_t reach =
      step < kLongestReach ? static_cast<int32_t>(std::ceil(step)) : kLongestReach;
  const int32_t origins = roundedUp(2 * reach + 1, kOriginsAtOnce);
  return {reach, origins, patchWidth + origins, patchHeight + 2 * reach};
}

FullSize::FullSize(const Level& level, const Cells& across, const Cells& down, int32_t radius)
    : level_(level),
      across_(across),
      down_(down),
      patchWidth_(across.longestRun(2 * radius + 1)),
      patchHeight_(down.longestRun(2 * radius + 1)),
      shape_(shapeFor(across, down, patchWidth_, patchHeight_)),
      target_(int64_t{patchWidth_} * patchHeight_),
      window_(3 * shape_.planeSize()),
      clear_(level.width),
      blend_(patchWidth_, patchHeight_) {}

void FullSize::start(const Level& guide) const {
  for (int32_t y = 0; y < level_.height; ++y) {
    for (int32_t x = 0; x < level_.width; ++x) {
      level_.state(x, y) = guide.state(across_.cellOf(x), down_.cellOf(y));
    }
  }
  markSources(level_, patchWidth_, patchHeight_, {0, 0}, clear_.get());
}

void FullSize::fill(const Level& guide, const MRect& patch, MPoint offset) {
  const MRect area = {across_.firstOf(patch.left), down_.firstOf(patch.top),
                      across_.firstOf(patch.right), down_.firstOf(patch.bottom)};
  if (isEmpty(area)) return;
  const MPoint shift = {across_.shift(offset.x), down_.shift(offset.y)};
  const std::optional<MPoint> match = refined(area, shift);
  if (!match) {
    fillFromGuide(guide, area);
    return;
  }
  blend_.fill(level_, area, *match);
  for (const MPoint& pixel : blend_.filled()) level_.state(pixel.x, pixel.y) = kFromFill;
}

// The best offset near `shift`. A window around it is copied into planes, from pixels of the border
// where it reaches out of the picture; no patch lies there.
std::optional<MPoint> FullSize::refined(const MRect& patch, MPoint shift) {
  const MPoint corner = {patch.left + shift.x - shape_.reach, patch.top + shift.y - shape_.reach};
  loadWindow(corner);
  const auto plane = static_cast<ptrdiff_t>(shape_.planeSize());
  target_.load(level_, patch, {patch.left, patch.top}, {shape_.width, plane});
  const int32_t size = 2 * shape_.reach + 1;
  const MRect inPicture = {-corner.x, -corner.y, level_.width - corner.x, level_.height - corner.y};
  const PatchField field = {
      .level = level_,
      .corner = corner,
      .samples = window_.get(),
      .pitch = shape_.width,
      .means = nullptr,
      .meanWeight = 0,
      .origins = intersection({0, 0, size, size}, inPicture),
      .spare = shape_.origins - size,
  };
  const MRect middle = {shape_.reach, shape_.reach, shape_.reach + 1, shape_.reach + 1};
  const std::optional<MPoint> origin = findPatch(target_, field, middle);
  if (!origin) return std::nullopt;
  return MPoint{corner.x + origin->x - patch.left, corner.y + origin->y - patch.top};
}

void FullSize::loadWindow(MPoint corner) const {
  const auto plane = static_cast<ptrdiff_t>(shape_.planeSize());
  for (int32_t y = 0; y < shape_.height; ++y) {
    const int32_t fromY = std::clamp(corner.y + y, 0, level_.height - 1);
    uint8_t* const to = window_.get() + ptrdiff_t{shape_.width} * y;
    for (int32_t x = 0; x < shape_.width; ++x) {
      const int32_t fromX = std::clamp(corner.x + x, 0, level_.width - 1);
      const uint8_t* const pixel = level_.pixel(fromX, fromY);
      for (ptrdiff_t c = 0; c < 3; ++c) {
        to[plane * c + x] = pixel[level_.channelStep * c];
      }
    }
  }
}

void FullSize::fillFromGuide(const Level& guide, const MRect& patch) const {
  for (int32_t y = patch.top; y < patch.bottom; ++y) {
    for (int32_t x = patch.left; x < patch.right; ++x) {
      if (!level_.isHole(x, y)) continue;
      const uint8_t* const from = guide.pixel(across_.cellOf(x), down_.cellOf(y));
      uint8_t* const to = level_.pixel(x, y);
      for (ptrdiff_t c = 0; c < 3; ++c) {
        to[level_.channelStep * c] = from[guide.channelStep * c];
      }
      level_.state(x, y) = kFromFill;
    }
  }
}

}  // namespace qpx::retouch
