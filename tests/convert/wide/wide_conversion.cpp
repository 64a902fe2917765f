#include "convert/wide/wide_conversion.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace qpx::testing {
namespace {

Rgb cut(int32_t r, int32_t g, int32_t b, int32_t most, int32_t shift) {
  return {std::clamp(r, 0, most) >> shift, std::clamp(g, 0, most) >> shift,
          std::clamp(b, 0, most) >> shift};
}

int64_t floorOf(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

int64_t positionOf(int32_t at, uint32_t step, int32_t srcOrigin, int32_t dstOrigin) {
  return int64_t{srcOrigin} * 65536 - 32768 + int64_t{step} * (at - dstOrigin + 1) - step / 2;
}

Position between(int64_t position) {
  const auto whole = static_cast<int32_t>(floorOf(position, 65536));
  return {whole, whole + 1, static_cast<int32_t>(position - int64_t{whole} * 65536) >> 9};
}

int32_t blended(const std::function<int32_t(int32_t, int32_t)>& at, const Position& x,
                const Position& y) {
  const auto across = [&](int32_t row) {
    const int32_t a = at(x.column, row), b = x.fraction != 0 ? at(x.next, row) : a;
    return (a << 7) + x.fraction * b - x.fraction * a;
  };
  const int32_t top = across(y.column), bottom = y.fraction != 0 ? across(y.next) : top;
  return (top + y.fraction * (bottom >> 7) - y.fraction * (top >> 7)) >> 7;
}

// The first column or row of the destination that lies behind one of the source.
int64_t firstBehind(int32_t at, uint32_t step, int32_t srcOrigin, int32_t dstOrigin) {
  const int64_t distance = int64_t{step / 2} + 32768 + (int64_t{at} - srcOrigin) * 65536;
  return floorOf(distance, step) + dstOrigin;
}

}  // namespace

const uint8_t& sample(const ConversionPicture& picture, int32_t component, int32_t x, int32_t y) {
  const FormatLayout& at = picture.layout();
  const int32_t plane = at.plane[component];
  const bool chroma = component != 0;
  const int32_t column = chroma ? x / at.subX : x, row = chroma ? y / at.subY : y;
  return picture
      .planes()[plane][ptrdiff_t{picture.pitches()[plane]} * row +
                       ptrdiff_t{at.step[chroma ? 1 : 0]} * column + at.offset[component]];
}

uint8_t& sample(ConversionPicture* picture, int32_t component, int32_t x, int32_t y) {
  return const_cast<uint8_t&>(sample(std::as_const(*picture), component, x, y));
}

Yuv yuvAt(const ConversionPicture& picture, int32_t x, int32_t y) {
  return {sample(picture, 0, x, y), sample(picture, 1, x, y), sample(picture, 2, x, y)};
}

uint8_t* pixelAt(ConversionPicture* picture, int32_t x, int32_t y) {
  return picture->planes()[0] + ptrdiff_t{picture->pitches()[0]} * y +
         ptrdiff_t{picture->layout().bits / 8} * x;
}

void storeRgb(const Rgb& c, uint8_t alpha, uint8_t* pixel, uint32_t format) {
  if (format == kWordRedHigh || format == kWordBlueHigh) {
    const int32_t high = format == kWordRedHigh ? c.r : c.b, low = c.r + c.b - high;
    const int32_t word = (high >> 3) << 11 | (c.g >> 2) << 5 | low >> 3;
    pixel[0] = static_cast<uint8_t>(word);
    pixel[1] = static_cast<uint8_t>(word >> 8);
    return;
  }
  pixel[0] = static_cast<uint8_t>(c.b);
  pixel[1] = static_cast<uint8_t>(c.g);
  pixel[2] = static_cast<uint8_t>(c.r);
  if (format == kBgra32) pixel[3] = alpha;
}

Rgb sixBits(const Yuv& c) {
  return cut(64 * c.y + 90 * c.v - 11485, 64 * c.y + 8669 - 46 * c.v - 22 * c.u,
             64 * c.y + 113 * c.u - 14516, 0x3FC0, 6);
}

Rgb sixBitsRounded(const Yuv& c) {
  return cut(64 * c.y + 90 * c.v - 11453, 64 * c.y + 8701 - 46 * c.v - 22 * c.u,
             64 * c.y + 113 * c.u - 14465, 0x3FC0, 6);
}

Rgb sevenBits(const Yuv& c) {
  return cut(128 * c.y + 179 * c.v - 22906, 128 * c.y + 17403 - 91 * c.v - 44 * c.u,
             128 * c.y + 227 * c.u - 28968, 0x7F80, 7);
}

Rgb twentyBits(const Yuv& c) {
  const int32_t u = c.u - 128, v = c.v - 128;
  const auto narrow = [](int64_t product) { return static_cast<int32_t>(product >> 16); };
  const int32_t r = (16 * c.y + narrow(int64_t{v} * 0x166E98)) >> 4;
  const int32_t g = (16 * c.y - narrow(int64_t{u} * 0x58195) - narrow(int64_t{v} * 0xB6D1A)) >> 4;
  const int32_t b = (16 * c.y + narrow(int64_t{u} * 0x1C5A1D)) >> 4;
  return {std::clamp(r, 0, 255), std::clamp(g, 0, 255), std::clamp(b, 0, 255)};
}

ConvParams blocksOf4(uint32_t interp, uint32_t orient) {
  ConvParams params = {};
  params.interp = interp;
  params.orient = orient;
  params.blockMode = 3;
  params.alpha = 77;
  return params;
}

Position Resampled::x(int32_t at) const {
  const ConvRecord& r = conversion.record();
  const auto behind = [&r](int32_t column) {
    return firstBehind(column, r.stepX, r.srcOrgX, r.dstOrgX);
  };
  if (at < behind(r.clipL)) return {r.clipL, r.clipL, 0};
  if (at >= behind(r.clipR - 1)) return {r.clipR - 1, r.clipR - 1, 0};
  return between(positionOf(at, r.stepX, r.srcOrgX, r.dstOrgX));
}

// A position is compared with the number of a row.
Position Resampled::y(int32_t at) const {
  const ConvRecord& r = conversion.record();
  const int64_t position = positionOf(at, r.stepY, r.srcOrgY, r.dstOrgY);
  if (position < r.clipT) return {r.clipT, r.clipT, 0};
  if (position / 65536 >= r.clipB - 1) return {r.clipB - 1, r.clipB - 1, 0};
  return between(position);
}

int32_t Resampled::luma(int32_t column, int32_t row) const {
  const auto at = [&](int32_t i, int32_t k) { return sample(conversion.src(), 0, i, k); };
  return blended(at, x(column), y(row));
}

int32_t Resampled::chroma(int32_t component, int32_t column, int32_t row) const {
  return sample(conversion.src(), component, x(column & ~1).column & ~1, y(row).column);
}

int32_t Resampled::channel(int32_t byte, int32_t column, int32_t row) const {
  const auto at = [&](int32_t i, int32_t k) {
    const ptrdiff_t pitch = conversion.src().pitches()[0];
    return conversion.src().planes()[0][pitch * k + 4 * i + byte];
  };
  return blended(at, x(column), y(row));
}

Yuv yuvOf(int32_t b, int32_t g, int32_t r) {
  const auto byte = [](int32_t sum) { return std::clamp(sum, 0, 0x7F80) >> 7; };
  return {byte(38 * r + 75 * g + 15 * b + 64), byte(128 * 128 + 64 * b - 22 * r - 42 * g),
          byte(128 * 128 + 64 * r - 54 * g - 10 * b)};
}

}  // namespace qpx::testing
