#include <algorithm>
#include <utility>

#include "convert/format_decoder.h"
#include "convert/slow_path.h"
#include "engine/address.h"

namespace qpx::convert {
namespace {

uint8_t* rowOf(const Destination& to, int32_t component, int32_t y) {
  const int32_t subsampling = to.record->dstSubY[component];
  return advance(to.plane[component], to.pitch[component],
                 cellIndex(to.y, subsampling, to.rect.top, y));
}

// Packs channels of eight bits into the fields of a pixel.
class Packer {
 public:
  explicit Packer(const ConvRecord& record)
      : lost_{8 - record.dstBitsR, 8 - record.dstBitsG, 8 - record.dstBitsB},
        position_{record.dstPosR, record.dstPosG, record.dstPosB} {}

  uint32_t word(const PixelRun& run, int32_t i) const {
    uint32_t word = 0;
    for (int32_t c = 0; c < 3; ++c) {
      word |= static_cast<uint32_t>(run.sample[c][i] >> lost_[c]) << position_[c];
    }
    return word;
  }

 private:
  int32_t lost_[3];
  int32_t position_[3];
};

template <int32_t kBytes>
void storeRgb(const Destination& to, int32_t x, int32_t y, const PixelRun& run) {
  const Packer packer(*to.record);
  uint8_t* pixel = advance(rowOf(to, 0, y), to.step[0], x - to.rect.left);
  for (int32_t i = 0; i < run.count; ++i, pixel = advance(pixel, to.step[0], 1)) {
    const uint32_t word = packer.word(run, i);
    for (int32_t k = 0; k < kBytes; ++k) pixel[k] = static_cast<uint8_t>(word >> (8 * k));
  }
}

// The byte of a 32-bit pixel that the colours leave.
int32_t alphaByte(const ConvRecord& record) {
  return std::clamp((48 - record.dstPosR - record.dstPosG - record.dstPosB) >> 3, 0, 3);
}

// RGB sources without alpha leave the destination's as it is.
enum class Alpha { constant, source, kept };

Alpha alphaOf(const ConvRecord& record) {
  if (record.src.klass != kRgb) return Alpha::constant;
  return record.src.colour == 32 ? Alpha::source : Alpha::kept;
}

void storeRgb32(const Destination& to, int32_t x, int32_t y, const PixelRun& run) {
  const Packer packer(*to.record);
  const int32_t alphaAt = alphaByte(*to.record);
  const Alpha alpha = alphaOf(*to.record);
  const auto constant = static_cast<uint8_t>(to.record->alpha);
  uint8_t* pixel = advance(rowOf(to, 0, y), to.step[0], x - to.rect.left);
  for (int32_t i = 0; i < run.count; ++i, pixel = advance(pixel, to.step[0], 1)) {
    const uint32_t word = packer.word(run, i);
    for (int32_t k = 0; k < 4; ++k) {
      if (k != alphaAt) pixel[k] = static_cast<uint8_t>(word >> (8 * k));
    }
    if (alpha != Alpha::kept) pixel[alphaAt] = alpha == Alpha::source ? run.alpha[i] : constant;
  }
}

// Formats whose groups hold the second luma first take each luma to its neighbour's place.
void storeSwappedLuma(const Destination& to, int32_t x, int32_t y, const PixelRun& run) {
  const bool swap = to.record->swapXY != 0;
  uint8_t* luma = advance(rowOf(to, 0, y), to.step[0], x - to.rect.left);
  for (int32_t i = 0; i < run.count; ++i, luma = advance(luma, to.step[0], 1)) {
    const int32_t column = swap ? to.y.across(y) : to.x.across(x + i);
    *advance(luma, to.nextPixel, (column & 1) != 0 ? -1 : 1) = run.sample[0][i];
  }
}

void storeLuma(const Destination& to, int32_t x, int32_t y, const PixelRun& run) {
  if (swapsLumas(to.record->dst.klass)) {
    storeSwappedLuma(to, x, y, run);
    return;
  }
  uint8_t* luma = advance(rowOf(to, 0, y), to.step[0], x - to.rect.left);
  for (int32_t i = 0; i < run.count; ++i, luma = advance(luma, to.step[0], 1)) {
    *luma = run.sample[0][i];
  }
}

// Cells of YUYV are counted from the rectangle's first column, whichever it is.
int32_t chromaColumn(const Destination& to, int32_t x) {
  const int32_t subsampling = to.record->dstSubX[1];
  if (to.record->dst.klass == kYuyv) return (x - to.rect.left) / subsampling;
  return cellIndex(to.x, subsampling, to.rect.left, x);
}

void storeYuv(const Destination& to, int32_t x, int32_t y, const PixelRun& run) {
  storeLuma(to, x, y, run);
  uint8_t* const rowU = rowOf(to, 1, y);
  uint8_t* const rowV = rowOf(to, 2, y);
  for (int32_t i = 0; i < run.count; ++i) {
    const int32_t cell = chromaColumn(to, x + i);
    *advance(rowU, to.step[1], cell) = run.sample[1][i];
    *advance(rowV, to.step[2], cell) = run.sample[2][i];
  }
}

int32_t componentsOf(const ConvRecord& record) {
  return record.dst.klass == kRgb || record.dst.klass == kGrey ? 1 : 3;
}

// Planes of packed formats begin at different pixels, one for each component.
int32_t entryOf(const ConvRecord& record, int32_t component) {
  if (component == 0 || record.dstPlane.count == 1) return component;
  return component == 1 ? planeOfU(record.dst.klass) : planeOfV(record.dst.klass);
}

}  // namespace

bool openDestination(const ConvRecord& record, const MRect& rect, uint8_t* const* planes,
                     const int32_t* pitches, Destination* destination) {
  Destination& to = *destination;
  to.record = &record;
  to.rect = rect;
  to.x = frameX(record);
  to.y = frameY(record);
  to.nextPixel = record.mirrorX != 0 ? -ptrdiff_t{record.dstStep[0]} : record.dstStep[0];
  for (int32_t c = 0; c < componentsOf(record); ++c) {
    const int32_t plane = entryOf(record, c);
    if (planes[plane] == nullptr) return false;
    to.plane[c] = advance(planes[plane], record.dstPlane.offset[c], 1);
    to.step[c] = record.dstStep[c];
    to.pitch[c] = pitches[plane];
    if (record.swapXY != 0) std::swap(to.step[c], to.pitch[c]);
  }
  return true;
}

StoreRun storeFor(const ConvRecord& record) {
  if (record.dst.klass == kGrey) return storeLuma;
  if (record.dst.klass != kRgb) return storeYuv;
  if (record.dst.colour == 32) return storeRgb32;
  return record.dst.colour == 24 ? storeRgb<3> : storeRgb<2>;
}

}  // namespace qpx::convert
