// Conversions by the widest kernels, and their formulas once more, pixel by pixel.
#pragma once

#include <gtest/gtest.h>
#include <qpx/convert.h>
#include <qpx/convert_wide.h>

#include "convert/conversion_picture.h"
#include "convert/record.h"
#include "convert/strip_walk.h"

namespace qpx::testing {

constexpr uint32_t kFull = 0x1000;  // colour bits of BT.601 full range
constexpr uint32_t kI420 = QPX_FORMAT_I420 | kFull, kI422H = 0x50000810 | kFull,
                   kI422V = 0x50000801 | kFull, kI444 = 0x50000800 | kFull,
                   kNv21 = 0x70000002 | kFull, kNv12 = 0x70000003 | kFull,
                   kPacked = 0x50000000 | kFull, kYuyv = 0x50000010 | kFull;
constexpr uint32_t kBgr24 = QPX_FORMAT_BGR24, kBgra32 = 0x17000777, kWordRedHigh = 0x15000454,
                   kWordBlueHigh = 0x15001454;

struct Size {
  int32_t width, height;
};

struct Yuv {
  int32_t y, u, v;
};

struct Rgb {
  int32_t r, g, b;
};

// Of component 0 to 2, at the pixel (x, y).
const uint8_t& sample(const ConversionPicture& picture, int32_t component, int32_t x, int32_t y);
uint8_t& sample(ConversionPicture* picture, int32_t component, int32_t x, int32_t y);
Yuv yuvAt(const ConversionPicture& picture, int32_t x, int32_t y);

uint8_t* pixelAt(ConversionPicture* picture, int32_t x, int32_t y);
void storeRgb(const Rgb& c, uint8_t alpha, uint8_t* pixel, uint32_t format);

Rgb sixBits(const Yuv& c);
Rgb sixBitsRounded(const Yuv& c);
Rgb sevenBits(const Yuv& c);
Rgb twentyBits(const Yuv& c);

// 7-bit Y, U and V.
Yuv yuvOf(int32_t b, int32_t g, int32_t r);

// Pictures reach as far as the rectangles that the parameters place.
class Conversion {
 public:
  Conversion(uint32_t from, Size src, uint32_t to, Size dst, const ConvParams& params)
      : src_(from, params.srcX + src.width, params.srcY + src.height, 7),
        dst_(to, params.dstX + dst.width, params.dstY + dst.height, 8) {
    const auto side = [](uint32_t format, Size size) {
      return convert::Side{format, static_cast<uint32_t>(size.width),
                           static_cast<uint32_t>(size.height), nullptr};
    };
    built_ = convert::buildRecord(side(to, dst), side(from, src), params, &record_);
  }
  ~Conversion() { convert::freeTables(&record_); }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  int32_t built() const { return built_; }
  const ConversionPicture& src() const { return src_; }
  ConversionPicture* dst() { return &dst_; }
  const ConvRecord& record() const { return record_; }

  int32_t run(ConvFrameFunction frame, const MRect& rect) {
    convert::Planes planes;
    for (int32_t p = 0; p < 3; ++p) {
      planes.src[p] = src_.planes()[p];
      planes.srcPitch[p] = src_.pitches()[p];
      planes.dst[p] = dst_.planes()[p];
      planes.dstPitch[p] = dst_.pitches()[p];
    }
    return convert::convertRect(record_, planes, rect, frame);
  }
  int32_t run(ConvFrameFunction frame = PUZUMPE_ALL) {
    return run(frame, convert::destinationRect(record_));
  }

 private:
  ConversionPicture src_, dst_;
  ConvRecord record_ = {};
  int32_t built_;
};

ConvParams blocksOf4(uint32_t interp = 1, uint32_t orient = 0);

// Where a pixel of the destination lies along one axis, in 7 bits.
struct Position {
  int32_t column, next, fraction;
};

// A bilinear conversion, sample by sample. Coordinates are those of the frame.
struct Resampled {
  Conversion conversion;

  Position x(int32_t at) const;
  Position y(int32_t at) const;
  int32_t luma(int32_t column, int32_t row) const;
  int32_t chroma(int32_t component, int32_t column, int32_t row) const;
  // Of a pixel of 32-bit RGB.
  int32_t channel(int32_t byte, int32_t column, int32_t row) const;
};

}  // namespace qpx::testing
