#include "filters/curves/stretched_texels.h"

namespace qpx {
namespace {

constexpr int32_t kSide = 256;
constexpr uint32_t kLastTexel = 0xFF00000;  // 255 in twenty fractional bits

uint32_t stepOver(int32_t pixels) {
  return kLastTexel / static_cast<uint32_t>(std::max(pixels - 1, 1));
}

}  // namespace

bool isSquareOf256(const MBitmap& texture) {
  return texture.plane[0] != nullptr && texture.format == QPX_FORMAT_RGB24 &&
         texture.width == kSide && texture.height == kSide && texture.pitch[0] >= 3 * kSide;
}

StretchedPlaces::StretchedPlaces(const Stage& stage)
    : columnStep_(stepOver(stage.inWidth)),
      rowStep_(stepOver(stage.inHeight)),
      inPairs_(stage.pix.family == kFamilyYuyv) {}

// Columns of a run of full length, whatever its own is: behind the picture's edge they wrap round,
// and nobody reads them.
void StretchedPlaces::place(const PixelRun& run) {
  const uint32_t step = columnStep_;  // bytes might alias the member
  if (inPairs_) {
    placePairs(run.x, step);
  } else {
    uint32_t sum = static_cast<uint32_t>(run.x) * step;
    for (int32_t i = 0; i < kRunLength; ++i, sum += step) {
      columns_[i] = static_cast<uint8_t>(sum >> 20);
    }
  }
  row_ = static_cast<uint8_t>(static_cast<uint32_t>(run.y) * rowStep_ >> 20);
}

// A run may begin with the second pixel of a pair.
void StretchedPlaces::placePairs(int32_t x, uint32_t step) {
  const int32_t lead = x % 2;
  uint32_t sum = static_cast<uint32_t>(x - lead) * step;
  uint8_t* pairs = columns_;
  if (lead != 0) {
    *pairs++ = static_cast<uint8_t>(sum >> 20);
    sum += 2 * step;
  }
  for (int32_t i = 0; i < kRunLength / 2; ++i, sum += 2 * step) {
    pairs[2 * i] = pairs[2 * i + 1] = static_cast<uint8_t>(sum >> 20);
  }
}

void StretchedTexels::split(int32_t row) {
  simd::rows().deinterleave3(texture_.plane[0] + ptrdiff_t{row} * texture_.pitch[0], kSide,
                             tables_[0], tables_[1], tables_[2]);
  row_ = row;
}

void StretchedTexels::load(const StretchedPlaces& places, int32_t count) {
  if (places.row() != row_) split(places.row());
  for (int c = 0; c < 3; ++c) {
    simd::rows().lookup(places.columns(), run_[c], count, tables_[c]);
  }
}

}  // namespace qpx
