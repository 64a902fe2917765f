#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "convert/kernels/kernel_run.h"

namespace qpx::testing {
namespace {

// Red, green, blue.
struct Walk {
  int32_t carry[3] = {3, 1, 3};

  // The clamp tables of a 16-bit destination, by the sums of the tables from YUV.
  uint16_t fromYuv(const ConvRecord& record, uint8_t luma, uint8_t cb, uint8_t cr) {
    const auto* const words = static_cast<const uint32_t*>(record.tables);
    const auto* const clamp = static_cast<const uint8_t*>(record.tables);
    const uint32_t y = words[record.yIndex + luma], u = words[record.uIndex + cb],
                   v = words[record.vIndex + cr];
    const uint32_t red = ((y + v) >> 20) + static_cast<uint32_t>(carry[0]);
    const uint32_t green = ((y + ((u + v) << 16)) >> 20) + static_cast<uint32_t>(carry[1]);
    const uint32_t blue = ((y + u) >> 20) + static_cast<uint32_t>(carry[2]);
    carry[0] = red & 7;
    carry[1] = green & 3;
    carry[2] = blue & 7;
    return static_cast<uint16_t>(clamp[red >> 3] << 11 | clamp[green >> 2] << 5 | clamp[blue >> 3]);
  }

  uint16_t fromRgb(int32_t r, int32_t g, int32_t b) {
    const int32_t red = r + carry[0], green = g + carry[1], blue = b + carry[2];
    carry[0] = red & 7;
    carry[1] = green & 3;
    carry[2] = blue & 7;
    return static_cast<uint16_t>((red >= 256 ? 31 : red >> 3) << 11 |
                                 (green >= 256 ? 63 : green >> 2) << 5 |
                                 (blue >= 256 ? 31 : blue >> 3));
  }
};

Conversion sameSize(uint32_t from, uint32_t to, int32_t width, int32_t height, uint32_t orient) {
  Conversion c = {from, to, width, height, width, height, {}};
  if ((orient & 1) != 0) std::swap(c.dstWidth, c.dstHeight);
  c.params.orient = orient;
  c.params.dither = 1;
  c.params.blockMode = 2;
  return c;
}

uint16_t wordAt(const ConversionPicture& picture, int32_t x, int32_t y) {
  uint16_t word = 0;
  memcpy(&word, picture.planes()[0] + ptrdiff_t{picture.pitches()[0]} * y + 2 * x, 2);
  return word;
}

uint8_t byteAt(const ConversionPicture& picture, int32_t plane, int32_t x, int32_t y) {
  return picture.planes()[plane][ptrdiff_t{picture.pitches()[plane]} * y + x];
}

// Wide enough for several runs.
constexpr int32_t kWidth = 1100;
constexpr int32_t kHeight = 6;

void expectCellWalk(const AnyKernel& kernel, uint32_t from, uint32_t orient) {
  const Conversion c = sameSize(from | 0x1000, QPX_FORMAT_RGB565, kWidth, kHeight, orient);
  const Converter converter(c);
  const ConversionPicture src(c.from, kWidth, kHeight, 8);
  ConversionPicture dst(c.to, c.dstWidth, c.dstHeight, 9);
  // By hand, in one call: strips of a turned picture begin anew.
  ConversionPicture expected = dst;
  const MRect strip = orient == 5 ? MRect{0, 0, c.dstWidth, 32} : c.rect();
  ASSERT_EQ(QPX_OK, converter.run(src, strip, kernel, &dst));

  // Of a picture turned by 270 degrees row Y holds source column width - 1 - Y.
  const int32_t left = orient == 5 ? kWidth - 32 : 0;
  Walk walk;
  for (int32_t cellY = 0; cellY < kHeight; cellY += 2) {
    for (int32_t cellX = left; cellX < kWidth; cellX += 2) {
      for (int32_t k = 0; k < 4; ++k) {
        const int32_t x = cellX + k % 2, y = cellY + k / 2;
        const uint16_t word =
            walk.fromYuv(converter.record, byteAt(src, 0, x, y), byteAt(src, 1, x / 2 * 2, y / 2),
                         byteAt(src, 2, x / 2 * 2, y / 2));
        const int32_t toX = orient == 5 ? y : x, toY = orient == 5 ? kWidth - 1 - x : y;
        ASSERT_EQ(word, wordAt(dst, toX, toY)) << x << ", " << y << ", orientation " << orient;
      }
    }
  }
}

TEST(ConvertDither, CellsOfTwoByTwoPassTheirCarriesZigZag) {
  for (const uint32_t from : {uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_NV12}}) {
    expectCellWalk(NV21_To_RGB565_NoResample_2x2_Dither, from, 0);
    expectCellWalk(NV21_To_RGB565_NoResample_2x2_R270_Dither, from, 5);
    expectCellWalk(ANY_ANY_C_FAST_R5G6B5, from, 0);
    expectCellWalk(ANY_ANY_C_FAST_R5G6B5, from, 5);
  }
}

TEST(ConvertDither, RowsPassTheirCarriesOn) {
  Conversion c = sameSize(QPX_FORMAT_I420 | 0x1000, QPX_FORMAT_RGB565, kWidth, kHeight, 0);
  c.params.blockMode = 3;
  const Converter converter(c);
  const ConversionPicture src(c.from, kWidth, kHeight, 18);
  ConversionPicture dst(c.to, kWidth, kHeight, 19);
  ASSERT_EQ(QPX_OK, converter.run(src, c.rect(), YUV2RGBFast_NORESAMPLE_R5G6B5_4x4_Dither, &dst));
  Walk walk;
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      ASSERT_EQ(walk.fromYuv(converter.record, byteAt(src, 0, x, y), byteAt(src, 1, x / 2, y / 2),
                             byteAt(src, 2, x / 2, y / 2)),
                wordAt(dst, x, y))
          << x << ", " << y;
    }
  }
}

// In whole blocks of four the frame takes the kernel that follows the record, not one that drops
// it.
TEST(ConvertDither, TheFrameKeepsItInBlocksOfFour) {
  for (const auto& [width, height] : {std::pair{kWidth, 8}, {36, 20}, {34, 6}}) {
    Conversion c = sameSize(QPX_FORMAT_I420 | 0x1000, QPX_FORMAT_RGB565, width, height, 0);
    c.params.blockMode = 3;
    const Converter converter(c);
    const ConversionPicture src(c.from, width, height, 38);
    ConversionPicture dst(c.to, width, height, 39), chained = dst;
    const ConvFrameFunction frame = ANY_ANY_C_FAST_R5G6B5, chain = ANY_ANY_Bilinear_No_Table;
    ASSERT_EQ(QPX_OK, converter.run(src, c.rect(), frame, &dst));
    ASSERT_EQ(QPX_OK, converter.run(src, c.rect(), chain, &chained));
    Walk walk;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        ASSERT_EQ(walk.fromYuv(converter.record, byteAt(src, 0, x, y), byteAt(src, 1, x / 2, y / 2),
                               byteAt(src, 2, x / 2, y / 2)),
                  wordAt(dst, x, y))
            << x << ", " << y;
      }
    }
    EXPECT_TRUE(dst.sameBytes(chained));
  }
}

TEST(ConvertDither, RgbIsDitheredByOneKernel) {
  for (const uint32_t from : {uint32_t{QPX_FORMAT_BGR24}, uint32_t{QPX_FORMAT_RGB24}}) {
    const int32_t red = from == QPX_FORMAT_BGR24 ? 2 : 0;
    const Conversion c = sameSize(from, QPX_FORMAT_RGB565, kWidth, kHeight, 0);
    const Converter converter(c);
    const ConversionPicture src(from, kWidth, kHeight, 28);
    for (const AnyKernel& kernel : {AnyKernel(RGB888Fast_NORESAMPLE_R5G6B5_Dither),
                                    AnyKernel(ConvFrameFunction{ANY_ANY_C_FAST_R5G6B5})}) {
      ConversionPicture dst(c.to, kWidth, kHeight, 29);
      ASSERT_EQ(QPX_OK, converter.run(src, c.rect(), kernel, &dst));
      Walk walk;
      for (int32_t y = 0; y < kHeight; ++y) {
        for (int32_t x = 0; x < kWidth; ++x) {
          ASSERT_EQ(walk.fromRgb(byteAt(src, 0, 3 * x + red, y), byteAt(src, 0, 3 * x + 1, y),
                                 byteAt(src, 0, 3 * x + 2 - red, y)),
                    wordAt(dst, x, y))
              << x << ", " << y;
        }
      }
    }
  }
}

bool has(const char* name, const char* word) {
  return std::string_view(name).find(word) != std::string_view::npos;
}

bool neverDithers(const KernelRow& row) {
  if (has(row.name, "NODither")) return true;
  return !has(row.name, "Dither") && (has(row.name, "2x2") || has(row.name, "4x4"));
}

// Blocks without the word drop the dither that the record asks for, all others follow it.
TEST(ConvertDither, KernelsFromYuvFollowTheRecordOrTheirNames) {
  Random random(81);
  uint64_t seed = 900;
  int32_t dithering = 0, plain = 0;
  for (const KernelRow& row : kernelRows()) {
    const bool to16 = row.to == QPX_FORMAT_RGB565 || row.to == QPX_FORMAT_BGR565;
    if (!to16 || row.from >> 28 < 5 || !row.equalsGeneral) continue;
    Conversion c = anyConversion(row.from, row.to, row.sampling, row.orient, row.block, random);
    c.params.dither = 1;
    const Converter converter(c);
    c.params.dither = neverDithers(row) ? 0 : 1;
    const Converter general(c);
    const ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight,
                                ++seed);
    ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, 1);
    ConversionPicture expected = dst;
    ASSERT_EQ(QPX_OK, general.run(src, c.rect(), ANY_ANY_C_SLOW, &expected));
    ASSERT_EQ(QPX_OK, converter.run(src, c.rect(), row.kernel, &dst));
    ASSERT_TRUE(dst.sameBytes(expected)) << row.name << ": " << describe(c, c.rect());
    ++(neverDithers(row) ? plain : dithering);
  }
  EXPECT_LT(100, dithering);
  EXPECT_LT(50, plain);
}

}  // namespace
}  // namespace qpx::testing
