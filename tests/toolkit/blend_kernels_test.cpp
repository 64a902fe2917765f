// The exported kernels for intensity and corners against their formulas, pixel by pixel.
#include <gtest/gtest.h>
#include <qpx/kernels.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "simd/rows.h"
#include "support/kernel_frame.h"
#include "toolkit/dark_corner.h"
#include "toolkit/intensity.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32,
                                 QPX_FORMAT_RGBA32};

Picture scrambled(uint32_t format, int32_t width, int32_t height, uint64_t seed) {
  Picture picture(format, width, height, Placement::guarded);
  scramble(picture, seed);
  return picture;
}

void setSize(KernelFrame& frame, int32_t width, int32_t height) {
  Stage& stage = frame.stage();
  stage.inWidth = stage.outWidth = width;
  stage.inHeight = stage.outHeight = height;
}

void setIntensity(KernelFrame& frame, int32_t intensity) {
  QPXFilterRecord record = {};
  record.intensity = intensity;
  std::memcpy(frame.stage().record, &record, sizeof record);
}

MRect randomRect(Random& random, int32_t width, int32_t height) {
  MRect rect;
  rect.left = random.between(0, width - 1);
  rect.top = random.between(0, height - 1);
  rect.right = random.between(rect.left + 1, width);
  rect.bottom = random.between(rect.top + 1, height);
  return rect;
}

bool inside(const MRect& rect, int32_t x, int32_t y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

int32_t intensityKernel(const Frame& f) {
  return ApplyIntensityOfFilteredImage(&f.stage, &f.rect, f.out, f.in);
}

int32_t cornerKernel(const Frame& f) { return DarkCornerOptimized(&f.stage, &f.rect, f.out, f.in); }

int intensityMix(int d, int s, int64_t intensity) {
  const int64_t k = std::min<int64_t>(intensity, 100);
  const int64_t sum = ((k * d + (100 - k) * s) * 10486 + 0x80000) >> 20;
  return static_cast<int>(std::clamp<int64_t>(sum, 0, 255));
}

void expectIntensity(uint32_t format, int32_t intensity, uint64_t seed) {
  constexpr int32_t kWidth = 300, kHeight = 5;
  Random random(seed);
  const Picture source = scrambled(format, kWidth, kHeight, seed);
  const Picture look = scrambled(format, kWidth, kHeight, seed + 1);
  KernelFrame frame(format);
  setSize(frame, kWidth, kHeight);
  setIntensity(frame, intensity);
  const MRect rect = seed % 2 == 0 ? wholeOf(source) : randomRect(random, kWidth, kHeight);
  Picture out = look;
  ASSERT_EQ(frame.run(intensityKernel, source, out, rect), QPX_OK);
  ASSERT_FALSE(out.firstWriteOutside(look, rect));
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const Rgba s = source.rgb(x, y), d = look.rgb(x, y), made = out.rgb(x, y);
      Rgba expected = d;
      if (inside(rect, x, y)) {
        expected.r = static_cast<uint8_t>(intensityMix(d.r, s.r, intensity));
        expected.g = static_cast<uint8_t>(intensityMix(d.g, s.g, intensity));
        expected.b = static_cast<uint8_t>(intensityMix(d.b, s.b, intensity));
      }
      ASSERT_EQ(made, expected) << "at " << x << ", " << y << ", intensity " << intensity;
    }
  }
}

TEST(Intensity, MixesLookAndSourceToTheNearest) {
  for (const uint32_t format : kFormats) {
    for (int32_t intensity = 0; intensity <= 100; intensity += 1) {
      expectIntensity(format, intensity, static_cast<uint64_t>(intensity));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Intensity, BelowZeroLeadsAwayFromTheLookAndAbove100IsFull) {
  for (const uint32_t format : kFormats) {
    for (const int32_t intensity : {-1, -50, -100000, INT32_MIN, 101, 150, INT32_MAX}) {
      expectIntensity(format, intensity, 40);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Intensity, AtZeroIsTheSourceAndAt100TheLook) {
  const Picture source = scrambled(QPX_FORMAT_BGR24, 67, 9, 1);
  const Picture look = scrambled(QPX_FORMAT_BGR24, 67, 9, 2);
  KernelFrame frame(QPX_FORMAT_BGR24);
  setSize(frame, 67, 9);
  for (const int32_t intensity : {0, 100, 150}) {
    Picture out = look;
    setIntensity(frame, intensity);
    ASSERT_EQ(frame.run(intensityKernel, source, out, wholeOf(source)), QPX_OK);
    EXPECT_FALSE((intensity == 0 ? source : look).firstDifference(out)) << intensity;
  }
}

TEST(Intensity, OfEveryPairIsThePercentMixThatStandsForIt) {
  for (int32_t k = 0; k <= 100; ++k) {
    for (int d = 0; d < 256; ++d) {
      for (int s = 0; s < 256; ++s) {
        ASSERT_EQ(intensityMix(d, s, k), (s * (100 - k) + d * k + 50) / 100);
      }
    }
  }
}

TEST(Intensity, LeavesOtherFormatsAlone) {
  for (const uint32_t format :
       {QPX_FORMAT_RGB565, QPX_FORMAT_GREY8, QPX_FORMAT_NV21, QPX_FORMAT_I420, QPX_FORMAT_BGRX32}) {
    if (formatCase(format).group == QPX_TAKES_RGB32) continue;
    Picture source(format, 16, 8, Placement::guarded);
    source.paint(1);
    Picture out(format, 16, 8, Placement::guarded);
    out.paint(2);
    const Picture before = out;
    KernelFrame frame(format);
    setSize(frame, 16, 8);
    setIntensity(frame, 30);
    EXPECT_EQ(frame.run(intensityKernel, source, out, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(before.firstDifference(out));
  }
}

void turnNegative(const Stage&, PixelRun& run) {
  for (int32_t i = 0; i < run.count; ++i) {
    run.r[i] = static_cast<uint8_t>(255 - run.r[i]);
    run.b[i] = static_cast<uint8_t>(255 - run.b[i]);
  }
}

// A recipe and its mix in one walk give what the kernel gives behind the recipe.
TEST(Intensity, InOneWalkWithTheRecipeIsTheSame) {
  for (const uint32_t format : kFormats) {
    const Picture source = scrambled(format, 300, 3, 8);
    KernelFrame frame(format);
    setSize(frame, 300, 3);
    for (const int32_t intensity : {-20, 0, 37, 100, 400}) {
      setIntensity(frame, intensity);
      Picture twice = scrambled(format, 300, 3, 9), once = scrambled(format, 300, 3, 10);
      ASSERT_EQ(frame.run(overRuns<turnNegative>, source, twice, wholeOf(source)), QPX_OK);
      ASSERT_EQ(frame.run(intensityKernel, source, twice, wholeOf(source)), QPX_OK);
      ASSERT_EQ(frame.run(overRunsAtIntensity<turnNegative>, source, once, wholeOf(source)),
                QPX_OK);
      EXPECT_FALSE(twice.firstDifference(once)) << intensity;
    }
  }
}

// The six steps of the corner formula for one sample.
struct Corner {
  int64_t cx, cy, R, r0, inv, kk, a;

  Corner(const QPXDarkCornerParam& p, int32_t width, int32_t height)
      : cx(p.centerX), cy(p.centerY) {
    R = 0;
    for (const int64_t x : {int64_t{0}, int64_t{width}}) {
      for (const int64_t y : {int64_t{0}, int64_t{height}}) {
        R = std::max(R, distance(x - cx, y - cy));
      }
    }
    const int64_t u = p.radius < 51 ? static_cast<int64_t>(p.radius * 0.08)
                                    : static_cast<int64_t>(1 + p.radius * 0.06);
    r0 = u * R / 10;
    inv = R == r0 ? 0 : 0x100000 / (R - r0);
    kk = (u << 10) / (10 - u);
    a = p.intensity * 1024 / 100;
    if (a < 0) a = -a;
  }

  static int64_t distance(int64_t dx, int64_t dy) {
    return static_cast<int64_t>(std::sqrt(static_cast<double>(dx * dx + dy * dy)));
  }

  int operator()(int c, int64_t x, int64_t y, const uint8_t* lut) const {
    const int64_t d = distance(x - cx, y - cy);
    if (d <= r0) return c;
    const int64_t t = ((inv * d) >> 10) - kk;
    const int64_t w = t * t;
    const int64_t moved = c + ((w * (lut[c] - c)) >> 20);
    return static_cast<int>(std::clamp<int64_t>((c * (1024 - a) + a * moved + 512) >> 10, 0, 255));
  }
};

void expectCorners(uint32_t format, const QPXDarkCornerParam& param, int32_t width, int32_t height,
                   const MRect& rect) {
  const Picture source = scrambled(format, width, height, 3);
  const Picture before = scrambled(format, width, height, 4);
  KernelFrame frame(format);
  setSize(frame, width, height);
  ASSERT_EQ(frame.setUp(0x8400, param), QPX_OK);
  const auto used = *reinterpret_cast<const QPXDarkCornerParam*>(frame.stage().record);
  const Corner corner(used, width, height);
  const uint8_t* lut = frame.stage().lut;
  Picture out = before;
  ASSERT_EQ(frame.run(cornerKernel, source, out, rect), QPX_OK);
  ASSERT_FALSE(out.firstWriteOutside(before, rect));
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) {
      Rgba expected = source.rgb(x, y);
      expected.r = static_cast<uint8_t>(corner(expected.r, x, y, lut));
      expected.g = static_cast<uint8_t>(corner(expected.g, x, y, lut));
      expected.b = static_cast<uint8_t>(corner(expected.b, x, y, lut));
      ASSERT_EQ(out.rgb(x, y), expected)
          << "at " << x << ", " << y << ", centre " << param.centerX << ", " << param.centerY
          << ", radius " << param.radius << ", intensity " << param.intensity;
    }
  }
}

TEST(DarkCorner, IsItsFormulaAtEveryPixel) {
  Random random(2);
  for (const uint32_t format : kFormats) {
    for (int i = 0; i < 40; ++i) {
      const int32_t width = random.between(1, 330), height = random.between(1, 30);
      const QPXDarkCornerParam param = {random.between(-1, width + 100), random.between(0, height),
                                        random.between(0, 100), random.between(-100, 100)};
      const MRect rect =
          i % 3 == 0 ? MRect{0, 0, width, height} : randomRect(random, width, height);
      expectCorners(format, param, width, height, rect);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(DarkCorner, OfEveryRadiusIsItsFormula) {
  for (int32_t radius = 0; radius <= 100; ++radius) {
    expectCorners(QPX_FORMAT_RGBA32, {20, 5, radius, radius % 2 == 0 ? -100 : 100}, 90, 11,
                  {0, 0, 90, 11});
    if (HasFatalFailure()) return;
  }
}

TEST(DarkCorner, OfTinyPicturesAndFarCentresIsItsFormula) {
  for (const int32_t centre : {0, 1, 2, 60000, 65535}) {
    for (const int32_t radius : {0, 50, 100}) {
      expectCorners(QPX_FORMAT_BGR24, {centre, centre, radius, -70}, 1, 1, {0, 0, 1, 1});
      expectCorners(QPX_FORMAT_BGR24, {centre, 0, radius, 70}, 3, 1, {0, 0, 3, 1});
    }
  }
}

TEST(DarkCorner, LeavesTheInnerCircleAsItIs) {
  const Picture source = scrambled(QPX_FORMAT_RGB24, 101, 101, 3);
  KernelFrame frame(QPX_FORMAT_RGB24);
  setSize(frame, 101, 101);
  ASSERT_EQ(frame.setUp(0x8400, QPXDarkCornerParam{50, 50, 50, -100}), QPX_OK);
  Picture out = scrambled(QPX_FORMAT_RGB24, 101, 101, 4);
  ASSERT_EQ(frame.run(cornerKernel, source, out, wholeOf(source)), QPX_OK);
  int changed = 0;
  for (int32_t y = 0; y < 101; ++y) {
    for (int32_t x = 0; x < 101; ++x) {
      // Farthest corner (101, 101): 72; four tenths of it: 28.
      const bool within = (x - 50) * (x - 50) + (y - 50) * (y - 50) < 29 * 29;
      const bool changes = out.rgb(x, y) != source.rgb(x, y);
      ASSERT_FALSE(within && changes) << x << ", " << y;
      changed += changes;
    }
  }
  EXPECT_GT(changed, 4000);
}

TEST(DarkCorner, DarkensBelowZeroAndLightensAbove) {
  for (const int32_t intensity : {-100, -30, 30, 100}) {
    KernelFrame frame(QPX_FORMAT_RGBA32);
    setSize(frame, 64, 64);
    ASSERT_EQ(frame.setUp(0x8400, QPXDarkCornerParam{-1, -1, 0, intensity}), QPX_OK);
    EXPECT_EQ(reinterpret_cast<QPXDarkCornerParam*>(frame.stage().record)->centerX, 32);
    const uint8_t* tone = frame.stage().lut;
    for (int i = 1; i < 255; ++i) {
      EXPECT_EQ(tone[i] < i, intensity < 0) << i;
      EXPECT_GE(tone[i], tone[i - 1]);
    }
  }
}

TEST(DarkCorner, NeedsAToneTable) {
  const Picture source = scrambled(QPX_FORMAT_RGB24, 4, 4, 3);
  Picture out = source;
  KernelFrame frame(QPX_FORMAT_RGB24);
  setSize(frame, 4, 4);
  EXPECT_EQ(frame.run(cornerKernel, source, out, wholeOf(source)), QPX_BAD_PARAM);
  ASSERT_EQ(frame.setUp(0x8400, QPXDarkCornerParam{0, 0, 25, -80}), QPX_OK);
  EXPECT_EQ(frame.run(cornerKernel, source, out, wholeOf(source)), QPX_OK);
  frame.stage().lutSize = 255;  // as the working block of another effect may be
  EXPECT_EQ(frame.run(cornerKernel, source, out, wholeOf(source)), QPX_BAD_PARAM);
  EXPECT_EQ(DarkCornerOptimized(nullptr, nullptr, nullptr, nullptr), QPX_BAD_PARAM);
  EXPECT_EQ(DarkCornerOptimized(&frame.stage(), nullptr, nullptr, nullptr), QPX_BAD_PARAM);
  EXPECT_EQ(ApplyIntensityOfFilteredImage(nullptr, nullptr, nullptr, nullptr), QPX_BAD_PARAM);
}

}  // namespace
}  // namespace qpx::testing
