// Regions from levels: basins that are flooded from the lowest level up, after L. Vincent and P.
// Soille, "Watersheds in Digital Spaces" (1991).
#pragma once

#include <cstddef>
#include <cstdint>

namespace qpx {

// A number for every pixel with a border of one around the picture, so that neighbours need no
// tests. A pixel's place is its index there.
struct FloodField {
  int32_t width;
  int32_t height;
  int32_t* cells;

  int64_t stride() const { return int64_t{width} + 2; }
  int64_t size() const { return stride() * (int64_t{height} + 2); }
  int64_t placeOfRow(int32_t y) const { return stride() * (int64_t{y} + 1) + 1; }
};

inline constexpr int kFloodLevels = 256;

// How many pixels have each level.
void countLevels(const uint8_t* levels, size_t pixels, uint32_t (&counts)[kFloodLevels]);

// The places of all pixels in ascending order of their levels, those of one level row by row.
void sortByLevel(const uint8_t* levels, const FloodField& field,
                 const uint32_t (&counts)[kFloodLevels], uint32_t* places);

class Flood {
 public:
  // `queue` has room for the pixels of any level.
  Flood(const FloodField& field, uint32_t* queue);

  // Takes all pixels of a level, which get labels from 1 on in the field. Levels come in ascending
  // order, their places row by row; these are lost.
  void raise(uint32_t* places, uint32_t count);

  int32_t regions() const { return regions_; }

 private:
  uint32_t reach(uint32_t* places, uint32_t count);
  void spread();
  void fill(uint32_t place);
  int32_t labelBeside(const int32_t* cell) const;

  const ptrdiff_t stride_;
  int32_t* const cells_;
  uint32_t* const queue_;
  uint32_t queued_ = 0;
  int32_t regions_ = 0;
};

}  // namespace qpx
