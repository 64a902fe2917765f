// The dispatcher, shared planes, and hand-worked colours.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "convert/images_members.h"
#include "convert/images_picture.h"
#include "convert/images_reference.h"

namespace qpx::testing {
namespace {

constexpr int32_t kCodes[] = {0x101, 0x105, 0x201, 0x204, 0x302, 0x304, 0x305, 0x401,
                              0x501, 0x502, 0x503, 0x504, 0x601, 0x602, 0x603, 0x604,
                              0x605, 0x608, 0x801, 0x802, 0x803, 0x805};

// By source, as the formats are numbered.
const std::vector<std::pair<int32_t, std::vector<int32_t>>> kPairs = {
    {0x201, {0x101, 0x105, 0x304, 0x501, 0x502, 0x503, 0x504, 0x601, 0x603, 0x801, 0x802}},
    {0x204,
     {0x101, 0x105, 0x201, 0x304, 0x501, 0x502, 0x503, 0x504, 0x601, 0x603, 0x608, 0x801, 0x802}},
    {0x302, {0x601, 0x801, 0x802, 0x803}},
    {0x305, {0x201, 0x501, 0x601, 0x801, 0x802, 0x803}},
    {0x401, {0x802}},
    {0x501, {0x201, 0x204, 0x305, 0x601, 0x801, 0x802}},
    {0x601, {0x201, 0x204, 0x302, 0x305, 0x501, 0x802}},
    {0x602, {0x501, 0x601, 0x801, 0x802, 0x803}},
    {0x603, {0x501, 0x601, 0x801, 0x802, 0x803}},
    {0x604, {0x501, 0x601, 0x801, 0x802, 0x803}},
    {0x605, {0x201, 0x204, 0x802}},
    {0x801, {0x302, 0x305, 0x501, 0x601, 0x802}},
    {0x802, {0x201, 0x204, 0x302, 0x305, 0x401, 0x501, 0x601, 0x805}},
    {0x803, {0x302, 0x305}},
    {0x805, {0x802}},
};

TEST(ColorCvt, ServesThesePairsAndNoOthers) {
  std::set<std::pair<int32_t, int32_t>> served;
  for (const auto& [src, targets] : kPairs) {
    for (const int32_t dst : targets) served.insert({src, dst});
  }
  ASSERT_EQ(81u, served.size());
  for (const int32_t from : kCodes) {
    for (const int32_t to : kCodes) {
      const McvPicture src(from, 4, 4, 1);
      const McvPicture dst(to, 4, 4, 2), before = dst.copy();
      const bool expected = served.contains({from, to});
      EXPECT_EQ(expected ? 0 : -2, mcvColorCvt(src.image(), dst.image(), 3)) << from << ' ' << to;
      if (!expected) {
        EXPECT_EQ("", before.differenceTo(dst));
      }
    }
  }
}

TEST(ColorCvt, RefusesNull) {
  const McvPicture picture(MCV_NV21, 4, 4, 1);
  EXPECT_EQ(-1, mcvColorCvt(nullptr, picture.image(), 0));
  EXPECT_EQ(-1, mcvColorCvt(picture.image(), nullptr, 0));
}

TEST(ColorCvt, RefusesUnknownFormats) {
  McvPicture src(MCV_NV21, 4, 4, 1), dst(MCV_I420, 4, 4, 2);
  for (const int32_t code : {0, -1, 0x600, 0x606, INT32_MAX, INT32_MIN}) {
    src.record().format = code;
    EXPECT_EQ(-2, mcvColorCvt(src.image(), dst.image(), 0));
  }
}

// A picture that has the other's luma.
McvPicture withLumaOf(const McvPicture& owner, int32_t format) {
  McvPicture picture(format, owner.width(), owner.height(), 99);
  picture.record().plane[0] = owner.image()->plane[0];
  picture.record().pitch[0] = owner.image()->pitch[0];
  return picture;
}

TEST(SharedPlanes, LumaMayBeTheSame) {
  for (const auto& [from, to] : {std::pair{MCV_NV21, MCV_NV41},
                                 {MCV_NV41, MCV_NV21},
                                 {MCV_NV12, MCV_NV21},
                                 {MCV_I420, MCV_NV21},
                                 {MCV_NV21, MCV_I420},
                                 {MCV_YV12, MCV_NV21},
                                 {MCV_I422H, MCV_LPI422H}}) {
    const McvPicture src(from, 70, 10, 4);
    const McvPicture before = src.copy();
    const McvPicture dst = withLumaOf(src, to);
    McvPicture apart(to, 70, 10, 99);
    ASSERT_EQ(0, mcvColorCvt(src.image(), apart.image(), 0));
    ASSERT_EQ(0, mcvColorCvt(src.image(), dst.image(), 0));
    EXPECT_EQ("", before.differenceTo(src)) << from << ' ' << to;
    for (int plane = 1; plane < 3; ++plane) {
      const PlaneSize size = planeSize(to, 70, 10, plane);
      for (int32_t y = 0; y < size.rows; ++y) {
        EXPECT_TRUE(
            std::equal(dst.row(plane, y), dst.row(plane, y) + size.rowBytes, apart.row(plane, y)));
      }
    }
  }
}

// One plane of luma is left as it is, also where the two images step through it differently.
TEST(SharedPlanes, LumaOfTwoPitchesIsNotMoved) {
  McvPicture src(MCV_NV12, 20, 6, 4);
  McvPicture dst(MCV_NV21, 20, 6, 5);
  src.record().pitch[0] += 3;
  dst.record().plane[0] = src.record().plane[0];
  dst.record().pitch[0] = src.record().pitch[0] - 2;
  std::vector<uint8_t> before(src.row(0, 0), src.row(0, 5));
  ASSERT_EQ(0, mcvColorCvt(src.image(), dst.image(), 0));
  EXPECT_TRUE(std::equal(before.begin(), before.end(), src.row(0, 0)));
  for (int32_t y = 0; y < 3; ++y) {
    for (int32_t x = 0; x < 10; ++x) {
      ASSERT_EQ(src.row(1, y)[2 * x], dst.row(1, y)[2 * x + 1]);
      ASSERT_EQ(src.row(1, y)[2 * x + 1], dst.row(1, y)[2 * x]);
    }
  }
}

TEST(SharedPlanes, Nv12BecomesNv21InPlace) {
  for (const int32_t width : {2, 7, 30, 64, 130, 257}) {
    const McvPicture picture(MCV_NV12, width, 6, 7);
    const McvPicture before = picture.copy();
    McvImage dst = *picture.image();
    dst.format = MCV_NV21;
    ASSERT_EQ(0, mcvColorCvt(picture.image(), &dst, 0));
    for (int32_t y = 0; y < 3; ++y) {
      for (int32_t x = 0; x < width / 2; ++x) {
        ASSERT_EQ(before.row(1, y)[2 * x], picture.row(1, y)[2 * x + 1]);
        ASSERT_EQ(before.row(1, y)[2 * x + 1], picture.row(1, y)[2 * x]);
      }
    }
    EXPECT_EQ(*before.row(0, 5), *picture.row(0, 5));
  }
}

TEST(Nv41, LumaOfDifferentPitchesIsCopiedByRows) {
  const McvPicture src(MCV_NV21, 20, 8, 1);
  McvPicture dst(MCV_NV41, 20, 8, 2);
  dst.record().pitch[0] = 20;
  ASSERT_EQ(0, mcvColorNV21toNV41(src.image(), dst.image()));
  for (int32_t y = 0; y < 8; ++y) {
    EXPECT_TRUE(std::equal(dst.row(0, y), dst.row(0, y) + 20, src.row(0, y)));
  }
}

// Sources larger than the destination, with their own chroma behind its edge.
TEST(Nv41, InterpolatesIntoWhatALargerSourceHas) {
  McvPicture src(MCV_NV41, 12, 12, 3), dst(MCV_NV21, 6, 6, 4);
  dst.record().pitch[0] = 6;
  ASSERT_EQ(0, mcvColorNV41toNV21(src.image(), dst.image()));
  EXPECT_EQ((src.row(1, 0)[0] + src.row(1, 0)[2] + 1) / 2, dst.row(1, 0)[2]);
  EXPECT_EQ(src.row(1, 1)[3], dst.row(1, 2)[5]);
}

struct Colour {
  uint8_t r, g, b, y, u, v;
};

// Worked by hand: primaries at full strength, white, black and a grey.
TEST(Colours, OfBgrInYuv) {
  const Colour colours[] = {
      {255, 255, 255, 255, 128, 128},
      {0, 0, 0, 0, 128, 128},
      {77, 77, 77, 77, 128, 128},
      // 4845 / 64 = 75.7; -75 * 9 / 16 = -42.2; 180 * 91 / 128 = 127.97
      {255, 0, 0, 75, 85, 255},
      // 9690 / 64 = 151.4; -151 * 9 / 16 = -84.9; -151 * 91 / 128 = -107.4
      {0, 255, 0, 151, 43, 20},
      // 1785 / 64 = 27.9; 228 * 9 / 16 = 128.25, clamped; -27 * 91 / 128 = -19.2
      {0, 0, 255, 27, 255, 108},
  };
  for (const Colour& c : colours) {
    McvPicture src(MCV_BGR888, 2, 2, 1), dst(MCV_I420, 2, 2, 2);
    for (int32_t i = 0; i < 2; ++i) {
      for (int32_t x = 0; x < 2; ++x) {
        src.row(0, i)[3 * x] = c.b;
        src.row(0, i)[3 * x + 1] = c.g;
        src.row(0, i)[3 * x + 2] = c.r;
      }
    }
    ASSERT_EQ(0, mcvColorBGR888toI420u8(src.image(), dst.image()));
    EXPECT_EQ(c.y, dst.row(0, 1)[1]);
    EXPECT_EQ(c.u, dst.row(1, 0)[0]);
    EXPECT_EQ(c.v, dst.row(2, 0)[0]);
  }
}

McvPicture oneColour(int32_t y, int32_t u, int32_t v) {
  McvPicture picture(MCV_NV21, 2, 2, 1);
  for (int32_t row = 0; row < 2; ++row) {
    picture.row(0, row)[0] = picture.row(0, row)[1] = static_cast<uint8_t>(y);
  }
  picture.row(1, 0)[0] = static_cast<uint8_t>(v);
  picture.row(1, 0)[1] = static_cast<uint8_t>(u);
  return picture;
}

TEST(Colours, OfNv21RoundOnceInTwoMembersOnly) {
  // u = 1: 57 / 32 = 1.78; v = -1: -45 / 32 = -1.4; 23 / 32 and 11 / 32 for green.
  const McvPicture src = oneColour(100, 129, 127);
  McvPicture rgb(MCV_RGB888, 2, 2, 2), bgr(MCV_BGR888, 2, 2, 2);
  ASSERT_EQ(0, mcvColorNV21toRGB888u8(src.image(), rgb.image()));
  ASSERT_EQ(0, mcvColorNV21toBGR888u8(src.image(), bgr.image()));
  EXPECT_EQ(98, rgb.row(0, 0)[0]);   // 100 + -2
  EXPECT_EQ(101, rgb.row(0, 0)[1]);  // 100 - (-1 + 0)
  EXPECT_EQ(101, rgb.row(0, 0)[2]);  // 100 + 1
  EXPECT_EQ(102, bgr.row(0, 0)[0]);  // 101.78
  EXPECT_EQ(100, bgr.row(0, 0)[1]);  // 100.375
  EXPECT_EQ(99, bgr.row(0, 0)[2]);   // 98.6
}

TEST(Colours, OfTheCrossedClamp) {
  // red 10 + -180 = -170, blue 10 + 99 = 109: red wraps to 86, blue is taken for negative.
  const McvPicture src = oneColour(10, 184, 0);
  McvPicture dst(MCV_RGBA8888, 2, 2, 2);
  ASSERT_EQ(0, mcvColorNV21ToRGBA8888u8_ARMv7a(src.image(), dst.image(), 7));
  EXPECT_EQ(86, dst.row(0, 0)[0]);
  EXPECT_EQ(0, dst.row(0, 0)[2]);
  EXPECT_EQ(7, dst.row(0, 0)[3]);
}

}  // namespace
}  // namespace qpx::testing
