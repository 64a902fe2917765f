// The exported blends against formulas written down a second time, over all pairs of samples.
#include <gtest/gtest.h>
#include <qpx/blend.h>

#include <cmath>
#include <limits>

namespace qpx {
namespace {

// Truncation that takes everything below zero to zero and everything large to the largest.
unsigned cut(double v) {
  if (v != v || v <= 0) return 0;
  return v >= 4294967295.0 ? 4294967295u : static_cast<unsigned>(v);
}

unsigned halfDown(float v) {
  const float fraction = v - static_cast<float>(cut(v));
  if (fraction > 0.5f) v = v + 1.0f;
  const unsigned n = cut(v);
  return n > 255 ? 255 : n;
}

unsigned clampCut(double v) { return v > 255 ? 255 : cut(v); }

unsigned normal(unsigned top, unsigned base, unsigned mask, float opacity) {
  const float m = static_cast<float>(mask) / 255.0f;
  const float keep = static_cast<float>(base) * (1.0f - opacity);
  const float under = (1.0f - m) * static_cast<float>(base);
  const float over = static_cast<float>(top) * m;
  const float mixed = opacity * (under + over);
  return halfDown(keep + mixed);
}

unsigned screen(unsigned top, unsigned base) {
  return (255u - (((255u - base) * (255u - top)) >> 8)) & 255u;
}

unsigned overlay(unsigned top, unsigned base) {
  if ((base & 128u) != 0) return (255u - (2u * (255u - base) * (255u - top)) / 255u) & 255u;
  return ((2u * base * top) / 255u) & 255u;
}

unsigned soft(unsigned top, unsigned base) {
  const float a = static_cast<float>(base) / 255.0f;
  const float t = static_cast<float>(top) / 255.0f;
  const float d = 2.0f * t - 1.0f;
  if (top < 129) {
    const float difference = a - a * a;
    const float sum = a + d * difference;
    return cut(sum * 255.0f) & 255u;
  }
  const double w = a;
  return cut((w + static_cast<double>(d) * (std::sqrt(w) - w)) * 255.0) & 255u;
}

unsigned multiplied(unsigned top, unsigned base, unsigned mask, float opacity) {
  const float m = static_cast<float>(mask) / 255.0f;
  const float b = static_cast<float>(base);
  const float product = static_cast<float>(top * base) / 255.0f;
  const float under = b * (1.0f - m);
  const float over = m * product;
  const float mixed = opacity * (under + over);
  return halfDown(b * (1.0f - opacity) + mixed);
}

template <typename Body>
void forAllPairs(const Body& body) {
  for (unsigned top = 0; top < 256; ++top) {
    for (unsigned base = 0; base < 256; ++base) {
      body(top, base);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

constexpr float kOdd[] = {-1.0f, -0.3f, 1.7f, 3.0f, 1e9f, -1e9f, 1e-40f};
constexpr unsigned kMasks[] = {0, 1, 2, 37, 64, 85, 127, 128, 129, 170, 200, 253, 254, 255};

template <typename Body>
void forOpacities(const Body& body) {
  for (int step = 0; step <= 20; ++step) body(static_cast<float>(step) * 0.05f);
  for (const float opacity : {0.3f, 0.69f, 0.01f, 0.77f, 0.995f}) body(opacity);
  for (const float opacity : kOdd) body(opacity);
}

TEST(BlendPixels, OfAllPairsAreTheirFormulas) {
  forAllPairs([](unsigned top, unsigned base) {
    ASSERT_EQ(screenPixel(top, base), screen(top, base)) << top << " on " << base;
    ASSERT_EQ(overlayPixel(top, base), overlay(top, base)) << top << " on " << base;
    ASSERT_EQ(softPixel(top, base), soft(top, base)) << top << " on " << base;
    ASSERT_EQ(Multiply(top, base), ((top * base) >> 8) & 255u) << top << " on " << base;
    ASSERT_EQ(lighten(top, base), top > base ? top : base);
    ASSERT_EQ(darken(top, base), top < base ? top : base);
  });
}

TEST(BlendPixels, MixedByOpacityOfAllPairs) {
  forOpacities([](float opacity) {
    forAllPairs([opacity](unsigned top, unsigned base) {
      ASSERT_EQ(normalPixel(top, base, 255, opacity), normal(top, base, 255, opacity))
          << top << " on " << base << " at " << opacity;
      ASSERT_EQ(screenPixel4(top, base, 255, opacity),
                normal(screen(top, base), base, 255, opacity));
      ASSERT_EQ(overlayPixel4(top, base, 255, opacity),
                normal(overlay(top, base), base, 255, opacity));
      ASSERT_EQ(softPixel4(top, base, 255, opacity), normal(soft(top, base), base, 255, opacity));
      ASSERT_EQ(multiplyPixel(top, base, 255, opacity), multiplied(top, base, 255, opacity))
          << top << " on " << base << " at " << opacity;
    });
  });
}

TEST(BlendPixels, MixedByMaskAndOpacityOfAllPairs) {
  for (const unsigned mask : kMasks) {
    for (const float opacity : {0.0f, 0.05f, 0.3f, 0.5f, 0.8f, 1.0f}) {
      forAllPairs([=](unsigned top, unsigned base) {
        ASSERT_EQ(normalPixel(top, base, mask, opacity), normal(top, base, mask, opacity))
            << top << " on " << base << " through " << mask << " at " << opacity;
        ASSERT_EQ(screenPixel4(top, base, mask, opacity),
                  normal(screen(top, base), base, mask, opacity));
        ASSERT_EQ(multiplyPixel(top, base, mask, opacity), multiplied(top, base, mask, opacity));
      });
    }
  }
}

TEST(BlendPixels, CutMixesOfAllPairs) {
  forOpacities([](float o) {
    forAllPairs([o](unsigned a, unsigned b) {
      const float over = static_cast<float>(overlay(a, b));
      const float base = static_cast<float>(b);
      const float keep = base * (1.0f - o);
      ASSERT_EQ(overlayPixelWithOpaqueness(a, b, o), cut(over * (1.0f - o) + base * o) & 255u)
          << a << " on " << b << " at " << o;
      ASSERT_EQ(alphaPixel(a, b, o), clampCut(over * o + keep)) << a << " on " << b << " at " << o;
      ASSERT_EQ(Screen(a, b, o), cut(static_cast<float>(screen(a, b)) * o + keep) & 255u);
      const unsigned t = cut(keep + static_cast<float>(a) * o) & 255u;
      const float u = static_cast<float>((t * b) / 255u);
      ASSERT_EQ(MergeWithAlpha(a, b, o), cut(keep + u * o) & 255u);
      ASSERT_EQ(linearReducePixel(a, b, o), clampCut(base + static_cast<float>(a) * o));
    });
  });
}

TEST(BlendPixels, VintageOfAllPairs) {
  forAllPairs([](unsigned a, unsigned b) {
    const float s = static_cast<float>((a + b - ((a * b) >> 7)) & 255u);
    ASSERT_EQ(VintageBlend(a, b), clampCut(0.45f * s + 0.55f * static_cast<float>(a)));
  });
}

TEST(BlendPixels, KeepTheirPeculiarities) {
  EXPECT_EQ(screenPixel(0, 0), 1u);
  EXPECT_EQ(screenPixel(255, 255), 255u);
  EXPECT_EQ(Multiply(255, 255), 254u);
  EXPECT_EQ(overlayPixel(100, 127), 99u);   // 2 * 127 * 100 / 255 = 99.6
  EXPECT_EQ(overlayPixel(100, 128), 101u);  // 255 - 2 * 127 * 155 / 255 = 255 - 154.4
  EXPECT_EQ(overlayPixelWithOpaqueness(3, 90, 1.0f), 90u);
  EXPECT_EQ(alphaPixel(3, 90, 0.0f), 90u);
  // 255 - 255 * 0.5 + ...: the sums behind 128 wrap round before they are weighed.
  EXPECT_EQ(VintageBlend(0, 255), 114u);  // 0.45 * 255 = 114.75
  EXPECT_EQ(linearReducePixel(200, 100, -1.0f), 0u);
  EXPECT_EQ(linearReducePixel(200, 100, 1.0f), 255u);
}

TEST(BlendPixels, SoftLightChangesItsFormulaAt129) {
  EXPECT_EQ(softPixel(128, 64), 64u);   // 64 + (1 / 255) * 64 * (1 - 64 / 255) = 64.2
  EXPECT_EQ(softPixel(129, 64), 64u);   // 64 + (3 / 255) * (127.7 - 64) = 64.7
  EXPECT_EQ(softPixel(130, 64), 65u);   // 64 + (5 / 255) * 63.7 = 65.2
  EXPECT_EQ(softPixel(255, 64), 127u);  // sqrt(64 / 255) * 255 = 127.7
  EXPECT_EQ(softPixel(0, 64), 16u);     // 64 * 64 / 255 = 16.06
}

TEST(BlendPixels, HalvesAreRoundedDown) {
  EXPECT_EQ(normalPixel(101, 100, 255, 0.5f), 100u);    // 100.5
  EXPECT_EQ(normalPixel(101, 100, 255, 0.625f), 101u);  // 100.625
  EXPECT_EQ(normalPixel(255, 254, 255, 0.5f), 254u);
  EXPECT_EQ(normalPixel(1, 0, 255, 0.5f), 0u);
  EXPECT_EQ(normalPixel(77, 200, 255, 1.0f), 77u);
  EXPECT_EQ(normalPixel(77, 200, 0, 1.0f), 200u);
  EXPECT_EQ(normalPixel(77, 200, 255, 0.0f), 200u);
}

TEST(BlendPixels, OnlyTheLowEightBitsOfArgumentsCount) {
  for (const unsigned extra : {0x100u, 0x80000000u, 0xFFFFFF00u}) {
    EXPECT_EQ(normalPixel(extra + 7, extra + 200, extra + 90, 0.7f), normalPixel(7, 200, 90, 0.7f));
    EXPECT_EQ(screenPixel(extra + 7, extra + 200), screenPixel(7, 200));
    EXPECT_EQ(overlayPixel(extra + 7, extra + 200), overlayPixel(7, 200));
    EXPECT_EQ(softPixel(extra + 7, extra + 200), softPixel(7, 200));
    EXPECT_EQ(multiplyPixel(extra + 7, extra + 200, extra + 3, 1.0f),
              multiplyPixel(7, 200, 3, 1.0f));
    EXPECT_EQ(Multiply(extra + 7, extra + 200), Multiply(7, 200));
    EXPECT_EQ(lighten(extra + 7, 200), 200u);
    EXPECT_EQ(darken(extra + 7, extra + 200), 7u);
    EXPECT_EQ(VintageBlend(extra + 7, extra + 200), VintageBlend(7, 200));
    EXPECT_EQ(MergeWithAlpha(extra + 7, extra + 200, 0.2f), MergeWithAlpha(7, 200, 0.2f));
  }
}

TEST(BlendPixels, OpacitiesThatAreNoNumbersGiveBlack) {
  const float none = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(normalPixel(7, 200, 255, none), 0u);
  EXPECT_EQ(multiplyPixel(7, 200, 255, none), 0u);
  EXPECT_EQ(Screen(7, 200, none), 0u);
  EXPECT_EQ(linearReducePixel(7, 200, std::numeric_limits<float>::infinity()), 255u);
}

TEST(BilinearCorners, MixesFourValuesByDistance) {
  const int32_t xs[] = {10, 20}, ys[] = {4, 8};
  EXPECT_EQ(bilinearCorners(xs, ys, 10, 20, 30, 40, 10, 4), 10u);
  EXPECT_EQ(bilinearCorners(xs, ys, 10, 20, 30, 40, 20, 4), 20u);
  EXPECT_EQ(bilinearCorners(xs, ys, 10, 20, 30, 40, 10, 8), 30u);
  EXPECT_EQ(bilinearCorners(xs, ys, 10, 20, 30, 40, 20, 8), 40u);
  EXPECT_EQ(bilinearCorners(xs, ys, 10, 20, 30, 40, 15, 6), 25u);
  EXPECT_EQ(bilinearCorners(xs, ys, 0, 255, 0, 255, 12.5, 5), 63u);  // 63.75, cut
  EXPECT_EQ(bilinearCorners(xs, ys, 0, 100, 0, 100, 40, 4), 255u);   // 300
  EXPECT_EQ(bilinearCorners(xs, ys, 0, 100, 0, 100, 5, 4), 0u);      // -50
}

TEST(BilinearCorners, EmptyRectanglesAndMissingPairsGiveZero) {
  const int32_t xs[] = {10, 20}, same[] = {4, 4};
  const int32_t wide[] = {std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()};
  EXPECT_EQ(bilinearCorners(xs, same, 10, 20, 30, 40, 15, 4), 0u);
  EXPECT_EQ(bilinearCorners(same, xs, 10, 20, 30, 40, 4, 15), 0u);
  EXPECT_EQ(bilinearCorners(nullptr, xs, 10, 20, 30, 40, 15, 6), 0u);
  EXPECT_EQ(bilinearCorners(xs, nullptr, 10, 20, 30, 40, 15, 6), 0u);
  EXPECT_EQ(bilinearCorners(wide, wide, 50, 50, 50, 50, 0, 0), 50u);
}

}  // namespace
}  // namespace qpx
