// Rows of finished elements on their way into a destination plane, whichever way the picture is
// turned. Elements are pixels, samples, chroma pairs or groups of 1 to 4 bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "convert/kernels/call.h"
#include "simd/convert_rows.h"

namespace qpx::convert::fast {

// The planes of the record's destination: from a pixel to the next column and to the next row of
// the source's frame.
struct Stride {
  ptrdiff_t along;
  ptrdiff_t across;
};
Stride strideOf(const Call& call, int32_t component, int32_t plane);

class Lane {
 public:
  // Elements of `bytes` bytes. Where a picture is turned, runs are no longer than kTileColumns.
  void open(uint8_t* base, const Stride& stride, int32_t bytes, bool turned);

  // Has rows delivered one by one even where tiles would be faster: for passes that must finish a
  // row before they begin the next.
  void forbidTiles();

  bool isForward() const { return way_ == Way::forward; }
  // Every row of a band has a room of its own.
  bool hasRooms() const { return way_ == Way::forward || way_ == Way::tiled; }

  // The next `count` elements, from column `x`, of at most kBandRows rows from row `y` on.
  void begin(int32_t x, int32_t count, int32_t y);

  // Where the elements of row `index` of the band are best made.
  uint8_t* room(int32_t index);

  // Delivers them: from room(index), or from any other place that stays as it is until end().
  void put(int32_t index, const uint8_t* elements);

  // After `rows` rows were put.
  void end(int32_t rows);

  // All elements at once, `columns` in each of `rows` rows that lie `pitch` bytes apart.
  void take(const uint8_t* elements, ptrdiff_t pitch, int32_t columns, int32_t rows);

 private:
  enum class Way { forward, backward, tiled, scattered };
  static constexpr int32_t kTilePitch = kTileColumns * 4;
  static constexpr int32_t kRoomBytes = kBandRows * kTilePitch;
  static_assert(kRoomBytes >= kRun * 4);

  uint8_t* at(int32_t index) const;
  void reverse(const uint8_t* elements, uint8_t* dst) const;
  void scatter(const uint8_t* elements, uint8_t* dst) const;
  void transpose(const uint8_t* src, ptrdiff_t pitch, int32_t rows, uint8_t* dst) const;
  void turn(const uint8_t* first, ptrdiff_t pitch, int32_t rows);

  const simd::ConvertRows* rows_ = nullptr;
  uint8_t* base_ = nullptr;
  ptrdiff_t along_ = 0;
  ptrdiff_t across_ = 0;
  int32_t bytes_ = 0;
  Way way_ = Way::forward;
  int32_t x_ = 0;
  int32_t count_ = 0;
  int32_t y_ = 0;
  const uint8_t* put_[kBandRows];
  uint8_t room_[kRoomBytes];
};

}  // namespace qpx::convert::fast
