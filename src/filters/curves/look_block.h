// Working blocks of the looks: what a setup makes once and kernels only read.
#pragma once

#include <type_traits>

#include "toolkit/curve.h"
#include "toolkit/tint.h"

namespace qpx {

// A block of tables, with `tailBytes` of further entries behind it. Returns null for no memory.
template <typename Block>
Block* makeBlock(Stage& stage, int64_t tailBytes = 0) {
  static_assert(std::is_trivially_copyable_v<Block>);
  const int64_t bytes = static_cast<int64_t>(sizeof(Block)) + tailBytes;
  if (bytes > INT32_MAX) return nullptr;
  Scratch memory(static_cast<size_t>(bytes));
  if (!memory) return nullptr;
  MMemFree(nullptr, stage.lut);
  stage.lut = memory.release();
  stage.lutSize = static_cast<uint32_t>(bytes);
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;
  return reinterpret_cast<Block*>(stage.lut);
}

template <typename Block>
const Block& blockOf(const QPXStage& stage) {
  return *reinterpret_cast<const Block*>(stage.lut);
}

// Kernels may be called by name on a stage of another effect.
template <typename Block>
bool holdsBlock(const QPXStage& stage, int64_t tailBytes) {
  return stage.lut != nullptr && stage.lutFlags == QPX_LUT_OTHER_SHAPE &&
         stage.lutSize == static_cast<int64_t>(sizeof(Block)) + tailBytes;
}

template <typename Block>
bool hasBlock(const Stage& stage) {
  return holdsBlock<Block>(stage, 0);
}

using ChannelTables = ColorTables;

struct ChannelCurves {
  CurvePoint red[5];
  CurvePoint green[5];
  CurvePoint blue[5];
};

inline int32_t drawCurves(const ChannelCurves& curves, ChannelTables& tables) {
  int32_t result = drawCurve(curves.red, tables.red);
  if (result == QPX_OK) result = drawCurve(curves.green, tables.green);
  if (result == QPX_OK) result = drawCurve(curves.blue, tables.blue);
  return result;
}

}  // namespace qpx
