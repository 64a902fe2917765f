// The widest kernels against their formulas, pixel by pixel, and what the frame leaves to others.
#include <gtest/gtest.h>
#include <kesbase.h>
#include <qpx/convert.h>
#include <qpx/convert_wide.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "convert/conversion_picture.h"
#include "convert/record.h"
#include "convert/strip_walk.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

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

Rgb cut(int32_t r, int32_t g, int32_t b, int32_t most, int32_t shift) {
  return {std::clamp(r, 0, most) >> shift, std::clamp(g, 0, most) >> shift,
          std::clamp(b, 0, most) >> shift};
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

class Conversion {
 public:
  Conversion(uint32_t from, Size src, uint32_t to, Size dst, const ConvParams& params)
      : src_(from, src.width, src.height, 7), dst_(to, dst.width, dst.height, 8) {
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

ConvParams blocksOf4(uint32_t interp = 1, uint32_t orient = 0) {
  ConvParams params = {};
  params.interp = interp;
  params.orient = orient;
  params.blockMode = 3;
  params.alpha = 77;
  return params;
}

struct UnitCase {
  uint32_t from, to;
  Rgb (*color)(const Yuv&);
};

constexpr UnitCase kUnitCases[] = {
    {kNv21, kBgra32, sixBits},       {kNv21, kBgr24, sixBits},
    {kNv12, kBgr24, sixBits},        {kI420, kBgra32, sixBits},
    {kI422V, kBgra32, sixBits},      {kI444, kBgra32, sixBits},
    {kNv21, kWordRedHigh, sixBits},  {kNv12, kWordRedHigh, sixBits},
    {kNv21, kWordBlueHigh, sixBits}, {kNv12, kWordBlueHigh, sixBits},
    {kI422H, kBgra32, twentyBits},   {kYuyv, kBgra32, twentyBits},
    {kPacked, kBgra32, sevenBits},
};

TEST(WideKernels, UnitStepsByTheirFormulas) {
  for (const UnitCase& c : kUnitCases) {
    for (const Size size : {Size{4, 4}, Size{72, 8}, Size{1036, 4}}) {
      SCOPED_TRACE(::testing::Message() << std::hex << c.from << " to " << c.to << std::dec << ", "
                                        << size.width << " wide");
      Conversion conversion(c.from, size, c.to, size, blocksOf4());
      ASSERT_EQ(QPX_OK, conversion.built());
      ConversionPicture expected = *conversion.dst();
      for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) {
          storeRgb(c.color(yuvAt(conversion.src(), x, y)), 77, pixelAt(&expected, x, y), c.to);
        }
      }
      ASSERT_EQ(QPX_OK, conversion.run());
      EXPECT_TRUE(expected.sameBytes(*conversion.dst()));

      Conversion chained(c.from, size, c.to, size, blocksOf4());
      ASSERT_EQ(QPX_OK, chained.built());
      ASSERT_EQ(QPX_OK, chained.run(ANY_ANY_Bilinear_No_Table));
      EXPECT_TRUE(expected.sameBytes(*chained.dst())) << "not the first of the chain";
    }
  }
}

TEST(WideKernels, TheRoundedFormOfHalvedColumnsIsThereForDirectCalls) {
  Conversion conversion(kI422H, {68, 4}, kBgra32, {68, 4}, blocksOf4());
  ASSERT_EQ(QPX_OK, conversion.built());
  ConversionPicture expected = *conversion.dst();
  for (int32_t y = 0; y < 4; ++y) {
    for (int32_t x = 0; x < 68; ++x) {
      storeRgb(sixBitsRounded(yuvAt(conversion.src(), x, y)), 77, pixelAt(&expected, x, y),
               kBgra32);
    }
  }
  const auto frame = [](const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch,
                        uint8_t* const* dst, const uint8_t* const* src, const ConvRecord* record) {
    PUZUMPE_I422HtoBGR32_NoResize_Shift6(rect, dstPitch, srcPitch, dst, src, record);
    return int32_t{QPX_OK};
  };
  ASSERT_EQ(QPX_OK, conversion.run(frame));
  EXPECT_TRUE(expected.sameBytes(*conversion.dst()));
}

// A rectangle and a source that begins elsewhere: what lies outside stays.
TEST(WideKernels, PartsOfPicturesAlone) {
  ConvParams params = blocksOf4();
  params.srcX = 6;
  params.srcY = 2;
  Conversion conversion(kNv21, {40, 24}, kBgra32, {40, 24}, params);
  ASSERT_EQ(QPX_OK, conversion.built());
  const MRect rect = {8, 4, 28, 12};
  ConversionPicture expected = *conversion.dst();
  ConversionPicture source(kNv21, 46, 26, 9);
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) {
      storeRgb(sixBits(yuvAt(source, x + 6, y + 2)), 77, pixelAt(&expected, x, y), kBgra32);
    }
  }
  convert::Planes planes;
  for (int32_t p = 0; p < 3; ++p) {
    planes.src[p] = source.planes()[p];
    planes.srcPitch[p] = source.pitches()[p];
    planes.dst[p] = conversion.dst()->planes()[p];
    planes.dstPitch[p] = conversion.dst()->pitches()[p];
  }
  ASSERT_EQ(QPX_OK, convert::convertRect(conversion.record(), planes, rect, PUZUMPE_ALL));
  EXPECT_TRUE(expected.sameBytes(*conversion.dst()));
}

// Where a pixel of the destination lies, in 7 bits.
struct Position {
  int32_t column, next, fraction;
};

Position positionOf(int32_t at, uint32_t step, int32_t end) {
  const int64_t place = -32768 + int64_t{step} * (at + 1) - step / 2;
  if (place < 0) return {0, 0, 0};
  const auto column = static_cast<int32_t>(place >> 16);
  if (column >= end - 1) return {end - 1, end - 1, 0};
  const int32_t fraction = static_cast<int32_t>(place & 0xFFFF) >> 9;
  return {column, column + 1, fraction};
}

int32_t blended(const std::function<int32_t(int32_t, int32_t)>& at, const Position& x,
                const Position& y) {
  const auto across = [&](int32_t row) {
    const int32_t a = at(x.column, row), b = at(x.next, row);
    return (a << 7) + x.fraction * b - x.fraction * a;
  };
  const int32_t top = across(y.column), bottom = across(y.next);
  return (top + y.fraction * (bottom >> 7) - y.fraction * (top >> 7)) >> 7;
}

struct Resampled {
  Conversion conversion;
  Position x(int32_t at) const {
    return positionOf(at, conversion.record().stepX, conversion.src().width());
  }
  Position y(int32_t at) const {
    return positionOf(at, conversion.record().stepY, conversion.src().height());
  }
  int32_t luma(int32_t column, int32_t row) const {
    const auto at = [&](int32_t i, int32_t k) { return sample(conversion.src(), 0, i, k); };
    return blended(at, x(column), y(row));
  }
  int32_t chroma(int32_t component, int32_t column, int32_t row) const {
    return sample(conversion.src(), component, x(column & ~1).column & ~1, y(row).column);
  }
};

constexpr Size kBilinearSizes[][2] = {
    {{64, 36}, {24, 20}}, {{30, 22}, {72, 40}}, {{128, 64}, {64, 32}}, {{8, 8}, {300, 4}}};

TEST(WideKernels, BilinearYuvByItsFormulas) {
  constexpr uint32_t kPairs[][2] = {
      {kNv21, kI420}, {kI420, kNv21}, {kI422H, kNv21}, {kI422V, kNv21}, {kI444, kNv21}};
  for (const auto& [from, to] : kPairs) {
    for (const auto& [src, dst] : kBilinearSizes) {
      SCOPED_TRACE(::testing::Message() << std::hex << from << " to " << to << std::dec << ", "
                                        << src.width << " to " << dst.width);
      Resampled r = {{from, src, to, dst, blocksOf4(2)}};
      ASSERT_EQ(QPX_OK, r.conversion.built());
      ConversionPicture expected = *r.conversion.dst();
      for (int32_t y = 0; y < dst.height; ++y) {
        for (int32_t x = 0; x < dst.width; ++x) {
          sample(&expected, 0, x, y) = static_cast<uint8_t>(r.luma(x, y));
          if ((x | y) % 2 != 0) continue;
          for (const int32_t c : {1, 2}) {
            sample(&expected, c, x, y) = static_cast<uint8_t>(r.chroma(c, x, y));
          }
        }
      }
      ASSERT_EQ(QPX_OK, r.conversion.run());
      EXPECT_TRUE(expected.sameBytes(*r.conversion.dst()));
    }
  }
}

TEST(WideKernels, BilinearPixelsToYuvByTheirFormulas) {
  for (const uint32_t to : {kI420, kNv21}) {
    for (const auto& [src, dst] : kBilinearSizes) {
      SCOPED_TRACE(::testing::Message()
                   << std::hex << to << std::dec << ", " << src.width << " to " << dst.width);
      Resampled r = {{kBgra32, src, to, dst, blocksOf4(2)}};
      ASSERT_EQ(QPX_OK, r.conversion.built());
      ConversionPicture expected = *r.conversion.dst();
      for (int32_t y = 0; y < dst.height; ++y) {
        for (int32_t x = 0; x < dst.width; ++x) {
          int32_t bgr[3];
          for (int32_t c = 0; c < 3; ++c) {
            const auto at = [&](int32_t i, int32_t k) {
              return r.conversion.src()
                  .planes()[0][r.conversion.src().pitches()[0] * k + 4 * i + c];
            };
            bgr[c] = blended(at, r.x(x), r.y(y));
          }
          const auto [b, g, rr] = bgr;
          const auto byte = [](int32_t sum) {
            return static_cast<uint8_t>(std::clamp(sum, 0, 0x7F80) >> 7);
          };
          sample(&expected, 0, x, y) = byte(38 * rr + 75 * g + 15 * b + 64);
          if ((x | y) % 2 != 0) continue;
          sample(&expected, 1, x, y) = byte(128 * 128 + 64 * b - 22 * rr - 42 * g);
          sample(&expected, 2, x, y) = byte(128 * 128 + 64 * rr - 54 * g - 10 * b);
        }
      }
      ASSERT_EQ(QPX_OK, r.conversion.run());
      EXPECT_TRUE(expected.sameBytes(*r.conversion.dst()));
    }
  }
}

// The destination is turned clockwise: its column x is the frame's row from the bottom.
TEST(WideKernels, BilinearTurnedPixelsByTheirFormulas) {
  for (const auto& [src, frame] : kBilinearSizes) {
    SCOPED_TRACE(::testing::Message() << src.width << " to " << frame.width);
    const Size dst = {frame.height, frame.width};
    Resampled r = {{kNv21, src, kBgra32, dst, blocksOf4(2, 3)}};
    ASSERT_EQ(QPX_OK, r.conversion.built());
    ConversionPicture expected = *r.conversion.dst();
    for (int32_t y = 0; y < frame.height; ++y) {
      for (int32_t x = 0; x < frame.width; ++x) {
        const Yuv yuv = {r.luma(x, y), r.chroma(1, x, y), r.chroma(2, x, y)};
        storeRgb(sixBits(yuv), 77, pixelAt(&expected, dst.width - 1 - y, x), kBgra32);
      }
    }
    ASSERT_EQ(QPX_OK, r.conversion.run());
    EXPECT_TRUE(expected.sameBytes(*r.conversion.dst()));
  }
}

TEST(WideKernels, NoMemoryLeavesTheConversionToTheGeneralFrame) {
  Conversion wide(kNv21, {64, 36}, kI420, {24, 20}, blocksOf4(2));
  Conversion general(kNv21, {64, 36}, kI420, {24, 20}, blocksOf4(2));
  ASSERT_EQ(QPX_OK, wide.built());
  ASSERT_EQ(QPX_OK, general.built());
  FailingMemory::failFrom(1);
  EXPECT_EQ(QPX_OK, wide.run());
  FailingMemory::reset();
  ASSERT_EQ(QPX_OK, general.run(ANY_ANY_C_SLOW));
  EXPECT_TRUE(general.dst()->sameBytes(*wide.dst()));
}

void expectDeclined(uint32_t from, Size src, uint32_t to, Size dst, const ConvParams& params) {
  Conversion conversion(from, src, to, dst, params);
  ASSERT_EQ(QPX_OK, conversion.built());
  const ConversionPicture before = *conversion.dst();
  EXPECT_EQ(QPX_UNSUPPORTED, conversion.run());
  EXPECT_TRUE(before.sameBytes(*conversion.dst()));
}

TEST(WideKernels, WhatTheFrameDeclines) {
  constexpr Size kSize = {16, 16};
  expectDeclined(kNv21 & ~kFull, kSize, kBgra32, kSize, blocksOf4());
  expectDeclined(kNv21, kSize, QPX_FORMAT_RGB24, kSize, blocksOf4());
  expectDeclined(kNv21, kSize, kBgra32, {8, 8}, blocksOf4());
  expectDeclined(kNv21, kSize, kBgra32, {8, 8}, blocksOf4(2));
  expectDeclined(kNv21, {15, 16}, kBgra32, {15, 16}, blocksOf4());
  for (const uint32_t orient : {1u, 2u, 3u, 4u, 5u, 6u, 7u}) {
    expectDeclined(kNv21, kSize, kBgra32, kSize, blocksOf4(1, orient));
  }
  ConvParams params = blocksOf4();
  params.blockMode = 2;
  expectDeclined(kNv21, kSize, kBgra32, kSize, params);
  params = blocksOf4();
  params.brightness = 1;
  expectDeclined(kNv21, kSize, kBgra32, kSize, params);
  params = blocksOf4();
  params.contrast = -1;
  expectDeclined(kNv21, kSize, kBgra32, kSize, params);
  params = blocksOf4();
  params.dither = 1;
  expectDeclined(kNv21, kSize, kWordRedHigh, kSize, params);
  params = blocksOf4();
  params.srcX = 1;
  expectDeclined(kNv21, kSize, kBgra32, kSize, params);
  params = blocksOf4();
  params.clipRight = 12;
  params.clipBottom = 16;
  expectDeclined(kNv21, kSize, kBgra32, kSize, params);
}

// What leaves the destination, and what has no plane to go to, is refused by the whole chain.
TEST(WideKernels, NothingIsWrittenOutsideThePictures) {
  Conversion conversion(kNv21, {64, 36}, kI420, {24, 20}, blocksOf4(2));
  ASSERT_EQ(QPX_OK, conversion.built());
  const ConversionPicture before = *conversion.dst();
  const auto chain = [&](const MRect& rect, uint8_t* const* dst) {
    return ANY_ANY_Bilinear_No_Table(&rect, conversion.dst()->pitches(), conversion.src().pitches(),
                                     dst, conversion.src().planes(), &conversion.record());
  };
  EXPECT_EQ(QPX_BAD_PARAM, chain({0, 0, 40, 32}, conversion.dst()->planes()));
  EXPECT_EQ(QPX_BAD_PARAM, chain({-4, 0, 24, 20}, conversion.dst()->planes()));
  EXPECT_EQ(QPX_OK, chain({4, 4, 4, 4}, conversion.dst()->planes()));
  uint8_t* const noChroma[3] = {conversion.dst()->planes()[0], nullptr, nullptr};
  const MRect whole = {0, 0, 24, 20};
  EXPECT_EQ(QPX_UNSUPPORTED,
            PUZUMPE_ALL(&whole, conversion.dst()->pitches(), conversion.src().pitches(), noChroma,
                        conversion.src().planes(), &conversion.record()));
  EXPECT_TRUE(before.sameBytes(*conversion.dst()));
}

TEST(WideKernels, NullArgumentsDoNothing) {
  const MRect rect = {0, 0, 4, 4};
  EXPECT_EQ(QPX_BAD_PARAM, PUZUMPE_ALL(&rect, nullptr, nullptr, nullptr, nullptr, nullptr));
  PUZUMPE_NV21toRGB24_NoResize(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  PUZUMPE_BGR32toI420_BilNear(&rect, nullptr, nullptr, nullptr, nullptr, nullptr);
  PUZUMPE_DebugWin32();
}

}  // namespace
}  // namespace qpx::testing
