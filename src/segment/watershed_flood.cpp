#include "segment/watershed_flood.h"

#include <algorithm>

namespace qpx {
namespace {

// What cells hold beside labels, which are above 0.
constexpr int32_t kDry = -1;  // not reached yet, or the border
constexpr int32_t kOfThisLevel = -2;
// A pixel that will have a label when its round is over has that label's complement below these.
constexpr int32_t comingLabel(int32_t label) { return kOfThisLevel - label; }

// Cells are met in an order that the processor does not foresee.
constexpr uint32_t kAhead = 16;

}  // namespace

void countLevels(const uint8_t* levels, size_t pixels, uint32_t (&counts)[kFloodLevels]) {
  // Neighbours often have the same level: two tables keep additions to one place apart.
  uint32_t odd[kFloodLevels] = {};
  std::fill_n(counts, kFloodLevels, 0);
  for (size_t i = 0; i + 1 < pixels; i += 2) {
    ++counts[levels[i]];
    ++odd[levels[i + 1]];
  }
  if (pixels % 2 != 0) ++counts[levels[pixels - 1]];
  for (int level = 0; level < kFloodLevels; ++level) counts[level] += odd[level];
}

void sortByLevel(const uint8_t* levels, const FloodField& field,
                 const uint32_t (&counts)[kFloodLevels], uint32_t* places) {
  uint32_t* next[kFloodLevels];
  for (int level = 0; level < kFloodLevels; ++level) {
    next[level] = places;
    places += counts[level];
  }
  for (int32_t y = 0; y < field.height; ++y) {
    const auto first = static_cast<uint32_t>(field.placeOfRow(y));
    const auto end = first + static_cast<uint32_t>(field.width);
    for (uint32_t place = first; place != end; ++place) *next[*levels++]++ = place;
  }
}

Flood::Flood(const FloodField& field, uint32_t* queue)
    : stride_(static_cast<ptrdiff_t>(field.stride())), cells_(field.cells), queue_(queue) {
  std::fill_n(cells_, field.size(), kDry);
}

void Flood::raise(uint32_t* places, uint32_t count) {
  const uint32_t left = reach(places, count);
  spread();
  for (uint32_t i = 0; i < left; ++i) {
    if (cells_[places[i]] == kOfThisLevel) fill(places[i]);
  }
}

// The first label to the left, right, above and below; 0 or less where there is none.
int32_t Flood::labelBeside(const int32_t* cell) const {
  if (cell[-1] > 0) return cell[-1];
  if (cell[1] > 0) return cell[1];
  if (cell[-stride_] > 0) return cell[-stride_];
  return cell[stride_];
}

// The first round: pixels beside the regions of lower levels. Keeps the places of the others and
// returns their number.
uint32_t Flood::reach(uint32_t* places, uint32_t count) {
  queued_ = 0;
  uint32_t left = 0;
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t place = places[i];
    if (i + kAhead < count) {
      const int32_t* const ahead = cells_ + places[i + kAhead];
      __builtin_prefetch(ahead, 1);
      __builtin_prefetch(ahead - stride_);
      __builtin_prefetch(ahead + stride_);
    }
    int32_t& cell = cells_[place];
    const int32_t label = labelBeside(&cell);
    if (label > 0) {
      cell = comingLabel(label);
      queue_[queued_++] = place;
    } else {
      cell = kOfThisLevel;
      places[left++] = place;
    }
  }
  return left;
}

// All rounds of the queue. Labels come up together at the end of each, so that only pixels that
// are nearer to a lower region count as neighbours.
void Flood::spread() {
  const ptrdiff_t around[4] = {-1, 1, -stride_, stride_};
  for (uint32_t first = 0; first != queued_;) {
    const uint32_t end = queued_;
    for (uint32_t i = first; i < end; ++i) {
      int32_t& cell = cells_[queue_[i]];
      cell = comingLabel(cell);
    }
    for (; first < end; ++first) {
      int32_t* const cell = cells_ + queue_[first];
      for (const ptrdiff_t step : around) {
        int32_t* const beside = cell + step;
        if (*beside != kOfThisLevel) continue;
        *beside = comingLabel(labelBeside(beside));
        queue_[queued_++] = static_cast<uint32_t>(beside - cells_);
      }
    }
  }
}

// A new region of all connected pixels of the level that nothing has reached.
void Flood::fill(uint32_t place) {
  const ptrdiff_t around[4] = {-1, 1, -stride_, stride_};
  const int32_t label = ++regions_;
  cells_[place] = label;
  queue_[0] = place;
  for (uint32_t waiting = 1; waiting > 0;) {
    int32_t* const cell = cells_ + queue_[--waiting];
    for (const ptrdiff_t step : around) {
      if (cell[step] != kOfThisLevel) continue;
      cell[step] = label;
      queue_[waiting++] = static_cast<uint32_t>(cell + step - cells_);
    }
  }
}

}  // namespace qpx
