#include <gtest/gtest.h>

#include <algorithm>

#include "convert/conversion_picture.h"
#include "convert/format_decoder.h"
#include "convert/record.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

using convert::DecodedFormat;
using Kind = FormatLayout::Kind;

DecodedFormat decoded(uint32_t word) {
  DecodedFormat format;
  EXPECT_EQ(QPX_OK, convert::decodeFormat(word, &format)) << std::hex << word;
  return format;
}

void expectRgb(const FormatLayout& layout, const DecodedFormat& format) {
  EXPECT_EQ(static_cast<uint32_t>(layout.bits), format.format.colour);
  EXPECT_EQ(static_cast<uint32_t>(layout.bits), format.planes.bitsPerPixel);
  EXPECT_EQ((layout.bits + 7) / 8, format.planes.step[0]);
  EXPECT_EQ(1u, format.planes.count);
  const uint32_t masks[3] = {format.format.maskR, format.format.maskG, format.format.maskB};
  for (int32_t c = 0; c < 3; ++c) {
    EXPECT_EQ(layout.width[c], format.bits[c]);
    EXPECT_EQ(layout.lowest[c], format.position[c]);
    EXPECT_EQ(((1u << layout.width[c]) - 1) << layout.lowest[c], masks[c]);
  }
}

void expectYuv(const FormatLayout& layout, const DecodedFormat& format) {
  const bool planar = layout.plane[1] != 0;
  EXPECT_EQ(planar ? 3u : 1u, format.planes.count);
  EXPECT_EQ(layout.interleaved ? 1u : 0u, format.planes.interleaved);
  EXPECT_EQ(planar && !layout.interleaved ? 1u : 0u, format.planes.planar);
  EXPECT_EQ(static_cast<uint32_t>(layout.subX), format.format.maskR);
  EXPECT_EQ(static_cast<uint32_t>(layout.subY), format.format.maskG);
  EXPECT_EQ(layout.lumasExchanged, convert::swapsLumas(format.format.klass));
  for (int32_t c = 0; c < 3; ++c) {
    EXPECT_EQ(c == 0 ? 1 : layout.subX, format.subX[c]);
    EXPECT_EQ(c == 0 ? 1 : layout.subY, format.subY[c]);
    EXPECT_EQ(layout.step[c == 0 ? 0 : 1], format.planes.step[c]);
    EXPECT_EQ(layout.offset[c], format.planes.offset[c]);
  }
  if (!planar) return;
  EXPECT_EQ(layout.plane[1], convert::planeOfU(format.format.klass));
  EXPECT_EQ(layout.plane[2], convert::planeOfV(format.format.klass));
}

TEST(FormatDecoder, KnowsEveryCode) {
  for (const FormatLayout& layout : formatLayouts()) {
    SCOPED_TRACE(::testing::Message() << std::hex << layout.format);
    const DecodedFormat format = decoded(convert::rightAligned(layout.format));
    EXPECT_EQ(layout.klass, format.format.klass);
    EXPECT_EQ(layout.klass, format.planes.klass);
    const bool rgb = layout.kind == Kind::rgb || layout.kind == Kind::palette;
    rgb ? expectRgb(layout, format) : expectYuv(layout, format);
  }
}

TEST(FormatDecoder, TakesTheColourCodeFromBits12And13) {
  for (const uint32_t word : {0x50000811u, 0x50000010u, 0x64000000u, 0x70000002u}) {
    EXPECT_EQ(0x10001u, decoded(word).format.colour);
    EXPECT_EQ(0x10002u, decoded(word | 0x1000).format.colour);
    EXPECT_EQ(0x20001u, decoded(word | 0x2000).format.colour);
    EXPECT_EQ(0x20002u, decoded(word | 0x3000).format.colour);
    EXPECT_EQ(decoded(word).format.klass, decoded(word | 0x3000).format.klass);
  }
}

// The word alone says so; a conversion takes the two codes with alpha as right-aligned.
TEST(FormatDecoder, AlignsFieldsOfTheAlphaModelLeft) {
  EXPECT_EQ(24, decoded(0x37000777).position[0]);
  EXPECT_EQ(8, decoded(0x37000777).position[2]);
  EXPECT_EQ(8, decoded(0x37001777).position[0]);
  EXPECT_EQ(11, decoded(0x35000444).position[0]);
  EXPECT_EQ(1, decoded(0x35000444).position[2]);
  EXPECT_EQ(0x17000777u, convert::rightAligned(0x37000777));
  EXPECT_EQ(0x17001777u, convert::rightAligned(0x37001777));
  EXPECT_EQ(0x37004777u, convert::rightAligned(0x37004777));
}

TEST(FormatDecoder, RefusesWhatItDoesNotKnow) {
  for (const uint32_t word :
       {0x00000000u, 0x14000777u, 0x18000777u, 0x15000777u, 0x16000877u, 0x160007F7u, 0x25000444u,
        0x26000444u, 0x34000111u, 0x40000000u, 0x42000000u, 0x44000001u, 0x50000011u, 0x50000100u,
        0x50000300u, 0x50000910u, 0x50000B11u, 0x51000811u, 0x50004811u, 0x65000000u, 0x60000000u,
        0x64000001u, 0x70000000u, 0x70000001u, 0x70000006u, 0x70000007u, 0x7000000Au, 0x70010000u,
        0x70020011u, 0x70030011u, 0x80000000u, 0xFFFFFFFFu}) {
    DecodedFormat format;
    EXPECT_EQ(QPX_UNSUPPORTED, convert::decodeFormat(word, &format)) << std::hex << word;
  }
}

TEST(FormatDecoder, AnswersGarbageWithSomethingConsistent) {
  Random random(7);
  int32_t known = 0;
  for (int32_t i = 0; i < 200000; ++i) {
    const uint32_t word = random.next() & (i % 2 == 0 ? 0xFFFFFFFFu : 0xF7003FFFu);
    DecodedFormat format;
    const int32_t result = convert::decodeFormat(word, &format);
    ASSERT_TRUE(result == QPX_OK || result == QPX_UNSUPPORTED);
    if (result != QPX_OK) continue;
    ++known;
    ASSERT_GE(format.planes.step[0], 1);
    ASSERT_GE(*std::min_element(format.subX, format.subX + 3), 1);
    ASSERT_LE(*std::max_element(format.subY, format.subY + 3), 16);
    for (int32_t c = 0; c < 3; ++c) {
      ASSERT_LE(format.bits[c], 8);
      ASSERT_LE(format.position[c] + format.bits[c], 32);
      ASSERT_LT(format.planes.offset[c], 4);
    }
  }
  EXPECT_GT(known, 100);
}

}  // namespace
}  // namespace qpx::testing
