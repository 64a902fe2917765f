// What a format code says: families, sampling, colour fields.
#include <gtest/gtest.h>
#include <qpx/image.h>

#include <array>
#include <cstring>
#include <vector>

namespace {

struct RgbCode {
  uint32_t format;
  int32_t bits;
  std::array<uint32_t, 3> size;
  std::array<uint32_t, 3> position;
  std::array<uint32_t, 3> mask;
};

constexpr RgbCode kRgbCodes[] = {
    {0x16000777, 24, {8, 8, 8}, {16, 8, 0}, {0xFF0000, 0xFF00, 0xFF}},
    {0x16001777, 24, {8, 8, 8}, {0, 8, 16}, {0xFF, 0xFF00, 0xFF0000}},
    {0x37000777, 32, {8, 8, 8}, {16, 8, 0}, {0xFF0000, 0xFF00, 0xFF}},
    {0x37001777, 32, {8, 8, 8}, {0, 8, 16}, {0xFF, 0xFF00, 0xFF0000}},
    {0x37004777, 32, {8, 8, 8}, {16, 8, 0}, {0xFF0000, 0xFF00, 0xFF}},
    {0x37005777, 32, {8, 8, 8}, {0, 8, 16}, {0xFF, 0xFF00, 0xFF0000}},
    {0x17000777, 32, {8, 8, 8}, {16, 8, 0}, {0xFF0000, 0xFF00, 0xFF}},
    {0x17001777, 32, {8, 8, 8}, {0, 8, 16}, {0xFF, 0xFF00, 0xFF0000}},
    {0x16000555, 24, {6, 6, 6}, {12, 6, 0}, {0x3F000, 0xFC0, 0x3F}},
    {0x16001555, 24, {6, 6, 6}, {0, 6, 12}, {0x3F, 0xFC0, 0x3F000}},
    {0x15000454, 16, {5, 6, 5}, {11, 5, 0}, {0xF800, 0x7E0, 0x1F}},
    {0x15001454, 16, {5, 6, 5}, {0, 5, 11}, {0x1F, 0x7E0, 0xF800}},
    {0x15000333, 16, {4, 4, 4}, {8, 4, 0}, {0xF00, 0xF0, 0xF}},
    {0x15001333, 16, {4, 4, 4}, {0, 4, 8}, {0xF, 0xF0, 0xF00}},
    {0x15000444, 16, {5, 5, 5}, {10, 5, 0}, {0x7C00, 0x3E0, 0x1F}},
    {0x15001444, 16, {5, 5, 5}, {0, 5, 10}, {0x1F, 0x3E0, 0x7C00}},
    // Fields wider than a pixel: what is shifted out of 32 bits is gone.
    {0x17000FFF, 32, {0, 16, 16}, {0, 16, 0}, {0, 0xFFFF0000, 0xFFFF}},
    {0x17001FFF, 32, {16, 16, 0}, {0, 16, 0}, {0xFFFF, 0xFFFF0000, 0}},
    {0x17000FF0, 32, {15, 16, 1}, {17, 1, 0}, {0xFFFE0000, 0x1FFFE, 1}},
};

TEST(PixInfo, ReadsThePackedRgbCodes) {
  for (const RgbCode& code : kRgbCodes) {
    SCOPED_TRACE(::testing::Message() << std::hex << code.format);
    PixInfo info;
    std::memset(&info, 0xEE, sizeof info);
    ASSERT_EQ(mbf_GetPixInfo(code.format, &info), 0);
    EXPECT_EQ(info.format, code.format);
    EXPECT_EQ(info.family, 1u);
    EXPECT_EQ(info.planes, 1);
    EXPECT_EQ(info.bitsPerPixel, code.bits);
    EXPECT_EQ(info.bytesPerSample[0], code.bits / 8);
    EXPECT_EQ(info.bytesPerSample[1], 0);
    EXPECT_EQ(info.bytesPerSample[2], 0);
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(info.maskSize[i], code.size[i]) << i;
      EXPECT_EQ(info.maskPos[i], code.position[i]) << i;
      EXPECT_EQ(info.mask[i], code.mask[i]) << i;
    }
  }
}

struct YuvCode {
  uint32_t format;
  uint32_t family;
  int32_t planes;
  int32_t across;
  int32_t down;
  int32_t chromaStep;
};

constexpr YuvCode kYuvCodes[] = {
    {0x50000811, 2, 3, 2, 2, 1},  {0x50000810, 2, 3, 2, 1, 1},  {0x50000801, 2, 3, 1, 2, 1},
    {0x50000800, 2, 3, 1, 1, 1},  {0x50000803, 2, 3, 1, 4, 1},  {0x50000813, 2, 3, 2, 4, 1},
    {0x50000820, 2, 3, 3, 1, 1},  {0x50000830, 2, 3, 4, 1, 1},  {0x50000A11, 2, 3, 2, 2, 1},
    {0x50000A10, 2, 3, 2, 1, 1},  {0x50000A01, 2, 3, 1, 2, 1},  {0x50000A00, 2, 3, 1, 1, 1},
    {0x50001811, 4, 3, 2, 2, 1},  {0x50001A11, 4, 3, 2, 2, 1},  {0x50001800, 4, 3, 1, 1, 1},
    {0x50002811, 8, 3, 2, 2, 1},  {0x50002810, 8, 3, 2, 1, 1},  {0x50003811, 16, 3, 2, 2, 1},
    {0x50003801, 16, 3, 1, 2, 1}, {0x70020011, 48, 3, 1, 2, 1}, {0x70030011, 49, 3, 1, 2, 1},
    {0x50000010, 66, 1, 2, 1, 2}, {0x50000410, 66, 1, 2, 1, 2},
};

TEST(PixInfo, ReadsTheYuvCodes) {
  for (const YuvCode& code : kYuvCodes) {
    SCOPED_TRACE(::testing::Message() << std::hex << code.format);
    PixInfo info;
    std::memset(&info, 0xEE, sizeof info);
    ASSERT_EQ(mbf_GetPixInfo(code.format, &info), 0);
    EXPECT_EQ(info.format, code.format);
    EXPECT_EQ(info.family, code.family);
    EXPECT_EQ(info.planes, code.planes);
    EXPECT_EQ(info.xSampling[0], 1);
    EXPECT_EQ(info.ySampling[0], 1);
    EXPECT_EQ(info.bytesPerSample[0], 1);
    for (int p = 1; p < 3; ++p) {
      EXPECT_EQ(info.xSampling[p], code.across) << p;
      EXPECT_EQ(info.ySampling[p], code.down) << p;
      EXPECT_EQ(info.bytesPerSample[p], code.chromaStep) << p;
    }
    for (int p = 0; p < 3; ++p) EXPECT_EQ(info.mask[p], 0u);
  }
}

TEST(PixInfo, PlanarCodesCountEightBits) {
  PixInfo info;
  ASSERT_EQ(mbf_GetPixInfo(0x50000811, &info), 0);
  EXPECT_EQ(info.bitsPerPixel, 8);
  ASSERT_EQ(mbf_GetPixInfo(0x57000811, &info), 0);
  EXPECT_EQ(info.bitsPerPixel, 8);
  ASSERT_EQ(mbf_GetPixInfo(0x50000010, &info), 0);
  EXPECT_EQ(info.bitsPerPixel, 0);
  ASSERT_EQ(mbf_GetPixInfo(0x70020011, &info), 0);
  EXPECT_EQ(info.bitsPerPixel, 0);
}

TEST(PixInfo, GreyHasOnePlaneOfSingleSamples) {
  for (const uint32_t format : {0x64000000u, 0x64001000u, 0x64002000u, 0x64003000u}) {
    PixInfo info;
    std::memset(&info, 0xEE, sizeof info);
    ASSERT_EQ(mbf_GetPixInfo(format, &info), 0);
    EXPECT_EQ(info.family, 32u);
    EXPECT_EQ(info.planes, 1);
    EXPECT_EQ(info.bitsPerPixel, 8);
    EXPECT_EQ(info.bytesPerSample[0], 1);
    for (int p = 0; p < 3; ++p) {
      EXPECT_EQ(info.xSampling[p], 1);
      EXPECT_EQ(info.ySampling[p], 1);
    }
  }
}

TEST(PixInfo, RefusesCodesWithoutAFamily) {
  for (const uint32_t format :
       {0u,          0x14000777u, 0x10000777u, 0x34000777u, 0x18000777u, 0x25000444u, 0x26000444u,
        0x41000000u, 0x43000000u, 0x44000000u, 0x65000000u, 0x60000000u, 0x67000000u, 0x50000210u,
        0x50000610u, 0x50000110u, 0x50000510u, 0x50000000u, 0x50000400u, 0x50001010u, 0x50003010u,
        0x50000011u, 0x70000002u, 0x70000003u, 0x70001002u, 0x70001003u, 0x70000004u, 0x70000005u,
        0x70000008u, 0x70000009u, 0x70010000u, 0x70021011u, 0x70020010u, 0x70040011u, 0x80000000u,
        0x96000777u, 0xF6000777u, 0xD0000811u}) {
    PixInfo info;
    EXPECT_EQ(mbf_GetPixInfo(format, &info), 2) << std::hex << format;
  }
  EXPECT_EQ(mbf_GetPixInfo(0x16000777, nullptr), 2);
}

TEST(PixInfo, FirstStepSetsSizeAndFamilyOnly) {
  PixInfo info = {};
  info.format = 0x37000777;
  EXPECT_EQ(mbf_GetPixFormat(&info), 0);
  EXPECT_EQ(info.bitsPerPixel, 32);
  EXPECT_EQ(info.family, 1u);
  EXPECT_EQ(info.planes, 0);
  EXPECT_EQ(mbf_GetRGBPixelInfo(&info), 0);
  EXPECT_EQ(info.bytesPerSample[0], 4);
  info.format = 0x64000000;
  EXPECT_EQ(mbf_GetPixFormat(&info), 0);
  EXPECT_EQ(info.family, 32u);
  info.format = 0x44000000;
  EXPECT_EQ(mbf_GetPixFormat(&info), 2);
  EXPECT_EQ(mbf_GetPixFormat(nullptr), 2);
}

TEST(PixInfo, RgbStepRefusesOtherFamilies) {
  for (const uint32_t family : {0u, 2u, 32u, 48u, 66u}) {
    PixInfo info = {};
    info.format = 0x16000777;
    info.bitsPerPixel = 24;
    info.family = family;
    EXPECT_EQ(mbf_GetRGBPixelInfo(&info), 2) << family;
  }
  EXPECT_EQ(mbf_GetRGBPixelInfo(nullptr), 2);
}

TEST(PixInfo, YuvStepRefusesFamiliesWithoutChroma) {
  for (const uint32_t family : {0u, 1u, 32u, 3u, 1000u}) {
    PixInfo info = {};
    info.format = 0x50000811;
    info.family = family;
    EXPECT_EQ(mbf_GetYUVPixelInfo(&info), 2) << family;
  }
  EXPECT_EQ(mbf_GetYUVPixelInfo(nullptr), 2);
}

TEST(MaskHelpers, CountBitsAndFindTheLowest) {
  EXPECT_EQ(mbf_GetMaskSize(0), 0);
  EXPECT_EQ(mbf_GetMaskPos(0), 0);
  for (int width = 1; width <= 32; ++width) {
    for (int position = 0; position + width <= 32; ++position) {
      const uint32_t mask = static_cast<uint32_t>(((uint64_t{1} << width) - 1) << position);
      EXPECT_EQ(mbf_GetMaskSize(mask), width);
      EXPECT_EQ(MGetMaskSize(mask), width);
      EXPECT_EQ(mbf_GetMaskPos(mask), position);
      EXPECT_EQ(MGetMaskPos(mask), position);
    }
  }
  EXPECT_EQ(mbf_GetMaskSize(0x80000001), 2);
  EXPECT_EQ(mbf_GetMaskPos(0xA0), 5);
  EXPECT_EQ(MGetMaskSize(0), 0);
  EXPECT_EQ(MGetMaskPos(0), 0);
}

}  // namespace
