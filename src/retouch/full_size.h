// The full-size picture behind a smaller guide.
#pragma once

#include <optional>

#include "retouch/level.h"
#include "retouch/patch_blend.h"
#include "retouch/patch_search.h"

namespace qpx::retouch {

// Which source pixels a guide pixel stands for, along one axis: those that are nearest to its
// place.
class Cells {
 public:
  Cells(int32_t sourceSize, int32_t guideSize);
  explicit operator bool() const { return first_ && cell_; }

  void fill() const;  // before anything else

  double step() const { return step_; }
  int32_t cellOf(int32_t pixel) const { return cell_[pixel]; }
  // First pixel of a cell; of the one behind the last, the number of pixels.
  int32_t firstOf(int32_t cell) const { return first_[cell]; }
  // Pixels of the longest `count` neighbouring cells.
  int32_t longestRun(int32_t count) const;
  // How far away, in pixels, is what is so many cells away.
  int32_t shift(int32_t cells) const;

 private:
  int32_t sourceSize_, guideSize_;
  double step_;
  Buffer<int32_t> first_;
  Buffer<int32_t> cell_;
};

class FullSize {
 public:
  // The level's mask is still to be filled. Cells outlive this.
  FullSize(const Level& level, const Cells& across, const Cells& down, int32_t radius);
  explicit operator bool() const { return target_ && window_ && clear_ && blend_; }

  // The mask, from the guide's before its sources are marked, and the sources at full size.
  void start(const Level& guide) const;

  // Fills what `patch` of the guide stands for, which is filled there, from what lies `offset` away
  // in the guide; or from the guide's own pixels where that is no source at full size.
  void fill(const Level& guide, const MRect& patch, MPoint offset);

 private:
  struct WindowShape {
    int32_t reach;          // of the search, to each side
    int32_t origins;        // across; a multiple of what vectors hold, beyond the reach
    int32_t width, height;  // pixels
    int64_t planeSize() const { return int64_t{width} * height; }
  };

  static WindowShape shapeFor(const Cells& across, const Cells& down, int32_t patchWidth,
                              int32_t patchHeight);
  std::optional<MPoint> refined(const MRect& patch, MPoint shift);
  void loadWindow(MPoint corner) const;
  void fillFromGuide(const Level& guide, const MRect& patch) const;

  const Level& level_;
  const Cells& across_;
  const Cells& down_;
  int32_t patchWidth_, patchHeight_;
  WindowShape shape_;
  PatchTarget target_;
  Buffer<uint8_t> window_;
  Buffer<int32_t> clear_;
  PatchBlend blend_;
};

}  // namespace qpx::retouch
