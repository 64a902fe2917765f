// QPX_Straighten against its formula pixel by pixel, and at its edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <map>

#include "geometry/turned_picture.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

RgbPicture expected(const RgbPicture& src, int32_t dstW, int32_t dstH, double angle,
                    bool bilinear) {
  RgbPicture dst(src.format(), dstW, dstH);
  const int32_t W = src.width(), H = src.height(), M = std::max(W, H);
  const double a = -angle, s = std::fabs(std::sin(a)), c = std::fabs(std::cos(a));
  const double ratio = W < H ? double(H) / W : double(W) / H;
  const double k = std::max(s, c) + ratio * std::min(s, c);
  std::map<int32_t, int32_t> sinT, cosT;
  for (int32_t i = -(M / 2); i <= M - M / 2 - 1; ++i) {
    sinT[i] = static_cast<int32_t>(i * std::sin(a) * 65536.0 / k);
    cosT[i] = static_cast<int32_t>(i * std::cos(a) * 65536.0 / k);
  }
  for (int32_t y = 0; y < dstH; ++y) {
    for (int32_t x = 0; x < dstW; ++x) {
      const int32_t dx = x - (dstW >> 1), dy = y - (dstH >> 1);
      const int32_t p = sinT.at(dx) + cosT.at(dy), q = cosT.at(dx) - sinT.at(dy);
      const int32_t r = (p >> 16) + (H >> 1), col = (q >> 16) + (W >> 1);
      const auto row = [&](int32_t j) { return std::clamp(j, 0, H - 1); };
      const auto column = [&](int32_t i) { return std::clamp(i, 0, W - 1); };
      const Pixel a00 = src.at(column(col), row(r));
      if (!bilinear) {
        dst.put(x, y, a00);
        continue;
      }
      const int64_t fy = p - (p >> 16) * 65536, fx = q - (q >> 16) * 65536;
      const Pixel a01 = src.at(column(col), row(r + 1));
      const Pixel b00 = src.at(column(col + 1), row(r)), b01 = src.at(column(col + 1), row(r + 1));
      Pixel made = a00;
      for (size_t n = 0; n < 3; ++n) {
        const int64_t left = ((0x10000 - fy) * a00[n] + fy * a01[n]) >> 16;
        const int64_t right = ((0x10000 - fy) * b00[n] + fy * b01[n]) >> 16;
        made[n] = static_cast<int>((fx * right + (0x10000 - fx) * left) >> 16);
      }
      dst.put(x, y, made);
    }
  }
  return dst;
}

std::string check(const RgbPicture& src, int32_t dstW, int32_t dstH, double angle, bool bilinear) {
  RgbPicture dst(src.format(), dstW, dstH);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  if (QPX_Straighten(&from, &to, angle, bilinear ? 5 : 0) != QPX_OK) return "refused";
  if (!dst.guardsHold() || !src.guardsHold()) return "wrote outside";
  return expected(src, dstW, dstH, angle, bilinear).differenceTo(dst);
}

TEST(Straighten, IsTheFormulaAtAllSizesFormatsAndAngles) {
  inBothForms([] {
    Random random(13);
    for (int round = 0; round < 260; ++round) {
      const uint32_t format = kAllRgb[round % 4];
      const RgbPicture src =
          RgbPicture::random(format, random.between(1, 67), random.between(1, 67), random.next(),
                             random.between(0, 9));
      const double angle = random.between(-4000, 4000) / 1000.0;
      const int32_t width = random.between(1, src.width());
      const int32_t height = random.between(1, src.height());
      for (const bool bilinear : {true, false}) {
        ASSERT_EQ(check(src, width, height, angle, bilinear), "")
            << src.width() << "x" << src.height() << " by " << angle << " onto " << width << "x"
            << height << (bilinear ? " bilinear" : " nearest");
      }
    }
  });
}

TEST(Straighten, BlocksAndTilesJoinInLargerPictures) {
  for (const uint32_t format : kBothBgr) {
    const RgbPicture src = RgbPicture::random(format, 601, 353, 5, 3);
    for (const double angle : {0.05, -0.2, 1.5, 3.0}) {
      ASSERT_EQ(check(src, 601, 353, angle, true), "") << angle;
      ASSERT_EQ(check(src, 601, 353, angle, false), "") << angle;
    }
  }
}

TEST(Straighten, NoAngleIsTheCentredCopy) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGRA32, 30, 21, 4);
  for (const int32_t bilinear : {0, 1}) {
    RgbPicture dst(QPX_FORMAT_BGRA32, 20, 11);
    const MBitmap from = src.bitmap();
    MBitmap to = dst.bitmap();
    ASSERT_EQ(0, QPX_Straighten(&from, &to, 0, bilinear));
    for (int32_t y = 0; y < 11; ++y) {
      for (int32_t x = 0; x < 20; ++x) ASSERT_EQ(dst.at(x, y), src.at(x + 5, y + 5));
    }
  }
}

// The scale of a quarter turn of a square is 1, so pixels move whole. Towards the right and down,
// an even square has one more column than towards the left.
TEST(Straighten, AQuarterTurnOfASquareDoesNotScale) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 21, 21, 4);
  RgbPicture dst(QPX_FORMAT_BGR24, 21, 21);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  ASSERT_EQ(0, QPX_Straighten(&from, &to, std::asin(1.0), 0));
  int same = 0;
  for (int32_t y = 0; y < 21; ++y) {
    for (int32_t x = 0; x < 21; ++x) same += dst.at(20 - y, x) == src.at(x, y);
  }
  EXPECT_GE(same, 19 * 19);
}

// A disc has the same area however it lies, so that its area tells the enlargement: of a square
// sine and cosine together, twice the area at 45 degrees and nothing gained at quarter turns.
TEST(Straighten, EnlargesASquareMostAtFortyFiveDegrees) {
  RgbPicture src(QPX_FORMAT_BGR24, 201, 201), dst(QPX_FORMAT_BGR24, 201, 201);
  for (int32_t i = 0; i < 201 * 201; ++i) {
    const int32_t dx = i % 201 - 100, dy = i / 201 - 100;
    const int value = dx * dx + dy * dy <= 50 * 50 ? 255 : 0;
    src.put(i % 201, i / 201, {value, value, value, 0});
  }
  const auto areaAt = [&](double degrees) {
    const MBitmap from = src.bitmap();
    MBitmap to = dst.bitmap();
    EXPECT_EQ(0, QPX_Straighten(&from, &to, radians(degrees), 1));
    double area = 0;
    for (int32_t i = 0; i < 201 * 201; ++i) area += dst.at(i % 201, i / 201)[0] / 255.0;
    return area;
  };
  const double area = areaAt(0);
  EXPECT_NEAR(area, 7854, 10);  // 50 * 50 * pi
  EXPECT_NEAR(areaAt(20) / area, 1.643, 0.01);
  EXPECT_NEAR(areaAt(45) / area, 2, 0.01);
  EXPECT_NEAR(areaAt(70) / area, 1.643, 0.01);
  EXPECT_NEAR(areaAt(90) / area, 1, 0.01);
}

TEST(Straighten, TurnsClockwiseAndCoversEveryCorner) {
  RgbPicture src(QPX_FORMAT_BGR24, 200, 150), dst(QPX_FORMAT_BGR24, 200, 150);
  for (int32_t i = 0; i < 200 * 150; ++i) {
    const bool line = std::abs(i / 200 - 75) < 2;
    src.put(i % 200, i / 200, line ? Pixel{255, 255, 255, 0} : Pixel{60, 60, 60, 0});
  }
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  ASSERT_EQ(0, QPX_Straighten(&from, &to, 0.1, 1));
  const auto lineAt = [&](int32_t x) {
    for (int32_t y = 0; y < 150; ++y) {
      if (dst.at(x, y)[0] > 160) return y;
    }
    return -1;
  };
  EXPECT_LT(lineAt(20), 72);
  EXPECT_GT(lineAt(180), 76);
  for (int32_t i = 0; i < 200 * 150; ++i) ASSERT_GE(dst.at(i % 200, i / 200)[0], 59);
}

TEST(Straighten, ByteOrdersMayDiffer) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 12, 9, 4);
  RgbPicture same(QPX_FORMAT_BGR24, 12, 9), other(QPX_FORMAT_RGB24, 12, 9);
  const MBitmap from = src.bitmap();
  MBitmap toSame = same.bitmap(), toOther = other.bitmap();
  ASSERT_EQ(0, QPX_Straighten(&from, &toSame, 0.2, 1));
  ASSERT_EQ(0, QPX_Straighten(&from, &toOther, 0.2, 1));
  EXPECT_EQ(same.differenceTo(other), "");
}

TEST(Straighten, OtherFormatsThatBothHaveAreLeftAlone) {
  for (const uint32_t format :
       {uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_RGB565}, uint32_t{QPX_FORMAT_BGRX32}, 0u}) {
    uint8_t bytes[256];
    std::fill(std::begin(bytes), std::end(bytes), uint8_t{9});
    MBitmap from = {format, 4, 4, {16, 16, 16}, {bytes, bytes, bytes}};
    MBitmap to = from;
    EXPECT_EQ(0, QPX_Straighten(&from, &to, 0.3, 1));
    EXPECT_TRUE(std::all_of(std::begin(bytes), std::end(bytes), [](int b) { return b == 9; }));
    to.format = QPX_FORMAT_BGR24;
    EXPECT_EQ(2, QPX_Straighten(&from, &to, 0.3, 1));
  }
}

TEST(Straighten, Refuses) {
  const RgbPicture src(QPX_FORMAT_BGR24, 9, 7);
  RgbPicture dst(QPX_FORMAT_BGR24, 9, 7);
  const auto straighten = [&](const std::function<void(MBitmap&, MBitmap&)>& spoil,
                              double angle = 0.1) {
    MBitmap from = src.bitmap(), to = dst.bitmap();
    spoil(from, to);
    return QPX_Straighten(&from, &to, angle, 1);
  };
  const auto nothing = [](MBitmap&, MBitmap&) {};
  EXPECT_EQ(2, straighten([](MBitmap& a, MBitmap&) { a.width = 8; }));
  EXPECT_EQ(2, straighten([](MBitmap& a, MBitmap&) { a.height = 6; }));
  EXPECT_EQ(2, straighten([](MBitmap& a, MBitmap&) { a.plane[0] = nullptr; }));
  EXPECT_EQ(2, straighten([](MBitmap&, MBitmap& b) { b.plane[0] = nullptr; }));
  EXPECT_EQ(2, straighten([](MBitmap&, MBitmap& b) { b.height = 0; }));
  EXPECT_EQ(2, straighten([](MBitmap& a, MBitmap& b) { a.width = b.width = -1; }));
  EXPECT_EQ(2, straighten([](MBitmap& a, MBitmap&) { a.pitch[0] = 20; }));
  EXPECT_EQ(2, straighten([](MBitmap&, MBitmap& b) { b.format = QPX_FORMAT_BGRA32; }));
  EXPECT_EQ(2, straighten(nothing, std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(2, straighten(nothing, std::numeric_limits<double>::infinity()));
  EXPECT_EQ(3, straighten([](MBitmap& a, MBitmap&) { a.width = 65537, a.pitch[0] = 65537 * 3; }));
  EXPECT_EQ(RgbPicture(QPX_FORMAT_BGR24, 9, 7).differenceTo(dst), "");
  FailingMemory::reset();
  FailingMemory::failOnly(1);
  EXPECT_EQ(4, straighten(nothing));
  FailingMemory::reset();
  EXPECT_EQ(0, straighten(nothing));
  EXPECT_EQ(0, FailingMemory::liveBlocks());
}

TEST(Straighten, LongSidesKeepTheirPlaces) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 65536, 2, 4);
  for (const double angle : {0.0, 0.00002, 3.14159, 1e9}) {
    ASSERT_EQ(check(src, 700, 2, angle, true), "") << angle;
    ASSERT_EQ(check(src, 65536, 1, angle, false), "") << angle;
  }
}

}  // namespace
}  // namespace qpx::testing
