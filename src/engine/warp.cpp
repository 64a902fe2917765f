#include "engine/warp.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace qpx {
namespace {

constexpr int kFraction = 16;
constexpr int32_t kMaxSide = 65535;  // half of it, scaled by 65536, still fits 32 bits
constexpr int32_t kWidening = 2;     // a filter's reach around the exact source, and rounding

void fillTable(int32_t* table, int32_t count, double perStep) {
  const double centre = (count - 1) / 2.0;
  for (int32_t i = 0; i < count; ++i) {
    table[i] = static_cast<int32_t>((i - centre) * perStep * (1 << kFraction));
  }
}

bool tooLarge(const Stage& stage, double scale) {
  const auto outside = [](int32_t side) { return side < 0 || side > kMaxSide; };
  const auto outsideScaled = [&](int32_t side) { return side / scale > kMaxSide; };
  return outside(stage.outWidth) || outside(stage.outHeight) || outside(stage.inWidth) ||
         outside(stage.inHeight) || outsideScaled(stage.outWidth) || outsideScaled(stage.outHeight);
}

// A side of one pixel still spans a step, so that the box of its corners is not empty.
int32_t lastOf(int32_t first, int32_t end, int32_t limit) {
  const int32_t step = end - first == 1 ? 1 : end - first - 1;
  return std::clamp(first + step, 0, limit - 1);
}

int32_t wholePixels(int64_t fixed) { return static_cast<int32_t>(fixed >> kFraction); }

}  // namespace

int32_t buildWarpTables(Stage& stage, double degrees, double scale) {
  if (tooLarge(stage, scale)) return QPX_UNSUPPORTED;
  const size_t entries =
      2 * (static_cast<size_t>(stage.outWidth) + static_cast<size_t>(stage.outHeight));
  const size_t bytes = std::max<size_t>(entries, 1) * sizeof(int32_t);
  uint8_t* block = static_cast<uint8_t*>(MMemAlloc(nullptr, bytes));
  if (block == nullptr) return QPX_NO_MEMORY;
  MMemFree(nullptr, stage.lut);
  stage.lut = block;
  stage.lutSize = static_cast<uint32_t>(bytes);
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;

  const double radians = degrees * std::numbers::pi / 180.0;
  int32_t* table = reinterpret_cast<int32_t*>(block);
  const double sine = std::sin(radians) / scale;
  const double cosine = std::cos(radians) / scale;
  int32_t* rows = table + 2 * ptrdiff_t{stage.outWidth};
  fillTable(table, stage.outWidth, sine);
  fillTable(table + stage.outWidth, stage.outWidth, cosine);
  fillTable(rows, stage.outHeight, sine);
  fillTable(rows + stage.outHeight, stage.outHeight, cosine);
  return QPX_OK;
}

WarpTables warpTables(const Stage& stage) {
  const int32_t* table = reinterpret_cast<const int32_t*>(stage.lut);
  const int32_t* rows = table + 2 * ptrdiff_t{stage.outWidth};
  return {table, table + stage.outWidth, rows, rows + stage.outHeight};
}

WarpPoint warpSource(const Stage& stage, const WarpTables& tables, int32_t column, int32_t row) {
  const int64_t centreX = (int64_t{stage.inWidth} - 1) * (1 << (kFraction - 1));
  const int64_t centreY = (int64_t{stage.inHeight} - 1) * (1 << (kFraction - 1));
  return {centreX + tables.cosOfColumn[column] + tables.sinOfRow[row],
          centreY - tables.sinOfColumn[column] + tables.cosOfRow[row]};
}

int32_t greatestDisplacement(const Stage& stage) {
  if (stage.lut == nullptr || stage.outWidth < 1 || stage.outHeight < 1) return 0;
  const WarpTables tables = warpTables(stage);
  int64_t greatest = 0;
  for (const int32_t column : {0, stage.outWidth - 1}) {
    for (const int32_t row : {0, stage.outHeight - 1}) {
      const WarpPoint source = warpSource(stage, tables, column, row);
      greatest = std::max({greatest, std::abs(source.x - (int64_t{column} << kFraction)),
                           std::abs(source.y - (int64_t{row} << kFraction))});
    }
  }
  return wholePixels(greatest + (1 << kFraction) - 1);
}

int32_t calcWarpRect(Stage& stage, MRect* outRect, MRect* inRect) {
  const bool whole =
      outRect->left == 0 && outRect->top == 0 && outRect->right == 0 && outRect->bottom == 0;
  if (whole) *outRect = {0, 0, stage.outWidth, stage.outHeight};
  const MRect out = {std::max(outRect->left, 0), std::max(outRect->top, 0),
                     std::min(outRect->right, stage.outWidth),
                     std::min(outRect->bottom, stage.outHeight)};
  if (stage.lut == nullptr || out.left >= out.right || out.top >= out.bottom) return QPX_BAD_PARAM;

  const WarpTables tables = warpTables(stage);
  const int32_t columns[2] = {out.left, lastOf(out.left, out.right, stage.outWidth)};
  const int32_t rows[2] = {out.top, lastOf(out.top, out.bottom, stage.outHeight)};
  MRect box = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  for (const int32_t column : columns) {
    for (const int32_t row : rows) {
      const WarpPoint source = warpSource(stage, tables, column, row);
      box.left = std::min(box.left, wholePixels(source.x));
      box.top = std::min(box.top, wholePixels(source.y));
      box.right = std::max(box.right, wholePixels(source.x));
      box.bottom = std::max(box.bottom, wholePixels(source.y));
    }
  }
  *inRect = {std::clamp(box.left - kWidening, 0, stage.outWidth),
             std::clamp(box.top - kWidening, 0, stage.outHeight),
             std::clamp(box.right + kWidening, 0, stage.outWidth),
             std::clamp(box.bottom + kWidening, 0, stage.outHeight)};
  stage.warpRect.left = out.left;
  stage.warpRect.top = out.top;
  stage.warpRect.right = out.right;
  stage.warpRect.bottom = out.bottom;
  return QPX_OK;
}

}  // namespace qpx
