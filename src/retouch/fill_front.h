// What is filled next: the border of the hole and the priority of its pixels.
#pragma once

#include <optional>

#include "retouch/isophotes.h"
#include "retouch/level.h"

namespace qpx::retouch {

// Unit vector across the border of the hole at one of its pixels, whose sign does not matter: a
// line runs into the hole along it.
struct Normal {
  float x, y;
};

class FillFront {
 public:
  // Patches have a radius; the weight is that of the confidence against the lines.
  FillFront(const Level& level, int32_t radius, float weight);
  explicit operator bool() const { return isophotes_ && confidence_ && priority_ && best_; }

  // Takes in the level as it is.
  void start();

  // The first pixel of the highest priority, or none when the hole is filled.
  std::optional<MPoint> next() const;

  // How much of a patch is known, and how well. To be asked before it is filled.
  float patchConfidence(const MRect& patch) const;
  // A pixel has been filled in the level.
  void filled(MPoint pixel, float confidence) const;
  // Works out what has changed since `patch` was filled.
  void refreshAround(const MRect& patch) const;

  float priorityAt(MPoint pixel) const { return priority_[level_.place(pixel.x, pixel.y)]; }

 private:
  struct Best {
    float priority;
    int32_t x;
  };

  void refresh(const MRect& area) const;
  void refreshPixel(int32_t x, int32_t y) const;
  float dataTerm(MPoint pixel, const Normal& normal) const;
  float confidence(MPoint pixel) const;
  void findBest(int32_t y) const;
  MRect patchOf(MPoint pixel) const {
    return intersection(squareAround(pixel, radius_), level_.all());
  }

  const Level& level_;
  int32_t radius_;
  float weight_;
  Isophotes isophotes_;
  Buffer<float> confidence_;
  Buffer<float> priority_;
  Buffer<Best> best_;  // of each row
  MRect bounds_ = {};  // of the hole
};

// None where no neighbour is known. The sum of the directions to those that are known; where they
// cancel out, as along a hole of a single column, the axis that has more of them.
std::optional<Normal> frontNormal(const Level& level, int32_t x, int32_t y);

}  // namespace qpx::retouch
