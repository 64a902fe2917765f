#include "convert/tables.h"

#include <gtest/gtest.h>
#include <kesbase.h>

#include <array>
#include <cstring>

#include "convert/conversion_model.h"
#include "convert/record.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

// A record with its tables.
class Built {
 public:
  Built(uint32_t src, uint32_t dst, const ConvParams& params = {}) {
    result = convert::buildRecord({dst, 8, 8, noisePalette()}, {src, 8, 8, noisePalette()}, params,
                                  &record);
  }
  Built(const Built&) = delete;
  Built& operator=(const Built&) = delete;
  ~Built() { convert::freeTables(&record); }

  template <typename Word>
  const Word* tables() const {
    return static_cast<const Word*>(record.tables);
  }

  int32_t result = -1;
  ConvRecord record = {};
};

ConvParams adjusted(int32_t b, int32_t c, int32_t s) {
  ConvParams params = {};
  params.brightness = b;
  params.contrast = c;
  params.saturation = s;
  return params;
}

constexpr std::array<int32_t, 3> kAdjustments[] = {
    {0, 0, 0}, {20, -30, 40}, {-128, -128, -128}, {128, 128, 128}, {-7, 5, -128}, {1, -1, 1}};
constexpr uint32_t kColourBits[] = {0, 0x1000, 0x2000, 0x3000};

TEST(MultiplierHelpers, ByHand) {
  EXPECT_EQ(256, convert::gain(0));
  EXPECT_EQ(768, convert::gain(128));
  EXPECT_EQ(0, convert::gain(-128));
  EXPECT_EQ(252, convert::gain(-1));  // -1 >> 1 is -1
  EXPECT_EQ(76605, convert::qmul(256, 76605));
  EXPECT_EQ(-76605, convert::qmul(-256, 76605));
  EXPECT_EQ(76605, convert::qmul(-256, -76605));
  EXPECT_EQ(2, convert::qmul(128, 3));    // 1.5, rounded up
  EXPECT_EQ(-2, convert::qmul(128, -3));  // of the magnitude
  EXPECT_EQ(0x180, convert::qmul(384, 0x100));
  EXPECT_EQ(76605 * 3, convert::slope(128, 0, 76605, false));
  EXPECT_EQ(76605, convert::slope(0, 128, 76605, false));
  EXPECT_EQ(76605 * 9, convert::slope(128, 128, 76605, true));
  EXPECT_EQ(1000, convert::offset(0, 0, 1000, 65536));
  EXPECT_EQ(0x800000, convert::offset(77, 0, 0x800000, 65536));  // mid-grey stays
  EXPECT_EQ(-100 * 65536 * 2, convert::offset(0, 100, 0, 65536));
}

TEST(MultiplierHelpers, ByFormula) {
  Random random(1);
  for (int32_t i = 0; i < 5000; ++i) {
    const int32_t a = random.between(-512, 1024), b = static_cast<int32_t>(random.next()) / 64;
    ASSERT_EQ(model::qmul(a, b), convert::qmul(a, b)) << a << " " << b;
    const int32_t c = random.between(-128, 128), s = random.between(-128, 128);
    ASSERT_EQ(model::gain(c), convert::gain(c));
    const int32_t coefficient = b / 256;
    ASSERT_EQ(model::slope(c, s, coefficient, true), convert::slope(c, s, coefficient, true));
    ASSERT_EQ(model::offset(c, s, b, coefficient / 2), convert::offset(c, s, b, coefficient / 2));
  }
}

void expectToRgb(const Built& built, const int32_t (&bits)[3], uint32_t bitsPerPixel,
                 uint32_t colour, int32_t b, int32_t c, int32_t s) {
  const auto expected =
      model::toRgbTables(colour, b, c, s, static_cast<int32_t>(bitsPerPixel), bits);
  const auto* words = built.tables<uint32_t>();
  EXPECT_EQ(0, std::memcmp(expected.y.data(), words + built.record.yIndex, 1024));
  EXPECT_EQ(0, std::memcmp(expected.u.data(), words + built.record.uIndex, 1024));
  EXPECT_EQ(0, std::memcmp(expected.v.data(), words + built.record.vIndex, 1024));
}

TEST(YuvToRgbTables, OfEightBitChannels) {
  for (const uint32_t bits : kColourBits) {
    for (const auto& [b, c, s] : kAdjustments) {
      SCOPED_TRACE(::testing::Message() << std::hex << bits << std::dec << " " << b << c << s);
      const Built built(0x50000811 | bits, 0x16000777, adjusted(b, c, s));
      ASSERT_EQ(QPX_OK, built.result);
      EXPECT_EQ(4352u, built.record.tableBytes);
      EXPECT_EQ(320u, built.record.yIndex);
      EXPECT_EQ(576u, built.record.uIndex);
      EXPECT_EQ(832u, built.record.vIndex);
      expectToRgb(built, {8, 8, 8}, 24, model::colourOf(bits), b, c, s);
    }
  }
}

TEST(YuvToRgbTables, OfSixteenBitPixels) {
  for (const auto& [b, c, s] : kAdjustments) {
    const Built built(0x50002811, 0x15000454, adjusted(b, c, s));
    ASSERT_EQ(QPX_OK, built.result);
    EXPECT_EQ(3552u, built.record.tableBytes);
    EXPECT_EQ(120u, built.record.yIndex);
    EXPECT_EQ(376u, built.record.uIndex);
    EXPECT_EQ(632u, built.record.vIndex);
    expectToRgb(built, {5, 6, 5}, 16, 0x20001, b, c, s);
  }
}

TEST(YuvToRgbTables, BeginWithTheirClamps) {
  const Built wide(0x70000002, 0x37000777), narrow(0x70000002, 0x15000454);
  const auto* clamp = wide.tables<uint8_t>();
  EXPECT_EQ(0, clamp[0]);
  EXPECT_EQ(0, clamp[512]);
  EXPECT_EQ(77, clamp[512 + 77]);
  EXPECT_EQ(255, clamp[512 + 255]);
  EXPECT_EQ(255, clamp[1279]);
  clamp = narrow.tables<uint8_t>();
  EXPECT_EQ(0, clamp[64]);
  EXPECT_EQ(31, clamp[64 + 31]);
  EXPECT_EQ(31, clamp[159]);
  EXPECT_EQ(0, clamp[160]);
  EXPECT_EQ(1, clamp[288 + 1]);
  EXPECT_EQ(63, clamp[479]);
}

TEST(YuvToRgbTables, OfGreyIgnoreContrastAndSaturation) {
  const Built built(0x64000000, 0x16000777, adjusted(30, 70, -50));
  ASSERT_EQ(QPX_OK, built.result);
  expectToRgb(built, {8, 8, 8}, 24, 0x10001, 30, 0, 0);
}

TEST(RgbToYuvTables, OfAllColourCodes) {
  for (const uint32_t bits : kColourBits) {
    const Built built(0x16000777, 0x50000811 | bits, adjusted(50, 60, 70));
    ASSERT_EQ(QPX_OK, built.result);
    ASSERT_EQ(8192u, built.record.tableBytes);
    const auto expected = model::toYuvTables(model::colourOf(bits));
    EXPECT_EQ(0, std::memcmp(expected.data(), built.record.tables, 8192));
  }
}

TEST(ColourLut, OfAllPairsOfRanges) {
  for (const uint32_t from : kColourBits) {
    for (const uint32_t to : kColourBits) {
      for (const auto& [b, c, s] : kAdjustments) {
        const Built built(0x50000811 | from, 0x70000002 | to, adjusted(b, c, s));
        ASSERT_EQ(QPX_OK, built.result);
        const uint32_t src = model::colourOf(from), dst = model::colourOf(to);
        const bool wanted = b != 0 || c != 0 || s != 0 || (src & 3) != (dst & 3);
        ASSERT_EQ(wanted ? 1u : 0u, built.record.useLut);
        ASSERT_EQ(wanted ? 512u : 0u, built.record.tableBytes);
        if (!wanted) continue;
        const auto expected = model::colourLut(src, dst, b, c, s);
        EXPECT_EQ(0, std::memcmp(expected.data(), built.record.tables, 512));
      }
    }
  }
}

TEST(ColourLut, ByHand) {
  const Built wide(0x50000811, 0x50001811), narrow(0x50001811, 0x50000811);
  const auto* lut = wide.tables<uint8_t>();
  EXPECT_EQ(19, lut[0]);  // the constant is added
  EXPECT_EQ(255, lut[255]);
  EXPECT_EQ(128, lut[256 + 128]);
  lut = narrow.tables<uint8_t>();
  EXPECT_EQ(16, lut[0]);
  EXPECT_EQ(234, lut[255]);  // 16 + 255 * 56066 / 65536 = 234.15
  EXPECT_EQ(128, lut[256 + 128]);
  EXPECT_EQ(16, lut[256]);
}

// Entries beside which the next slope would show, and the last ones.
TEST(ColourLut, SlopesByHand) {
  const Built narrow(0x50001811, 0x50000811);
  const auto* lut = narrow.tables<uint8_t>();
  EXPECT_EQ(202, lut[218]);        // 16 + 218 * 56066 / 65536 = 202.4999, 56067: 202.503
  EXPECT_EQ(20, lut[256 + 4]);     // 16 + 4 * 0.875 = 19.5, rounded up
  EXPECT_EQ(239, lut[256 + 255]);  // 16 + 223.125
  // The constant is added: what brightness takes off shows the last entry.
  const Built wide(0x50000811, 0x50001811, adjusted(-100, 0, 0));
  lut = wide.tables<uint8_t>();
  EXPECT_EQ(217, lut[255]);        // -100 + 18.703 + 255 * 1.16895 = 216.78
  EXPECT_EQ(0, lut[69]);           // -0.64
  EXPECT_EQ(1, lut[70]);           // 0.53
  EXPECT_EQ(255, lut[256 + 255]);  // -18.286 + 255 * 1.1429 = 273.2
  EXPECT_EQ(254, lut[256 + 238]);  // 253.72
  EXPECT_EQ(0, lut[256]);
  // Twice the contrast about 128: slope 112132, base 1048576 - 7340032.
  const Built contrast(0x50001811, 0x50000811, adjusted(0, 64, 0));
  lut = contrast.tables<uint8_t>();
  EXPECT_EQ(0, lut[56]);    // -0.18
  EXPECT_EQ(75, lut[100]);  // 75.1
  EXPECT_EQ(255, lut[255]);
  const Built flat(0x50001811, 0x50000811, adjusted(0, -128, 0));
  lut = flat.tables<uint8_t>();
  for (int32_t i = 0; i < 512; ++i) ASSERT_EQ(128, lut[i]) << i;
}

TEST(ColourLut, OfOneRangeLeavesBothCodesAtVideo) {
  const Built built(0x50001811, 0x50003811, adjusted(1, 0, 0));
  EXPECT_EQ(0x10001u, built.record.src.colour);
  EXPECT_EQ(0x20001u, built.record.dst.colour);
}

TEST(Channels, TakeTheBiasOff) {
  EXPECT_EQ(0, convert::channelValue(512u << 20, 512));
  EXPECT_EQ(255, convert::channelValue((767u << 20) + 0xFFFFF, 512));
  EXPECT_EQ(-1, convert::channelValue((512u << 20) - 1, 512));
  EXPECT_EQ(-512, convert::channelValue(0, 512));
  EXPECT_EQ(2047, convert::channelValue(2559u << 20, 512));
  EXPECT_EQ(-2048, convert::channelValue(2560u << 20, 512));
  EXPECT_EQ(1152u, convert::channelBias(6, 16));
  EXPECT_EQ(512u, convert::channelBias(6, 24));
  EXPECT_EQ(512u, convert::channelBias(5, 16));
}

}  // namespace
}  // namespace qpx::testing
