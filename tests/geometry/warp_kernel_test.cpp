// The rotated effects against bilinear sampling in double precision.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "geometry/turned_picture.h"

namespace qpx::testing {
namespace {

RgbPicture turned(const RgbPicture& src, int32_t width, int32_t height,
                  const QPXScaledRotationParam& param) {
  RgbPicture dst(src.format(), width, height);
  const MBitmap in = src.bitmap(), out = dst.bitmap();
  const QPXEffectItem item = {0xA200, &param, sizeof param};
  const QPXEffectList list = {&item, 1, 0};
  QPXEngine* engine = nullptr;
  EXPECT_EQ(0, QPXCreate(&out, &in, &list, &engine));
  MRect whole = {0, 0, width, height}, needed = {};
  EXPECT_EQ(0, QPXCalcRect(engine, &whole, &needed));
  QPXPlaneSet from = {}, to = {};
  from.plane[0] = in.plane[0];
  from.pitch[0] = in.pitch[0];
  to.plane[0] = out.plane[0];
  to.pitch[0] = out.pitch[0];
  MRect rect = {0, 0, src.width(), src.height()};
  EXPECT_EQ(0, QPXProcess(engine, &to, &from, &rect));
  EXPECT_EQ(0, QPXDestroy(engine));
  EXPECT_TRUE(dst.guardsHold());
  return dst;
}

// Places have 10 fractional bits, so samples may be off by two steps of 1/1024 of the largest
// difference, and by a half of rounding.
TEST(RotatedEffect, IsBilinearAboutTheCentres) {
  for (const uint32_t format : kBothBgr) {
    for (const auto& [width, height] : {std::pair{40, 30}, {31, 47}, {300, 11}}) {
      const RgbPicture src = RgbPicture::random(format, 37, 26, 9);
      for (const QPXScaledRotationParam& param : {QPXScaledRotationParam{13, 100, 0x203040, 0},
                                                  {-77.5f, 150, 0x203040, 0},
                                                  {200, 60, 0x203040, 1},
                                                  {0, 0, 0x203040, 0}}) {
        const RgbPicture made = turned(src, width, height, param);
        const double scale = param.scale == 0 ? 1.0 : param.scale / 100.0;
        const double angle = static_cast<double>(param.degrees) * std::acos(-1.0) / 180.0;
        const double s = std::sin(angle) / scale, c = std::cos(angle) / scale;
        const Pixel fill = {0x40, 0x30, 0x20, src.bytes() == 4 ? 255 : 0};
        const auto tap = [&](int32_t i, int32_t j) {
          const int32_t x = std::clamp(i, 0, 36), y = std::clamp(j, 0, 25);
          return (x == i && y == j) || param.repeat != 0 ? src.at(x, y) : fill;
        };
        for (int32_t y = 0; y < height; ++y) {
          for (int32_t x = 0; x < width; ++x) {
            const double dx = x - (width - 1) / 2.0, dy = y - (height - 1) / 2.0;
            const double u = 18 + dx * c + dy * s, v = 12.5 - dx * s + dy * c;
            const auto i = static_cast<int32_t>(std::floor(u));
            const auto j = static_cast<int32_t>(std::floor(v));
            const double fx = u - i, fy = v - j;
            for (size_t k = 0; k < static_cast<size_t>(src.bytes()); ++k) {
              const double above = tap(i, j)[k] * (1 - fx) + tap(i + 1, j)[k] * fx;
              const double below = tap(i, j + 1)[k] * (1 - fx) + tap(i + 1, j + 1)[k] * fx;
              ASSERT_NEAR(made.at(x, y)[k], above * (1 - fy) + below * fy, 2.0)
                  << "at " << x << ", " << y << " by " << param.degrees;
            }
          }
        }
      }
    }
  }
}

TEST(RotatedEffect, WithoutATurnIsACopy) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGRA32, 38, 27, 9);
  EXPECT_EQ(src.differenceTo(turned(src, 38, 27, {0, 100, 0, 0})), "");
}

TEST(RotatedEffect, DeclaresTheGreatestDisplacement) {
  const QPXRotationParam param = {90, 0};
  const QPXEffectItem item = {0x4400, &param, sizeof param};
  const QPXEffectList list = {&item, 1, 0};
  const MBitmap image = {QPX_FORMAT_BGR24, 40, 30, {}, {}};
  QPXEngine* engine = nullptr;
  ASSERT_EQ(0, QPXCreate(&image, &image, &list, &engine));
  // The corner (-19.5, -14.5) from the centre comes from (-14.5, 19.5).
  const QPXBand& band = (*reinterpret_cast<QPXStage**>(engine))->bands[0];
  EXPECT_EQ(band.marginTop, 34);
  EXPECT_EQ(band.ringCapacity, 69);
  EXPECT_EQ(0, QPXDestroy(engine));
}

}  // namespace
}  // namespace qpx::testing
