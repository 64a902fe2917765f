// Greys by hue weights and tints, against the rules written down a second time.
#include <gtest/gtest.h>
#include <qpx/blend.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "support/picture.h"
#include "toolkit/tint.h"

namespace qpx {
namespace {

using testing::Random;

struct Weights {
  double reds, yellows, greens, cyans, blues, magentas;
};

constexpr Weights kWeights[] = {{0.4, 0.6, 0.4, 0.6, 0.2, 0.8},
                                {0.5, 0.7, 0.4, 0.6, 0.2, 0.8},
                                {-1.2, 2.5, 0.1, -0.3, 3.0, 0.7},
                                {0, 0, 0, 0, 0, 0},
                                {1, 1, 1, 1, 1, 1},
                                {0.5, 0.5, 0.5, 0.5, 0.5, 0.5}};

// The six rows of tie rules, as a table: which channel is largest, middle, smallest, and the two
// weights. Conditions are numbers compared in the order of the rows.
template <typename Float>
Float hueSum(int a, int b, int c, const std::array<Float, 6>& w) {
  int most, mid, least;
  Float primary, secondary;
  const Float red = w[0], yellow = w[1], green = w[2], cyan = w[3], blue = w[4], magenta = w[5];
  if (a > b && a > c && b > c) {
    most = a, mid = b, least = c, primary = red, secondary = yellow;
  } else if (a > b && a > c && b <= c) {
    most = a, mid = c, least = b, primary = red, secondary = magenta;
  } else if (a > b && a <= c) {
    most = c, mid = a, least = b, primary = blue, secondary = magenta;
  } else if (a <= b && b > c && c < a) {
    most = b, mid = a, least = c, primary = green, secondary = yellow;
  } else if (a <= b && b > c && c >= a) {
    most = b, mid = c, least = a, primary = green, secondary = cyan;
  } else {
    most = c, mid = b, least = a, primary = blue, secondary = cyan;
  }
  return static_cast<Float>(mid - least) * secondary + static_cast<Float>(most - mid) * primary +
         static_cast<Float>(least);
}

int blackAndWhite(int a, int b, int c, const Weights& w) {
  double v = hueSum<double>(a, b, c, {w.reds, w.yellows, w.greens, w.cyans, w.blues, w.magentas});
  if (v <= 0) return 0;
  if (v >= 255) return 255;
  if (v - std::floor(v) > 0.5) v += 1.0;
  return static_cast<int>(v);
}

int chalkBoard(int a, int b, int c) {
  const float v = hueSum<float>(a, b, c, {0.4f, 0.6f, 0.4f, 0.6f, 0.2f, 0.8f});
  return v > 255.0f ? 255 : static_cast<int>(v);
}

uint32_t apply(const Weights& w, int r, int g, int b) {
  return ApplyBlackAndWhite(w.reds, w.yellows, w.greens, w.cyans, w.blues, w.magentas,
                            static_cast<uint32_t>(r), static_cast<uint32_t>(g),
                            static_cast<uint32_t>(b));
}

template <typename Body>
void forSomeColors(int step, const Body& body) {
  for (int r = 0; r < 256; r += step) {
    for (int g = 0; g < 256; g += step) {
      for (int b = 0; b < 256; b += step) body(r, g, b);
    }
  }
  Random random(11);
  for (int i = 0; i < 20000; ++i) body(random.byte(), random.byte(), random.byte());
}

TEST(BlackAndWhite, WeighsByHue) {
  for (const Weights& w : kWeights) {
    forSomeColors(15, [&](int r, int g, int b) {
      ASSERT_EQ(apply(w, r, g, b), static_cast<uint32_t>(blackAndWhite(r, g, b, w)))
          << r << " " << g << " " << b << ", reds " << w.reds;
    });
  }
}

TEST(BlackAndWhite, KeepsGreyWhateverTheWeights) {
  for (const Weights& w : kWeights) {
    for (int v = 0; v < 256; ++v) ASSERT_EQ(apply(w, v, v, v), static_cast<uint32_t>(v));
  }
}

TEST(BlackAndWhite, OfPureHuesIsTheirWeight) {
  const Weights w = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
  EXPECT_EQ(apply(w, 200, 0, 0), 20u);
  EXPECT_EQ(apply(w, 200, 200, 0), 40u);
  EXPECT_EQ(apply(w, 0, 200, 0), 60u);
  EXPECT_EQ(apply(w, 0, 200, 200), 80u);
  EXPECT_EQ(apply(w, 0, 0, 200), 100u);
  EXPECT_EQ(apply(w, 200, 0, 200), 120u);
  EXPECT_EQ(apply({0.5, 0, 0, 0, 0, 0}, 201, 0, 0), 100u);  // 100.5
  EXPECT_EQ(apply({9, 9, 9, 9, 9, 9}, 201, 0, 0), 255u);
  EXPECT_EQ(apply({-9, 0, 0, 0, 0, 0}, 201, 0, 0), 0u);
}

TEST(BlackAndWhite, ForChalkBoardIsCutInSinglePrecision) {
  forSomeColors(15, [](int r, int g, int b) {
    ASSERT_EQ(ApplyBlackAndWhiteForChalkBoard(static_cast<uint32_t>(r), static_cast<uint32_t>(g),
                                              static_cast<uint32_t>(b)),
              static_cast<uint32_t>(chalkBoard(r, g, b)))
        << r << " " << g << " " << b;
  });
  EXPECT_EQ(ApplyBlackAndWhiteForChalkBoard(2, 0, 0), 0u);  // 0.8
}

// Integers that divide towards zero and shift downwards, as the rules say.
int shift(int64_t v, int bits) { return static_cast<int>(v >> bits); }

std::array<int, 3> tinted(int y, int r, int g, int b) {
  const int luma[3] = {77, 151, 28};
  const int t[3] = {r, g, b};
  int p = 0, q = 1, s = 2;
  int order = 1;
  if (r >= g && g >= b) {
    p = 0, q = 1, s = 2, order = 1;
  } else if (r >= b && b >= g) {
    p = 0, q = 2, s = 1, order = 2;
  } else if (b >= r && r >= g) {
    p = 2, q = 0, s = 1, order = 3;
  } else if (b >= g && g >= r) {
    p = 2, q = 1, s = 0, order = 4;
  } else if (g >= r && r >= b) {
    p = 1, q = 0, s = 2, order = 5;
  } else {
    p = 1, q = 2, s = 0, order = 6;
  }
  const int wp = luma[p], wq = luma[q], ws = luma[s];
  const int k = ((t[q] - t[s] + 1) << 10) / (t[p] - t[s] + 1);
  const int m = (y << 8) - wp * (t[p] - t[s]) + (256 - wq) * (t[q] - t[s]) + 128;
  int qq = shift(m, 8);
  int ss = qq - (t[q] - t[s]);
  int pp = ss + (t[p] - t[s]);
  if (m < 256 || ss < 0) {
    const int d = wp + shift(wq * k, 10);
    ss = 0;
    pp = shift((y << 20) / d, 12);
    qq = shift(k * pp, 10);
  } else if (pp > 255) {
    const int d = ws + 1 - shift(wq * (k - 1024), 10);
    const int n = (y - wp - shift((order == 1 ? 150 : wq) * k, 10)) * 1048576;
    pp = 255;
    ss = shift(n / d, 12);
    qq = shift(ss * (1024 - k) + (k << 8), 10);
  }
  std::array<int, 3> out;
  out[static_cast<size_t>(p)] = pp;
  out[static_cast<size_t>(q)] = qq;
  out[static_cast<size_t>(s)] = ss;
  return out;
}

constexpr int kTints[][3] = {{143, 130, 121}, {255, 0, 0},     {0, 255, 0},   {0, 0, 255},
                             {255, 255, 0},   {0, 255, 255},   {255, 0, 255}, {0, 0, 0},
                             {255, 255, 255}, {128, 128, 128}, {10, 240, 90}, {90, 10, 240},
                             {240, 10, 90},   {90, 240, 10},   {10, 90, 240}, {240, 90, 10}};

TEST(Tints, OfAllGreysFollowTheRules) {
  Random random(5);
  for (int i = 0; i < 400; ++i) {
    int tint[3] = {random.byte(), random.byte(), random.byte()};
    if (i < static_cast<int>(std::size(kTints))) std::copy_n(kTints[i], 3, tint);
    for (int grey = 0; grey < 256; ++grey) {
      const auto expected = tinted(grey, tint[0], tint[1], tint[2]);
      const Rgb color = {static_cast<uint8_t>(tint[0]), static_cast<uint8_t>(tint[1]),
                         static_cast<uint8_t>(tint[2])};
      const TintedColor actual = tintedGrey(grey, color);
      ASSERT_EQ(expected, (std::array<int, 3>{actual.red, actual.green, actual.blue}))
          << "grey " << grey << ", tint " << tint[0] << " " << tint[1] << " " << tint[2];
    }
  }
}

TEST(Tints, ByHuesReplaceTheColorAndKeepBytes) {
  Random random(6);
  for (int i = 0; i < 20000; ++i) {
    const Weights& w = kWeights[random.next() % std::size(kWeights)];
    uint8_t c[3] = {random.byte(), random.byte(), random.byte()};
    const int t[3] = {random.byte(), random.byte(), random.byte()};
    const auto expected = tinted(blackAndWhite(c[0], c[1], c[2], w), t[0], t[1], t[2]);
    ApplyBlackAndWhiteWithTint(w.reds, w.yellows, w.greens, w.cyans, w.blues, w.magentas, &c[0],
                               &c[1], &c[2], static_cast<uint32_t>(t[0]),
                               static_cast<uint32_t>(t[1]) + 256, static_cast<uint32_t>(t[2]));
    for (size_t k = 0; k < 3; ++k) ASSERT_EQ(c[k], expected[k] & 255);
  }
}

TEST(Tints, ByLumaReplaceTheColorAndClamp) {
  Random random(7);
  for (int i = 0; i < 20000; ++i) {
    uint8_t c[3] = {random.byte(), random.byte(), random.byte()};
    const int t[3] = {random.byte(), random.byte(), random.byte()};
    const int y = (77 * c[0] + 151 * c[1] + 28 * c[2] + 128) >> 8;
    const auto expected = tinted(y, t[0], t[1], t[2]);
    ApplyLumaTint(&c[0], &c[1], &c[2], static_cast<uint32_t>(t[0]), static_cast<uint32_t>(t[1]),
                  static_cast<uint32_t>(t[2]));
    for (size_t k = 0; k < 3; ++k) ASSERT_EQ(c[k], std::clamp(expected[k], 0, 255));
  }
}

// A tint without colour leaves the grey itself, up to the rounding of its formula.
TEST(Tints, WithoutColorGiveGrey) {
  for (int v = 4; v < 252; ++v) {
    uint8_t c[3] = {static_cast<uint8_t>(v), static_cast<uint8_t>(v), static_cast<uint8_t>(v)};
    ApplyLumaTint(&c[0], &c[1], &c[2], 90, 90, 90);
    EXPECT_EQ(c[0], v);
    EXPECT_EQ(c[1], v);
    EXPECT_EQ(c[2], v);
  }
}

TEST(Tints, WithoutAPlaceToWriteDoNothing) {
  uint8_t c = 9;
  ApplyLumaTint(nullptr, &c, &c, 1, 2, 3);
  ApplyLumaTint(&c, nullptr, &c, 1, 2, 3);
  ApplyBlackAndWhiteWithTint(1, 1, 1, 1, 1, 1, &c, &c, nullptr, 1, 2, 3);
  EXPECT_EQ(c, 9);
}

}  // namespace
}  // namespace qpx
