// The QPXRotate* object against its formula pixel by pixel, strip by strip, and at its edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <thread>
#include <vector>

#include "geometry/turned_picture.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr uint8_t kFill[4] = {11, 222, 33, 144};

class Rotation {
 public:
  Rotation(uint32_t format, int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH,
           int32_t degrees) {
    const QPXRotateFormat from = {format, srcW, srcH}, to = {format, dstW, dstH};
    const QPXRotateParams params = {degrees, kFill};
    EXPECT_EQ(0, QPXRotateCreate(&handle_, &from, &to, &params));
  }
  ~Rotation() { EXPECT_EQ(0, QPXRotateDestroy(handle_)); }
  Rotation(const Rotation&) = delete;
  Rotation& operator=(const Rotation&) = delete;

  const QPXRotateHandle* get() const { return handle_; }
  int32_t run(const RgbPicture& src, RgbPicture& dst, const MRect* rect = nullptr) const {
    const MBitmap from = src.bitmap();
    MBitmap to = dst.bitmap();
    return QPXRotateProcess(handle_, &from, &to, rect);
  }

 private:
  QPXRotateHandle* handle_ = nullptr;
};

int32_t floorShift16(int64_t value) {
  return static_cast<int32_t>(value >= 0 ? value / 65536 : -((-value + 65535) / 65536));
}

RgbPicture expected(const RgbPicture& src, int32_t degrees, int32_t dstW, int32_t dstH) {
  RgbPicture dst(src.format(), dstW, dstH);
  const int32_t angle = -degrees;
  const int64_t s = static_cast<int32_t>(std::sin(radians(angle)) * 65536.0);
  const int64_t c = static_cast<int32_t>(std::cos(radians(angle)) * 65536.0);
  const int64_t hw = dstW / 2, hh = dstH / 2;
  const int64_t mx = (dstW - src.width()) / 2, my = (dstH - src.height()) / 2;
  const Pixel fill = {kFill[0], kFill[1], kFill[2], src.bytes() == 4 ? kFill[3] : 0};
  const auto tap = [&](int32_t i, int32_t j) {
    const bool inside = i >= 0 && i < src.width() && j >= 0 && j < src.height();
    return inside ? src.at(i, j) : fill;
  };
  const auto mix = [](int64_t p, int64_t q, int64_t f) { return (p * (65536 - f) + q * f) >> 16; };
  for (int32_t y = 0; y < dstH; ++y) {
    for (int32_t x = 0; x < dstW; ++x) {
      const int64_t u = (x - hw) * c + (hh - y) * s + hw * 65536 - mx * 65536 - 32768;
      const int64_t v = (x - hw) * s + (y - hh) * c + hh * 65536 - my * 65536 - 32768;
      if (angle == angle / 90 * 90) {
        // Half way between two pixels: the one on the side that the step leads to.
        const int32_t i = floorShift16(u + (c - s) / 2 + 32768);
        const int32_t j = floorShift16(v + (c + s) / 2 + 32768);
        dst.put(x, y,
                src.at(std::clamp(i, 0, src.width() - 1), std::clamp(j, 0, src.height() - 1)));
        continue;
      }
      const int32_t i = floorShift16(u), j = floorShift16(v);
      if (i >= src.width() || i < -1 || j >= src.height() || j < -1) {
        dst.put(x, y, fill);
        continue;
      }
      const Pixel a = tap(i, j), b = tap(i + 1, j), below = tap(i, j + 1), d = tap(i + 1, j + 1);
      Pixel made = {0, 0, 0, a[3]};
      for (size_t k = 0; k < 3; ++k) {
        const int64_t top = mix(a[k], b[k], u & 0xFFFF), bottom = mix(below[k], d[k], u & 0xFFFF);
        made[k] = static_cast<int>(std::min<int64_t>(mix(top, bottom, v & 0xFFFF), 255));
      }
      dst.put(x, y, made);
    }
  }
  return dst;
}

std::string check(const RgbPicture& src, int32_t degrees, int32_t dstW, int32_t dstH,
                  int32_t padding) {
  const Rotation rotation(src.format(), src.width(), src.height(), dstW, dstH, degrees);
  RgbPicture dst(src.format(), dstW, dstH, padding);
  if (rotation.run(src, dst) != QPX_OK) return "refused";
  if (!dst.guardsHold() || !src.guardsHold()) return "wrote outside";
  return expected(src, degrees, dstW, dstH).differenceTo(dst);
}

TEST(Rotate, IsTheFormulaAtAllSizesFormatsAndAngles) {
  inBothForms([] {
    Random random(12);
    for (int round = 0; round < 300; ++round) {
      const uint32_t format = kBothBgr[round % 2];
      const RgbPicture src =
          RgbPicture::random(format, random.between(1, 67), random.between(1, 67), random.next(),
                             random.between(0, 9));
      const int32_t degrees =
          round % 5 == 0 ? 90 * random.between(-4, 4) : random.between(-400, 400);
      const int32_t width = random.between(1, 67), height = random.between(1, 67);
      ASSERT_EQ(check(src, degrees, width, height, random.between(0, 9)), "")
          << src.width() << "x" << src.height() << " by " << degrees << " onto " << width << "x"
          << height;
    }
  });
}

TEST(Rotate, BlocksAndTilesJoinInLargerPictures) {
  inBothForms([] {
    for (const uint32_t format : kBothBgr) {
      const RgbPicture src = RgbPicture::random(format, 601, 353, 5, 3);
      for (const int32_t degrees : {0, 13, 77, 90, 135, 180, -100, 270}) {
        ASSERT_EQ(check(src, degrees, 613, 377, 1), "") << degrees;
      }
    }
  });
}

// Sizes whose differences are even, so that both pictures have the same centre.
TEST(Rotate, MultiplesOfNinetyMoveWholePixels) {
  for (const uint32_t format : kBothBgr) {
    const RgbPicture src = RgbPicture::random(format, 14, 8, 3);
    const auto turned = [&](int32_t degrees, int32_t width, int32_t height) {
      RgbPicture dst(format, width, height);
      EXPECT_EQ(0, Rotation(format, 14, 8, width, height, degrees).run(src, dst));
      return dst;
    };
    const RgbPicture none = turned(0, 14, 8), half = turned(180, 14, 8);
    const RgbPicture right = turned(90, 8, 14), left = turned(270, 8, 14);
    for (int32_t y = 0; y < 8; ++y) {
      for (int32_t x = 0; x < 14; ++x) {
        EXPECT_EQ(none.at(x, y), src.at(x, y));
        EXPECT_EQ(half.at(13 - x, 7 - y), src.at(x, y));
        EXPECT_EQ(right.at(7 - y, x), src.at(x, y));
        EXPECT_EQ(left.at(y, 13 - x), src.at(x, y));
      }
    }
  }
}

// Six numbered pixels. Odd differences of the sizes are halved towards zero, so that pixels to the
// right and below are repeated, or left out, by one more than on the other sides of the turn.
TEST(Rotate, MultiplesOfNinetyShiftWhereSizesDifferByOdd) {
  const auto turned = [](int32_t width, int32_t height, int32_t degrees) {
    RgbPicture src(QPX_FORMAT_BGR24, 3, 2), dst(QPX_FORMAT_BGR24, width, height);
    for (int32_t i = 0; i < 6; ++i) src.put(i % 3, i / 3, {i + 1, 0, 0, 0});
    EXPECT_EQ(0, Rotation(QPX_FORMAT_BGR24, 3, 2, width, height, degrees).run(src, dst));
    std::vector<int> numbers;
    for (int32_t i = 0; i < width * height; ++i) numbers.push_back(dst.at(i % width, i / width)[0]);
    return numbers;
  };
  using Numbers = std::vector<int>;
  EXPECT_EQ(turned(2, 1, 0), (Numbers{1, 2}));
  EXPECT_EQ(turned(4, 3, 0), (Numbers{1, 2, 3, 3,  //
                                      4, 5, 6, 6,  //
                                      4, 5, 6, 6}));
  EXPECT_EQ(turned(4, 3, 180), (Numbers{6, 6, 5, 4,  //
                                        3, 3, 2, 1,  //
                                        3, 3, 2, 1}));
  EXPECT_EQ(turned(2, 3, 90), (Numbers{4, 1,  //
                                       5, 2,  //
                                       6, 3}));
  EXPECT_EQ(turned(2, 3, 270), (Numbers{2, 5,  //
                                        1, 4,  //
                                        1, 4}));
}

TEST(Rotate, NoAngleOntoALargerPictureRepeatsTheBorder) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGRA32, 6, 4, 3);
  RgbPicture dst(QPX_FORMAT_BGRA32, 12, 10);
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGRA32, 6, 4, 12, 10, 0).run(src, dst));
  for (int32_t y = 0; y < 10; ++y) {
    for (int32_t x = 0; x < 12; ++x) {
      ASSERT_EQ(dst.at(x, y), src.at(std::clamp(x - 3, 0, 5), std::clamp(y - 3, 0, 3)));
    }
  }
}

// At 1 degree, about the centre of a white picture on black: the ring is neither.
TEST(Rotate, ARingOfOnePixelIsBlendedWithTheFill) {
  RgbPicture src(QPX_FORMAT_BGR24, 40, 40), dst(QPX_FORMAT_BGR24, 60, 60);
  for (int32_t i = 0; i < 1600; ++i) src.put(i % 40, i / 40, {255, 255, 255, 0});
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGR24, 40, 40, 60, 60, 1).run(src, dst));
  const auto blended = [](const Pixel& p) { return p[0] > kFill[0] && p[0] < 255; };
  for (int32_t y = 12; y < 48; ++y) {
    int32_t count = 0;
    for (int32_t x = 0; x < 30; ++x) count += blended(dst.at(x, y));
    EXPECT_GE(count, 1) << y;
    EXPECT_LE(count, 2) << y;
  }
}

TEST(Rotate, StripsAndTilesInAnyOrderGiveTheBytesOfOneCall) {
  for (const int32_t degrees : {0, 13, 90, -77, 180}) {
    const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGRA32, 301, 97, 7);
    const Rotation rotation(QPX_FORMAT_BGRA32, 301, 97, 280, 290, degrees);
    RgbPicture whole(QPX_FORMAT_BGRA32, 280, 290), parts(QPX_FORMAT_BGRA32, 280, 290);
    ASSERT_EQ(0, rotation.run(src, whole));
    for (int32_t top = 290 - 1; top > -37; top -= 37) {
      for (const auto& [left, right] : {std::pair{131, 400}, {0, 130}, {130, 131}}) {
        const MRect rect = {left, top, right, top + 37};
        ASSERT_EQ(0, rotation.run(src, parts, &rect));
      }
    }
    EXPECT_EQ(whole.differenceTo(parts), "") << degrees;
    EXPECT_TRUE(parts.guardsHold());
  }
}

TEST(Rotate, NothingOutsideTheRectangleIsWritten) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 50, 40, 7);
  const Rotation rotation(QPX_FORMAT_BGR24, 50, 40, 60, 60, 20);
  RgbPicture whole(QPX_FORMAT_BGR24, 60, 60), part(QPX_FORMAT_BGR24, 60, 60);
  const RgbPicture blank = part;
  ASSERT_EQ(0, rotation.run(src, whole));
  const MRect rect = {7, 11, 30, 41};
  ASSERT_EQ(0, rotation.run(src, part, &rect));
  for (int32_t y = 0; y < 60; ++y) {
    for (int32_t x = 0; x < 60; ++x) {
      const bool inside = x >= 7 && x < 30 && y >= 11 && y < 41;
      ASSERT_EQ(part.at(x, y), (inside ? whole : blank).at(x, y));
    }
  }
}

TEST(Rotate, ThreadsMaySplitAPicture) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 300, 200, 7);
  const Rotation rotation(QPX_FORMAT_BGR24, 300, 200, 300, 200, 31);
  RgbPicture whole(QPX_FORMAT_BGR24, 300, 200), parts(QPX_FORMAT_BGR24, 300, 200);
  ASSERT_EQ(0, rotation.run(src, whole));
  std::vector<std::thread> threads;
  for (int32_t t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      const MRect rect = {0, 50 * t, 300, 50 * t + 50};
      EXPECT_EQ(0, rotation.run(src, parts, &rect));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(whole.differenceTo(parts), "");
}

TEST(Rotate, ThereAndBackComesNearTheSource) {
  const RgbPicture src = RgbPicture::smooth(QPX_FORMAT_BGR24, 160, 120);
  RgbPicture turned(QPX_FORMAT_BGR24, 200, 180), back(QPX_FORMAT_BGR24, 160, 120);
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGR24, 160, 120, 200, 180, 13).run(src, turned));
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGR24, 200, 180, 160, 120, -13).run(turned, back));
  // Half a pixel is lost each way, across and down: up to one in both together.
  int worst = 0;
  for (int32_t y = 5; y < 115; ++y) {
    for (int32_t x = 5; x < 155; ++x) {
      for (size_t c = 0; c < 3; ++c) {
        worst = std::max(worst, std::abs(src.at(x, y)[c] - back.at(x, y)[c]));
      }
    }
  }
  EXPECT_LE(worst, 16);
}

// Only 16 bits of a column count: beyond 32,767 they are negative, and the pixel is fill.
TEST(Rotate, ColumnsBeyondSixteenBitsAreFill) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 40000, 3, 7);
  RgbPicture dst(QPX_FORMAT_BGR24, 40000, 3);
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGR24, 40000, 3, 40000, 3, 360001).run(src, dst));
  const Pixel fill = {kFill[0], kFill[1], kFill[2], 0};
  EXPECT_NE(dst.at(20001, 1), fill);  // the centre, which the turn leaves where it is
  RgbPicture level(QPX_FORMAT_BGR24, 40000, 3);
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGR24, 40000, 3, 40000, 3, 0).run(src, level));
  EXPECT_EQ(src.differenceTo(level), "");
  // One whose middle lies at column 32,768 shows both sides of the limit.
  const RgbPicture wide = RgbPicture::random(QPX_FORMAT_BGR24, 65536, 8, 7);
  RgbPicture middle(QPX_FORMAT_BGR24, 20, 8);
  ASSERT_EQ(0, Rotation(QPX_FORMAT_BGR24, 65536, 8, 20, 8, 1).run(wide, middle));
  EXPECT_NE(middle.at(8, 4), fill);
  EXPECT_EQ(middle.at(12, 4), fill);
}

TEST(Rotate, RowsMayBeMoreThanColumns) {
  const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGR24, 4, 50000, 7);
  ASSERT_EQ(check(src, 1, 4, 50000, 0), "");
  ASSERT_EQ(check(src, 89, 500, 4, 0), "");
}

TEST(Rotate, CalcRectFollowsTheCorners) {
  Random random(5);
  for (int round = 0; round < 400; ++round) {
    const int32_t srcW = random.between(1, 90), srcH = random.between(1, 90);
    const int32_t dstW = random.between(1, 90), dstH = random.between(1, 90);
    const int32_t degrees = random.between(-400, 400);
    const Rotation rotation(QPX_FORMAT_BGR24, srcW, srcH, dstW, dstH, degrees);
    const double s = std::sin(radians(-degrees)), c = std::cos(radians(-degrees));
    const int32_t cx = dstW / 2, cy = dstH / 2, mx = (dstW - srcW) / 2, my = (dstH - srcH) / 2;
    const MRect asked = {random.between(-9, 40), random.between(-9, 40), random.between(41, 99),
                         random.between(41, 99)};
    for (const bool forwards : {true, false}) {
      int32_t box[4] = {INT_MAX, INT_MAX, INT_MIN, INT_MIN};
      for (const int32_t x : {asked.left, asked.right}) {
        for (const int32_t y : {asked.top, asked.bottom}) {
          const double turned = forwards ? (y - cy) * s : -((y - cy) * s);
          const double across = (x - cx) * c + turned + cx - mx;
          const double down = (forwards ? (cx - x) * s : (x - cx) * s) + (y - cy) * c + cy - my;
          box[0] = std::min(box[0], static_cast<int32_t>(across));
          box[1] = std::min(box[1], static_cast<int32_t>(down));
          box[2] = std::max(box[2], static_cast<int32_t>(across));
          box[3] = std::max(box[3], static_cast<int32_t>(down));
        }
      }
      const int32_t grow = forwards ? 0 : 2;
      const int32_t width = forwards ? dstW : srcW, height = forwards ? dstH : srcH;
      MRect dst = forwards ? MRect{} : asked, src = forwards ? asked : MRect{77, 77, 7, 7};
      ASSERT_EQ(0, QPXRotateCalcRect(rotation.get(), &dst, &src));
      const MRect& made = forwards ? dst : src;
      EXPECT_EQ(made.left, std::clamp(box[0] - grow, 0, width));
      EXPECT_EQ(made.top, std::clamp(box[1] - grow, 0, height));
      EXPECT_EQ(made.right, std::clamp(box[2] + grow, 0, width));
      EXPECT_EQ(made.bottom, std::clamp(box[3] + grow, 0, height));
    }
  }
}

TEST(Rotate, CalcRectTakesRectanglesAnywhere) {
  const Rotation rotation(QPX_FORMAT_BGR24, 8, 8, 8, 8, 30);
  MRect dst = {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, src = {};
  EXPECT_EQ(0, QPXRotateCalcRect(rotation.get(), &dst, &src));
  EXPECT_EQ(src.left, 0);
  EXPECT_EQ(src.right, 8);
  dst = {};
  src = {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
  EXPECT_EQ(0, QPXRotateCalcRect(rotation.get(), &dst, &src));
  EXPECT_EQ(dst.right, 8);
}

TEST(Rotate, CreateRefuses) {
  const QPXRotateFormat good = {QPX_FORMAT_BGR24, 4, 4};
  const QPXRotateParams params = {5, kFill}, noFill = {5, nullptr};
  const auto create = [&](const QPXRotateFormat* from, const QPXRotateFormat* to,
                          const QPXRotateParams* with) {
    auto* handle = reinterpret_cast<QPXRotateHandle*>(8);
    const int32_t result = QPXRotateCreate(&handle, from, to, with);
    EXPECT_EQ(handle, nullptr);
    return result;
  };
  EXPECT_EQ(2, QPXRotateCreate(nullptr, &good, &good, &params));
  EXPECT_EQ(2, create(nullptr, &good, &params));
  EXPECT_EQ(2, create(&good, nullptr, &params));
  EXPECT_EQ(2, create(&good, &good, nullptr));
  EXPECT_EQ(2, create(&good, &good, &noFill));
  for (const uint32_t format : {uint32_t{QPX_FORMAT_RGB24}, uint32_t{QPX_FORMAT_RGBA32},
                                uint32_t{QPX_FORMAT_NV21}, 0u, uint32_t{QPX_FORMAT_BGRX32}}) {
    const QPXRotateFormat other = {format, 4, 4};
    EXPECT_EQ(3, create(&other, &other, &params)) << format;
    EXPECT_EQ(3, create(&good, &other, &params)) << format;
  }
  const QPXRotateFormat wider = {QPX_FORMAT_BGRA32, 4, 4};
  EXPECT_EQ(3, create(&good, &wider, &params));
  for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, 4}, {4, INT_MIN}}) {
    const QPXRotateFormat none = {QPX_FORMAT_BGR24, width, height};
    EXPECT_EQ(2, create(&good, &none, &params));
    EXPECT_EQ(2, create(&none, &good, &params));
  }
  EXPECT_EQ(2, QPXRotateDestroy(nullptr));
  FailingMemory::reset();
  FailingMemory::failOnly(1);
  EXPECT_EQ(4, create(&good, &good, &params));
  FailingMemory::reset();
}

TEST(Rotate, ProcessRefuses) {
  const RgbPicture src(QPX_FORMAT_BGR24, 8, 6);
  RgbPicture dst(QPX_FORMAT_BGR24, 9, 7);
  const RgbPicture blank = dst;
  const Rotation rotation(QPX_FORMAT_BGR24, 8, 6, 9, 7, 30);
  const auto process = [&](const std::function<void(MBitmap&, MBitmap&)>& spoil,
                           const MRect& rect = {0, 0, 9, 7}) {
    MBitmap from = src.bitmap(), to = dst.bitmap();
    spoil(from, to);
    return QPXRotateProcess(rotation.get(), &from, &to, &rect);
  };
  const auto nothing = [](MBitmap&, MBitmap&) {};
  EXPECT_EQ(3, process([](MBitmap& a, MBitmap&) { a.format = QPX_FORMAT_BGRA32; }));
  EXPECT_EQ(3, process([](MBitmap& a, MBitmap& b) { a.format = b.format = QPX_FORMAT_RGB24; }));
  EXPECT_EQ(2, process([](MBitmap& a, MBitmap&) { a.width = 7; }));
  EXPECT_EQ(2, process([](MBitmap&, MBitmap& b) { b.height = 6; }));
  EXPECT_EQ(2, process([](MBitmap& a, MBitmap&) { a.plane[0] = nullptr; }));
  EXPECT_EQ(2, process([](MBitmap&, MBitmap& b) { b.pitch[0] = 26; }));
  for (const MRect& rect :
       {MRect{3, 0, 3, 7}, MRect{0, 5, 9, 4}, MRect{INT_MAX, 0, INT_MIN, 7}, MRect{}}) {
    EXPECT_EQ(2, process(nothing, rect));
  }
  for (const MRect& rect : {MRect{9, 0, 12, 7}, MRect{-5, -5, 0, 0}}) {
    EXPECT_EQ(0, process(nothing, rect));
  }
  EXPECT_EQ(blank.differenceTo(dst), "");
  EXPECT_EQ(0, process(nothing, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}));
  EXPECT_NE(blank.differenceTo(dst), "");
}

TEST(Rotate, AnyAngleAndSizeStaysInside) {
  Random random(8);
  for (const int32_t degrees :
       {INT_MIN, INT_MIN + 1, INT_MAX, 1 << 30, 2147483640, 90 * 23860929}) {
    const RgbPicture src = RgbPicture::random(QPX_FORMAT_BGRA32, 20, 30, 7);
    RgbPicture dst(QPX_FORMAT_BGRA32, 33, 21);
    EXPECT_EQ(0, Rotation(QPX_FORMAT_BGRA32, 20, 30, 33, 21, degrees).run(src, dst));
    EXPECT_TRUE(dst.guardsHold());
  }
  // The far corner of a huge destination, of which only a little is asked for.
  const QPXRotateFormat from = {QPX_FORMAT_BGR24, 8, 6}, to = {QPX_FORMAT_BGR24, 700000000, 9};
  const QPXRotateParams params = {45, kFill};
  QPXRotateHandle* handle = nullptr;
  ASSERT_EQ(0, QPXRotateCreate(&handle, &from, &to, &params));
  MRect dst = {}, src = {0, 0, 8, 6};
  EXPECT_EQ(0, QPXRotateCalcRect(handle, &dst, &src));
  EXPECT_EQ(0, QPXRotateDestroy(handle));
}

}  // namespace
}  // namespace qpx::testing
