#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "geometry/smear_pictures.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24,  QPX_FORMAT_RGB24,  QPX_FORMAT_BGRA32,
                                 QPX_FORMAT_RGBA32, QPX_FORMAT_BGRX32, QPX_FORMAT_RGBX32};

int32_t upright(int32_t angle) { return ((angle % 180) + 180) % 180; }

int32_t halfOf(const MBitmap& src, int32_t a, int32_t length) {
  if (a == 90) return std::min(length, src.height) >> 1;
  if (a == 0) return std::min(length, src.width) >> 1;
  const double w = src.width, h = src.height;
  const int32_t size = static_cast<int32_t>(std::sqrt(w * w + h * h) + 10.0);
  return std::min(size - 10, length) >> 1;
}

int32_t passesOf(int32_t half) {
  int32_t passes = 0, t;
  do {
    ++passes;
    t = half;
    half >>= 1;
  } while (t > 15);
  return passes;
}

struct Step {
  int32_t x, y;
};

// The pixel that is t steps along the line.
Step stepAt(int32_t a, int32_t t) {
  if (a == 0) return {t, 0};
  if (a == 90) return {0, -t};
  const double radians = a * 3.14159265358979323846 / 180.0;
  const int32_t sx = static_cast<int32_t>(0.5 + std::fabs(std::cos(radians)) * 256);
  const int32_t sy = static_cast<int32_t>(0.5 + std::fabs(std::sin(radians)) * 256);
  const int32_t x = (t * sx) >> 8;
  return {a < 90 ? x : -x, -((t * sy) >> 8)};
}

int32_t averageAt(const MBitmap& src, const MBitmap& mask, int32_t a, int32_t half, int32_t x,
                  int32_t y, int c) {
  int64_t sum = 0;
  int32_t n = 0;
  for (int32_t t = -half; t <= half; ++t) {
    const Step step = stepAt(a, t);
    const int32_t px = x + step.x, py = y + step.y;
    if (px < 0 || px >= src.width || py < 0 || py >= src.height) continue;
    if (maskAt(mask, px, py) == 0) continue;
    sum += sampleAt(src, px, py, c);
    ++n;
  }
  const int64_t reciprocal = static_cast<int32_t>(1048576.0 / n + 0.5);
  return static_cast<int32_t>(std::min<int64_t>((reciprocal * sum + 0x80000) >> 20, 255));
}

int32_t outsideAt(const MBitmap& src, const MBitmap& mask, int32_t x, int32_t y, int c) {
  if (x == 0 || y == 0 || x == src.width - 1 || y == src.height - 1) return sampleAt(src, x, y, c);
  int32_t sum = 0;
  bool touches = false;
  for (int32_t dy = -1; dy <= 1; ++dy) {
    for (int32_t dx = -1; dx <= 1; ++dx) {
      sum += sampleAt(src, x + dx, y + dy, c);
      touches |= maskAt(mask, x + dx, y + dy) != 0;
    }
  }
  return touches ? (455 * sum + 2048) >> 12 : sampleAt(src, x, y, c);
}

int32_t weightAt(const MBitmap& mask, int32_t passes, int32_t x, int32_t y) {
  int32_t zeros = 0, area = 0;
  for (int32_t py = std::max(0, y - passes); py <= std::min(mask.height - 1, y + passes); ++py) {
    for (int32_t px = std::max(0, x - passes); px <= std::min(mask.width - 1, x + passes); ++px) {
      zeros += maskAt(mask, px, py) == 0;
      ++area;
    }
  }
  return (zeros << 10) / area;
}

// A plain model, pixel by pixel.
void model(const MBitmap& src, const MBitmap& mask, int32_t angle, int32_t length,
           const MBitmap& dst) {
  const int32_t a = upright(angle);
  const int32_t half = halfOf(src, a, length);
  const int32_t passes = passesOf(half);
  for (int32_t y = 0; y < src.height; ++y) {
    for (int32_t x = 0; x < src.width; ++x) {
      const int32_t weight = weightAt(mask, passes, x, y);
      for (int c = 0; c < 3; ++c) {
        int32_t value = maskAt(mask, x, y) != 0 ? averageAt(src, mask, a, half, x, y, c)
                                                : outsideAt(src, mask, x, y, c);
        if (weight != 0) {
          value = (sampleAt(src, x, y, c) * weight + value * (1024 - weight) + 512) >> 10;
        }
        sampleAt(dst, x, y, c) = static_cast<uint8_t>(value);
      }
    }
  }
}

class MotionBlur : public ::testing::Test {
 protected:
  ~MotionBlur() override { QPX_UsePlainForms(0); }

  // Blurs, and holds the result against the model; nothing else may be written.
  static void expectModel(uint32_t format, int32_t width, int32_t height, MaskShape shape,
                          int32_t angle, int32_t length, uint64_t seed) {
    Random random(seed);
    Picture src(format, width, height, Placement::exact);
    src.paint(seed);
    Picture mask(QPX_FORMAT_GREY8, width, height, Placement::exact);
    paintMask(mask, shape, random);
    Picture expected(format, width, height, Placement::guarded);
    expected.fill(0xEE);
    Picture actual(expected);
    const Picture before(expected);
    const MBitmap from = src.bitmap(), under = mask.bitmap(), wanted = expected.bitmap();
    MBitmap to = actual.bitmap();
    model(from, under, angle, length, wanted);
    QPX_UsePlainForms(seed % 3 == 0 ? 1 : 0);
    ASSERT_EQ(QPX_OK, QPX_MotionBlur(&from, &under, angle, length, &to));
    const std::string what = std::to_string(width) + "x" + std::to_string(height) + ", mask " +
                             std::to_string(static_cast<int>(shape)) + ", angle " +
                             std::to_string(angle) + ", length " + std::to_string(length);
    const auto difference = expected.firstDifference(actual);
    ASSERT_FALSE(difference) << what << ": " << describe(*difference);
    ASSERT_FALSE(actual.firstWriteOutside(before, {0, 0, width, height})) << what;
  }
};

TEST_F(MotionBlur, EqualsTheModelAtEveryAngle) {
  Random random(1);
  for (int32_t angle = -5; angle < 185; ++angle) {
    expectModel(kFormats[static_cast<size_t>(angle + 5) % 6], random.between(20, 70),
                random.between(20, 50), kMaskShapes[random.next() % 6], angle,
                random.between(0, 60), static_cast<uint64_t>(angle + 7));
  }
}

TEST_F(MotionBlur, EqualsTheModelInPicturesOfAllSizes) {
  Random random(2);
  constexpr int32_t kAngles[] = {0, 1, 30, 45, 60, 89, 90, 91, 120, 135, 150, 179};
  constexpr int32_t kLengths[] = {0, 1, 2, 3, 7, 30, 31, 32, 33, 100, 1000, INT_MAX};
  for (uint64_t i = 0; i < 700; ++i) {
    expectModel(kFormats[i % 6], random.between(1, 33), random.between(1, 33),
                kMaskShapes[random.next() % 6], kAngles[i % 12], kLengths[random.next() % 12], i);
  }
}

// Wider than a tile, lines longer than 16 bits hold the sum of.
TEST_F(MotionBlur, EqualsTheModelInLargePictures) {
  expectModel(QPX_FORMAT_BGR24, 1100, 9, MaskShape::ragged, 3, 700, 3);
  expectModel(QPX_FORMAT_BGR24, 1100, 9, MaskShape::all, 0, 1000, 4);
  expectModel(QPX_FORMAT_RGBA32, 520, 40, MaskShape::disc, 160, 90, 5);
  expectModel(QPX_FORMAT_RGBA32, 9, 700, MaskShape::all, 90, 700, 6);
  expectModel(QPX_FORMAT_BGR24, 9, 700, MaskShape::noise, 91, 700, 7);
  expectModel(QPX_FORMAT_BGR24, 200, 200, MaskShape::all, 45, 600, 8);
}

// A picture, its mask and a place for the result, with a call that expects a code.
struct Subject {
  Subject(uint32_t format, int32_t width, int32_t height)
      : src(format, width, height, Placement::guarded),
        mask(QPX_FORMAT_GREY8, width, height, Placement::guarded),
        dst(format, width, height, Placement::guarded) {
    src.paint(11);
    dst.fill(0xEE);
  }

  int32_t blur(int32_t angle, int32_t length) {
    const MBitmap from = src.bitmap(), under = mask.bitmap();
    MBitmap to = dst.bitmap();
    return QPX_MotionBlur(&from, &under, angle, length, &to);
  }

  Picture src, mask, dst;
};

TEST_F(MotionBlur, OfLengthZeroOrOneIsTheSource) {
  for (const int32_t length : {0, 1}) {
    for (const int32_t angle : {0, 33, 90, 133}) {
      Subject subject(QPX_FORMAT_BGR24, 30, 20);
      subject.mask.fill(200);
      ASSERT_EQ(QPX_OK, subject.blur(angle, length));
      EXPECT_FALSE(subject.src.firstDifference(subject.dst)) << angle << ", " << length;
    }
  }
}

TEST_F(MotionBlur, UnderAnEmptyMaskIsACopy) {
  Subject subject(QPX_FORMAT_RGB24, 30, 20);
  subject.mask.fill(0);
  ASSERT_EQ(QPX_OK, subject.blur(45, 12));
  EXPECT_FALSE(subject.src.firstDifference(subject.dst));
}

TEST_F(MotionBlur, TakesAnyAngleModuloAHalfTurn) {
  constexpr int32_t kSame[][2] = {{180, 0},   {-90, 90},      {270, 90},     {-1, 179}, {405, 45},
                                  {-135, 45}, {INT_MAX, 127}, {INT_MIN, 52}, {-180, 0}};
  for (const auto& [given, meant] : kSame) {
    Random random(5);
    Subject one(QPX_FORMAT_BGR24, 40, 30), other(QPX_FORMAT_BGR24, 40, 30);
    paintMask(one.mask, MaskShape::ragged, random);
    const MBitmap from = one.src.bitmap(), under = one.mask.bitmap();
    MBitmap to = other.dst.bitmap();
    ASSERT_EQ(QPX_OK, one.blur(given, 14));
    ASSERT_EQ(QPX_OK, QPX_MotionBlur(&from, &under, meant, 14, &to));
    EXPECT_FALSE(one.dst.firstDifference(other.dst)) << given;
  }
}

// Its mean is itself, and what the transition mixes in is itself too.
TEST_F(MotionBlur, LeavesAPixelAloneOnItsLine) {
  for (const int32_t angle : {0, 45, 90, 150}) {
    Subject subject(QPX_FORMAT_BGR24, 21, 21);
    subject.mask.fill(0);
    const MBitmap mask = subject.mask.bitmap();
    mask.plane[0][mask.pitch[0] * 10 + 10] = 1;
    ASSERT_EQ(QPX_OK, subject.blur(angle, 10));
    for (int c = 0; c < 3; ++c) {
      EXPECT_EQ(sampleAt(subject.src.bitmap(), 10, 10, c),
                sampleAt(subject.dst.bitmap(), 10, 10, c));
    }
  }
}

// By hand: three pixels 10, 40, 100 in a row under the mask, a line of three: means 25, 50, 70. The
// window of one row and one pixel to each side has no zeros.
TEST_F(MotionBlur, AveragesAlongTheRow) {
  uint8_t pixels[9] = {10, 0, 0, 40, 0, 0, 100, 0, 0}, out[9] = {}, inside[3] = {1, 255, 7};
  const MBitmap src = {QPX_FORMAT_BGR24, 3, 1, {9, 0, 0}, {pixels, nullptr, nullptr}};
  const MBitmap mask = {QPX_FORMAT_GREY8, 3, 1, {3, 0, 0}, {inside, nullptr, nullptr}};
  MBitmap dst = {QPX_FORMAT_BGR24, 3, 1, {9, 0, 0}, {out, nullptr, nullptr}};
  ASSERT_EQ(QPX_OK, QPX_MotionBlur(&src, &mask, 0, 3, &dst));
  EXPECT_EQ(25, out[0]);
  EXPECT_EQ(50, out[3]);
  EXPECT_EQ(70, out[6]);
}

TEST_F(MotionBlur, IsTheSourceWhereTheWindowIsOutsideTheMask) {
  Subject subject(QPX_FORMAT_BGR24, 60, 40);
  subject.mask.fill(0);
  const MBitmap mask = subject.mask.bitmap(), src = subject.src.bitmap();
  for (int32_t y = 10; y < 20; ++y) {
    for (int32_t x = 20; x < 40; ++x) mask.plane[0][mask.pitch[0] * y + x] = 9;
  }
  ASSERT_EQ(QPX_OK, subject.blur(20, 16));
  const MBitmap dst = subject.dst.bitmap();
  int32_t changed = 0;
  for (int32_t y = 0; y < 40; ++y) {
    for (int32_t x = 0; x < 60; ++x) {
      const bool near = x >= 19 && x < 41 && y >= 9 && y < 21;
      for (int c = 0; c < 3; ++c) {
        const bool same = sampleAt(src, x, y, c) == sampleAt(dst, x, y, c);
        EXPECT_TRUE(near || same) << x << ", " << y;
        changed += !same;
      }
    }
  }
  EXPECT_GT(changed, 300);
}

// A picture and a line that are both mirrored give the mirrored result.
TEST_F(MotionBlur, MirrorsWithItsAngle) {
  constexpr int32_t kWidth = 37, kHeight = 23;
  for (const int32_t angle : {17, 45, 80}) {
    Random random(4);
    Subject one(QPX_FORMAT_BGR24, kWidth, kHeight), other(QPX_FORMAT_BGR24, kWidth, kHeight);
    paintMask(one.mask, MaskShape::ragged, random);
    const MBitmap mask = one.mask.bitmap(), mirroredMask = other.mask.bitmap();
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) {
        mirroredMask.plane[0][mirroredMask.pitch[0] * y + x] = maskAt(mask, kWidth - 1 - x, y);
        for (int c = 0; c < 3; ++c) {
          sampleAt(other.src.bitmap(), x, y, c) = sampleAt(one.src.bitmap(), kWidth - 1 - x, y, c);
        }
      }
    }
    ASSERT_EQ(QPX_OK, one.blur(angle, 13));
    ASSERT_EQ(QPX_OK, other.blur(180 - angle, 13));
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) {
        ASSERT_EQ(sampleAt(one.dst.bitmap(), x, y, 0),
                  sampleAt(other.dst.bitmap(), kWidth - 1 - x, y, 0))
            << angle << " at " << x << ", " << y;
      }
    }
  }
}

TEST_F(MotionBlur, RefusesWhatItCannotServe) {
  Subject subject(QPX_FORMAT_BGR24, 12, 9);
  subject.mask.fill(1);
  const Picture before(subject.dst);
  const MBitmap src = subject.src.bitmap(), mask = subject.mask.bitmap();
  const MBitmap dst = subject.dst.bitmap();
  const auto code = [&](const auto& change, int32_t length = 5) {
    MBitmap s = src, m = mask, d = dst;
    change(s, m, d);
    return QPX_MotionBlur(&s, &m, 30, length, &d);
  };
  const auto nothing = [](MBitmap&, MBitmap&, MBitmap&) {};
  EXPECT_EQ(2, code(nothing, -1));
  EXPECT_EQ(2, code(nothing, INT_MIN));
  EXPECT_EQ(2, code([](MBitmap& s, MBitmap&, MBitmap&) { s.plane[0] = nullptr; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& m, MBitmap&) { m.plane[0] = nullptr; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap&, MBitmap& d) { d.plane[0] = nullptr; }));
  for (const int32_t size : {0, -1, INT_MIN}) {
    EXPECT_EQ(
        2, code([=](MBitmap& s, MBitmap& m, MBitmap& d) { s.width = m.width = d.width = size; }));
    EXPECT_EQ(2, code([=](MBitmap& s, MBitmap& m, MBitmap& d) {
                s.height = m.height = d.height = size;
              }));
  }
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& m, MBitmap&) { --m.width; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& m, MBitmap&) { --m.height; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap&, MBitmap& d) { --d.width; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap&, MBitmap& d) { --d.height; }));
  EXPECT_EQ(2, code([](MBitmap& s, MBitmap&, MBitmap&) { s.pitch[0] = 35; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& m, MBitmap&) { m.pitch[0] = 11; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap&, MBitmap& d) { d.pitch[0] = -36; }));
  EXPECT_EQ(2, code([](MBitmap& s, MBitmap&, MBitmap&) { s.format = QPX_FORMAT_BGRA32; }));
  EXPECT_EQ(2, code([](MBitmap&, MBitmap& m, MBitmap&) { m.format = QPX_FORMAT_BGR24; }));
  for (const uint32_t format : {0u, uint32_t{QPX_FORMAT_RGB565}, uint32_t{QPX_FORMAT_GREY8},
                                uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_BGR666}}) {
    EXPECT_EQ(2, code([=](MBitmap& s, MBitmap&, MBitmap& d) { s.format = d.format = format; }));
  }
  EXPECT_FALSE(subject.dst.firstWriteOutside(before, {}));
  EXPECT_EQ(0, code([](MBitmap&, MBitmap&, MBitmap& d) { d.format = QPX_FORMAT_RGB24; }));
}

TEST_F(MotionBlur, AnswersFourWithoutMemory) {
  FailingMemory::reset();
  for (const int32_t angle : {0, 30, 90}) {
    Subject subject(QPX_FORMAT_RGBA32, 40, 30);
    subject.mask.fill(1);
    const Picture before(subject.dst);
    const int64_t runs = FailingMemory::forEachFailure(true, [&] {
      const int32_t result = subject.blur(angle, 9);
      const bool failed = FailingMemory::failures() > 0;
      EXPECT_EQ(failed ? QPX_NO_MEMORY : QPX_OK, result);
      EXPECT_EQ(0, FailingMemory::liveBlocks());
      if (failed) {
        EXPECT_FALSE(subject.dst.firstWriteOutside(before, {}));
      }
    });
    EXPECT_EQ(2, runs);
  }
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
