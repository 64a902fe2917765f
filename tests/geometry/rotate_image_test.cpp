// QPX_RotateImage against its formula pixel by pixel, and at its edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>

#include "geometry/turned_picture.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kColor = 0x91B2C3D4;

Pixel fillBytes(uint32_t format) {
  const int low = kColor & 255, middle = kColor >> 8 & 255, high = kColor >> 16 & 255;
  const int top = kColor >> 24;
  switch (format) {
    case QPX_FORMAT_BGR24:
      return {high, middle, low, 0};
    case QPX_FORMAT_RGB24:
      return {low, middle, high, 0};
    case QPX_FORMAT_BGRA32:
      return {high, middle, low, top};
    default:
      return {low, middle, high, top};
  }
}

RgbPicture expected(const RgbPicture& src, int32_t degrees, int32_t dstW, int32_t dstH) {
  RgbPicture dst(src.format(), dstW, dstH);
  const Pixel fill = fillBytes(src.format());
  const double s = std::sin(radians(degrees)), c = std::cos(radians(degrees));
  const int32_t n = std::max(dstW, dstH);
  std::vector<int32_t> sinT, cosT;
  for (int32_t i = 0; i < n; ++i) {
    sinT.push_back(static_cast<int32_t>(0.5 + i * s * 1024));
    cosT.push_back(static_cast<int32_t>(0.5 + i * c * 1024));
  }
  const int32_t hw = dstW >> 1, hh = dstH >> 1;
  const auto x0 = static_cast<int32_t>(0.5 + (hh * s - hw * c + (src.width() >> 1)) * 1024);
  const auto y0 = static_cast<int32_t>(0.5 + (-hh * c - hw * s + (src.height() >> 1)) * 1024);
  const auto tap = [&](int32_t i, int32_t j) {
    const bool inside = i >= 0 && i < src.width() && j >= 0 && j < src.height();
    return inside ? src.at(i, j) : fill;
  };
  for (int32_t row = 0; row < dstH; ++row) {
    for (int32_t col = 0; col < dstW; ++col) {
      const auto cs = static_cast<size_t>(col), rs = static_cast<size_t>(row);
      const int32_t sx = cosT[cs] - sinT[rs] + x0, sy = sinT[cs] + cosT[rs] + y0;
      const int32_t i = sx >> 10, j = sy >> 10, fx = sx & 1023, fy = sy & 1023;
      if (i < -1 || i >= src.width() || j < -1 || j >= src.height()) {
        dst.put(col, row, fill);
        continue;
      }
      const Pixel a = tap(i, j), b = tap(i + 1, j), below = tap(i, j + 1), d = tap(i + 1, j + 1);
      Pixel made = {0, 0, 0, 255};
      for (size_t k = 0; k < 3; ++k) {
        const int sum = a[k] * (1024 - fx) * (1024 - fy) + b[k] * fx * (1024 - fy) +
                        below[k] * (1024 - fx) * fy + d[k] * fx * fy;
        made[k] = std::clamp(sum >> 20, 0, 255);
      }
      dst.put(col, row, made);
    }
  }
  return dst;
}

std::string check(const RgbPicture& src, int32_t degrees, int32_t dstW, int32_t dstH,
                  int32_t padding) {
  RgbPicture dst(src.format(), dstW, dstH, padding);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  if (QPX_RotateImage(&from, degrees, kColor, &to) != QPX_OK) return "refused";
  if (!dst.guardsHold() || !src.guardsHold()) return "wrote outside";
  return expected(src, degrees, dstW, dstH).differenceTo(dst);
}

TEST(RotateImage, IsTheFormulaAtAllSizesFormatsAndAngles) {
  inBothForms([] {
    Random random(11);
    for (int round = 0; round < 260; ++round) {
      const uint32_t format = kAllRgb[round % 4];
      const RgbPicture src =
          RgbPicture::random(format, random.between(1, 67), random.between(1, 67), random.next(),
                             random.between(0, 9));
      const int32_t degrees = random.between(-400, 400);
      const int32_t width = random.between(1, 67), height = random.between(1, 67);
      ASSERT_EQ(check(src, degrees, width, height, random.between(0, 9)), "")
          << src.width() << "x" << src.height() << " by " << degrees << " onto " << width << "x"
          << height;
    }
  });
}

TEST(RotateImage, BlocksAndTilesJoinInLargerPictures) {
  inBothForms([] {
    for (const uint32_t format : kBothBgr) {
      const RgbPicture src = RgbPicture::random(format, 601, 353, 5, 3);
      for (const int32_t degrees : {0, 13, 77, 90, 135, 180, -100}) {
        ASSERT_EQ(check(src, degrees, 613, 377, 1), "") << degrees;
      }
    }
  });
}

TEST(RotateImage, NoAngleIsACopy) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_RGB24, 31, 17, 2);
  RgbPicture dst(QPX_FORMAT_RGB24, 31, 17);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  ASSERT_EQ(0, QPX_RotateImage(&from, 0, 0, &to));
  EXPECT_EQ(src.differenceTo(dst), "");
}

// Half a turn of an odd picture moves pixels to where they belong, up to the truncations that a
// sine of nearly 0 brings.
TEST(RotateImage, TurnsCounterclockwise) {
  RgbPicture src(QPX_FORMAT_BGR24, 21, 21);
  for (int32_t y = 0; y < 21; ++y) {
    for (int32_t x = 0; x < 21; ++x) src.put(x, y, {0, 0, 0, 0});
  }
  src.put(18, 10, {255, 255, 255, 0});  // right of the centre
  RgbPicture dst(QPX_FORMAT_BGR24, 21, 21);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  ASSERT_EQ(0, QPX_RotateImage(&from, 90, 0, &to));
  EXPECT_GT(dst.at(10, 2)[0], 250);  // above it
}

TEST(RotateImage, ThereAndBackComesNearTheSource) {
  const RgbPicture src = RgbPicture::smooth(QPX_FORMAT_BGR24, 160, 120);
  RgbPicture turned(QPX_FORMAT_BGR24, 200, 180), back(QPX_FORMAT_BGR24, 160, 120);
  const MBitmap from = src.bitmap();
  MBitmap middle = turned.bitmap(), to = back.bitmap();
  ASSERT_EQ(0, QPX_RotateImage(&from, 13, 0, &middle));
  ASSERT_EQ(0, QPX_RotateImage(&middle, -13, 0, &to));
  int worst = 0;
  for (int32_t y = 4; y < 116; ++y) {
    for (int32_t x = 4; x < 156; ++x) {
      for (size_t c = 0; c < 3; ++c) {
        worst = std::max(worst, std::abs(src.at(x, y)[c] - back.at(x, y)[c]));
      }
    }
  }
  EXPECT_LE(worst, 4);
}

TEST(RotateImage, RefusesRecordsThatDoNotFit) {
  RgbPicture src(QPX_FORMAT_BGR24, 8, 6), dst(QPX_FORMAT_BGR24, 9, 9);
  const MBitmap goodFrom = src.bitmap(), goodTo = dst.bitmap();
  const auto refused = [&](const std::function<void(MBitmap&, MBitmap&)>& spoil) {
    MBitmap from = goodFrom, to = goodTo;
    spoil(from, to);
    return QPX_RotateImage(&from, 5, 0, &to) == QPX_BAD_PARAM;
  };
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap&) { a.plane[0] = nullptr; }));
  EXPECT_TRUE(refused([](MBitmap&, MBitmap& b) { b.plane[0] = nullptr; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap&) { a.width = 0; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap&) { a.height = -6; }));
  EXPECT_TRUE(refused([](MBitmap&, MBitmap& b) { b.width = INT_MIN; }));
  EXPECT_TRUE(refused([](MBitmap&, MBitmap& b) { b.height = 0; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap&) { a.width = INT_MAX; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap&) { a.pitch[0] = 23; }));
  EXPECT_TRUE(refused([](MBitmap&, MBitmap& b) { b.pitch[0] = 0; }));
  EXPECT_TRUE(refused([](MBitmap&, MBitmap& b) { b.pitch[0] = -64; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap&) { a.format = QPX_FORMAT_RGB24; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap& b) { a.format = b.format = QPX_FORMAT_RGB565; }));
  EXPECT_TRUE(refused([](MBitmap& a, MBitmap& b) { a.format = b.format = QPX_FORMAT_NV21; }));
  EXPECT_EQ(RgbPicture(QPX_FORMAT_BGR24, 9, 9).differenceTo(dst), "");
}

TEST(RotateImage, WithoutMemoryTheDestinationIsAllOnes) {
  FailingMemory::reset();
  for (const uint32_t format : kBothBgr) {
    const RgbPicture src = RgbPicture::random(format, 8, 6, 1);
    const int64_t runs = FailingMemory::forEachFailure(true, [&] {
      RgbPicture dst(format, 9, 7);
      const MBitmap from = src.bitmap();
      MBitmap to = dst.bitmap();
      const int32_t result = QPX_RotateImage(&from, 30, 0, &to);
      EXPECT_EQ(result, FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK);
      EXPECT_TRUE(dst.guardsHold());
      EXPECT_EQ(FailingMemory::liveBlocks(), 0);
      if (result == QPX_OK) return;
      for (int32_t i = 0; i < 63; ++i) {
        const Pixel pixel = dst.at(i % 9, i / 9);
        EXPECT_EQ(*std::min_element(pixel.begin(), pixel.begin() + dst.bytes()), 255);
      }
    });
    EXPECT_EQ(runs, 2);
  }
}

// Rows far longer than any block, on one that nearly leaves the fixed-point numbers.
TEST(RotateImage, LongRowsAndFarAnglesStayInside) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 70000, 2, 3);
  for (const int32_t degrees : {0, 1, 89, 90, 180, INT_MAX, INT_MIN}) {
    ASSERT_EQ(check(src, degrees, 500, 9, 0), "") << degrees;
    ASSERT_EQ(check(src, degrees, 3, 70001, 0), "") << degrees;
  }
}

TEST(RotateImage, SidesBeyondTheFixedPointNumbersStayInside) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 3000000, 1, 3);
  RgbPicture dst(QPX_FORMAT_BGR24, 3000000, 1);
  const MBitmap from = src.bitmap();
  MBitmap to = dst.bitmap();
  for (const int32_t degrees : {0, 1, 45, 180}) {
    EXPECT_EQ(0, QPX_RotateImage(&from, degrees, 0, &to));
    EXPECT_TRUE(dst.guardsHold());
  }
}

}  // namespace
}  // namespace qpx::testing
