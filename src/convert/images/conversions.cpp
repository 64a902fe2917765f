#include "convert/images/conversions.h"

#include <algorithm>

#include "convert/images/image_layout.h"

namespace qpx {
namespace {

using simd::PixelOrder;

constexpr int32_t kSmallestSide = 2;

bool hasPlanes(const McvImage& image) {
  for (int32_t p = 0; p < planesOf(image.format); ++p) {
    if (image.plane[p] == nullptr) return false;
  }
  return true;
}

PixelOrder orderOf(int32_t format) {
  switch (format) {
    case MCV_RGB888:
      return PixelOrder::rgb24;
    case MCV_BGR888:
      return PixelOrder::bgr24;
    case MCV_RGBA8888:
      return PixelOrder::rgba32;
    default:
      return PixelOrder::bgra32;
  }
}

// Rows that are walked: two at a time where a side shares chroma between two.
int32_t rowsWalked(const McvImage& dst, bool inTwos) {
  return inTwos ? dst.height & ~1 : dst.height;
}

// A second row has luma alone: its chroma belongs to the row above.
bool isSecondRow(int32_t row, const YuvLayout& dst) { return dst.halvedDown != 0 && row % 2 != 0; }

// A conversion between two YUV formats.
struct YuvMove {
  const McvImage& src;
  const McvImage& dst;
  const YuvLayout& from;
  const YuvLayout& to;
  const simd::YuvRows& rows = simd::yuvRows();

  int32_t pairs() const { return dst.width / 2; }
  int32_t height() const { return rowsWalked(dst, from.halvedDown != 0 || to.halvedDown != 0); }

  void packRows() const {
    for (int32_t row = 0; row < height(); ++row) {
      rows.packPairs(sourceRow(src, from, row), yuvRow(dst, to, row), pairs());
    }
  }

  void unpackRows() const {
    for (int32_t row = 0; row < height(); ++row) {
      const simd::YuvSource source = sourceRow(src, from, row);
      const simd::YuvTarget target = yuvRow(dst, to, row);
      if (isSecondRow(row, to)) {
        rows.moveLuma(source.y, source.lumaStep, target.y, 1, ptrdiff_t{2} * pairs());
      } else {
        rows.moveRow(source, target, pairs());
      }
    }
  }

  void movePlanes() const {
    moveLuma();
    moveChroma();
  }

 private:
  // Rows that follow each other without a gap are one row.
  bool isOneRow(const McvImage& image, int32_t plane, ptrdiff_t rowBytes) const {
    return image.pitch[plane] == rowBytes;
  }

  void moveLuma() const {
    if (src.plane[0] == dst.plane[0]) return;
    const ptrdiff_t pixels = ptrdiff_t{2} * pairs();
    if (isOneRow(src, 0, pixels) && isOneRow(dst, 0, pixels)) {
      return rows.moveLuma(src.plane[0], 1, dst.plane[0], 1, pixels * height());
    }
    for (int32_t row = 0; row < height(); ++row) {
      rows.moveLuma(rowOf(src, 0, row), 1, rowOf(dst, 0, row), 1, pixels);
    }
  }

  bool chromaIsOneRow() const {
    const simd::YuvSource source = sourceRow(src, from, 0);
    const simd::YuvTarget target = yuvRow(dst, to, 0);
    bool oneRow = from.halvedDown == to.halvedDown;
    for (const int32_t plane : {from.u.plane, from.v.plane}) {
      oneRow = oneRow && isOneRow(src, plane, pairs() * source.chromaStep);
    }
    for (const int32_t plane : {to.u.plane, to.v.plane}) {
      oneRow = oneRow && isOneRow(dst, plane, pairs() * target.chromaStep);
    }
    return oneRow;
  }

  void moveChroma() const {
    const int32_t chromaRows = height() >> to.halvedDown;
    if (chromaIsOneRow()) {
      return rows.moveChroma(sourceRow(src, from, 0), yuvRow(dst, to, 0),
                             ptrdiff_t{pairs()} * chromaRows);
    }
    for (int32_t i = 0; i < chromaRows; ++i) {
      const int32_t row = i << to.halvedDown;
      rows.moveChroma(sourceRow(src, from, row), yuvRow(dst, to, row), pairs());
    }
  }
};

}  // namespace

int32_t checkImages(FormatPair formats, const McvImage* src, const McvImage* dst) {
  if (src == nullptr || dst == nullptr) return kMcvNull;
  if (src->format != formats.src || dst->format != formats.dst) return kMcvRefused;
  if (std::min({src->width, src->height, dst->width, dst->height}) < kSmallestSide) {
    return kMcvRefused;
  }
  if (src->width < dst->width || src->height < dst->height) return kMcvRefused;
  return hasPlanes(*src) && hasPlanes(*dst) ? kMcvDone : kMcvNull;
}

int32_t yuvToPixels(FormatPair formats, const McvImage* src, const McvImage* dst, uint8_t alpha,
                    Arithmetic arithmetic) {
  if (const int32_t answer = checkImages(formats, src, dst); answer != kMcvDone) return answer;
  const YuvLayout& from = *yuvLayout(formats.src);
  const PixelOrder order = orderOf(formats.dst);
  const simd::YuvRows& rows = simd::yuvRows();
  const auto convert = arithmetic == Arithmetic::fine ? rows.toPixelsRounded : rows.toPixels;
  const int32_t height = rowsWalked(*dst, from.halvedDown != 0);
  for (int32_t row = 0; row < height; ++row) {
    convert(sourceRow(*src, from, row), order, alpha, rowOf(*dst, 0, row), dst->width / 2);
  }
  return kMcvDone;
}

int32_t pixelsToYuv(FormatPair formats, const McvImage* src, const McvImage* dst,
                    simd::ChromaWeights weights, Arithmetic arithmetic) {
  if (const int32_t answer = checkImages(formats, src, dst); answer != kMcvDone) return answer;
  const YuvLayout& to = *yuvLayout(formats.dst);
  const PixelOrder order = orderOf(formats.src);
  const simd::YuvRows& rows = simd::yuvRows();
  const int32_t height = rowsWalked(*dst, to.halvedDown != 0);
  const int32_t pairs = dst->width / 2;
  const bool fine = arithmetic == Arithmetic::fine;
  for (int32_t row = 0; row < height; ++row) {
    const uint8_t* const pixels = rowOf(*src, 0, row);
    const simd::YuvTarget target = yuvRow(*dst, to, row);
    if (isSecondRow(row, to)) {
      if (fine) {
        rows.fineLumaOfPixels(pixels, target.y, ptrdiff_t{2} * pairs);
      } else {
        rows.lumaOfPixels(pixels, order, target.y, ptrdiff_t{2} * pairs);
      }
    } else if (fine) {
      rows.fromPixelsFine(pixels, target, pairs);
    } else {
      rows.fromPixels(pixels, order, weights, target, pairs);
    }
  }
  return kMcvDone;
}

int32_t yuvToYuv(FormatPair formats, const McvImage* src, const McvImage* dst) {
  if (const int32_t answer = checkImages(formats, src, dst); answer != kMcvDone) return answer;
  const YuvMove move = {*src, *dst, *yuvLayout(formats.src), *yuvLayout(formats.dst)};
  if (move.to.planes == 1) {
    move.packRows();
  } else if (move.from.planes == 1) {
    move.unpackRows();
  } else {
    move.movePlanes();
  }
  return kMcvDone;
}

int32_t nv21ToYuv(const McvImage* src, const McvImage* dst) {
  if (const int32_t answer = checkImages({MCV_NV21, MCV_YUV}, src, dst); answer != kMcvDone) {
    return answer;
  }
  const YuvLayout& from = *yuvLayout(MCV_NV21);
  const simd::YuvRows& rows = simd::yuvRows();
  for (int32_t row = 0; row < rowsWalked(*dst, true); ++row) {
    rows.packPixels(sourceRow(*src, from, row), rowOf(*dst, 0, row), dst->width / 2);
  }
  return kMcvDone;
}

int32_t rgbToYv24(const McvImage* src, const McvImage* dst) {
  if (const int32_t answer = checkImages({MCV_RGB888, MCV_YV24}, src, dst); answer != kMcvDone) {
    return answer;
  }
  const simd::YuvRows& rows = simd::yuvRows();
  for (int32_t row = 0; row < dst->height; ++row) {
    uint8_t* const planes[3] = {rowOf(*dst, 0, row), rowOf(*dst, 2, row), rowOf(*dst, 1, row)};
    rows.planesOfPixels(rowOf(*src, 0, row), PixelOrder::rgb24, kUsualChroma, planes, dst->width);
  }
  return kMcvDone;
}

int32_t movePixels(FormatPair formats, PixelRow simd::PixelRows::*move, const McvImage* src,
                   const McvImage* dst) {
  if (const int32_t answer = checkImages(formats, src, dst); answer != kMcvDone) return answer;
  const PixelRow moveRow = simd::pixelRows().*move;
  for (int32_t row = 0; row < dst->height; ++row) {
    moveRow(rowOf(*src, 0, row), rowOf(*dst, 0, row), dst->width);
  }
  return kMcvDone;
}

int32_t pixelsTo565(FormatPair formats, const McvImage* src, const McvImage* dst) {
  if (const int32_t answer = checkImages(formats, src, dst); answer != kMcvDone) return answer;
  const simd::PixelRows& rows = simd::pixelRows();
  const bool lowestIsBlue = formats.dst == MCV_RGB565;
  const bool firstIsBlue = formats.src == MCV_BGR888;
  for (int32_t row = 0; row < dst->height; ++row) {
    rows.pack565(rowOf(*src, 0, row), lowestIsBlue != firstIsBlue, rowOf(*dst, 0, row), dst->width);
  }
  return kMcvDone;
}

}  // namespace qpx
