// QPX_RotateImage: a whole picture in one call, with 10 fractional bits.
#include <kesbase.h>
#include <qpx/rotate.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/stage.h"
#include "geometry/packed_rgb.h"
#include "geometry/sampling.h"
#include "geometry/turn_math.h"

namespace qpx {
namespace {

constexpr int kFraction = 10;
constexpr double kUnit = 1 << kFraction;

// Every place is the sum of two table entries, one for the column and one for the row.
struct Turn {
  const int32_t* sine;  // of the angle, times 0, 1, 2, ...
  const int32_t* cosine;
  int64_t originX;  // where destination pixel (0, 0) comes from
  int64_t originY;
};

void fillTable(int32_t* table, int32_t count, double perStep) {
  for (int32_t i = 0; i < count; ++i) table[i] = truncated(0.5 + i * perStep * kUnit);
}

// The fill's bytes in the order of the format.
uint32_t fillPixel(uint32_t color, uint32_t format) {
  const uint32_t first = color >> 16 & 255;
  const uint32_t second = color >> 8 & 255;
  const uint32_t third = color & 255;
  const uint32_t fourth = color & 0xFF000000;
  const bool reversed = (format & kReversedOrder) != 0;
  return reversed ? third | second << 8 | first << 16 | fourth
                  : first | second << 8 | third << 16 | fourth;
}

void fillRows(const MBitmap& image, uint8_t value) {
  const auto bytes =
      static_cast<size_t>(image.width) * static_cast<size_t>(packedRgbBytes(image.format));
  for (int32_t y = 0; y < image.height; ++y) std::memset(rowOf(image, y), value, bytes);
}

void placeBlock(const Turn& turn, int32_t x, int32_t y, SampleBlock& block) {
  const int64_t u = turn.originX + turn.cosine[x] - turn.sine[y];
  const int64_t v = turn.originY + turn.sine[x] + turn.cosine[y];
  block.column = u >> kFraction;
  block.row = v >> kFraction;
  const int32_t fromColumn = static_cast<int32_t>(u - block.column * (1 << kFraction));
  const int32_t fromRow = static_cast<int32_t>(v - block.row * (1 << kFraction));
  for (int32_t k = 0; k < block.count; ++k) {
    block.u[k] = fromColumn + (turn.cosine[x + k] - turn.cosine[x]);
    block.v[k] = fromRow + (turn.sine[x + k] - turn.sine[x]);
  }
}

template <int kBytes>
void turnImage(const MBitmap& src, const MBitmap& dst, const Turn& turn, double radians,
               uint32_t fill) {
  const SampleSource<PitchedRows> source = {{src.plane[0], src.pitch[0]}, src.width, src.height};
  const simd::TapRows& rows = simd::tapRows();
  const simd::TapRows::Blend blend = kBytes == 3 ? rows.oneSum3 : rows.oneSum4;
  SampleBlock block;
  fetchAlong(std::sin(radians), std::cos(radians), block);
  forEachBlock(0, 0, dst.width, dst.height, [&](int32_t x, int32_t y, int32_t count) {
    block.count = count;
    placeBlock(turn, x, y, block);
    sampleFilled<kBytes, kFraction>(source, fill, blend, block);
    storeBlock<kBytes>(block, pixelAt(dst, x, y, kBytes));
  });
}

int32_t rotateImage(const MBitmap& src, int32_t degrees, uint32_t color, const MBitmap& dst) {
  if (src.format != dst.format || !isBgr(withoutOrder(src.format))) return QPX_BAD_PARAM;
  const int32_t bytes = packedRgbBytes(src.format);
  if (!hasRows(src, bytes) || !hasRows(dst, bytes)) return QPX_BAD_PARAM;

  const int32_t entries = std::max(dst.width, dst.height);
  const Scratch sineTable(static_cast<size_t>(entries) * sizeof(int32_t));
  const Scratch cosineTable(static_cast<size_t>(entries) * sizeof(int32_t));
  if (!sineTable || !cosineTable) {
    fillRows(dst, 255);
    return QPX_NO_MEMORY;
  }
  const double radians = radiansOf(degrees);
  const double sine = std::sin(radians);
  const double cosine = std::cos(radians);
  const auto sines = reinterpret_cast<int32_t*>(sineTable.get());
  const auto cosines = reinterpret_cast<int32_t*>(cosineTable.get());
  fillTable(sines, entries, sine);
  fillTable(cosines, entries, cosine);
  const int32_t halfWidth = dst.width >> 1;
  const int32_t halfHeight = dst.height >> 1;
  const Turn turn = {
      sines, cosines,
      truncated(0.5 + (halfHeight * sine - halfWidth * cosine + (src.width >> 1)) * kUnit),
      truncated(0.5 + (-halfHeight * cosine - halfWidth * sine + (src.height >> 1)) * kUnit)};
  const uint32_t fill = fillPixel(color, src.format);
  bytes == 3 ? turnImage<3>(src, dst, turn, radians, fill)
             : turnImage<4>(src, dst, turn, radians, fill);
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

int32_t QPX_RotateImage(const MBitmap* src, int32_t degrees, uint32_t fill, MBitmap* dst) {
  if (src == nullptr || dst == nullptr) return QPX_BAD_PARAM;
  return qpx::rotateImage(*src, degrees, fill, *dst);
}
