// QPX_Straighten: a photograph turned and enlarged until no corner is empty.
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

constexpr int kFraction = 16;
constexpr int32_t kMaxSide = 65536;  // steps from -32768 to 32767 in 16.16 just fit 32 bits

// Both tables count from the centre of the destination, so they begin below zero.
struct Level {
  const int32_t* sine;
  const int32_t* cosine;
  int32_t centreX;  // of the destination
  int32_t centreY;
  int64_t middleColumn;  // of the source
  int64_t middleRow;
};

// The enlargement at which the turned frame just covers the upright one.
double scaleFor(int32_t width, int32_t height, double sine, double cosine) {
  const double s = std::fabs(sine);
  const double c = std::fabs(cosine);
  const double longToShort =
      width < height ? static_cast<double>(height) / width : static_cast<double>(width) / height;
  return std::max(s, c) + longToShort * std::min(s, c);
}

void placeBlock(const Level& level, int32_t x, int32_t y, SampleBlock& block) {
  const int32_t* sine = level.sine + (x - level.centreX);
  const int32_t* cosine = level.cosine + (x - level.centreX);
  const int32_t dy = y - level.centreY;
  const int64_t q = int64_t{cosine[0]} - level.sine[dy];
  const int64_t p = int64_t{sine[0]} + level.cosine[dy];
  block.column = (q >> kFraction) + level.middleColumn;
  block.row = (p >> kFraction) + level.middleRow;
  const int32_t fromColumn = static_cast<int32_t>(q & 0xFFFF);
  const int32_t fromRow = static_cast<int32_t>(p & 0xFFFF);
  for (int32_t k = 0; k < block.count; ++k) {
    block.u[k] = fromColumn + (cosine[k] - cosine[0]);
    block.v[k] = fromRow + (sine[k] - sine[0]);
  }
}

template <int kBytes>
void levelImage(const MBitmap& src, const MBitmap& dst, const Level& level, double angle,
                bool bilinear) {
  const SampleSource<PitchedRows> source = {{src.plane[0], src.pitch[0]}, src.width, src.height};
  const simd::TapRows& rows = simd::tapRows();
  const simd::TapRows::Blend blend = kBytes == 3 ? rows.downFirst3 : rows.downFirst4;
  SampleBlock block;
  fetchAlong(std::sin(-angle), std::cos(-angle), block);
  forEachBlock(0, 0, dst.width, dst.height, [&](int32_t x, int32_t y, int32_t count) {
    block.count = count;
    placeBlock(level, x, y, block);
    bilinear ? sampleRepeated<kBytes, kFraction>(source, blend, block)
             : sampleNearest<kBytes, kFraction>(source, block);
    storeBlock<kBytes>(block, pixelAt(dst, x, y, kBytes));
  });
}

// 0 and pixels to make, 0 and nothing to do, or 2.
int32_t checkFormats(const MBitmap& src, const MBitmap& dst, bool* served) {
  *served = isBgr(withoutOrder(src.format));
  if (!*served) return src.format == dst.format ? QPX_OK : QPX_BAD_PARAM;
  const bool sameBytes = withoutOrder(src.format) == withoutOrder(dst.format);
  return sameBytes ? QPX_OK : QPX_BAD_PARAM;
}

int32_t straighten(const MBitmap& src, const MBitmap& dst, double angle, bool bilinear) {
  bool served = false;
  const int32_t result = checkFormats(src, dst, &served);
  if (result != QPX_OK || !served) return result;
  const int32_t bytes = packedRgbBytes(src.format);
  if (!hasRows(src, bytes) || !hasRows(dst, bytes) || !std::isfinite(angle)) return QPX_BAD_PARAM;
  if (dst.width > src.width || dst.height > src.height) return QPX_BAD_PARAM;
  const int32_t entries = std::max(src.width, src.height);
  if (entries > kMaxSide) return QPX_UNSUPPORTED;

  const Scratch tables(2 * static_cast<size_t>(entries) * sizeof(int32_t));
  if (!tables) return QPX_NO_MEMORY;
  const auto sines = reinterpret_cast<int32_t*>(tables.get());
  const auto cosines = sines + entries;
  const double sine = std::sin(-angle);
  const double cosine = std::cos(-angle);
  const double scale = scaleFor(src.width, src.height, sine, cosine);
  const int32_t first = -(entries / 2);
  for (int32_t i = 0; i < entries; ++i) {
    sines[i] = truncated((first + i) * sine * 65536.0 / scale);
    cosines[i] = truncated((first + i) * cosine * 65536.0 / scale);
  }
  const Level level = {sines - first,   cosines - first, dst.width >> 1,
                       dst.height >> 1, src.width >> 1,  src.height >> 1};
  bytes == 3 ? levelImage<3>(src, dst, level, angle, bilinear)
             : levelImage<4>(src, dst, level, angle, bilinear);
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

int32_t QPX_Straighten(const MBitmap* src, MBitmap* dst, double angle, int32_t bilinear) {
  if (src == nullptr || dst == nullptr) return QPX_BAD_PARAM;
  return qpx::straighten(*src, *dst, angle, bilinear != 0);
}
