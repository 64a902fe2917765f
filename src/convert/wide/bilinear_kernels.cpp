// Wide kernels that resample: positions of seven fractional bits, worked out once for all rows.

#include <qpx/convert.h>

#include <algorithm>
#include <new>

#include "convert/position.h"
#include "convert/wide/kernel_shape.h"
#include "convert/wide/weights.h"
#include "engine/stage.h"
#include "simd/convert_rows.h"

namespace qpx::convert::wide {
namespace {

// Pixels worked on at a time, and rows of the kernel that turns. Both are even.
constexpr int32_t kRun = 256;
constexpr int32_t kTurnedRows = 16;
constexpr int32_t kTurnedRun = 64;

// Where the columns of the rectangle lie in the source.
class Columns {
 public:
  explicit Columns(const WideCall& call) : count_(call.width()), memory_(bytesFor(count_)) {
    if (!*this) return;
    column_ = ::new (memory_.get()) int32_t[size_t(count_)];
    chroma_ = column_ + count_;
    fraction_ = reinterpret_cast<uint16_t*>(chroma_ + count_ / 2 + 1);
    for (int32_t i = 0; i < count_; ++i) {
      const SourcePair pair = sourceColumn(*call.record, call.rect->left + i);
      column_[i] = pair.first;
      fraction_[i] = static_cast<uint16_t>(pair.fraction >> 9);
      if (i % 2 == 0) chroma_[i / 2] = pair.first & ~1;
    }
  }
  explicit operator bool() const { return memory_.get() != nullptr; }

  const int32_t* column() const { return column_; }
  const int32_t* chroma() const { return chroma_; }
  const uint16_t* fraction() const { return fraction_; }

 private:
  // More than there can be where the number does not fit.
  static size_t bytesFor(int32_t count) {
    const auto n = static_cast<uint64_t>(count);
    const uint64_t bytes = sizeof(int32_t) * (n + n / 2 + 1) + sizeof(uint16_t) * n;
    return static_cast<size_t>(std::min<uint64_t>(bytes, SIZE_MAX));
  }

  int32_t count_;
  Scratch memory_;
  int32_t* column_ = nullptr;
  int32_t* chroma_ = nullptr;
  uint16_t* fraction_ = nullptr;
};

// Where a row lies in the source.
struct RowPair {
  int32_t first, second;
  int32_t fraction;

  RowPair(const WideCall& call, int32_t row) {
    const SourcePair pair = qpx::convert::sourceRow(*call.record, call.rect->top + row);
    first = pair.first;
    second = pair.second;
    fraction = pair.fraction >> 9;
  }
};

struct Corners {
  uint16_t a[kRun], b[kRun], c[kRun], d[kRun];
};

void gather(const uint8_t* top, const uint8_t* bottom, int32_t step, const int32_t* column,
            const uint16_t* fraction, int32_t count, Corners* corners) {
  for (int32_t i = 0; i < count; ++i) {
    const ptrdiff_t left = ptrdiff_t{step} * column[i],
                    right = fraction[i] != 0 ? left + step : left;
    corners->a[i] = top[left];
    corners->b[i] = top[right];
    corners->c[i] = bottom[left];
    corners->d[i] = bottom[right];
  }
}

// Apart from the gathering, so that compilers make vectors of it.
void mix(const Corners& from, const uint16_t* fraction, int32_t down, int32_t count, uint8_t* dst,
         int32_t dstStep) {
  for (int32_t i = 0; i < count; ++i) {
    const int32_t f = fraction[i];
    const int32_t top = (from.a[i] << 7) + f * from.b[i] - f * from.a[i];
    const int32_t bottom = (from.c[i] << 7) + f * from.d[i] - f * from.c[i];
    dst[ptrdiff_t{dstStep} * i] =
        static_cast<uint8_t>((top + down * (bottom >> 7) - down * (top >> 7)) >> 7);
  }
}

// `count` samples of a byte every `step`, from column number `from` of the rectangle on.
void blend(const uint8_t* top, const uint8_t* bottom, int32_t step, const Columns& columns,
           int32_t from, int32_t count, int32_t down, uint8_t* dst) {
  Corners corners;
  gather(top, bottom, step, columns.column() + from, columns.fraction() + from, count, &corners);
  mix(corners, columns.fraction() + from, down, count, dst, step);
}

void blendLuma(const WideCall& call, const Columns& columns, const RowPair& row, int32_t from,
               int32_t count, uint8_t* dst) {
  blend(call.source(0, 0, row.first), call.source(0, 0, row.second), 1, columns, from, count,
        row.fraction, dst);
}

void pickChroma(const WideCall& call, const Columns& columns, const RowPair& row, int32_t from,
                int32_t pairs, const simd::YuvTarget& dst) {
  const auto& record = *call.record;
  const uint8_t *const u = call.source(1, 0, row.first), *const v = call.source(2, 0, row.first);
  const int32_t* const column = columns.chroma() + from / 2;
  for (int32_t i = 0; i < pairs; ++i) {
    const ptrdiff_t at = ptrdiff_t{record.srcPlane.step[1]} * (column[i] / record.srcSubX[1]);
    dst.u[i * dst.chromaStep] = u[at];
    dst.v[i * dst.chromaStep] = v[at];
  }
}

// Calls run(from, count) for each run of a row.
template <typename Run>
void eachRun(const WideCall& call, int32_t length, const Run& run) {
  for (int32_t from = 0; from < call.width(); from += length) {
    run(from, std::min(length, call.width() - from));
  }
}

bool resampleYuv(const WideCall& call) {
  const Columns columns(call);
  if (!columns) return false;
  for (int32_t y = 0; y < call.height(); ++y) {
    const RowPair row(call, y);
    const simd::YuvTarget dst = call.targetRow(y);
    eachRun(call, kRun, [&](int32_t from, int32_t count) {
      blendLuma(call, columns, row, from, count, dst.y + from);
      if (y % 2 == 0) pickChroma(call, columns, row, from, count / 2, dst.from(from / 2));
    });
  }
  return true;
}

// Chroma of the left pixel of each pair; none of any where `chroma` is false.
void toYuv(const uint8_t* bgra, int32_t pixels, bool chroma, const simd::YuvTarget& dst) {
  constexpr int32_t kMost = 0x7F80;
  for (int32_t i = 0; i < pixels; ++i, bgra += 4) {
    const int32_t b = bgra[0], g = bgra[1], r = bgra[2];
    dst.y[i] = static_cast<uint8_t>(std::min(38 * r + 75 * g + 15 * b + 64, kMost) >> 7);
    if (!chroma || i % 2 != 0) continue;
    const ptrdiff_t at = i / 2 * dst.chromaStep;
    dst.u[at] = static_cast<uint8_t>(std::min(16384 + 64 * b - 22 * r - 42 * g, kMost) >> 7);
    dst.v[at] = static_cast<uint8_t>(std::min(16384 + 64 * r - 54 * g - 10 * b, kMost) >> 7);
  }
}

bool pixelsToYuv(const WideCall& call) {
  const Columns columns(call);
  if (!columns) return false;
  for (int32_t y = 0; y < call.height(); ++y) {
    const RowPair row(call, y);
    const uint8_t *const top = call.source(0, 0, row.first), *const bottom =
                                                                 call.source(0, 0, row.second);
    const simd::YuvTarget dst = call.targetRow(y);
    eachRun(call, kRun, [&](int32_t from, int32_t count) {
      uint8_t pixels[4 * kRun] = {};
      for (int32_t c = 0; c < 3; ++c) {
        blend(top + c, bottom + c, 4, columns, from, count, row.fraction, pixels + c);
      }
      toYuv(pixels, count, y % 2 == 0, dst.from(from / 2));
    });
  }
  return true;
}

// Rows of a turned picture run down the destination, the next one to the left of it.
bool turnedToPixels(const WideCall& call) {
  const Columns columns(call);
  if (!columns) return false;
  const ConvRecord& record = *call.record;
  const ptrdiff_t pitch = call.dstPitch[0], step = record.dstStep[0];
  const auto alpha = static_cast<uint8_t>(record.alpha);
  for (int32_t y = 0; y < call.height(); y += kTurnedRows) {
    const int32_t rows = std::min(kTurnedRows, call.height() - y);
    eachRun(call, kTurnedRun, [&](int32_t from, int32_t count) {
      uint8_t pixels[kTurnedRows][4 * kTurnedRun];
      for (int32_t k = 0; k < rows; ++k) {
        uint8_t luma[kTurnedRun], u[kTurnedRun / 2], v[kTurnedRun / 2];
        const RowPair row(call, y + k);
        blendLuma(call, columns, row, from, count, luma);
        pickChroma(call, columns, row, from, count / 2, {luma, u, v, 1, 1});
        simd::wideRows().toPixelsFolded({luma, u, v, 1, 1}, kSixBits, simd::PixelOrder::bgra32,
                                        alpha, pixels[rows - 1 - k], count / 2);
      }
      uint8_t* const last = advance(advance(call.dstPlanes[0], pitch, from), step, y + rows - 1);
      simd::convertRows().transpose4(pixels[0], 4 * kTurnedRun, count, rows, last, pitch);
    });
  }
  return true;
}

template <bool (*kConvert)(const WideCall&)>
void orInGeneral(const WideCall& call) {
  if (kConvert(call)) return;
  ANY_ANY_C_SLOW(call.rect, call.dstPitch, call.srcPitch, call.dstPlanes, call.srcPlanes,
                 call.record);
}

constexpr auto yuvToYuv = orInGeneral<resampleYuv>;
constexpr auto bgraToYuv = orInGeneral<pixelsToYuv>;
constexpr auto nv21Turned = orInGeneral<turnedToPixels>;

}  // namespace
}  // namespace qpx::convert::wide

QPX_WIDE_KERNEL(PUZUMPE_NV21toBGR32_Fast_BilNear_R90, qpx::convert::wide::nv21Turned)
QPX_WIDE_KERNEL(PUZUMPE_NV21toI420_Fast_BilNear, qpx::convert::wide::yuvToYuv)
QPX_WIDE_KERNEL(PUZUMPE_I4XXtoNV21_Fast_BilNear, qpx::convert::wide::yuvToYuv)
QPX_WIDE_KERNEL(PUZUMPE_BGR32toI420_BilNear, qpx::convert::wide::bgraToYuv)
QPX_WIDE_KERNEL(PUZUMPE_BGR32toNV21_Fast_BilNear, qpx::convert::wide::bgraToYuv)
