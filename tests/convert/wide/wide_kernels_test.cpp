// The widest kernels against their formulas, pixel by pixel, and what the frame leaves to others.
#include "convert/wide/wide_conversion.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

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
          const Yuv yuv = yuvOf(r.channel(0, x, y), r.channel(1, x, y), r.channel(2, x, y));
          sample(&expected, 0, x, y) = static_cast<uint8_t>(yuv.y);
          if ((x | y) % 2 != 0) continue;
          sample(&expected, 1, x, y) = static_cast<uint8_t>(yuv.u);
          sample(&expected, 2, x, y) = static_cast<uint8_t>(yuv.v);
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
  params.saturation = 1;
  expectDeclined(kNv21, kSize, kBgra32, kSize, params);
  params = blocksOf4(2);
  params.saturation = -1;
  expectDeclined(kNv21, kSize, kI420, {8, 8}, params);
  // Video range, and BT.709 in full range, as a destination.
  expectDeclined(kNv21, kSize, kI420 & ~kFull, {8, 8}, blocksOf4(2));
  expectDeclined(kNv21, kSize, kI420 | 0x3000, {8, 8}, blocksOf4(2));
  expectDeclined(kNv21 | 0x3000, kSize, kI420, {8, 8}, blocksOf4(2));
  expectDeclined(kBgra32, kSize, kNv21 & ~kFull, {8, 8}, blocksOf4(2));
  expectDeclined(kBgra32, kSize, kI420 | 0x3000, {8, 8}, blocksOf4(2));
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
  EXPECT_EQ(QPX_BAD_PARAM,
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
