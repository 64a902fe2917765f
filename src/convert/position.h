// Where in the source a destination pixel lies. Destination coordinates are those of the unrotated
// frame, which record.dstOrgX and dstOrgY and the valid window are in.
//
// Positions are 16.16 in 64 bits, so that pictures wider than 32767 pixels work like all others.
#pragma once

#include <qpx/convert_record.h>

#include <algorithm>
#include <cstdint>

namespace qpx::convert {

// 1 and 1/2 in 16.16.
inline constexpr int32_t kFixedOne = 0x10000;
inline constexpr int32_t kFixedHalf = 0x8000;

// a / b, cut towards the lesser number, for b above 0.
constexpr int64_t floorDivide(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// A pair of neighbouring rows or columns, and how far the position lies from the first to the
// second, 0..65535. Nearest sampling takes the first; its fraction is 0.
struct SourcePair {
  int32_t first = 0;
  int32_t second = 0;
  int32_t fraction = 0;
};

// Bilinear: pixel centres map to pixel centres. Nearest: the left edge of the source cell.
inline int64_t sourcePosition(int32_t origin, uint32_t step, int32_t distance, bool bilinear) {
  const int64_t start = int64_t{origin} * kFixedOne;
  if (!bilinear) return start + int64_t{step} * distance;
  return start - kFixedHalf + int64_t{step} * (int64_t{distance} + 1) - step / 2;
}

inline int64_t sourceXOf(const ConvRecord& record, int32_t x) {
  return sourcePosition(record.srcOrgX, record.stepX, x - record.dstOrgX, record.bilinearY != 0);
}

inline int64_t sourceYOf(const ConvRecord& record, int32_t y) {
  return sourcePosition(record.srcOrgY, record.stepY, y - record.dstOrgY, record.bilinearY != 0);
}

inline SourcePair sourceColumn(const ConvRecord& record, int32_t x) {
  if (x < record.validX0) return {record.clipL, record.clipL, 0};
  const int32_t last = record.clipR - 1;
  if (x >= record.validX1 - 1) return {last, last, 0};
  const int64_t sx = sourceXOf(record, x);
  const auto column = static_cast<int32_t>(sx >> 16);
  if (record.bilinearY == 0) return {column, column, 0};
  return {column, std::min(column + 1, last), static_cast<int32_t>(sx & 0xFFFF)};
}

// The position is compared with the number of a row, not with the position of one: rows above the
// clip that lie below row 0 are read.
inline SourcePair sourceRow(const ConvRecord& record, int32_t y) {
  const int64_t sy = sourceYOf(record, y);
  if (sy < record.clipT) return {record.clipT, record.clipT, 0};
  const int32_t last = record.clipB - 1;
  const auto row = static_cast<int32_t>(sy >> 16);
  if (row >= last) return {last, last, 0};
  const int32_t fraction = record.bilinearY != 0 ? static_cast<int32_t>(sy & 0xFFFF) : 0;
  return {row, fraction != 0 ? row + 1 : row, fraction};
}

// `fraction` of the way from a to b, truncated.
constexpr int32_t between(int32_t a, int32_t b, int32_t fraction) {
  return (a * kFixedOne + fraction * (b - a)) >> 16;
}

// The unrotated frame and the destination. An axis of the frame runs along X of the destination, or
// along Y where the conversion exchanges both, and backwards where it mirrors.
struct FrameAxis {
  int32_t origin;  // of the destination rectangle, in both
  int32_t extent;
  bool mirrored;

  // From the destination to the frame and back: its own inverse.
  constexpr int32_t across(int32_t coordinate) const {
    return mirrored ? origin + (origin + (extent - 1) - coordinate) : coordinate;
  }
};

inline FrameAxis frameX(const ConvRecord& record) {
  const bool swap = record.swapXY != 0;
  return {record.dstOrgX, static_cast<int32_t>(swap ? record.dst.height : record.dst.width),
          (swap ? record.mirrorY : record.mirrorX) != 0};
}

inline FrameAxis frameY(const ConvRecord& record) {
  const bool swap = record.swapXY != 0;
  return {record.dstOrgY, static_cast<int32_t>(swap ? record.dst.width : record.dst.height),
          (swap ? record.mirrorX : record.mirrorY) != 0};
}

// Index of the chroma cell of frame coordinate `at`, counted from the cell of `from`: cells are
// those of the destination's own pixels, so that any cut of a mirrored picture writes the same
// ones.
inline int32_t cellIndex(const FrameAxis& axis, int32_t subsampling, int32_t from, int32_t at) {
  const int32_t distance = axis.across(at) / subsampling - axis.across(from) / subsampling;
  return axis.mirrored ? -distance : distance;
}

}  // namespace qpx::convert
