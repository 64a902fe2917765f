// Tone tables drawn through control points or computed, and their chaining on a stage.
//
//   constexpr CurvePoint kFade[] = {{0, 30}, {128, 140}, {255, 240}};
//   ToneTable fade;
//   if (const int32_t result = drawCurve(kFade, fade); result != QPX_OK) return result;
//   return composeTable(stage, fade);
#pragma once

#include <qpx/curves.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "engine/stage.h"

namespace qpx {

using ToneTable = std::array<uint8_t, 256>;

inline constexpr size_t kStageLutSize = 768;  // a stage's table can grow to three in place

// What lutFlags says of a stage's block.
inline constexpr uint32_t kLutOneTable = QPX_LUT_PRESENT | QPX_LUT_ONE_TABLE;
inline constexpr uint32_t kLutThreeTables = QPX_LUT_PRESENT | QPX_LUT_THREE_TABLES;

struct CurvePoint {
  uint8_t x;
  uint8_t y;
};

constexpr uint8_t clampToByte(int64_t value) {
  return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255));
}

// BuildSplineCurve through literal points. Returns 0 or its code; recipes whose points are correct
// can only meet 4.
template <size_t N>
int32_t drawCurve(const CurvePoint (&points)[N], ToneTable& table) {
  uint8_t xs[N];
  uint8_t ys[N];
  for (size_t i = 0; i < N; ++i) {
    xs[i] = points[i].x;
    ys[i] = points[i].y;
  }
  return BuildSplineCurve(xs, ys, static_cast<int32_t>(N), table.data());
}

// The table of a formula: sample(i) for 0..255, an integer clamped to a byte.
template <typename Sample>
constexpr ToneTable tabulate(const Sample& sample) {
  ToneTable table = {};
  for (int32_t i = 0; i < 256; ++i) table[static_cast<size_t>(i)] = clampToByte(sample(i));
  return table;
}

// Chain one table for all components, or one for each, behind what the stage holds. Return 0 or 4.
int32_t composeTable(Stage& stage, const ToneTable& table);
int32_t composeTables(Stage& stage, const ToneTable& red, const ToneTable& green,
                      const ToneTable& blue);

// Tables that a point stage applies to red, green and blue; all the same where it holds one.
struct StageTables {
  const uint8_t* red;
  const uint8_t* green;
  const uint8_t* blue;
};

inline bool hasThreeTables(const QPXStage& stage) {
  return (stage.lutFlags & QPX_LUT_THREE_TABLES) != 0;
}

inline StageTables stageTables(const QPXStage& stage) {
  const size_t step = hasThreeTables(stage) ? 256 : 0;
  return {stage.lut, stage.lut + step, stage.lut + 2 * step};
}

}  // namespace qpx
