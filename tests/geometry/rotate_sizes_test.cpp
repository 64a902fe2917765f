// Sizes of turned pictures and the rectangles inside them.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "geometry/turned_picture.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

MBitmap sized(int32_t width, int32_t height) {
  static uint8_t plane[1];
  MBitmap image = {QPX_FORMAT_BGR24, width, height, {}, {}};
  image.plane[0] = plane;
  return image;
}

struct Size {
  int32_t width, height;
  bool operator==(const Size&) const = default;
};

Size boundingSize(const MBitmap& image, int32_t degrees) {
  Size size = {-1, -1};
  EXPECT_EQ(0, QPX_GetRotateDstSize(&image, degrees, &size.width, &size.height));
  return size;
}

Size exactSize(const MBitmap& image, int32_t degrees) {
  Size size = {-1, -1};
  EXPECT_EQ(0, QPXRotateCalcDstSize(&image, degrees, &size.width, &size.height));
  return size;
}

MRect insideOf(const MBitmap& image, const MBitmap& target, int32_t degrees) {
  MRect rect = {-1, -1, -1, -1};
  EXPECT_EQ(0, QPXRotateCalcInternalRect(&image, &target, degrees, &rect));
  return rect;
}

TEST(RotateSizes, OfWholeAndQuarterTurns) {
  const MBitmap image = sized(40, 30);
  EXPECT_EQ(boundingSize(image, 0), (Size{40, 30}));
  // The sine of these is never exactly 0, and sizes are rounded up.
  EXPECT_EQ(boundingSize(image, 90), (Size{31, 41}));
  EXPECT_EQ(boundingSize(image, 180), (Size{41, 31}));
  for (const int32_t turn : {0, 180, -180, 360}) EXPECT_EQ(exactSize(image, turn), (Size{40, 30}));
  for (const int32_t turn : {90, -90, 270}) EXPECT_EQ(exactSize(image, turn), (Size{30, 40}));
}

// 45 degrees of 100 by 100 has a diagonal of 141.42.
TEST(RotateSizes, OfAnEighthTurn) {
  const MBitmap image = sized(100, 100);
  EXPECT_EQ(boundingSize(image, 45), (Size{142, 142}));
  EXPECT_EQ(exactSize(image, 45), (Size{141, 141}));
  EXPECT_EQ(exactSize(image, -45), (Size{141, 141}));
}

TEST(RotateSizes, AreTheFormulas) {
  Random random(3);
  for (int round = 0; round < 2000; ++round) {
    const int32_t w = random.between(1, 5000), h = random.between(1, 5000);
    const int32_t degrees = random.between(-400, 400);
    const MBitmap image = sized(w, h);
    const double s = std::fabs(std::sin(radians(degrees)));
    const double c = std::fabs(std::cos(radians(degrees)));
    EXPECT_EQ(boundingSize(image, degrees), (Size{static_cast<int32_t>(std::ceil(h * s + w * c)),
                                                  static_cast<int32_t>(std::ceil(h * c + w * s))}));
    const int32_t left = -(w >> 1), right = w - (w >> 1), top = -(h >> 1), bottom = h - (h >> 1);
    // The ends of both axes, each at the corner that is farthest along it.
    const double mostX = right * c - top * s, leastX = left * c - bottom * s;
    const double mostY = right * s + bottom * c, leastY = left * s + top * c;
    EXPECT_EQ(exactSize(image, degrees),
              (Size{static_cast<int32_t>(mostX - leastX), static_cast<int32_t>(mostY - leastY)}));
  }
}

TEST(RotateSizes, InternalRectOfEveryAngle) {
  Random random(4);
  for (int round = 0; round < 60; ++round) {
    const int32_t w = random.between(1, 3000), h = random.between(1, 3000);
    const int32_t W = random.between(1, 4000), H = random.between(1, 4000);
    for (int32_t degrees = -400; degrees <= 400; ++degrees) {
      const int32_t d = degrees % 180;
      int32_t halfW = 0, halfH = 0;
      if (d == 0) {
        halfW = w / 2;
        halfH = h / 2;
      } else if (d == 90 || d == -90) {
        halfW = h / 2;
        halfH = w / 2;
      } else if (d > 0) {
        const double diag = std::sqrt(double(h) * h + double(w) * w);
        const double phi = std::atan(double(h) / w), a = radians(d);
        const double t =
            w < h ? std::cos(phi) / std::fabs(d < 91 ? std::cos(phi - a) : std::cos(phi + a))
                  : std::sin(phi) / std::fabs(d < 91 ? std::sin(phi + a) : std::sin(phi - a));
        halfW = static_cast<int32_t>(t * diag * std::cos(phi)) / 2;
        halfH = static_cast<int32_t>(t * diag * std::sin(phi)) / 2;
      }
      const MRect rect = insideOf(sized(w, h), sized(W, H), degrees);
      ASSERT_EQ(rect.left, std::clamp(W / 2 - halfW, 0, W)) << w << "x" << h << " " << degrees;
      ASSERT_EQ(rect.right, std::clamp(W / 2 + halfW, 0, W));
      ASSERT_EQ(rect.top, std::clamp(H / 2 - halfH, 0, H));
      ASSERT_EQ(rect.bottom, std::clamp(H / 2 + halfH, 0, H));
    }
  }
}

TEST(RotateSizes, NegativeAnglesHaveNoInternalRect) {
  const MBitmap image = sized(80, 60), target = sized(100, 100);
  for (const int32_t degrees : {-1, -45, -89, -91, -179, -185}) {
    const MRect rect = insideOf(image, target, degrees);
    EXPECT_EQ(rect.left, 50) << degrees;
    EXPECT_EQ(rect.right, 50) << degrees;
    EXPECT_EQ(rect.top, rect.bottom) << degrees;
  }
  const MRect quarter = insideOf(image, target, -90);
  EXPECT_EQ(quarter.right - quarter.left, 60);
  EXPECT_EQ(quarter.bottom - quarter.top, 80);
}

// Every corner of the rectangle, turned back, lies on the picture.
TEST(RotateSizes, InternalRectLiesWithinTheTurnedPicture) {
  for (const auto& [w, h] : {std::pair{400, 300}, {300, 400}, {300, 300}, {900, 100}}) {
    for (int32_t degrees = 0; degrees < 180; ++degrees) {
      const MBitmap image = sized(w, h);
      const Size size = exactSize(image, degrees);
      const MRect rect = insideOf(image, sized(size.width, size.height), degrees);
      const double s = std::sin(radians(degrees)), c = std::cos(radians(degrees));
      const double x = (rect.right - rect.left) / 2.0, y = (rect.bottom - rect.top) / 2.0;
      for (const double sign : {-1.0, 1.0}) {
        EXPECT_LE(std::fabs(x * c + sign * y * s), w / 2.0 + 1) << w << "x" << h << " " << degrees;
        EXPECT_LE(std::fabs(x * s + sign * y * c), h / 2.0 + 1) << w << "x" << h << " " << degrees;
      }
    }
  }
}

TEST(RotateSizes, RefuseSizesBelowOneAndNulls) {
  int32_t width = -7, height = -7;
  MRect rect = {-7, -7, -7, -7};
  const MBitmap good = sized(4, 4);
  for (const auto& [w, h] : {std::pair{0, 4}, {4, 0}, {-4, 4}, {INT_MIN, INT_MIN}}) {
    const MBitmap bad = sized(w, h);
    EXPECT_EQ(2, QPX_GetRotateDstSize(&bad, 5, &width, &height));
    EXPECT_EQ(2, QPXRotateCalcDstSize(&bad, 5, &width, &height));
    EXPECT_EQ(2, QPXRotateCalcInternalRect(&bad, &good, 5, &rect));
    EXPECT_EQ(2, QPXRotateCalcInternalRect(&good, &bad, 5, &rect));
  }
  MBitmap noPlane = good;
  noPlane.plane[0] = nullptr;
  EXPECT_EQ(2, QPX_GetRotateDstSize(&noPlane, 5, &width, &height));
  EXPECT_EQ(2, QPX_GetRotateDstSize(&good, 5, nullptr, &height));
  EXPECT_EQ(2, QPX_GetRotateDstSize(&good, 5, &width, nullptr));
  EXPECT_EQ(2, QPXRotateCalcDstSize(&good, 5, nullptr, &height));
  EXPECT_EQ(2, QPXRotateCalcDstSize(&good, 5, &width, nullptr));
  EXPECT_EQ(2, QPXRotateCalcInternalRect(&good, nullptr, 5, &rect));
  EXPECT_EQ(2, QPXRotateCalcInternalRect(&good, &good, 5, nullptr));
  EXPECT_EQ(-7, width);
  EXPECT_EQ(-7, rect.left);
}

TEST(RotateSizes, HugeSizesSaturate) {
  const MBitmap image = sized(INT_MAX, INT_MAX);
  EXPECT_EQ(boundingSize(image, 45).width, INT_MAX);
  EXPECT_EQ(exactSize(image, 45).width, INT_MAX);
  for (const int32_t degrees : {0, 1, 90, 179, INT_MAX, INT_MIN}) {
    const MRect rect = insideOf(image, image, degrees);
    EXPECT_LE(rect.left, rect.right);
  }
  const MBitmap thin = sized(1, INT_MAX);
  for (int32_t degrees = 0; degrees < 180; ++degrees) {
    EXPECT_LE(insideOf(thin, image, degrees).left, INT_MAX / 2);
  }
}

}  // namespace
}  // namespace qpx::testing
