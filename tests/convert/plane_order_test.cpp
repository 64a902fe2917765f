// Where Y, U and V of each order of planes and of packed samples lie, by hand.
#include <gtest/gtest.h>
#include <qpx/convert.h>

#include "convert/record.h"
#include "convert/strip_walk.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kFull = 0x1000;
// Red in full-range BT.601.
constexpr uint8_t kY = 76, kU = 84, kV = 255;

class Converter {
 public:
  Converter(uint32_t from, uint32_t to) {
    built_ = convert::buildRecord({to, 4, 4}, {from, 4, 4}, {}, &record);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() { convert::freeTables(&record); }

  void run(const convert::Planes& planes, ConvFrameFunction frame) const {
    ASSERT_EQ(QPX_OK, built_);
    ASSERT_EQ(QPX_OK, convert::convertRect(record, planes, {0, 0, 4, 4}, frame));
  }

  ConvRecord record = {};

 private:
  int32_t built_;
};

constexpr ConvFrameFunction kBoth[] = {ANY_ANY_C_SLOW, ANY_ANY_Bilinear_No_Table};

struct Planar {
  uint32_t format, klass;
};

// Second V, third U.
constexpr Planar kVFirst[] = {
    {0x50000A13, 768}, {0x50000A11, 769}, {0x50000A01, 770}, {0x50000A10, 771}, {0x50000A00, 772}};

TEST(PlaneOrder, OfClasses768To772HasVBeforeU) {
  for (const auto& [format, klass] : kVFirst) {
    for (const ConvFrameFunction frame : kBoth) {
      uint8_t red[48], y[16] = {}, second[16] = {}, third[16] = {}, bgr[48] = {};
      for (int32_t i = 0; i < 48; ++i) red[i] = i % 3 == 2 ? 255 : 0;
      const Converter to(QPX_FORMAT_BGR24, format | kFull);
      EXPECT_EQ(klass, to.record.dst.klass);
      to.run({{red}, {12}, {y, second, third}, {4, 4, 4}}, frame);
      EXPECT_EQ(kY, y[15]) << klass;
      EXPECT_EQ(kV, second[0]) << klass;
      EXPECT_EQ(kU, third[0]) << klass;
      for (int32_t i = 0; i < 16; ++i) {
        y[i] = kY;
        second[i] = kV;
        third[i] = kU;
      }
      const Converter from(format | kFull, QPX_FORMAT_BGR24);
      from.run({{y, second, third}, {4, 4, 4}, {bgr}, {12}}, frame);
      for (int32_t i = 0; i < 48; i += 3) {
        EXPECT_NEAR(0, bgr[i], 2) << klass;
        EXPECT_NEAR(0, bgr[i + 1], 2) << klass;
        EXPECT_NEAR(254, bgr[i + 2], 2) << klass;
      }
    }
  }
}

struct Packed {
  uint32_t format, klass;
  uint8_t sample[3];
};

constexpr Packed kPacked[] = {{0x50000000, 576, {kY, kU, kV}}, {0x50000200, 577, {kY, kV, kU}},
                              {0x50000400, 578, {kU, kV, kY}}, {0x50000600, 579, {kV, kU, kY}},
                              {0x50000500, 580, {kU, kY, kV}}, {0x50000700, 581, {kV, kY, kU}}};

TEST(PlaneOrder, OfClasses576To581IsThatOfTheirNames) {
  for (const auto& [format, klass, sample] : kPacked) {
    for (const ConvFrameFunction frame : kBoth) {
      uint8_t red[48], packed[48] = {}, y[16] = {}, u[16] = {}, v[16] = {};
      for (int32_t i = 0; i < 48; ++i) red[i] = i % 3 == 2 ? 255 : 0;
      const Converter to(QPX_FORMAT_BGR24, format | kFull);
      EXPECT_EQ(klass, to.record.dst.klass);
      to.run({{red}, {12}, {packed}, {12}}, frame);
      for (int32_t i = 0; i < 48; ++i) ASSERT_EQ(sample[i % 3], packed[i]) << klass << ", " << i;
      const Converter from(format | kFull, QPX_FORMAT_I444 | kFull);
      from.run({{packed}, {12}, {y, u, v}, {4, 4, 4}}, frame);
      for (int32_t i = 0; i < 16; ++i) {
        EXPECT_EQ(kY, y[i]) << klass;
        EXPECT_EQ(kU, u[i]) << klass;
        EXPECT_EQ(kV, v[i]) << klass;
      }
    }
  }
}

}  // namespace
}  // namespace qpx::testing
