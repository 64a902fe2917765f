#include "toolkit/color_field.h"

#include <gtest/gtest.h>

#include "support/kernel_frame.h"

namespace qpx {
namespace {

TEST(ColorField, WidensByRepeatingBits) {
  const ColorField five(0x1F);
  EXPECT_EQ(five.load(0x1F), 255);
  EXPECT_EQ(five.load(0x10), 0b10000100);
  EXPECT_EQ(five.load(0x01), 0b00001000);
  const ColorField three(0x7 << 4);
  EXPECT_EQ(three.load(0x5 << 4), 0b10110110);
  const ColorField one(0x8000);
  EXPECT_EQ(one.load(0x8000), 255);
  EXPECT_EQ(one.load(0x7FFF), 0);
}

TEST(ColorField, WidensEveryValueOfEveryWidth) {
  for (uint32_t size = 1; size <= 16; ++size) {
    const uint32_t mask = ((1u << size) - 1) << 7;
    const ColorField field(mask);
    for (uint32_t value = 0; value < 1u << size; ++value) {
      ASSERT_EQ(field.load(value << 7), testing::fieldOf(value << 7, mask)) << size << " bits";
    }
  }
}

TEST(ColorField, UntouchedSampleKeepsItsField) {
  for (uint32_t size = 1; size <= 16; ++size) {
    const ColorField field(((1u << size) - 1) << 3);
    for (uint32_t value = 0; value < 1u << size; ++value) {
      const uint32_t pixel = value << 3 | 5;
      ASSERT_EQ(field.store(field.load(pixel), pixel), value << 3) << size << " bits";
    }
  }
}

TEST(ColorField, WhiteStaysWhiteAndBlackBlack) {
  for (uint32_t size = 1; size <= 16; ++size) {
    const uint32_t mask = ((1u << size) - 1) << 2;
    const ColorField field(mask);
    EXPECT_EQ(field.store(255, 0), mask) << size << " bits";
    EXPECT_EQ(field.store(0, ~0u), 0u) << size << " bits";
  }
}

TEST(ColorField, NarrowsByDroppingLowBits) {
  const ColorField six(0x3F << 5);
  EXPECT_EQ(six.store(0b10110111, 0), 0b101101u << 5);
  const ColorField ten(0x3FF);
  EXPECT_EQ(ten.store(0b10110111, 0), 0b1011011110u);
}

TEST(ColorField, EmptyMaskReadsBlackAndStoresNothing) {
  const ColorField none(0);
  EXPECT_EQ(none.load(0xFFFFFFFF), 0);
  EXPECT_EQ(none.store(255, 0xFFFFFFFF), 0u);
}

TEST(ColorFields, BitsThatAPixelLacksAreNoField) {
  const ColorFields fields({0, 0xFFFF0000, 0x0000FFFF}, 3);
  EXPECT_EQ(fields.red.size, 0u);
  EXPECT_EQ(fields.green.mask, 0x00FF0000u);
  EXPECT_EQ(fields.blue.mask, 0x0000FFFFu);
  EXPECT_EQ(fields.spare & 0x00FFFFFF, 0u);
  EXPECT_FALSE(fields.narrowFields());
}

TEST(ColorFields, KnowPlainBytes) {
  EXPECT_TRUE(ColorFields({0xFF0000, 0xFF00, 0xFF}, 4).bytesBgr());
  EXPECT_TRUE(ColorFields({0xFF, 0xFF00, 0xFF0000}, 3).bytesRgb());
  EXPECT_FALSE(ColorFields({0xF800, 0x7E0, 0x1F}, 2).bytesBgr());
}

}  // namespace
}  // namespace qpx
