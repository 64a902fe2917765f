// The colour matrices: which code gets which pair, and their numbers.
#include <gtest/gtest.h>
#include <qpx/image.h>

namespace {

using Matrix = float[12];

constexpr Matrix kForward[4] = {
    {0.2558f, 0.5022f, 0.0975f, 16, -0.1476f, -0.2897f, 0.4372f, 128, 0.4373f, -0.3662f, -0.0711f,
     128},
    {0.299f, 0.587f, 0.114f, 0, -0.1686f, -0.3311f, 0.4997f, 128, 0.4998f, -0.4185f, -0.0813f, 128},
    {0.1819f, 0.6119f, 0.0618f, 16, -0.1002f, -0.3372f, 0.4375f, 128, 0.4375f, -0.3974f, -0.0401f,
     128},
    {0.2126f, 0.7152f, 0.0722f, 0, -0.1146f, -0.3854f, 0.5f, 0, 0.5f, -0.4542f, -0.0458f, 0}};
constexpr Matrix kInverse[4] = {
    {1.16895f, 0, 1.60289f, -223.872482f, 1.16895f, -0.39353f, -0.81646f, 136.175522f, 1.16895f,
     2.02634f, 0, -278.068787f},
    {1, 0, 1.4025f, -179.52f, 1, -0.34434f, -0.7144f, 135.518723f, 1, 1.77305f, 0, -226.950394f},
    {1.1689f, 0, 1.7998f, -249.076797f, 1.1689f, -0.2141f, -0.535f, 77.182404f, 1.1689f, 2.1207f, 0,
     -290.152008f},
    {1, 0, 1.5748f, -201.574402f, 1, -0.1873f, -0.4681f, 83.891197f, 1, 1.8556f, 0, -237.5168f}};
constexpr Matrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

void expectPair(uint32_t format, int32_t result, const Matrix& forward, const Matrix& inverse) {
  SCOPED_TRACE(::testing::Message() << std::hex << format);
  const float* f = nullptr;
  const float* i = nullptr;
  ASSERT_EQ(mbf_GetMatrix(&f, &i, &format), result);
  for (int k = 0; k < 12; ++k) {
    EXPECT_EQ(f[k], forward[k]) << "forward " << k;
    EXPECT_EQ(i[k], inverse[k]) << "inverse " << k;
  }
}

TEST(ColorMatrix, ColorimetryBitsChooseThePairOfPlanarYuvAndGrey) {
  for (uint32_t field = 0; field < 4; ++field) {
    for (const uint32_t format :
         {0x50000811u, 0x50000810u, 0x50000800u, 0x50000801u, 0x64000000u, 0x65000000u}) {
      expectPair(format | field << 12, 0, kForward[field], kInverse[field]);
    }
  }
}

TEST(ColorMatrix, RgbAndPaletteGetTheIdentity) {
  for (const uint32_t format : {0x16000777u, 0x16001777u, 0x15000454u, 0x25000444u, 0x37001777u,
                                0x37005777u, 0x41000000u, 0x44000000u}) {
    expectPair(format, 0, kIdentity, kIdentity);
  }
}

TEST(ColorMatrix, OtherYuvLayoutsAreRefusedWithTheDefaultPair) {
  for (const uint32_t format : {0x50000010u, 0x50000410u, 0x50000A11u, 0x50000A00u, 0x50002A11u,
                                0x50000000u, 0x50000F11u}) {
    expectPair(format, 2, kForward[1], kInverse[1]);
  }
}

TEST(ColorMatrix, OtherModelsAreUnsupportedWithTheDefaultPair) {
  for (const uint32_t format :
       {0u, 0x70000002u, 0x70020011u, 0x70030011u, 0x70002002u, 0x80000000u, 0xF0000811u}) {
    expectPair(format, 3, kForward[1], kInverse[1]);
  }
}

TEST(ColorMatrix, ReadsTheFormatOfAnyRecordThatBeginsWithOne) {
  MBitmap bitmap = {};
  bitmap.format = 0x50002811;
  PixInfo info = {};
  info.format = 0x50002811;
  const float *fromBitmap, *fromInfo, *inverse;
  EXPECT_EQ(mbf_GetMatrix(&fromBitmap, &inverse, &bitmap), 0);
  EXPECT_EQ(mbf_GetMatrix(&fromInfo, &inverse, &info), 0);
  EXPECT_EQ(fromBitmap, fromInfo);
  EXPECT_EQ(inverse[11], kInverse[2][11]);
}

TEST(ColorMatrix, RefusesNullArguments) {
  const float* matrix = kIdentity;
  const uint32_t format = 0x50000811;
  EXPECT_EQ(mbf_GetMatrix(nullptr, &matrix, &format), 2);
  EXPECT_EQ(mbf_GetMatrix(&matrix, nullptr, &format), 2);
  const float* other = kIdentity;
  EXPECT_EQ(mbf_GetMatrix(&matrix, &other, nullptr), 2);
  EXPECT_EQ(matrix, kIdentity);
  EXPECT_EQ(other, kIdentity);
}

}  // namespace
