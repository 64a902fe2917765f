// The steps of the compression for one half block, by name.
#include <qpx/etc.h>

#include "etc/image.h"
#include "etc/levels.h"
#include "simd/plain_etc_rows.h"

using namespace qpx;
using namespace qpx::etc;

namespace {

struct HalfShape {
  int32_t across, down;
};
constexpr HalfShape kTall = {2, 4};
constexpr HalfShape kWide = {4, 2};

// Pixel k in the order of the format, down the columns.
const uint8_t* pixelOf(const uint8_t* first, ptrdiff_t pitch, HalfShape shape, int32_t k) {
  return first + pitch * (k % shape.down) + 3 * (k / shape.down);
}

int32_t average(const uint8_t* image, int32_t width, int32_t height, int32_t x, int32_t y,
                HalfShape shape, float* result) {
  if (result == nullptr || !isInside(image, width, height, x, y, shape.across, shape.down)) {
    return QPX_BAD_PARAM;
  }
  const uint8_t* const first = pixelAt(image, width, x, y);
  for (int32_t c = 0; c < 3; ++c) {
    int32_t sum = 0;
    for (int32_t k = 0; k < 8; ++k) sum += pixelOf(first, tightPitch(width), shape, k)[c];
    result[c] = static_cast<float>(sum) / 8.0f;
  }
  return QPX_OK;
}

int32_t quantize(const float* mean, uint8_t* levels, const Depth& depth) {
  if (mean == nullptr || levels == nullptr) return QPX_BAD_PARAM;
  for (int32_t c = 0; c < 3; ++c) levels[c] = static_cast<uint8_t>(nearestLevel(mean[c], depth));
  return QPX_OK;
}

simd::plain::EtcColor colorAt(const uint8_t* rgb) { return {rgb[0], rgb[1], rgb[2]}; }

struct HalfPlace {
  const uint8_t* image;
  int32_t width, height, x, y;
};

// Calls find(half, base) for a choice. Returns its error.
template <typename Find>
int32_t search(const HalfPlace& place, HalfShape shape, const uint8_t* base, uint8_t* indices,
               int32_t* table, const Find& find) {
  if (base == nullptr || indices == nullptr ||
      !isInside(place.image, place.width, place.height, place.x, place.y, shape.across,
                shape.down)) {
    return -1;
  }
  const uint8_t* const first = pixelAt(place.image, place.width, place.x, place.y);
  simd::plain::EtcHalf half;
  for (int32_t k = 0; k < 8; ++k) {
    half.pixels[k] = colorAt(pixelOf(first, tightPitch(place.width), shape, k));
  }
  const simd::plain::EtcChoice choice = find(half, colorAt(base));
  for (int32_t k = 0; k < 8; ++k) {
    indices[k] = static_cast<uint8_t>((choice.bits >> k & 1) | (choice.bits >> (16 + k) & 1) << 1);
  }
  if (table != nullptr) *table = choice.table;
  return choice.error;
}

int32_t withTable(const HalfPlace& place, HalfShape shape, const uint8_t* base, int32_t table,
                  uint8_t* indices) {
  if (table < 0 || table > 7) return -1;
  return search(place, shape, base, indices, nullptr, [=](const auto& half, const auto& color) {
    return simd::plain::searchWithTable(half, color, table);
  });
}

int32_t withBestTable(const HalfPlace& place, HalfShape shape, const uint8_t* base, int32_t* table,
                      uint8_t* indices) {
  if (table == nullptr) return -1;
  return search(place, shape, base, indices, table, simd::plain::searchAllTables);
}

constexpr Depth kFiveBits = {31, 8.225806, simd::etcExpand5};
constexpr Depth kFourBits = {15, 17.0, simd::etcExpand4};

}  // namespace

int32_t TEXPKcomputeAverageColor2x4noQuantFloat(const uint8_t* image, int32_t width, int32_t height,
                                                int32_t x, int32_t y, float* result) {
  return average(image, width, height, x, y, kTall, result);
}

int32_t TEXPKcomputeAverageColor4x2noQuantFloat(const uint8_t* image, int32_t width, int32_t height,
                                                int32_t x, int32_t y, float* result) {
  return average(image, width, height, x, y, kWide, result);
}

int32_t TEXPKquantize555ColorCombinedPerceptual(const float* mean, uint8_t* levels) {
  return quantize(mean, levels, kFiveBits);
}

int32_t TEXPKquantize444ColorCombinedPerceptual(const float* mean, uint8_t* levels) {
  return quantize(mean, levels, kFourBits);
}

int32_t TEXPKcompressBlockWithTable2x4percep(const uint8_t* image, int32_t width, int32_t height,
                                             int32_t x, int32_t y, const uint8_t* base,
                                             int32_t table, uint8_t* indices) {
  return withTable({image, width, height, x, y}, kTall, base, table, indices);
}

int32_t TEXPKcompressBlockWithTable4x2percep(const uint8_t* image, int32_t width, int32_t height,
                                             int32_t x, int32_t y, const uint8_t* base,
                                             int32_t table, uint8_t* indices) {
  return withTable({image, width, height, x, y}, kWide, base, table, indices);
}

int32_t TEXPKtryalltables_3bittable2x4percep(const uint8_t* image, int32_t width, int32_t height,
                                             int32_t x, int32_t y, const uint8_t* base,
                                             int32_t* table, uint8_t* indices) {
  return withBestTable({image, width, height, x, y}, kTall, base, table, indices);
}

int32_t TEXPKtryalltables_3bittable4x2percep(const uint8_t* image, int32_t width, int32_t height,
                                             int32_t x, int32_t y, const uint8_t* base,
                                             int32_t* table, uint8_t* indices) {
  return withBestTable({image, width, height, x, y}, kWide, base, table, indices);
}
