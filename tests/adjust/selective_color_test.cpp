// Selective colour against a literal form of its arithmetic.
#include "adjust/selective_color.h"

#include <gtest/gtest.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "adjust/packed_pictures.h"
#include "adjust/remove_edge.h"

namespace qpx::testing {
namespace {

// The definition, with tables as they are defined.
struct Tables {
  int32_t cap[256], scale[101], share[101], light[256], dark[256], black[128];

  Tables() {
    for (int32_t i = 0; i < 256; ++i) {
      cap[i] = i == 255 ? 100 * 254 / 1 : 100 * i / (255 - i);
      light[i] = i < 128 ? i : static_cast<int32_t>(128 + std::pow((i - 128) / 128.0, 2) * 128);
      dark[i] = i < 128 ? i : static_cast<int32_t>(255 - std::pow((255 - i) / 128.0, 2) * 128);
      if (i < 128) black[i] = static_cast<int32_t>(128 - std::pow((128 - i) / 128.0, 2) * 128);
      if (i <= 100) {
        scale[i] = 1024 / std::max(i, 1);
        share[i] = i * 1024 / 100;
      }
    }
  }
};

int32_t floorShift(int64_t value, int bits) {
  return static_cast<int32_t>(std::floor(std::ldexp(static_cast<double>(value), -bits)));
}

class Literal {
 public:
  explicit Literal(const QPXSelectiveColorParam& param) {
    for (int i = 0; i < 9; ++i) {
      const int32_t k = std::clamp(param.amounts[3][i], -100, 100);
      const int32_t* inks[] = {param.amounts[0], param.amounts[1], param.amounts[2]};
      for (int ink = 0; ink < 3; ++ink) {
        int32_t c = std::clamp(inks[ink][i], -100, 100);
        if (k != 0) c = k + c + c * k / 100;
        amount_[ink][i] = c;
      }
    }
  }

  void relative(const int32_t (&rgb)[3], int32_t (&out)[3]) const {
    const auto [least, most] = std::minmax({rgb[0], rgb[1], rgb[2]});
    const int32_t mid = rgb[0] + rgb[1] + rgb[2] - least - most;
    const int32_t neutral = std::min(255 - mid, mid) + std::min(255 - most, most);
    const int32_t weight[] = {most - mid,  mid - least,     most - mid, mid - least,   most - mid,
                              mid - least, 2 * least - 255, neutral,    255 - 2 * most};
    for (int ink = 0; ink < 3; ++ink) {
      const int32_t v = rgb[ink];
      int32_t delta = 0;
      for (int i = 0; i < 9; ++i) {
        if (!belongs(i, rgb, least, most)) continue;
        const int32_t a = amount_[ink][i], w = weight[i];
        if (a > 0) {
          const uint32_t product =
              static_cast<uint32_t>(std::min(tables_.cap[v], a) * w * tables_.light[v]);
          const auto scale = static_cast<uint32_t>(tables_.scale[std::min(tables_.cap[v], 100)]);
          delta -= static_cast<int32_t>((scale * (product >> 8)) >> 10);
        }
        if (a >= 0) continue;
        const int32_t k = tables_.share[-a];
        if (i == 6) {
          const int32_t slope = floorShift((255 - least) * (least - v), 7);
          delta += floorShift(k * (tables_.dark[least] - slope - v), 10);
        } else if (i == 7) {
          const int32_t high = std::max(most - 127, 0);
          const int32_t curve = 255 + high * high / 64;
          const int32_t room = curve - floorShift((most - v) * most, 7) - v;
          delta += floorShift(floorShift(k * w, 8) * room, 10);
        } else if (i == 8) {
          const int32_t room = tables_.black[most] - floorShift((most - v) * most, 7) - v;
          delta += floorShift(k * room, 10);
        } else {
          delta += floorShift(int64_t{k} * (w * tables_.dark[v]), 18);
        }
      }
      out[ink] = std::clamp(v + delta, 0, 255);
    }
  }

  void absolute(const int32_t (&rgb)[3], int32_t (&out)[3]) const {
    const auto [least, most] = std::minmax({rgb[0], rgb[1], rgb[2]});
    const int32_t mid = rgb[0] + rgb[1] + rgb[2] - least - most;
    const int32_t neutral = 255 - (std::abs(least - 127) + std::abs(most - 127));
    const int32_t weight[] = {most - mid,  mid - least,     most - mid, mid - least,   most - mid,
                              mid - least, 2 * least - 255, neutral,    255 - 2 * most};
    for (int ink = 0; ink < 3; ++ink) {
      const int32_t c = rgb[ink];
      int32_t delta = 0;
      for (int i = 0; i < 9; ++i) {
        const int32_t percent = amount_[ink][i];
        const int32_t a = percent < -100 ? -256 : std::min(percent, 100) * 256 / 100;
        if (a == 0 || !belongs(i, rgb, least, most)) continue;
        const int32_t u = a * 255, t = u >> 8, w = weight[i], p = w * c / 255;
        if (u < 256) {
          const int32_t dark = (1 << 20) / std::max(255 - c, 1);
          delta -= floorShift(int64_t{dark} * ((w - p) * (t < c - 254 ? c - 255 : t)), 20);
        } else {
          const int32_t light = (1 << 20) / std::max(c, 1);
          delta -= floorShift(int64_t{light} * (std::min(c, t) * p), 20);
        }
      }
      out[ink] = std::clamp(c + delta, 0, 255);
    }
  }

 private:
  static bool belongs(int i, const int32_t (&rgb)[3], int32_t least, int32_t most) {
    const auto& [r, g, b] = rgb;
    const bool of[] = {r == most,  b == least,  g == most, r == least, b == most,
                       g == least, least > 127, true,      most <= 127};
    return of[i];
  }

  Tables tables_;
  int32_t amount_[3][9];
};

using Formula = void (Literal::*)(const int32_t (&rgb)[3], int32_t (&out)[3]) const;

void expectFormula(const Picture& source, const Picture& result, const Literal& literal,
                   Formula formula) {
  const int32_t first = startsWithBlue(source.format()) ? 2 : 0;
  for (int32_t y = 0; y < source.height(); ++y) {
    for (int32_t x = 0; x < source.width(); ++x) {
      const uint8_t* from = sampleAt(source, x, y, 0);
      const uint8_t* to = sampleAt(result, x, y, 0);
      const int32_t rgb[3] = {from[first], from[1], from[2 - first]};
      int32_t expected[3];
      (literal.*formula)(rgb, expected);
      ASSERT_EQ(to[first], expected[0]) << rgb[0] << ", " << rgb[1] << ", " << rgb[2];
      ASSERT_EQ(to[1], expected[1]) << rgb[0] << ", " << rgb[1] << ", " << rgb[2];
      ASSERT_EQ(to[2 - first], expected[2]) << rgb[0] << ", " << rgb[1] << ", " << rgb[2];
      if (pixelBytes(source) == 4) {
        ASSERT_EQ(to[3], from[3]);
      }
    }
  }
}

std::vector<QPXSelectiveColorParam> manyAmounts() {
  std::vector<QPXSelectiveColorParam> all(1);
  // Each class by itself, both ways, with black and without.
  for (int i = 0; i < 9; ++i) {
    for (const int32_t amount : {-100, -37, 1, 60, 150}) {
      QPXSelectiveColorParam param = {};
      param.amounts[0][i] = param.amounts[1][i] = param.amounts[2][i] = amount;
      all.push_back(param);
      param.amounts[3][i] = 70 - amount;
      all.push_back(param);
    }
  }
  Random random(4);
  for (int n = 0; n < 20; ++n) {
    QPXSelectiveColorParam param = {};
    for (auto& amounts : param.amounts) {
      for (int32_t& amount : amounts) amount = random.between(-130, 130);
    }
    all.push_back(param);
  }
  return all;
}

// Every format has its share of the amounts.
TEST(SelectiveColor, OfEveryClassIsTheFormula) {
  const std::vector<QPXSelectiveColorParam> amounts = manyAmounts();
  for (size_t i = 0; i < amounts.size(); ++i) {
    const Picture source = packedColors(kPackedFormats[i % std::size(kPackedFormats)]);
    const Literal literal(amounts[i]);
    const auto frame = frameOf(source, kSelectiveColor, amounts[i]);
    Picture result = source;
    ASSERT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
    expectFormula(source, result, literal, &Literal::relative);
    ASSERT_EQ(frame->run(byName<SelectiveColorAbsolute_RGB>, source, result, wholeOf(source)),
              QPX_OK);
    expectFormula(source, result, literal, &Literal::absolute);
    if (HasFatalFailure()) return;
  }
}

Picture selected(const Picture& source, const QPXSelectiveColorParam& param,
                 Kernel kernel = byName<SelectiveColor_RGB>) {
  Picture result = source;
  EXPECT_EQ(frameOf(source, kSelectiveColor, param)->run(kernel, source, result, wholeOf(source)),
            QPX_OK);
  return result;
}

TEST(SelectiveColor, OfNoAmountsIsACopy) {
  const Picture source = packedColors(QPX_FORMAT_RGBA32);
  for (const Kernel kernel : {byName<SelectiveColor_RGB>, byName<SelectiveColorAbsolute_RGB>,
                              byName<SelectiveColorFilter1995_RGB>}) {
    EXPECT_FALSE(source.firstDifference(selected(source, {}, kernel)));
  }
}

TEST(SelectiveColor, ByItsOtherNameIsTheSame) {
  const Picture source = packedColors(QPX_FORMAT_BGR24);
  const QPXSelectiveColorParam param = manyAmounts().back();
  EXPECT_FALSE(selected(source, param)
                   .firstDifference(selected(source, param, byName<SelectiveColorFilter1995_RGB>)));
}

// Black alone is as much of each ink, and 150 percent is 100.
TEST(SelectiveColor, BlackIsEqualInks) {
  const Picture source = packedColors(QPX_FORMAT_BGRA32);
  for (int i = 0; i < 9; ++i) {
    for (const int32_t amount : {-100, -30, 25, 100, 150}) {
      QPXSelectiveColorParam black = {}, inks = {};
      black.amounts[3][i] = amount;
      inks.amounts[0][i] = inks.amounts[1][i] = inks.amounts[2][i] = std::min(amount, 100);
      EXPECT_FALSE(selected(source, black).firstDifference(selected(source, inks)));
    }
  }
}

TEST(SelectiveColor, HandWorkedColors) {
  Picture source(QPX_FORMAT_RGB24, 2, 1, Placement::exact);
  uint8_t* red = sampleAt(source, 0, 0, 0);
  red[0] = 200, red[1] = 50, red[2] = 40;
  uint8_t* grey = sampleAt(source, 1, 0, 0);
  grey[0] = grey[1] = grey[2] = 200;
  QPXSelectiveColorParam param = {};
  param.amounts[0][0] =
      50;  // cap 363, weight 150, answer 168: (10 * (50 * 150 * 168 >> 8)) >> 10 = 48
  param.amounts[2][1] = -40;   // share 409, weight 10, answer 40: (409 * 400) >> 18 = 0
  param.amounts[1][0] = 30;    // cap 24, scale 42: (42 * (24 * 150 * 50 >> 8)) >> 10 = 28
  param.amounts[3][6] = -100;  // 231 - 0 - 200 = 31
  const Picture result = selected(source, param);
  EXPECT_EQ(sampleAt(result, 0, 0, 0)[0], 152);
  EXPECT_EQ(sampleAt(result, 0, 0, 0)[1], 22);
  EXPECT_EQ(sampleAt(result, 0, 0, 0)[2], 40);
  EXPECT_EQ(sampleAt(result, 1, 0, 0)[0], 231);
}

TEST(SelectiveColor, OfOtherStagesAndFormatsIsRefused) {
  Picture source(QPX_FORMAT_NV21, 16, 8, Placement::exact);
  source.paint(1);
  KernelFrame frame(QPX_FORMAT_NV21);
  frame.stage().effectId = kSelectiveColor;
  Picture result = source;
  result.fill(9);
  const Picture before = result;
  EXPECT_EQ(frame.run(byName<SelectiveColor_RGB>, source, result, wholeOf(source)), QPX_OK);
  EXPECT_FALSE(before.firstDifference(result));
  frame.stage().effectId = kRemoveEdge;
  EXPECT_EQ(frame.run(byName<SelectiveColor_RGB>, source, result, wholeOf(source)), QPX_BAD_PARAM);
}

}  // namespace
}  // namespace qpx::testing
